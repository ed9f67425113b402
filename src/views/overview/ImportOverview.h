#pragma once

#include "import/ImportTrail.h"
#include "import/RowsByKind.h"
#include "views/rows/IdLoader.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// Of which imports a summary tells.
enum class ImportScope : std::uint8_t {
    last,
    all, ///< everything that was ever imported into the project
};

/// What an examiner has to know first. Each means one thing, in this order of weight.
enum class ImportLight : std::uint8_t {
    green, ///< everything that was found was read
    amber, ///< something wasn't read, or only in part
    red,   ///< something is damaged, has failed, or the evidence has changed
};

/// "Complete", "Not complete", "Failed or changed": never the colour alone.
std::string_view lightWord(ImportLight light);
/// A sign of one character, another form for each.
std::string_view lightSign(ImportLight light);

/// A file or folder of which not all is in the project.
struct ImportGap {
    std::string file;  ///< its name
    std::string place; ///< the folder
    std::string state; ///< "cut short", "not readable", ...
    std::string reason;
    ImportLight light = ImportLight::amber; ///< never green
};

/// A person, browser, profile or kind and its rows.
struct ImportCount {
    std::string name; ///< empty: of no known one
    KindRows rows;
};

/// What came of an import, as the project tells it: by its trail and its rows.
struct ImportOverview {
    ImportScope scope = ImportScope::last; ///< `all` where the project tells no import from others
    bool isKnown = false;                  ///< the trail tells of an import
    bool isInTrail = true;                 ///< false: it has just been made, and isn't in there
    Date ended;                            ///< UTC; of the last entry
    std::string version;                   ///< of the program that made it
    std::uint64_t found = 0;               ///< files that were to be read
    std::uint64_t read = 0;                ///< to their end
    std::uint64_t reached = 0;             ///< their reading was begun at least
    KindRows rows;                         ///< all of them, with their first and last event (UTC)
    bool isCounted = true;                 ///< false: the project is damaged where they lie
    bool isWhole = true;                   ///< false: the counting was cancelled
    std::vector<ImportCount> people;       ///< those of most rows first, as all of these
    std::vector<ImportCount> browsers;
    std::vector<ImportCount> profiles; ///< "Firefox, profile \"x\", person \"ada\""
    std::vector<ImportCount> kinds;
    /// The gravest first. Over all imports a file isn't among them for what a later import has
    /// read of it.
    std::vector<ImportGap> gaps;
    ImportEnd end; ///< sums over imports
    /// Imports that never ended, of whatever scope; in scope `all` each is a gap too.
    std::vector<UnendedImport> unended;
    std::string verified;    ///< what the last verification after it said; empty without one
    bool hasChanged = false; ///< it found other files than were imported

    /// Named ones only.
    std::size_t personCount() const;
    std::size_t profileCount() const;
    std::size_t count(ImportLight light) const; ///< of the gaps
};

/// Reads the trail and counts the rows. Where nothing tells the last import from those before,
/// `all` comes in place of `last`. Throws what the database says; a cancel leaves
/// `overview` without counts.
Walk loadImportOverview(SQLite::Database &project, ImportScope scope, TaskMonitor &task,
                        ImportOverview &overview);

/// The same of an import that has just been made: by its summary where the trail doesn't tell of
/// it, so that none before it is taken for it. A failure after the reading is told too.
Walk loadImportOverview(SQLite::Database &project, const ImportSummary &summary, TaskMonitor &task,
                        ImportOverview &overview);

/// How many of all files and folders that were ever to be imported aren't in the project, or only
/// in part, as scope `all` tells them. Reads the trail alone. Throws what the database says.
std::uint64_t countNotRead(SQLite::Database &project);

ImportLight lightOf(const ImportOverview &overview);
/// "98,311 records from 12 profiles of 3 people, 116 files read".
std::string headlineOf(const ImportOverview &overview);
/// What the light means here, in one sentence.
std::string lightText(const ImportOverview &overview);
/// What else has to be known: a sentence each.
std::vector<std::string> notesOf(const ImportOverview &overview);
/// "2011-03-01T18:24:30Z to 2026-11-21T23:48:58Z"; empty without dates.
std::string spanText(const KindRows &rows);

} // namespace nv
