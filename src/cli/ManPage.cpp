#include "cli/ManPage.h"

#include "base/Text.h"

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

constexpr const char *kGlobalOptions = R"(.SH OPTIONS
.TP
.B \&\-h, \-\-help
\&Print this help message and exit
.TP
.B \&\-\-version
\&Display program version information and exit
.PP
Of a command:
.B norvelane\-cli
.I COMMAND
.BR \-\-help .
)";

constexpr const char *kFooter = R"(.SH EXIT STATUS
.TP
.B 0
all was done, and all was read
.TP
.B 1
wrong usage, or an import that found nothing
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

/// "--notes, --no-notes" of an option that can be said both ways.
std::string namesOf(const Argument &argument) {
    return replaceAll(argument.name, ",!", ", ");
}

/// The words that a command can't do without are bare, the others in brackets.
std::string synopsisOf(const Command &command, bool hasOthers) {
    std::string words;
    for (const Argument &argument : command.arguments) {
        if (!isWord(argument) && !argument.isRequired)
            continue;
        std::string word = argument.name;
        if (!isWord(argument))
            word += fmt::format(" {}", typeName(argument));
        word += isList(argument) ? "..." : "";
        words += argument.isRequired && !hasOthers ? " " + word : " [" + word + "]";
    }
    return words;
}

std::string argumentText(const Argument &argument) {
    std::string text = ".TP\n";
    if (isWord(argument))
        text += fmt::format(".I {}\n", troff(argument.name));
    else if (typeName(argument).empty())
        text += fmt::format(".B {}\n", troff(namesOf(argument)));
    else
        text += fmt::format(".BI \"{} \" \"{}\"\n", troff(namesOf(argument)),
                            troff(std::string(typeName(argument))));
    text += troff(std::string(argument.what));
    if (!argument.standard.empty())
        text += fmt::format(" (default: {})", troff(argument.standard));
    return text + '\n';
}

std::string commandText(const Command &command, bool hasOthers) {
    std::string text =
        fmt::format(".SS {}{}\n{}\n", troff(std::string(command.name)),
                    troff(synopsisOf(command, hasOthers)), troff(std::string(command.what)));
    for (const Argument &argument : command.arguments)
        text += argumentText(argument);
    if (!command.examples.empty())
        text += fmt::format(".PP\n.nf\n{}\n.fi\n", troff(examplesText(command.examples)));
    return text;
}

} // namespace

std::string manPageOf(std::span<const MakeCommand> table, const std::string &version,
                      const std::string &date) {
    std::string page =
        fmt::format(".TH NORVELANE-CLI 1 \"{}\" \"Norvelane {}\" \"User Commands\"\n", troff(date),
                    troff(version));
    page += ".SH NAME\nnorvelane-cli \\- examine the caches and histories of web browsers\n"
            ".SH SYNOPSIS\n.B norvelane-cli\n.I COMMAND\n.RI [ WORDS... ]\n";
    page.append(kDescription).append(kGlobalOptions).append(".SH COMMANDS\n");
    const std::vector<Command> commands = commandsOf(table);
    for (const Command &command : commands)
        if (command.run)
            page += commandText(command, standsBeforeOthers(command, commands));
    return page + kFooter;
}

} // namespace nv::cli
