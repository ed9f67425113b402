#pragma once

#include "base/Clock.h"
#include "base/Examiner.h"
#include "base/FailureLog.h"
#include "db/schema/Ids.h"
#include "time/Date.h"

#include <optional>
#include <string>

namespace SQLite {
class Database;
}

namespace nv {

/// What the examiner noted of a record.
struct Note {
    std::string notes;
    Date notesDateTime; ///< UTC, of the last change
};

/// Nothing when there is no such row. Throws what the database says.
std::optional<Note> readNote(SQLite::Database &project, UrlId url);

enum class NoteStored { stored, rowGone, failed };

/// The outcome, and why it failed.
struct NoteOutcome {
    NoteStored stored = NoteStored::stored;
    std::string failure;
};

/// Writes the note with the time of now; an empty text takes the note away, and the time says when.
/// A failure is logged.
NoteOutcome storeNote(SQLite::Database &project, UrlId url, const std::string &text,
                      const Clock &clock, FailureLog &log);

/// What the examiner is told of a note that wasn't stored.
Message noteMessage(const NoteOutcome &outcome);

} // namespace nv
