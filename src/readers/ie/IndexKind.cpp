#include "readers/ie/IndexKind.h"

#include "base/Text.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace nv {

namespace {

constexpr std::uint64_t kVersion = 0x18;
constexpr std::uint64_t kVersionLength = 3;
/// One byte before the count of folders: only above zero or not is asked.
constexpr std::uint64_t kFolderTest = 0x47;
constexpr std::uint64_t kFolders = 0x50;
constexpr std::uint64_t kFolderName = 8;
constexpr std::uint64_t kFolderStride = 12;

FolderList readFolders(ByteView bytes, const HashChain &chain) {
    FolderList folders;
    if (chain.tables.empty())
        return folders;
    const HashTable &last = chain.tables.back();
    const std::uint64_t size =
        static_cast<std::uint64_t>(std::max<std::int64_t>(last.tableSize, 0));
    const std::uint64_t end = last.firstRecordFileOffset + size;
    for (std::uint64_t at = kFolders; at < end && bytes.has(at, kFolderName); at += kFolderStride) {
        const std::string name = bytesToString(bytes, at, kFolderName, true);
        if (name.empty())
            break;
        folders.push_back(name);
    }
    return folders;
}

/// The days of the month at which the period of an index begins and ends.
struct Days {
    int start = 0;
    int end = 0;
};

enum class BackwardIs { weekly, nothing };

std::optional<int> twoDigits(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole && text.size() == 2 && value >= 0 ? std::optional(value) : std::nullopt;
}

std::optional<Days> daysOf(std::string_view start, std::string_view end) {
    const std::optional<int> first = twoDigits(start);
    const std::optional<int> last = twoDigits(end);
    return first && last ? std::optional(Days{*first, *last}) : std::nullopt;
}

HistoryFileType kindByDays(Days days, BackwardIs backward, HistoryFileType otherwise) {
    const int length = days.end - days.start;
    if (length == 1 || (days.start >= 28 && days.end == 1))
        return HistoryFileType::ieDaily;
    if (length == 7 || (length < 0 && backward == BackwardIs::weekly))
        return HistoryFileType::ieWeekly;
    return otherwise;
}

bool isNamedByDates(const HistoryFile &file) {
    return containsNoCase(getFilenameFromPath(file.fileParentPath), "mshist");
}

/// The folder's name ends in two dates of 8 digits, as in "MSHist012011061520110616".
std::optional<Days> daysOfFolder(std::string_view folder) {
    if (folder.size() < 10)
        return std::nullopt;
    return daysOf(folder.substr(folder.size() - 10, 2), folder.substr(folder.size() - 2));
}

/// The first record's text begins with two dates, as in ":2011061520110616: user@http://...".
std::optional<Days> daysOfFirstRecord(ByteView bytes) {
    constexpr std::size_t kDates = 16;
    const std::optional<std::size_t> mark = bytes.find(": ");
    if (!mark || *mark <= 19 || bytes.u8(*mark - kDates - 1) != ':')
        return std::nullopt;
    const std::string_view dates = bytes.sub(*mark - kDates, kDates).raw();
    return daysOf(dates.substr(6, 2), dates.substr(14, 2));
}

HistoryFileType historyKind(const HistoryFile &file, ByteView bytes) {
    const HistoryFileType type = file.historyFileType;
    if (isNamedByDates(file)) {
        const std::optional<Days> days = daysOfFolder(file.fileParentPath);
        return days ? kindByDays(*days, BackwardIs::weekly, type) : type;
    }
    if (bytes.find("Visited: "))
        return HistoryFileType::ieHistory;
    // By content a period that runs backward is no week: only folders are named across a month.
    const std::optional<Days> days = daysOfFirstRecord(bytes);
    return days ? kindByDays(*days, BackwardIs::nothing, type) : type;
}

} // namespace

FolderList settleIndexKind(HistoryFile &file, ByteView bytes, const HashChain &chain) {
    FolderList folders;
    if (file.historyFileType != HistoryFileType::ieCache)
        file.historyFileType = historyKind(file, bytes);
    else if (bytes.i32le(kFolderTest) > 0)
        folders = readFolders(bytes, chain);
    else
        file.historyFileType = HistoryFileType::ieHistory;
    if (file.historyFileType >= HistoryFileType::ieHistory &&
        file.historyFileType <= HistoryFileType::ieCache)
        file.version = bytesToString(bytes, kVersion, kVersionLength, true);
    return folders;
}

} // namespace nv
