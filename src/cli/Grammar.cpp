#include "cli/Grammar.h"

#include "app/program/Version.h"
#include "cli/CommandHints.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <sstream>
#include <type_traits>

namespace nv::cli {

namespace {

constexpr const char *kExitCodes = R"(
Exit codes: 0 done, 1 wrong usage or nothing found, 2 an artefact is damaged or a project's schema differs,
3 the project can't be used, 130 interrupted: what was written is kept.)";

/// The table of commands as the library that parses the words wants it.
class Grammar {
  public:
    explicit Grammar(std::span<const MakeCommand> table);

    CLI::App app;
    std::function<Exit(Session &)> chosen; ///< after the parsing

  private:
    void add(const Command &command);
    void addExamples(const Command &command);
    CLI::App *appOf(std::string_view name) const;

    std::vector<Command> m_commands;
};

CLI::Option *added(CLI::App &to, const Argument &argument) {
    const std::string what(argument.what);
    return std::visit(
        [&](const auto &target) -> CLI::Option * {
            using Held = std::decay_t<decltype(target)>;
            if constexpr (std::is_same_v<Held, Choice>)
                return to.add_option_function<std::size_t>(argument.name, target.take, what);
            else if constexpr (std::is_same_v<Held, bool *>)
                return to.add_flag(argument.name, *target, what);
            else if constexpr (std::is_same_v<Held, std::optional<bool> *>)
                // The library's own form for them takes what isn't said for a no.
                return to.add_flag_function(
                    argument.name, [target](std::int64_t times) { *target = times > 0; }, what);
            else
                return to.add_option(argument.name, *target, what);
        },
        argument.target);
}

/// Takes a word of the list and hands on its place there.
CLI::Validator placeIn(const std::vector<std::string> &words) {
    return CLI::Validator(
        [words](std::string &input) -> std::string {
            const auto place = placeAmong(input, words);
            if (!place)
                return noneOf(input, words);
            input = std::to_string(*place);
            return {};
        },
        "");
}

/// The same, handing on the word as the list has it.
CLI::Validator oneOf(const std::vector<std::string> &words) {
    return CLI::Validator(
        [words](std::string &input) -> std::string {
            const auto place = placeAmong(input, words);
            if (!place)
                return noneOf(input, words);
            input = words.at(*place);
            return {};
        },
        "");
}

void addArgument(CLI::App &to, const Argument &argument, bool mayBeMissing) {
    CLI::Option *option = added(to, argument);
    if (const std::string_view type = typeName(argument); !type.empty())
        option->type_name(std::string(type));
    if (argument.isRequired && !mayBeMissing)
        option->required();
    if (argument.isFrom1)
        option->check(CLI::Validator([](std::string &input) { return notFrom1(input); }, ""));
    if (argument.hasCommas)
        option->delimiter(',');
    if (argument.isSaidAgain) // the words behind its value are others'
        option->allow_extra_args(false);
    if (!argument.choices.empty())
        option->transform(std::holds_alternative<Choice>(argument.target)
                              ? placeIn(argument.choices)
                              : oneOf(argument.choices));
    if (!argument.standard.empty())
        option->default_str(argument.standard);
    if (!argument.needs.empty())
        option->needs(to.get_option(std::string(argument.needs)));
}

Understood understood(const CLI::App &app) {
    const CLI::App *here = &app;
    Understood place;
    while (!here->get_subcommands().empty()) {
        here = here->get_subcommands().front();
        place.words += (place.words.empty() ? "" : " ") + here->get_name();
    }
    for (const CLI::App *each : here->get_subcommands([](const CLI::App *) { return true; }))
        place.commands.push_back(each->get_name());
    for (const CLI::Option *option : here->get_options())
        for (const std::string &name : option->get_lnames())
            place.options.push_back("--" + name);
    place.left = here->remaining();
    return place;
}

std::string explanationOf(const CLI::App &app, const CLI::Error &error) {
    Mistake mistake = Mistake::other;
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError))
        mistake = Mistake::wordWithoutPlace;
    else if (std::string_view(error.what()) == CLI::RequiredError::Subcommand(1).what())
        mistake = Mistake::noCommand;
    return explained(understood(app), mistake, error.what());
}

Grammar::Grammar(std::span<const MakeCommand> table)
    : app("Norvelane: forensic examination of browser caches and histories", "norvelane-cli"),
      m_commands(commandsOf(table)) {
    app.require_subcommand(1);
    app.set_version_flag("--version", fmt::format("norvelane-cli {}.{}.{}", version::kMajor,
                                                  version::kMinor, version::kRevision));
    for (const Command &command : m_commands)
        add(command);
    for (const Command &command : m_commands)
        addExamples(command);
    app.footer(examplesText(programExamples()) + kExitCodes);
    app.failure_message(
        [](const CLI::App *all, const CLI::Error &error) { return explanationOf(*all, error); });
}

CLI::App *Grammar::appOf(std::string_view name) const {
    const auto space = name.find(' ');
    CLI::App *first = app.get_subcommand(std::string(name.substr(0, space)));
    return space == std::string_view::npos
               ? first
               : first->get_subcommand(std::string(name.substr(space + 1)));
}

/// A command that has others may be called without what it requires: they have words of their own.
void Grammar::add(const Command &command) {
    const auto space = command.name.find(' ');
    CLI::App *parent =
        space == std::string_view::npos ? &app : appOf(command.name.substr(0, space));
    CLI::App *here = parent->add_subcommand(
        std::string(command.name.substr(space == std::string_view::npos ? 0 : space + 1)),
        std::string(command.what));
    const bool hasOthers = standsBeforeOthers(command, m_commands);
    for (const Argument &argument : command.arguments)
        addArgument(*here, argument, hasOthers);
    if (!command.run) {
        here->require_subcommand(1);
        return;
    }
    here->callback([this, here, &command] {
        if (!here->get_subcommands().empty())
            return;
        for (const Argument &argument : command.arguments)
            if (argument.isRequired && here->count(argument.name) == 0)
                throw CLI::RequiredError(argument.name);
        chosen = command.run;
    });
}

/// Its own, and those of its words.
void Grammar::addExamples(const Command &command) {
    std::string text = examplesText(command.examples);
    for (const Command &each : m_commands)
        if (each.name.starts_with(std::string(command.name) + " "))
            text += (text.empty() ? "" : "\n") + examplesText(each.examples);
    appOf(command.name)->footer(text);
}

} // namespace

Call callOf(std::vector<std::string> words, std::span<const MakeCommand> table) {
    Grammar grammar(table);
    Call call;
    try {
        std::ranges::reverse(words); // as the parser takes them
        grammar.app.parse(std::move(words));
        call.run = grammar.chosen;
    } catch (const CLI::ParseError &problem) {
        std::ostringstream out, err;
        // Asking for help or the version ends the parsing too, with 0.
        call.exit = grammar.app.exit(problem, out, err) == 0 ? Exit::ok : Exit::usage;
        call.answer = out.str();
        call.refusal = err.str();
    }
    return call;
}

} // namespace nv::cli
