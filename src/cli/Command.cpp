#include "cli/Command.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv::cli {

std::vector<Command> commandsOf(std::span<const MakeCommand> table) {
    std::vector<Command> commands;
    commands.reserve(table.size());
    for (const MakeCommand make : table)
        commands.push_back(make());
    return commands;
}

bool standsBeforeOthers(const Command &command, std::span<const Command> all) {
    return std::ranges::any_of(all, [first = std::string(command.name) + " "](const Command &each) {
        return each.name.starts_with(first);
    });
}

std::string examplesText(std::span<const Example> examples) {
    std::string text = examples.empty() ? "" : "Examples:";
    for (const Example &example : examples)
        text += example.what.empty()
                    ? fmt::format("\n  norvelane-cli {}", example.line)
                    : fmt::format("\n  norvelane-cli {:<54} {}", example.line, example.what);
    return text;
}

std::string readmeLine(const Command &command) {
    return command.readme.call.empty()
               ? std::string()
               : fmt::format("| {} | {} |", command.readme.call, command.readme.does);
}

} // namespace nv::cli
