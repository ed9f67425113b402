#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nv::cli {

/// Takes a word of the list in any case, and hands on the number that stands with it. Another word
/// is refused with the whole list.
CLI::Validator numberOf(std::vector<std::pair<std::string, int>> words);
/// The same, handing on the word itself.
CLI::Validator oneOf(const std::vector<std::string> &words);

/// Takes whole numbers from 1 on.
CLI::Validator atLeastOne();

/// The one that was probably meant; empty when none is near.
std::string nearest(std::string_view word, const std::vector<std::string> &known);

/// What was wrong with the words that `app` could not parse, and where to read on.
std::string explained(const CLI::App &app, const CLI::Error &error);

} // namespace nv::cli
