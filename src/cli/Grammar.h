#pragma once

#include "cli/Command.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace nv::cli {

/// What the words of a call come to: a command to run, or an answer.
struct Call {
    std::function<Exit(Session &)> run; ///< empty when the call is answered
    Exit exit = Exit::ok;               ///< then
    std::string answer;                 ///< for the standard output: help, version
    std::string refusal;                ///< for the standard error: what is wrong with the words
};

/// Understands the words after the program's name.
Call callOf(std::vector<std::string> words, std::span<const MakeCommand> table = commandTable());

} // namespace nv::cli
