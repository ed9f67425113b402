// downloads            = id guid current_path target_path start_time end_time received_bytes
//                        total_bytes state danger_type interrupt_reason hash opened
//                        last_access_time referrer site_url tab_url tab_referrer_url http_method
//                        by_ext_id by_ext_name etag last_modified mime_type original_mime_type
// downloads_url_chains = id chain_index url               the last one is the file's own
// Up to 2012 there is no chain: full_path and url stand in the table, and dates are seconds since
// 1970.

#include "readers/chrome/history/Downloads.h"

#include "base/Text.h"
#include "readers/FactSource.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/shared/StoredDate.h"
#include "readers/sqlite/HistoryRow.h"
#include "time/SourceClocks.h"

#include <algorithm>
#include <array>
#include <span>

namespace nv {

namespace {

using Names = std::string_view;

constexpr auto kColumns = std::to_array<Names>({"id",
                                                "guid",
                                                "current_path",
                                                "target_path",
                                                "full_path",
                                                "url",
                                                "start_time",
                                                "end_time",
                                                "received_bytes",
                                                "total_bytes",
                                                "state",
                                                "danger_type",
                                                "interrupt_reason",
                                                "hash",
                                                "opened",
                                                "last_access_time",
                                                "referrer",
                                                "site_url",
                                                "tab_url",
                                                "tab_referrer_url",
                                                "http_method",
                                                "by_ext_id",
                                                "by_ext_name",
                                                "etag",
                                                "last_modified",
                                                "mime_type",
                                                "original_mime_type"});
enum Column : std::size_t {
    kId,
    kGuid,
    kCurrentPath,
    kTargetPath,
    kFullPath,
    kUrl,
    kStart,
    kEnd,
    kReceived,
    kTotal,
    kState,
    kDanger,
    kInterrupt,
    kHash,
    kOpened,
    kLastAccess,
    kReferrer,
    kSiteUrl,
    kTabUrl,
    kTabReferrer,
    kMethod,
    kExtension,
    kExtensionName,
    kEtag,
    kLastModified,
    kMimeType,
    kOriginalMimeType
};

struct Word {
    std::int64_t number;
    std::string_view text;
};

constexpr auto kStates = std::to_array<Word>({{0, "in progress"},
                                              {1, "complete"},
                                              {2, "cancelled"},
                                              {3, "interrupted"},
                                              {4, "interrupted"}});

constexpr auto kDangers = std::to_array<Word>({{0, "not dangerous"},
                                               {1, "dangerous file"},
                                               {2, "dangerous address"},
                                               {3, "dangerous content"},
                                               {4, "content may be dangerous"},
                                               {5, "uncommon content"},
                                               {6, "kept by the user"},
                                               {7, "dangerous host"},
                                               {8, "potentially unwanted"},
                                               {9, "allowed by policy"}});

constexpr auto kInterrupts = std::to_array<Word>({{1, "file failed"},
                                                  {2, "file access denied"},
                                                  {3, "no space for the file"},
                                                  {5, "file name too long"},
                                                  {6, "file too large"},
                                                  {7, "file infected"},
                                                  {10, "file: transient error"},
                                                  {11, "file blocked"},
                                                  {12, "file: security check failed"},
                                                  {13, "file too short"},
                                                  {14, "file: hash mismatch"},
                                                  {15, "file same as source"},
                                                  {20, "network failed"},
                                                  {21, "network timeout"},
                                                  {22, "network disconnected"},
                                                  {23, "network: server down"},
                                                  {24, "network: invalid request"},
                                                  {30, "server failed"},
                                                  {31, "server: no range"},
                                                  {33, "server: bad content"},
                                                  {34, "server: unauthorized"},
                                                  {35, "server: certificate problem"},
                                                  {36, "server: forbidden"},
                                                  {37, "server unreachable"},
                                                  {38, "server: length mismatch"},
                                                  {39, "server: redirected to another site"},
                                                  {40, "cancelled by the user"},
                                                  {41, "browser was closed"},
                                                  {50, "browser crashed"}});

/// Empty for a number that has no word.
std::string wordOf(std::span<const Word> words, std::int64_t number) {
    for (const Word &word : words)
        if (word.number == number)
            return std::string(word.text);
    return {};
}

/// Microseconds since 1601 of either form: as seconds, no number of the later one lies before the
/// year 5000.
std::int64_t sinceOf1601(std::int64_t stored) {
    constexpr std::int64_t kLeastMicroseconds = 100'000'000'000;
    constexpr std::int64_t kSecondsFrom1601To1970 = 11'644'473'600;
    constexpr std::int64_t kMicrosecondsInASecond = 1'000'000;
    if (stored <= 0 || stored >= kLeastMicroseconds)
        return stored;
    return (stored + kSecondsFrom1601To1970) * kMicrosecondsInASecond;
}

/// 0 for none.
std::int64_t dateIn(const Row &row, Column column) {
    return sinceOf1601(row.number(column).value_or(0));
}

void addDate(FactList &facts, FactName name, const Row &row, Column column) {
    FactList one;
    addChromeDate(one, name, dateIn(row, column));
    for (const RecordFact &fact : one)
        facts.add(name, fact.value, row.number(column).value_or(0));
}

void addText(FactList &facts, FactName name, const Row &row, Column column) {
    facts.add(name, row.text(column));
}

void addNumber(FactList &facts, FactName name, const Row &row, Column column) {
    if (const auto number = row.number(column))
        facts.add(name, *number);
}

void addWord(FactList &facts, FactName name, const Row &row, Column column,
             std::span<const Word> words) {
    if (const auto number = row.number(column))
        facts.add(name, wordOf(words, *number), *number);
}

std::string extensionOf(const Row &row) {
    std::string id = row.text(kExtension);
    const std::string name = row.text(kExtensionName);
    if (!name.empty())
        id += id.empty() ? name : " (" + name + ")";
    return id;
}

std::uint64_t spanBetween(std::int64_t one, std::int64_t other) {
    const auto [less, more] = std::minmax(one, other);
    return static_cast<std::uint64_t>(more) - static_cast<std::uint64_t>(less);
}

} // namespace

bool Downloads::read(FurtherTables &tables, Stretch stretch) {
    constexpr auto kStarts = std::to_array<Names>({"id", "url", "start_time"});
    constexpr auto kHops = std::to_array<Names>({"id", "chain_index", "url"});
    const auto takeStart = [this](std::int64_t rowId, const Row &row) {
        Download &download = m_downloads[row.number(0).value_or(rowId)];
        download.url = row.text(1);
        download.start = sinceOf1601(row.number(2).value_or(0));
        download.isListed = true;
    };
    const auto takeHop = [this](std::int64_t rowId, const Row &row) {
        m_downloads[row.number(0).value_or(0)].chain.emplace_back(row.number(1).value_or(rowId),
                                                                  row.text(2));
    };
    if (!tables.each("downloads", kStarts, stretch, takeStart) ||
        !tables.each("downloads_url_chains", kHops, stretch, takeHop))
        return false;
    for (auto &[id, download] : m_downloads)
        std::ranges::stable_sort(download.chain, {}, [](const auto &hop) { return hop.first; });
    return true;
}

/// A visit of an address of its chain that lies nearest to its start, not more than ten seconds
/// away: the older form has whole seconds, and a browser may ask before it stores.
void Downloads::joinWith(VisitTables &history) {
    constexpr std::uint64_t kFarthest = 10'000'000;
    std::unordered_map<std::string_view, std::vector<Download *>> byUrl;
    for (auto &[id, download] : m_downloads) {
        if (!download.isListed || download.start == 0)
            continue;
        if (!download.url.empty())
            byUrl[download.url].push_back(&download);
        for (const auto &[index, url] : download.chain)
            byUrl[url].push_back(&download);
    }
    if (byUrl.empty())
        return;
    std::unordered_map<std::int64_t, const std::vector<Download *> *> byPage;
    for (const ListedPage &page : history.pages.pages())
        if (const auto found = byUrl.find(page.url); found != byUrl.end())
            byPage.emplace(page.id, &found->second);
    std::unordered_map<const Download *, std::uint64_t> nearest;
    for (const StoredVisit &visit : history.visits.visits()) {
        const auto found = byPage.find(visit.page);
        if (found == byPage.end())
            continue;
        for (Download *download : *found->second) {
            const std::uint64_t span = spanBetween(visit.time, download->start);
            const auto best = nearest.try_emplace(download, kFarthest).first;
            if (span <= best->second) {
                best->second = span;
                download->visit = visit.id;
            }
        }
    }
    for (const auto &[id, download] : m_downloads)
        if (download.visit != StoredVisit::kNothing)
            history.join(download.visit, id);
}

bool Downloads::save(FurtherTables &tables, ReadContext &ctx, Stretch stretch, Date fileCreated) {
    return tables.each("downloads", kColumns, stretch, [&](std::int64_t rowId, const Row &row) {
        const Download &download = m_downloads[row.number(kId).value_or(rowId)];
        UrlRecord record = recordOf(ctx, download, rowId, row, fileCreated);
        ctx.sink.save(record);
    });
}

std::uint64_t Downloads::hopsWithoutDownload() const {
    std::uint64_t hops = 0;
    for (const auto &[id, download] : m_downloads)
        hops += download.isListed ? 0 : download.chain.size();
    return hops;
}

UrlRecord Downloads::recordOf(const ReadContext &ctx, const Download &download, std::int64_t rowId,
                              const Row &row, Date fileCreated) const {
    const std::string &url = download.chain.empty() ? download.url : download.chain.back().second;
    UrlRecord record =
        historyRecord(ctx, {row.number(kId).value_or(rowId), url, false, std::nullopt},
                      kChromeDownload.word, fileCreated);
    record.Action = "Downloaded";
    record.ActionDateUTC = chromeMoment(dateIn(row, kStart));
    record.LastVisited = record.ActionDateUTC;
    record.ActionDateLocal = utcDateToLocal(record.ActionDateUTC, ctx.clock);
    record.OtherDate = chromeDate(dateIn(row, kEnd));
    if (record.OtherDate.has())
        record.OtherDateMeaning = "Download End (UTC)";
    record.Referrer = row.text(kReferrer);
    record.MIMEType = row.text(kMimeType);
    const std::string state = wordOf(kStates, row.number(kState).value_or(-1));
    if (!ctx.deleted && !state.empty())
        record.Status = state;
    addFacts(record.facts, download, rowId, row);
    return record;
}

void Downloads::addFacts(FactList &facts, const Download &download, std::int64_t rowId,
                         const Row &row) const {
    addSource(facts, "downloads", rowId);
    facts.add("download_id", row.number(kId).value_or(rowId));
    addText(facts, "download_guid", row, kGuid);
    if (download.visit != StoredVisit::kNothing)
        facts.add("visit_id", download.visit);
    addText(facts, "target_path", row, kTargetPath);
    addText(facts, "target_path", row, kFullPath);
    addText(facts, "current_path", row, kCurrentPath);
    addDate(facts, "start_time", row, kStart);
    addDate(facts, "end_time", row, kEnd);
    addNumber(facts, "received_bytes", row, kReceived);
    addNumber(facts, "total_bytes", row, kTotal);
    addWord(facts, "download_state", row, kState, kStates);
    addWord(facts, "danger", row, kDanger, kDangers);
    if (row.number(kInterrupt).value_or(0) != 0)
        addWord(facts, "interrupt_reason", row, kInterrupt, kInterrupts);
    if (row.number(kOpened))
        facts.add("opened", row.truth(kOpened) ? "yes" : "no");
    addDate(facts, "last_used", row, kLastAccess);
    for (const auto &[index, url] : download.chain)
        facts.add("url_chain", url);
    addText(facts, "site_url", row, kSiteUrl);
    addText(facts, "tab_url", row, kTabUrl);
    addText(facts, "tab_referrer", row, kTabReferrer);
    addText(facts, "http_method", row, kMethod);
    facts.add("by_extension", extensionOf(row));
    if (const auto hash = row.bytes(kHash))
        facts.add("sha256", toLower(bytesToHex(*hash, 0, hash->size())));
    addText(facts, "etag", row, kEtag);
    addText(facts, "last_modified", row, kLastModified);
    if (std::string original = row.text(kOriginalMimeType); original != row.text(kMimeType))
        facts.add("original_mime_type", std::move(original));
}

} // namespace nv
