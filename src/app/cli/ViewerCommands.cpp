#include "app/cli/ViewerCommands.h"

#include "app/Project.h"
#include "app/RecordContent.h"
#include "app/cli/RowCheck.h"
#include "base/Files.h"
#include "base/Text.h"
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

/// Opens the project, hands the row's content to `show`, and closes it.
template <class Show>
Exit withContent(Session &session, const RowArguments &row, Show &&show) {
    session.openForReading(row.project);
    checkRow(session.program.thisClass.ProjectDB.connection(), row.urlId);
    Exit exit = Exit::damagedEvidence;
    {
        RecordTools tools(session.program, session.task, session.scratch());
        const auto content = contentOfRecord(tools, UrlId{row.urlId});
        if (content && content->file)
            exit = show(*content);
        else if (content)
            session.err << fmt::format("row {}: {}\n", row.urlId, printable(content->reason));
    }
    closeProject(session.program);
    return exit;
}

} // namespace

Exit noteCommand(Session &session, const NoteArguments &arguments) {
    if (arguments.remove && arguments.text)
        throw UsageError("either a TEXT or --delete was expected");
    // A script whose variable is unset would wipe out what an examiner has written.
    if (arguments.text && trim(*arguments.text).empty())
        throw UsageError("the TEXT is empty: --delete takes a note away");
    const bool writes = arguments.remove || arguments.text;
    session.open(arguments.row.project, writes ? Access::write : Access::read);
    Program &program = session.program;
    SQLite::Database &project = program.thisClass.ProjectDB.connection();
    const UrlId url{arguments.row.urlId};
    checkRow(project, arguments.row.urlId);
    if (writes) {
        const NoteOutcome outcome =
            storeNote(project, url, arguments.text.value_or(""), program.around.clock, program.log);
        if (outcome.stored == NoteStored::failed)
            throw StorageFailure(outcome.failure);
    } else if (const auto note = readNote(project, url)) {
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
