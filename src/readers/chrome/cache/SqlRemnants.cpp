#include "readers/chrome/cache/SqlRemnants.h"

#include "base/Files.h"
#include "base/Text.h"
#include "readers/FactSource.h"
#include "readers/chrome/cache/CacheKey.h"
#include "readers/chrome/cache/CacheRow.h"
#include "readers/chrome/cache/SqlChecksum.h"
#include "readers/chrome/shared/Stamps.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <utility>

namespace nv {

namespace {

/// Of table `resources`, as the browser makes it: res_id last_used hints body_end bytes_usage
/// doomed check_sum cache_key_hash cache_key head.
constexpr std::string_view kForm = "niiiiiiitb";
enum Column : std::size_t { kUsed = 1, kEnd = 3, kDoomed = 5, kSum = 6, kHash = 7, kKey, kHead };

std::uint64_t contentOf(std::string_view key, std::string_view head) {
    constexpr std::uint64_t kOdd = 0x9E37'79B9'7F4A'7C15; // so that the two don't cancel out
    return std::hash<std::string_view>()(key) * kOdd ^ std::hash<std::string_view>()(head);
}

bool isWord(std::string_view key) {
    return std::ranges::none_of(key, [](char c) { return static_cast<std::uint8_t>(c) < 0x20; });
}

/// Free space holds anything: what is no row of this browser's own has no such values.
bool isPlausible(const FreedRow &row) {
    constexpr std::int64_t kYear2001 = 12'600'000'000'000'000;
    constexpr std::int64_t kYear2100 = 15'750'000'000'000'000;
    constexpr std::int64_t kMostBody = std::int64_t{1} << 40;
    const std::string &key = row.values[kKey].bytes;
    const std::int64_t used = row.values[kUsed].number;
    const std::int64_t end = row.values[kEnd].number;
    const std::int64_t doomed = row.values[kDoomed].number;
    return used > kYear2001 && used < kYear2100 && end >= 0 && end < kMostBody &&
           (doomed == 0 || doomed == 1) && !key.empty() && isWord(key) &&
           chromeCacheKeyOf(key).url.find(':') != std::string::npos;
}

bool hasRightHead(const FreedRow &row) {
    SqlChecksum checksum;
    checksum.add(row.values[kHead].bytes);
    return checksum.is(row.values[kSum].number, row.values[kHash].number);
}

} // namespace

void SqlRemnants::know(std::int64_t id, std::string_view key, std::string_view head) {
    m_ids.insert(id);
    m_contents.insert(contentOf(key, head));
}

std::int64_t SqlRemnants::save(Pieces strays, ReadResult &result) {
    m_strays = std::move(strays);
    m_result = &result;
    for (const auto &[id, pieces] : m_strays) {
        std::uint64_t size = 0;
        for (const SqlPiece &piece : pieces)
            size += piece.range.size;
        m_sizes.emplace(size, id);
    }
    m_part.rows.freedRows(kForm.size(), [this](const FreedRow &row) {
        if (!row.values[kKey].bytes.empty())
            take(row, fmt::format("page {} of {}, which was freed", row.page, m_part.file));
    });
    m_part.rows.deletedRows(m_part.rows.rootOf("resources"), kForm, [this](const FreedRow &row) {
        if (isPlausible(row))
            take(row, fmt::format("page {} of {}, amid its free space", row.page, m_part.file));
    });
    for (auto &[id, pieces] : m_strays)
        saveOrphan(id, std::move(pieces));
    return m_count;
}

/// Numbers of entries are given once: a row of one that is there is an older copy of it. So is one
/// without a number that says the same.
void SqlRemnants::take(const FreedRow &row, std::string_view place) {
    const bool isNew = row.rowId == 0 || m_ids.insert(row.rowId).second;
    if (!isNew ||
        !m_contents.insert(contentOf(row.values[kKey].bytes, row.values[kHead].bytes)).second)
        return;
    const std::int64_t id = bodyOf(row);
    const auto stray = m_strays.find(id);
    std::vector<SqlPiece> pieces;
    if (stray != m_strays.end()) {
        pieces = std::move(stray->second);
        m_strays.erase(stray);
    }
    const SqlBodies::Measure measure = m_part.bodies.measure(pieces);
    UrlRecord record = recordOf(row, measure.size);
    record.Reference_ID = id;
    makeChromeRemnant(record, place);
    saveWithBody(record, pieces, measure, &row);
}

/// The number that its pieces stand under. Where the row has lost it, they have its key's checksum.
std::int64_t SqlRemnants::bodyOf(const FreedRow &row) {
    constexpr int kMostTried = 20;
    const auto end = static_cast<std::uint64_t>(std::max<std::int64_t>(row.values[kEnd].number, 0));
    if (row.rowId != 0 || end == 0)
        return row.rowId;
    const auto [first, last] = m_sizes.equal_range(end);
    int tried = 0;
    for (auto each = first; each != last && tried < kMostTried; ++each, ++tried) {
        const auto stray = m_strays.find(each->second);
        if (stray != m_strays.end() && !stray->second.empty() &&
            m_part.bodies.isOfKey(stray->second.front(), row.values[kHash].number))
            return each->second;
    }
    return 0;
}

/// What goes on in other pages may be of another row by now: only a checksum tells.
UrlRecord SqlRemnants::recordOf(const FreedRow &row, std::uint64_t size) const {
    const std::string &head = row.values[kHead].bytes;
    const bool isRight = hasRightHead(row);
    const bool isOverwritten = row.goesOn && (!isRight || row.values[kSum].number == 0);
    UrlRecord record =
        chromeEntryRecord(m_ctx, {m_part.folder, m_part.file, 0, size, {}}, row.values[kKey].bytes,
                          isOverwritten ? ByteView() : viewOf(head));
    record.HistoryFilePath = textOf(m_part.folder);
    addStamp(record.facts, "last_used", row.values[kUsed].number);
    if (row.rowId != 0)
        addSource(record.facts, "resources", row.rowId);
    if (isOverwritten)
        record.facts.add("body", "the head of its answer may be overwritten, and isn't read");
    else if (!isRight)
        record.facts.add("body", "the checksum of the answer's head is wrong");
    return record;
}

void SqlRemnants::saveOrphan(std::int64_t id, std::vector<SqlPiece> pieces) {
    const SqlBodies::Measure measure = m_part.bodies.measure(pieces);
    UrlRecord record =
        chromeEntryRecord(m_ctx, {m_part.folder, m_part.file, 0, measure.size, {}}, {}, {});
    record.HistoryFilePath = textOf(m_part.folder);
    record.Reference_ID = id;
    makeChromeRemnant(record,
                      fmt::format("{} in table blobs of {}, whose entry {} isn't there",
                                  counted(pieces.size(), "piece", "pieces"), m_part.file, id));
    saveWithBody(record, pieces, measure, nullptr);
}

/// `row` is null where there is none.
void SqlRemnants::saveWithBody(UrlRecord &record, const std::vector<SqlPiece> &pieces,
                               const SqlBodies::Measure &measure, const FreedRow *row) {
    HeldBody held(m_ctx.content);
    if (!pieces.empty()) {
        const std::int64_t end = row ? std::max<std::int64_t>(row->values[kEnd].number, 0) : 0;
        m_part.bodies.addDoubts(record, pieces, measure, static_cast<std::uint64_t>(end),
                                *m_result);
    }
    if (measure.size > 0 && measure.isInPages)
        m_part.bodies.hold(record, pieces,
                           row ? std::optional(row->values[kHash].number) : std::nullopt, held,
                           *m_result);
    m_ctx.sink.save(record);
    ++m_count;
}

} // namespace nv
