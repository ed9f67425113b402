#include "app/jobs/Trail.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/RowCheck.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "time/DateFormat.h"
#include "views/tags/Notes.h"

#include <fmt/format.h>

#include <optional>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::int64_t urlId = 0;
    std::optional<std::string> text; ///< nothing to print the note
    bool remove = false;
};

Exit run(Session &session, const Arguments &arguments) {
    if (arguments.remove && arguments.text)
        throw UsageError("either a TEXT or --delete was expected");
    // A script whose variable is unset would wipe out what an examiner has written.
    if (arguments.text && trim(*arguments.text).empty())
        throw UsageError("the TEXT is empty: --delete takes a note away");
    const bool writes = arguments.remove || arguments.text;
    session.open(arguments.project, writes ? Access::write : Access::read);
    Program &program = session.program;
    SQLite::Database &project = program.state.projectDB.connection();
    const UrlId url = checkedRow(project, arguments.urlId);
    if (writes) {
        const NoteOutcome outcome =
            storeNote(project, url, arguments.text.value_or(""), program.around.clock, program.log);
        if (outcome.stored == NoteStored::failed)
            throw StorageFailure(outcome.failure);
        if (outcome.stored == NoteStored::stored)
            noteNote(program, url, arguments.text.value_or(""));
    } else if (const auto note = readNote(project, url)) {
        if (!note->notes.empty())
            session.out << printableLines(note->notes) << '\n';
        if (note->notesDateTime.has())
            session.err << fmt::format("last changed {}\n", isoUtc(note->notesDateTime));
    }
    closeProject(program);
    return Exit::ok;
}

} // namespace

Command noteCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "note",
            .what = "Print, write or take away the note of a row",
            .readme = {"`note PROJECT ID TEXT`", "writes a note; without a text prints it"},
            .examples = {{"note case.nvp 17", "prints the note"},
                         {"note case.nvp 17 \"seen by two examiners\"", "writes it"},
                         {"note case.nvp 17 --delete", "takes it away"}},
            .arguments = {projectWord(given->project), rowWord(given->urlId),
                          value("TEXT", given->text,
                                "The new note, not empty (default: print the note)"),
                          flag("--delete", given->remove, "Take the note away")},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
