#pragma once

#include "db/trail/CaseTrail.h"
#include "import/ImportSettings.h"
#include "import/ImportSummary.h"

#include <cstdint>
#include <optional>
#include <string>

namespace nv {

// What the case trail keeps of an import, and what can be read from it later. Times and versions
// are filled in by whoever adds the entries.

/// Of one file: action "Import".
TrailEntry trailEntry(const ArtefactResult &artefact, const ImportSettings &job);
/// Of a file that was read for the artefact: action "Import Beside".
TrailEntry trailEntry(const FileBeside &file, const ArtefactResult &artefact);
/// Of a place that couldn't be read: action "Not Readable".
TrailEntry trailEntry(const UnreadPlace &place);

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
