#include "readers/chrome/cache/LaterRows.h"

#include "base/Files.h"
#include "readers/Limits.h"
#include "readers/chrome/cache/ByteRanges.h"
#include "readers/chrome/cache/CacheRow.h"
#include "readers/chrome/shared/Stamps.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace nv {

void LaterRows::save(const LaterEntry &entry, std::string_view foundHow,
                     const LaterSparse::FindKey &find) {
    const LaterStream &body = entry.streams[LaterEntry::body];
    const std::uint64_t size = std::min(body.size, body.room());
    const ChromeEntryPlace place = {m_folder, size == 0 ? "" : LaterEntries::fileNameOf(body),
                                    body.address.dataBlockFileOffset, size,
                                    entry.address.dataBlockFileOffset};
    const Bytes head = m_entries.read(entry.streams[LaterEntry::head], limits::kChromeSeparateText);
    if (head.empty())
        tellMissing(entry.streams[LaterEntry::head].address);
    UrlRecord record = chromeEntryRecord(m_ctx, place, entry.key, ByteView(head));
    if (!foundHow.empty())
        makeChromeRemnant(record, foundHow);
    addStamp(record.facts, "created", entry.created);
    addUse(record, entry);
    if ((entry.flags & LaterEntry::sparseParent) != 0)
        addPieces(record, entry, find);
    else
        addDoubts(record, entry);
    take(record);
}

void LaterRows::take(UrlRecord &record) {
    m_ctx.sink.save(record);
    ++m_count;
    if (m_ctx.task.wantsStep())
        m_ctx.task.show(
            {{}, 0, 0, fmt::format("Record {} {}", m_count, record.URL), m_count, m_count});
}

void LaterRows::saveSeparateFile(const std::filesystem::path &file) {
    const std::string name = textOf(file.filename());
    UrlRecord record = chromeEntryRecord(
        m_ctx, {m_folder, name, 0, m_ctx.evidence.factsOf(file).size, {}}, {}, {});
    makeChromeRemnant(record, name + ", which no entry leads to");
    take(record);
}

/// Of an address of blocks whose file isn't there.
void LaterRows::tellMissing(const ChromeAddressMap &map) {
    if (map.dataBlockFileOffset != 0 && !m_blocks.file(map.dataBlockFileNumber))
        addReasonOnce(m_result, m_blocks.lackOf(map.dataBlockFileNumber));
}

void LaterRows::addUse(UrlRecord &record, const LaterEntry &entry) {
    constexpr std::uint64_t kTimes = 16;
    const Bytes bytes =
        entry.rankings.blockFileType == 1 ? m_blocks.read(entry.rankings, kTimes) : Bytes();
    if (bytes.size() < kTimes)
        return tellMissing(entry.rankings);
    const ByteView times(bytes);
    addStamp(record.facts, "last_used", static_cast<std::int64_t>(times.u64le(0)));
    addStamp(record.facts, "last_updated", static_cast<std::int64_t>(times.u64le(8)));
}

void LaterRows::addDoubts(UrlRecord &record, const LaterEntry &entry) {
    const LaterStream &body = entry.streams[LaterEntry::body];
    const LaterStream &further = entry.streams[LaterEntry::further];
    if (further.size > 0)
        record.facts.add("further_stream", fmt::format("{} bytes in {}, from {}", further.size,
                                                       LaterEntries::fileNameOf(further),
                                                       further.address.dataBlockFileOffset));
    if (body.size == 0)
        return;
    tellMissing(body.address);
    if (!holdsAll(body)) {
        record.CacheFileExists = false;
        record.facts.add("body", fmt::format("none: {} doesn't hold its {} bytes",
                                             LaterEntries::fileNameOf(body), body.size));
        ++m_result.noted["body that isn't there, or not whole"];
    }
    addBodyDoubts(record, body.size);
}

bool LaterRows::holdsAll(const LaterStream &body) {
    if (body.size > body.room())
        return false;
    const auto file = m_entries.fileOf(body);
    return file &&
           m_ctx.evidence.factsOf(*file).size >= body.address.dataBlockFileOffset + body.size;
}

void LaterRows::addPieces(UrlRecord &record, const LaterEntry &entry,
                          const LaterSparse::FindKey &find) {
    const LaterSparse sparse(m_entries, entry, find);
    std::vector<ByteRange> ranges;
    for (const LaterStretch &each : sparse.stretches())
        ranges.push_back({each.offset, each.size});
    m_joined.insert(sparse.pieces().begin(), sparse.pieces().end());
    if (sparse.missingPieces() > 0)
        m_result.noted["piece of a larger entry that isn't there"] += sparse.missingPieces();
    record.facts.add("byte_ranges", byteRangesText(ranges, contentLengthIn(record.MetaData)));
    record.Reference_ID = entry.address.address;
    record.CacheFileSize = static_cast<std::int64_t>(sparse.size());
    record.CacheFileExists = record.CacheFileSize > 0;
}

void addReason(ReadResult &result, const std::string &reason) {
    if (result.state == ReadState::complete)
        result.state = ReadState::cutShort;
    result.reason += (result.reason.empty() ? "" : "; ") + reason;
}

void addReasonOnce(ReadResult &result, const std::string &reason) {
    if (result.reason.find(reason) == std::string::npos)
        addReason(result, reason);
}

} // namespace nv
