#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// One reference of a page, and what takes its place. Texts are the page's own bytes.
struct Replacement {
    std::string rule; ///< what stands before the reference, such as "src="; no blanks at its ends
    std::string old;
    std::string newValue;
};

/// `text` with every spelling of the reference replaced, wherever it stands in either case: after
/// the rule in quotation marks, in apostrophes, bare, and after a line break.
std::string replacedEverywhere(std::string_view text, const Replacement &replacement);

struct ReplacedText {
    std::string text;
    std::vector<bool> made; ///< by replacement: it changed something
};

/// `text` with all references replaced one after the other, in their order: each works on what the
/// ones before it left. Throws std::length_error when the text grows beyond all measure.
ReplacedText replacedInOrder(std::string_view text, std::span<const Replacement> replacements);

} // namespace nv
