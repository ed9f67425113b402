#pragma once

#include "db/trail/CaseTrail.h"
#include "import/ImportSettings.h"
#include "import/ImportSummary.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace nv {

// What the case trail keeps of an import, and what can be read from it later. Times and versions
// are filled in by whoever adds the entries.

/// Of one file: action "Import".
TrailEntry trailEntry(const ArtefactResult &artefact, const ImportSettings &job);
/// Of a file that was read for the artefact: action "Import Beside".
TrailEntry trailEntry(const FileBeside &file, const ArtefactResult &artefact);
/// Of a place that couldn't be read: action "Not Readable".
TrailEntry trailEntry(const UnreadPlace &place);

/// What is known of an import before it reads its first file.
struct ImportBegin {
    std::uint64_t found = 0;     ///< files that it is to read
    std::int64_t lastBefore = 0; ///< the last row's id before it
};

/// Action "Import Begin": the first of its entries. `folder` is the one that has all of them.
TrailEntry trailEntry(const ImportBegin &begin, const std::filesystem::path &folder);
/// Nothing where the entry tells of something else.
std::optional<ImportBegin> importBeginOf(const TrailEntry &entry);

/// How an import ended, and what stands in no other of its entries.
struct ImportEnd {
    std::uint64_t found = 0;      ///< files that it was to read
    std::int64_t lastBefore = 0;  ///< the last row's id before it
    std::int64_t lastRow = 0;     ///< and after it; the same where it brought none
    std::uint64_t notReached = 0; ///< of the files
    std::uint64_t rowsLost = 0;   ///< records that the project did not take
    std::uint64_t passedOver = 0; ///< records that the rules leave out
    std::uint64_t linksNotFollowed = 0;
    std::uint64_t shaderCaches = 0;
    /// Files beside the artefacts that were hashed; nothing where an earlier version imported,
    /// which hashed none.
    std::optional<std::uint64_t> hashedBeside = {};
    bool cancelled = false;
    std::string failure = {}; ///< what ended it; empty for most
};

ImportEnd importEnd(const ImportSummary &summary, std::int64_t lastBefore, std::int64_t lastRow);
/// Action "Import End": the last of its entries.
TrailEntry trailEntry(const ImportEnd &end);
/// Nothing where the entry tells of something else.
std::optional<ImportEnd> importEndOf(const TrailEntry &entry);

/// An import whose end no entry tells: its program was killed, or the machine lost its power.
struct UnendedImport {
    Date begun; ///< UTC
    std::string folder;
    ImportBegin begin;
    std::optional<std::int64_t> lastRow; ///< nothing where no import has followed
};
/// "began 2011-03-01T18:24:30Z to read 12 files, and its end isn't told: ..."
std::string reasonOf(const UnendedImport &import);

/// Finds them among all entries of a trail, which it takes one by one.
class UnendedImports {
  public:
    void take(const TrailEntry &entry);
    /// In order. The last one may still be running.
    std::vector<UnendedImport> found() const;

  private:
    std::vector<UnendedImport> m_before;
    std::optional<UnendedImport> m_open;
};

/// Of all entries of the project's trail. Throws what the database says.
std::vector<UnendedImport> unendedImports(SQLite::Database &project);

/// What an entry tells of a file; earlier versions wrote them in the same form.
struct ImportedFile {
    std::string readerKey;
    ArtefactState state = ArtefactState::failed;
    std::string why;        ///< in words, with what else was noted; may be empty
    bool lacksRows = false; ///< the project did not take all of its records
};
/// Nothing where the entry tells of something else.
std::optional<ImportedFile> importedFileOf(const TrailEntry &entry);

inline constexpr const char *kImportAction = "Import";
inline constexpr const char *kBesideAction = "Import Beside";
inline constexpr const char *kNotReadableAction = "Not Readable";

} // namespace nv
