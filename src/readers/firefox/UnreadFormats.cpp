// cache2  = "entries": <40 hex>{...}
// entry   = body metadata length of body:u32be
// metadata = hash:u32be chunk hash:u16be{one for each 256 KiB} version:u32be ...
// session = "mozLz40\0" ...

#include "readers/firefox/UnreadFormats.h"

#include "readers/BigEndian.h"
#include "readers/Candidate.h"
#include "readers/FolderLayout.h"
#include "readers/firefox/Options.h"
#include "readers/sqlite/SchemaTables.h"

namespace nv {

namespace {

namespace fs = std::filesystem;
using namespace std::string_view_literals;

/// Whether its last bytes lead to metadata of a version that there is.
bool endsAsAnEntry(const Candidate &candidate) {
    constexpr std::uint64_t kWord = 4;
    constexpr std::uint64_t kChunk = std::uint64_t{256} << 10;
    constexpr std::uint64_t kLastVersion = 9;
    const EvidenceFile file = candidate.evidence->open(candidate.file);
    if (file.size() < 3 * kWord)
        return false;
    const auto wordAt = [&file](std::uint64_t at) {
        const Bytes bytes = file.read(at, kWord);
        return bigEndian(ByteView(bytes));
    };
    const std::uint64_t body = wordAt(file.size() - kWord);
    const std::uint64_t chunks = (body + kChunk - 1) / kChunk;
    const std::uint64_t at = body + kWord + 2 * chunks;
    if (at + 2 * kWord > file.size())
        return false;
    const std::uint64_t version = wordAt(at);
    return version >= 1 && version <= kLastVersion;
}

bool isCache2(const Candidate &file) {
    constexpr std::size_t kDigits = 40; // of SHA-1
    if (!isHexName(file.name, kDigits))
        return false;
    return file.verifySignatures ? endsAsAnEntry(file) : folderName(file) == "entries";
}

/// Entries that were copied out on their own lie in any folder.
fs::path cacheOf(const Candidate &file) {
    return folderAbove(file, folderName(file) == "entries" ? 2 : 1);
}

bool isJsonlz4(const Candidate &file) {
    const bool isNamed = nameHas(file, ".jsonlz4") || file.extension == "baklz4";
    return isNamed && beginsWith(file, "mozLz40\0"sv);
}

bool isStorage(const Candidate &file) {
    if (!file.verifySignatures)
        return file.name == "webappsstore.sqlite" || file.name == "caches.sqlite";
    if (file.extension != "sqlite")
        return false;
    const auto tables = schemaTables(file);
    const auto has = [&tables](const char *table) { return tables.contains(table); };
    return has("webappsstore2") || has("webappsstore") || // local storage, earlier
           (has("data") && has("database")) ||            // local storage
           (has("object_data") && has("object_store")) || // IndexedDB
           (has("caches") && has("entries"));             // storage of service workers
}

} // namespace

constinit const Reader kFirefoxCache2Format = {
    .type = HistoryFileType{70},
    .key = "firefox-cache2",
    .kind = "Firefox cache2",
    .option = &kFirefoxCacheOption,
    .mask = "????????????????????????????????????????",
    .recognises = isCache2,
    .page = "not-read-yet",
    .artefact = cacheOf,
    .isBeyondClassic = true,
};

constinit const Reader kFirefoxJsonlz4Format = {
    .type = HistoryFileType{71},
    .key = "firefox-jsonlz4",
    .kind = "Firefox session or backup, packed",
    .option = &kFirefoxHistoryOption,
    .mask = "*.jsonlz4;*.jsonlz4-*;*.baklz4",
    .recognises = isJsonlz4,
    .page = "not-read-yet",
    .isBeyondClassic = true,
};

constinit const Reader kFirefoxStorageFormat = {
    .type = HistoryFileType{72},
    .key = "firefox-storage",
    .kind = "Firefox storage of sites",
    .option = &kFirefoxOtherOption,
    .mask = "*.sqlite",
    .recognises = isStorage,
    .page = "not-read-yet",
    .isBeyondClassic = true,
};

} // namespace nv
