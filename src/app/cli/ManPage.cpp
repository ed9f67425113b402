#include "app/cli/ManPage.h"

#include "app/cli/Examples.h"

#include <fmt/format.h>

namespace nv::cli {

namespace {

constexpr const char *kDescription = R"(.SH DESCRIPTION
Norvelane finds the histories, caches and cookies of web browsers in a folder of evidence, stores every event that it can
read as one row of a project file, and lists, searches, rebuilds and reports them.
Evidence is only ever read.
A damaged record never ends an import: it is logged with its offset, counted, and reading goes on behind it.
.PP
Each row has a key, the
.IR URL_ID .
)";

constexpr const char *kFooter = R"(.SH EXIT STATUS
.TP
.B 0
all was done, and all was read
.TP
.B 1
wrong usage
.TP
.B 2
an artefact is damaged or can't be read and the rest was, or a project's schema differs from this build's
.TP
.B 3
the project or a file can't be used
.TP
.B 130
interrupted; what was written is kept
.SH ENVIRONMENT
.TP
.B NORVELANE_HOME
the folder of settings, logs, scratch files and templates, instead of those below
.TP
.BR XDG_CONFIG_HOME ", " XDG_STATE_HOME ", " XDG_DATA_HOME
where the folders below lie
.SH FILES
.TP
.I ~/.config/norvelane/Norvelane.ini
settings
.TP
.I ~/.local/state/norvelane/error-cli.log
what commands could not read, with offsets; an older part lies beside it
.TP
.I ~/.local/state/norvelane/Temp
scratch files
.TP
.I ~/.local/share/norvelane
templates of rebuilt pages and the keyword lists that the examiner adds
.SH SEE ALSO
.BR norvelane (1)
)";

/// A line that begins with a full stop or an apostrophe would be a request.
std::string troff(const std::string &text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\\')
            escaped += "\\e";
        else if (c == '-')
            escaped += "\\-";
        else if (c == '\'')
            escaped += "\\(aq";
        else
            escaped += c;
        if (c == '\n')
            escaped += "\\&";
    }
    return "\\&" + escaped;
}

bool isHelp(const CLI::Option &option) {
    return option.check_lname("help");
}

std::string namesOf(const CLI::Option &option) {
    std::string names;
    const auto add = [&names](const std::string &name) {
        names += (names.empty() ? "" : ", ") + name;
    };
    for (const std::string &name : option.get_snames())
        add("-" + name);
    for (const std::string &name : option.get_lnames())
        add("--" + name);
    return names;
}

/// The words that a command can't do without are bare, the others in brackets.
std::string synopsisOf(const CLI::App &command) {
    std::string words;
    for (const CLI::Option *option : command.get_options()) {
        if (isHelp(*option) || (!option->get_positional() && !option->get_required()))
            continue;
        std::string word = option->get_positional()
                               ? option->get_name(true)
                               : namesOf(*option) + " " + option->get_type_name();
        word += option->get_items_expected_max() > 1 ? "..." : "";
        words += option->get_required() ? " " + word : " [" + word + "]";
    }
    return words;
}

std::string optionText(const CLI::Option &option) {
    std::string text = ".TP\n";
    if (option.get_positional())
        text += fmt::format(".I {}\n", troff(option.get_name(true)));
    else if (option.get_items_expected_max() == 0)
        text += fmt::format(".B {}\n", troff(namesOf(option)));
    else
        text += fmt::format(".BI \"{} \" \"{}\"\n", troff(namesOf(option)),
                            troff(option.get_type_name()));
    text += troff(option.get_description());
    if (!option.get_default_str().empty())
        text += fmt::format(" (default: {})", troff(option.get_default_str()));
    return text + '\n';
}

bool canBeCalled(const CLI::App &command) {
    const auto options =
        command.get_options([](const CLI::Option *option) { return !isHelp(*option); });
    return !options.empty() ||
           command.get_subcommands([](const CLI::App *) { return true; }).empty();
}

std::string examplesOf(const std::string &command) {
    const std::string text = examplesText(command);
    return text.empty() ? "" : fmt::format(".PP\n.nf\n{}\n.fi\n", troff(text));
}

std::string commandText(const CLI::App &command, const std::string &name) {
    std::string text;
    if (canBeCalled(command)) {
        text = fmt::format(".SS {}{}\n{}\n", troff(name), troff(synopsisOf(command)),
                           troff(command.get_description()));
        for (const CLI::Option *option : command.get_options())
            if (!isHelp(*option))
                text += optionText(*option);
        text += examplesOf(name);
    }
    for (const CLI::App *each : command.get_subcommands([](const CLI::App *) { return true; }))
        text += commandText(*each, name + " " + each->get_name());
    return text;
}

std::string globalOptions(const CLI::App &app) {
    std::string text = ".SH OPTIONS\n";
    for (const CLI::Option *option : app.get_options())
        text += fmt::format(".TP\n.B {}\n{}\n", troff(namesOf(*option)),
                            troff(option->get_description()));
    return text + ".PP\nOf a command:\n.B norvelane\\-cli\n.I COMMAND\n.BR \\-\\-help .\n";
}

} // namespace

std::string manPageOf(const CLI::App &app, const std::string &version, const std::string &date) {
    std::string page =
        fmt::format(".TH NORVELANE-CLI 1 \"{}\" \"Norvelane {}\" \"User Commands\"\n", troff(date),
                    troff(version));
    page += ".SH NAME\nnorvelane-cli \\- examine the caches and histories of web browsers\n"
            ".SH SYNOPSIS\n.B norvelane-cli\n.I COMMAND\n.RI [ WORDS... ]\n";
    page += kDescription + globalOptions(app) + ".SH COMMANDS\n";
    for (const CLI::App *command : app.get_subcommands([](const CLI::App *) { return true; }))
        page += commandText(*command, command->get_name());
    return page + kFooter;
}

} // namespace nv::cli
