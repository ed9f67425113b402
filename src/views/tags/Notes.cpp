#include "views/tags/Notes.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/BindId.h"

#include <SQLiteCpp/SQLiteCpp.h>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainForm.NotesText_Validate()";

} // namespace

std::optional<Note> readNote(SQLite::Database &project, UrlId url) {
    SQLite::Statement row(project, "SELECT Notes, NotesDateTime FROM URLs WHERE URL_ID = ?");
    bindId(row, 1, url);
    if (!row.executeStep())
        return std::nullopt;
    Note note;
    note.notes = decodeText(row.getColumn(0).getString());
    if (const SQLite::Column date = row.getColumn(1); !date.isNull())
        note.notesDateTime = Date::fromDays(date.getDouble());
    return note;
}

NoteOutcome storeNote(SQLite::Database &project, UrlId url, const std::string &text,
                      const Clock &clock, FailureLog &log) {
    NoteOutcome outcome;
    const auto failure = failureOf(log, kProcedure, [&] {
        SQLite::Statement update(project,
                                 "UPDATE URLs SET Notes = ?, NotesDateTime = ? WHERE URL_ID = ?");
        update.bind(1, text);
        update.bind(2, Date::fromTimePoint(clock.now()).days());
        bindId(update, 3, url);
        if (update.exec() == 0)
            outcome.stored = NoteStored::rowGone;
    });
    if (failure)
        outcome = {NoteStored::failed, *failure};
    return outcome;
}

Message noteMessage(const NoteOutcome &outcome) {
    if (outcome.stored == NoteStored::rowGone)
        return {"url-unavailable", "URL Unvailable", "The selected record could not be found.",
                Choices::Ok,       Tone::Warning,    Answer::Ok};
    return {"note-not-stored", "Error Storing Note", outcome.failure,
            Choices::Ok,       Tone::Error,          Answer::Ok};
}

} // namespace nv
