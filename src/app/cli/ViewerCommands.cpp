#include "app/cli/ViewerCommands.h"

#include "app/Project.h"
#include "app/RecordContent.h"
#include "base/Files.h"
#include "db/SqliteErrors.h"
#include "time/DateFormat.h"
#include "views/CachedText.h"
#include "views/EXIFClass.h"
#include "views/Notes.h"

#include <fmt/format.h>

namespace nv::cli {

namespace {

/// More would stay in memory three times over.
constexpr std::uint64_t kMostTextBytes = std::uint64_t{256} << 20;

[[noreturn]] void refuseRow(std::int64_t urlId) {
    throw UsageError(fmt::format("the project has no row {}", urlId));
}

/// Opens the project, hands the row's content to `show`, and closes it.
template <class Show>
Exit withContent(Session &session, const RowArguments &row, Show &&show) {
    session.open(row.project);
    Exit exit = Exit::damagedEvidence;
    {
        RebuildTools tools(session.program, session.task, session.scratch());
        const auto content = contentOfRecord(tools, UrlId{row.urlId});
        if (!content)
            refuseRow(row.urlId);
        if (content->file)
            exit = show(*content);
        else
            session.err << fmt::format("row {}: {}\n", row.urlId, printable(content->reason));
    }
    closeProject(session.program);
    return exit;
}

} // namespace

Exit noteCommand(Session &session, const NoteArguments &arguments) {
    if (arguments.remove && !arguments.text.empty())
        throw UsageError("either a TEXT or --delete was expected");
    session.open(arguments.row.project);
    Program &program = session.program;
    SQLite::Database &project = program.thisClass.ProjectDB.connection();
    const UrlId url{arguments.row.urlId};
    if (arguments.remove || !arguments.text.empty()) {
        const NoteOutcome outcome =
            storeNote(project, url, arguments.text, program.around.clock, program.log);
        if (outcome.stored == NoteStored::rowGone)
            refuseRow(arguments.row.urlId);
        if (outcome.stored == NoteStored::failed)
            throw StorageFailure(outcome.failure);
    } else {
        const auto note = readNote(project, url);
        if (!note)
            refuseRow(arguments.row.urlId);
        if (!note->Notes.empty())
            session.out << printableLines(note->Notes) << '\n';
        if (note->NotesDateTime.has())
            session.err << fmt::format("last changed {}\n", isoUtc(note->NotesDateTime));
    }
    closeProject(program);
    return Exit::ok;
}

Exit exifCommand(Session &session, const RowArguments &row, Format format) {
    return withContent(session, row, [&](const RecordContent &content) {
        const ExifPicture picture(*content.file);
        if (!picture.hasData())
            session.err << fmt::format("row {} has no EXIF data\n", row.urlId);
        const auto writer = makeRowWriter(format, session.out, {"tag", "value"});
        for (const ExifTagName &tag : exifTagNames())
            if (std::string value = EXIFClass::GetEXIFValue(tag.name, picture); !value.empty())
                writer->row({std::string(tag.name), std::move(value)});
        writer->finish();
        return Exit::ok;
    });
}

Exit textCommand(Session &session, const RowArguments &row) {
    return withContent(session, row, [&](const RecordContent &content) {
        const CachedText text =
            readCachedText(*content.file, content.record.MetaData, kMostTextBytes);
        session.out << printableLines(text.text) << '\n';
        session.err << fmt::format("{} ({})\n", printable(text.charset), text.foundIn);
        if (text.isCut())
            session.err << cutNotice(text) << '\n';
        return Exit::ok;
    });
}

} // namespace nv::cli
