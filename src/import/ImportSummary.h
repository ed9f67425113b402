#pragma once

#include "db/records/HistoryFile.h"
#include "import/RowsByKind.h"
#include "import/ScanGaps.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

enum class ArtefactState {
    complete,
    cutShort,   ///< damage ended the reading
    cancelled,  ///< the examiner cancelled while it was read; its rows so far stay
    failed,     ///< nothing could be read
    notReadYet, ///< a known format without a reader
    vanished,   ///< gone between scan and run
    notReached, ///< the import ended before its turn
};

/// "complete", "cut short", "cancelled", "failed", "not read yet", "vanished", "not reached".
std::string_view stateWord(ArtefactState state);

/// A file that values or contents of an artefact were read from and that isn't the artefact: a log
/// or journal of a database, a block file or a body of a cache.
struct FileBeside {
    std::filesystem::path path;
    std::uint64_t fileSize = 0; ///< bytes
    std::string md5Hash;        ///< both empty where it couldn't be read
    std::string sha256Hash;
    std::string failure; ///< why not
};

/// What an import made of one artefact file.
struct ArtefactResult {
    std::filesystem::path path;
    HistoryFileType type = HistoryFileType::none; ///< as the reader refined it
    std::string readerKey;
    std::uint64_t fileSize = 0; ///< bytes
    std::string md5Hash;
    std::string sha256Hash;
    Origin origin; ///< as far as it is known, once its turn has come
    ArtefactState state = ArtefactState::notReached;
    std::string reason; ///< why it isn't complete
    bool isLogged =
        true; ///< false when there is no row of it in `SourceFiles`, so that it wasn't read
    std::uint64_t rowsSaved = 0;
    RowsByKind byKind;            ///< they add up to `rowsSaved`
    std::uint64_t rowsLost = 0;   ///< records that the project did not take
    std::uint64_t notReached = 0; ///< entries after the damage
    std::map<std::string, std::uint64_t>
        passedOver;                             ///< records that the rules leave out, by reason
    std::map<std::string, std::uint64_t> noted; ///< peculiar records that are stored, by reason
    std::string warning;                        ///< what all its records have to be read with
    std::vector<FileBeside> beside; ///< but those that an artefact before has among its own
    double seconds = 0;
};

/// What the files of one reader came to.
struct KindTotals {
    std::size_t artefacts = 0;
    std::size_t complete = 0;
    std::uint64_t rows = 0;
    std::uint64_t notReached = 0;
    std::map<std::string, std::uint64_t> passedOver; ///< by reason
    std::map<std::string, std::uint64_t> noted;      ///< by reason
};

/// What an import found of one profile of a browser: of one person's, as far as that is known.
struct ProfileTotals {
    Origin origin; ///< browser, profile and person; a version and a device are told by files
    std::size_t artefacts = 0;
    std::size_t notReadYet = 0;
    RowsByKind byKind;

    std::uint64_t rows() const;
    /// Of all its records.
    KindRows all() const;
};

/// What became of the thumbnails that were asked for.
struct ImportThumbnails {
    std::uint64_t made = 0;
    std::uint64_t failed = 0;
    std::uint64_t passedOver = 0; ///< no cached content, or a form that isn't drawn
    std::string failure;          ///< why drawing ended
};

struct ImportSummary {
    std::vector<ArtefactResult> artefacts; ///< every file of the list, in its order
    bool cancelled = false;
    std::string failure; ///< what ended the import itself, such as a full disk
    ImportThumbnails thumbnails;
    ScanGaps gaps;               ///< what the scan could not look at
    bool isNoted = false;        ///< the case trail tells of it
    std::int64_t lastBefore = 0; ///< `URL_ID` of the last row before it

    std::uint64_t rowsSaved() const;
    std::uint64_t rowsLost() const;
    std::uint64_t passedOver() const;
    std::uint64_t hashedBeside() const;                 ///< files
    std::map<std::string, KindTotals> byReader() const; ///< by key
    /// In order of browser, profile and person; what belongs to no browser is the first.
    std::vector<ProfileTotals> byProfile() const;
    RowsByKind byKind() const;
    std::uint64_t notReached() const;
    std::size_t count(ArtefactState state) const;
    double seconds() const;
};

} // namespace nv
