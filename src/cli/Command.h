#pragma once

#include "cli/Argument.h"
#include "cli/Exit.h"

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv::cli {

class Session;

struct Example {
    std::string_view line; ///< after "norvelane-cli "
    std::string_view what; ///< may be empty
};

/// A row of the table of commands in README.md, as Markdown.
struct ReadmeRow {
    std::string_view call; ///< empty for a command that another's row stands for
    std::string_view does;
};

/// All that is known of a command: its file says it once. Grammar, hints, help, manual page and
/// the README's table show what stands here.
struct Command {
    std::string_view name; ///< "list", or "queries save" for a word after another command's
    std::string_view what; ///< its line in the help
    ReadmeRow readme = {};
    std::vector<Example> examples = {};   ///< two or three
    std::vector<Argument> arguments = {}; ///< in the order of the help
    /// Runs it with what its arguments were given. A call that makes no sense throws UsageError, a
    /// project that can't be used StorageFailure. Empty for a word that only stands before others.
    std::function<Exit(Session &)> run = {};
};

/// Makes a command with values of its own, which `arguments` and `run` share.
using MakeCommand = Command (*)();

/// The commands of the program in the order of its help; those with words of their own right after
/// the one that they belong to.
std::span<const MakeCommand> commandTable();
std::vector<Command> commandsOf(std::span<const MakeCommand> table);

/// Has commands of its own: without one of their words it may be called too when it has a `run`.
bool standsBeforeOthers(const Command &command, std::span<const Command> all);

/// Those of the program as a whole.
std::span<const Example> programExamples();
/// As the help shows them; empty when there are none.
std::string examplesText(std::span<const Example> examples);

/// The line of the README's table; empty for a command that another's row stands for.
std::string readmeLine(const Command &command);

} // namespace nv::cli
