#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv::cli {

/// The place of `word` among `words`, in any case.
std::optional<std::size_t> placeAmong(std::string_view word, const std::vector<std::string> &words);
/// That `word` is none of them, with all of them.
std::string noneOf(std::string_view word, const std::vector<std::string> &words);

/// Why `word` is no whole number from 1 on; empty when it is one.
std::string notFrom1(std::string_view word);

/// The one that was probably meant; empty when none is near.
std::string nearest(std::string_view word, const std::vector<std::string> &known);

/// How far a call that is wrong was understood.
struct Understood {
    std::string words;                 ///< "template apply"; empty for the program itself
    std::vector<std::string> commands; ///< that could follow
    std::vector<std::string> options;  ///< of what was understood
    std::vector<std::string> left;     ///< words that have no place
};

enum class Mistake { wordWithoutPlace, noCommand, other };

/// What was wrong with a call, and where to read on. `what` is the parser's own text, for what
/// there is no better one.
std::string explained(const Understood &place, Mistake mistake, const std::string &what);

} // namespace nv::cli
