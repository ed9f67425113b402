#include "readers/results/NetAnalysisRow.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/results/Kinds.h"
#include "readers/sqlite/HistoryRow.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <cctype>
#include <cmath>
#include <sys/stat.h>

namespace nv {

namespace {

namespace fs = std::filesystem;

enum Column : std::size_t {
    kInternetHistory,
    kURLFileName,
    kFileExists,
    kFileOffset,
    kHistoryVersion,
    kHostname,
    kContentData,
    kLastVisited,
    kSecondaryDate,
    kComment,
    kType,
    kStatus,
    kSearchCriteria,
    kUser,
    kHits,
};

/// The cells of a row by column; a value of another kind than the column's becomes what is wanted
/// where that loses nothing.
class Cells {
  public:
    explicit Cells(const JetRow &row) : m_row(row) {}

    std::string text(Column column) const {
        if (const auto *text = std::get_if<std::string>(&cell(column)))
            return *text;
        const auto *number = std::get_if<double>(&cell(column));
        return number ? fmt::format("{}", *number) : std::string();
    }
    bool truth(Column column) const {
        if (const auto *truth = std::get_if<bool>(&cell(column)))
            return *truth;
        const auto *number = std::get_if<double>(&cell(column));
        return number ? *number != 0 : equalsNoCase(text(column), "true");
    }
    std::int64_t number(Column column, std::int64_t otherwise) const {
        constexpr double kExact = 9007199254740992.0; // 2^53
        const auto *number = std::get_if<double>(&cell(column));
        return number && std::abs(*number) <= kExact ? static_cast<std::int64_t>(*number)
                                                     : otherwise;
    }
    /// Days since 1899-12-30, as a Date counts them. Before that day there is a difference: here
    /// -1.25 is a quarter of the day -1 and not a quarter before it.
    Date date(Column column) const {
        const auto *days = std::get_if<double>(&cell(column));
        if (!days)
            return {};
        const double whole = std::trunc(*days);
        return Date::fromDays(whole + std::abs(*days - whole));
    }

  private:
    const JetCell &cell(Column column) const { return m_row.cells.at(column); }

    const JetRow &m_row;
};

std::string statusOf(const Cells &cells) {
    const std::string type = cells.text(kType);
    const std::string status = cells.text(kStatus);
    return type.empty() || status.empty() ? type + status : type + ", " + status;
}

bool isAbsolute(std::string_view path) {
    return path.starts_with('/') || (path.size() > 1 && path[1] == ':');
}

/// The cache lay on the machine on which the case was made: its path is followed from the root of
/// the evidence, a relative one from the case file, and never anywhere else on this machine.
std::optional<fs::path> findCachedFile(const ReadContext &ctx, std::string_view CachePath,
                                       const std::string &name) {
    if (CachePath.empty() || name.empty())
        return std::nullopt;
    std::string path = replaceAll(CachePath, "\\", "/");
    if (!isAbsolute(path))
        return ctx.evidence.find(ctx.file.FullPath.parent_path(), path + "/" + name);
    const fs::path root = ctx.evidence.rootOf(ctx.file.FullPath);
    if (root == "/")
        return std::nullopt;
    if (path[0] != '/')
        path.erase(0, 2);
    return ctx.evidence.find(root, path + "/" + name);
}

void addCachedFile(URLClass &record, const fs::path &found, const Evidence &evidence) {
    const FileFacts facts = evidence.factsOf(found);
    if (!facts.isThere)
        return;
    record.RootPath = evidence.rootOf(found);
    record.CacheFileRelativePath = evidence.relativeOf(found);
    record.CacheFileCreatedGMTDOS = facts.created;
    record.CacheFileLastAccessed = facts.lastAccessed;
    record.CacheFileSize = static_cast<std::int64_t>(facts.size);
    record.RunTimeContentPath = found;
}

/// `CacheFileExists` is the case's own word, also where the evidence at hand lacks the file: the
/// examiner who made the case saw it.
void setCacheFields(URLClass &record, const ReadContext &ctx, const Cells &cells,
                    const std::string &CachePath) {
    record.RootPath = ctx.evidence.rootOf(ctx.file.FullPath);
    record.CacheFolderName = CachePath;
    record.CacheFileRelativePath = CachePath;
    record.CacheFileName = cells.text(kURLFileName);
    record.CacheFileNameDecoded = percentDecode(record.CacheFileName);
    record.CacheFileExists = cells.truth(kFileExists);
    if (!record.CacheFileExists)
        return;
    if (const auto found = findCachedFile(ctx, CachePath, record.CacheFileName))
        addCachedFile(record, *found, ctx.evidence);
}

void setUrl(URLClass &record, const Cells &cells) {
    record.URL = cells.text(kInternetHistory);
    record.URLRawValue = record.URL;
    record.URLProtocol = GetURLProtocol(record.URL);
    record.HashedURL = hashOfUrl(record.URL);
    record.URLParameters = cells.text(kSearchCriteria);
    record.host = cells.text(kHostname);
    if (record.host.empty())
        record.host = ParseHost(record.URL);
}

void setEvent(URLClass &record, const Cells &cells, const Clock &clock) {
    record.Action = "Visited";
    record.ActionDateUTC = LocalDateToUTC(cells.date(kLastVisited), clock);
    record.LastVisited = record.ActionDateUTC;
    record.OtherDate = LocalDateToUTC(cells.date(kSecondaryDate), clock);
    record.OtherDateMeaning = "Other";
    record.Visits = cells.number(kHits, kVisitsUnknown);
    record.Status = statusOf(cells);
    // In small letters only: "Typed" is another word of the case's examiner.
    record.Typed = cells.text(kStatus).find("typed") != std::string::npos;
}

} // namespace

bool takesNetAnalysisKind(std::size_t column, std::string_view kind) {
    switch (column) {
    case kFileExists:
        return !kind.empty();
    case kFileOffset:
    case kHits:
        return kind == "number";
    case kLastVisited:
    case kSecondaryDate:
        return kind == "date" || kind == "number";
    default:
        return kind == "text" || kind == "number";
    }
}

URLClass netAnalysisRecord(const ReadContext &ctx, const JetRow &row,
                           const std::string &CachePath) {
    const Cells cells(row);
    URLClass record;
    record.cacheType = kNetAnalysis.word;
    record.SourceFile_ID = ctx.file.SourceFile_ID;
    record.HistoryFilePath = textOf(ctx.file.FullPath);
    record.HistoryVersion = cells.text(kHistoryVersion);
    record.MapFileOffset = cells.number(kFileOffset, 0);
    record.MetaData = cells.text(kContentData);
    record.Notes = cells.text(kComment);
    record.User = cells.text(kUser);
    record.IsHistory = true;
    setUrl(record, cells);
    setEvent(record, cells, ctx.clock);
    setCacheFields(record, ctx, cells, CachePath);
    return record;
}

} // namespace nv
