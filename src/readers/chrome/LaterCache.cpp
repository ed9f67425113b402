// index      = head address*          each address the first entry of a chain, or 0 (LaterIndex.h)
// block file = head[2000] block*      "data_1" and those after it hold the entries (LaterEntry.h)

#include "readers/chrome/LaterCache.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/EvidenceGaps.h"
#include "readers/Limits.h"
#include "readers/chrome/ByteRanges.h"
#include "readers/chrome/CacheBlocks.h"
#include "readers/chrome/CacheRow.h"
#include "readers/chrome/LaterEntry.h"
#include "readers/chrome/LaterPieces.h"
#include "readers/chrome/LaterSparse.h"
#include "readers/chrome/Stamps.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <set>
#include <unordered_set>
#include <utility>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kProcedure = "ChromiumBlockCache.read()";
constexpr std::uint64_t kPart = std::uint64_t{1} << 20; ///< bytes read at a time, of whole blocks
constexpr double kShareOfIndex = 0.7;

bool isIndex(const fs::path &file) {
    return !toLower(textOf(file.filename())).starts_with("data_");
}

std::size_t blockOf(const ChromeAddressMap &map) {
    return map.address % limits::kChromeCacheBlocks;
}

class LaterReading {
  public:
    explicit LaterReading(ReadContext &ctx)
        : m_ctx(ctx), m_folder(ctx.file.fullPath.parent_path()),
          m_blocks(ctx.evidence, m_folder, ctx.log, kProcedure),
          m_entries(m_blocks, ctx.evidence, m_folder),
          m_trap(ctx.log, kProcedure, textOf(ctx.file.fullPath)),
          m_met(limits::kChromeCacheBlocks) {
        if (isIndex(ctx.file.fullPath))
            m_index.emplace(ctx.evidence.open(ctx.file.fullPath));
    }

    ReadResult read() {
        m_ctx.task.describe({"PARSING CHROMIUM CACHE", "Reading INDEX File...",
                             textOf(m_ctx.file.fullPath), "chromeCache-32.gif"});
        m_ctx.file.version =
            m_index ? "Block files " + m_index->versionText() : std::string("Block files");
        if (!m_index)
            damage(textOf(m_folder / "index") + ": the index is missing");
        const bool isDone = walkIndex() && walkFiles();
        if (!isDone)
            m_result.state = ReadState::cancelled;
        tellOfFailures();
        m_ctx.task.show({"All done.", m_count, m_count, {}, 0, 0});
        return m_result;
    }

  private:
    bool walkIndex() {
        if (!m_index)
            return true;
        const std::uint32_t slots = m_index->slotsThere();
        for (std::uint32_t slot = 0; slot < slots; ++slot) {
            if (!m_ctx.task.advance(kShareOfIndex * slot / slots))
                return false;
            m_trap.attempt(LaterIndexFile::placeOf(slot), [&] { walkChain(slot); });
        }
        if (slots < m_index->slots())
            damage(fmt::format("{}: the table of addresses ends behind slot {} of {}",
                               textOf(m_index->path()), slots, m_index->slots()));
        for (const std::uint32_t piece : m_pieces)
            if (!m_joined.contains(piece))
                m_trap.attempt(piece, [&, address = piece] {
                    if (const auto entry = m_entries.at(address))
                        save(*entry, "a piece of a larger entry that isn't there");
                });
        return true;
    }

    void walkChain(std::uint32_t slot) {
        std::uint32_t address = m_index->word(slot);
        while (address != 0) {
            const ChromeAddressMap map = chromeAddressMapOf(address);
            if (!meet(map)) {
                ++m_result.passedOver["chain that leads to an entry a second time"];
                return;
            }
            const auto entry = m_entries.at(map);
            address = entry ? entry->next : missEntry(slot, map);
            if (entry)
                m_trap.attempt(map.dataBlockFileOffset, [&] { takeListed(*entry); });
        }
    }

    bool meet(const ChromeAddressMap &map) {
        const bool isNew = !m_met[blockOf(map)] || map.dataBlockFileOffset == 0;
        m_met[blockOf(map)] = true;
        return isNew;
    }

    /// Where the chain goes on all the same; 0 when nobody can tell.
    std::uint32_t missEntry(std::uint32_t slot, const ChromeAddressMap &map) {
        constexpr std::uint64_t kKeyAddressAt = 36;
        const bool isBlock = map.initialised && map.blockSize == LaterEntry::kBlock;
        const Bytes bytes = isBlock ? m_blocks.read(map, kKeyAddressAt + 4) : Bytes();
        const ByteView fields(bytes);
        const bool hasFields = fields.size() == kKeyAddressAt + 4;
        ++m_result.notReached;
        tellMissing(hasFields ? chromeAddressMapOf(fields.u32le(kKeyAddressAt)) : map);
        damage(fmt::format("{}: slot {} leads to 0x{:08X}, where no whole entry is",
                           textOf(m_index->path()), slot, map.address));
        return hasFields ? fields.u32le(4) : 0;
    }

    void takeListed(const LaterEntry &entry) {
        own(entry);
        if (!entry.hasItsHash())
            ++m_result.noted["entry whose key has another hash than is stored"];
        if ((entry.flags & LaterEntry::sparseChild) != 0)
            m_pieces.push_back(entry.address.address); // its parent may come later
        else if (entry.state == LaterEntry::normal)
            save(entry, {});
        else
            save(entry, entry.state == LaterEntry::evicted
                            ? "an entry that the browser has evicted"
                            : fmt::format("an entry in state {}, to be deleted", entry.state));
    }

    void own(const LaterEntry &entry) {
        m_owned.own(entry.address);
        if (entry.longKey.initialised)
            m_owned.own(entry.longKey);
        for (const LaterStream &stream : entry.streams)
            if (stream.address.initialised && stream.size > 0)
                m_owned.own(stream.address);
        m_files.insert(entry.address.dataBlockFileNumber);
    }

    void save(const LaterEntry &entry, std::string_view foundHow) {
        const LaterStream &body = entry.streams[LaterEntry::body];
        const std::uint64_t size = std::min(body.size, body.room());
        const ChromeEntryPlace place = {m_folder, size == 0 ? "" : LaterEntries::fileNameOf(body),
                                        body.address.dataBlockFileOffset, size,
                                        entry.address.dataBlockFileOffset};
        const Bytes head =
            m_entries.read(entry.streams[LaterEntry::head], limits::kChromeSeparateText);
        if (head.empty())
            tellMissing(entry.streams[LaterEntry::head].address);
        UrlRecord record = chromeEntryRecord(m_ctx, place, entry.key, ByteView(head));
        if (!foundHow.empty())
            makeChromeRemnant(record, foundHow);
        addStamp(record.facts, "created", entry.created);
        addUse(record, entry);
        if ((entry.flags & LaterEntry::sparseParent) != 0)
            addPieces(record, entry);
        else
            addDoubts(record, entry);
        m_ctx.sink.save(record);
        ++m_count;
        if (m_ctx.task.wantsStep())
            m_ctx.task.show(
                {{}, 0, 0, fmt::format("Record {} {}", m_count, record.URL), m_count, m_count});
    }

    /// Of an address of blocks whose file isn't there.
    void tellMissing(const ChromeAddressMap &map) {
        if (map.dataBlockFileOffset != 0 && !m_blocks.file(map.dataBlockFileNumber))
            addReasonOnce(m_blocks.lackOf(map.dataBlockFileNumber));
    }

    void addUse(UrlRecord &record, const LaterEntry &entry) {
        constexpr std::uint64_t kTimes = 16;
        const Bytes bytes =
            entry.rankings.blockFileType == 1 ? m_blocks.read(entry.rankings, kTimes) : Bytes();
        if (bytes.size() < kTimes)
            return tellMissing(entry.rankings);
        const ByteView times(bytes);
        addStamp(record.facts, "last_used", static_cast<std::int64_t>(times.u64le(0)));
        addStamp(record.facts, "last_updated", static_cast<std::int64_t>(times.u64le(8)));
    }

    void addDoubts(UrlRecord &record, const LaterEntry &entry) {
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

    bool holdsAll(const LaterStream &body) {
        if (body.size > body.room())
            return false;
        const auto file = m_entries.fileOf(body);
        return file &&
               m_ctx.evidence.factsOf(*file).size >= body.address.dataBlockFileOffset + body.size;
    }

    void addPieces(UrlRecord &record, const LaterEntry &entry) {
        const LaterSparse sparse(m_entries, entry, [this](const std::string &key) {
            return m_index ? laterEntryOfKey(*m_index, m_entries, key) : std::nullopt;
        });
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

    /// What no chain leads to, at the start of every block of the files that hold entries.
    bool walkFiles() {
        m_files.insert(1);
        addNextFiles();
        std::size_t walked = 0;
        const std::set<std::uint8_t> files = m_files;
        for (const std::uint8_t number : files) {
            const double from = m_index ? kShareOfIndex : 0;
            const auto advance = [&](double part) {
                return m_ctx.task.advance(from + (1 - from) * (static_cast<double>(walked) + part) /
                                                     static_cast<double>(files.size()));
            };
            if (!walkFile(number, advance))
                return false;
            ++walked;
        }
        return true;
    }

    void addNextFiles() {
        constexpr std::uint64_t kHead = 0x18;
        constexpr std::int16_t kLastFile = 255;
        std::vector<std::uint8_t> open(m_files.begin(), m_files.end());
        while (!open.empty()) {
            const std::uint8_t number = open.back();
            open.pop_back();
            m_trap.attempt(0, [&] {
                const EvidenceFile *file = m_blocks.file(number);
                const Bytes head = file ? file->read(0, kHead) : Bytes();
                if (head.size() < kHead)
                    return;
                const std::int16_t next = chromeDataFileOf(ByteView(head)).dataFileNextIndex;
                if (next > 0 && next <= kLastFile &&
                    m_files.insert(static_cast<std::uint8_t>(next)).second)
                    open.push_back(static_cast<std::uint8_t>(next));
            });
        }
    }

    bool walkFile(std::uint8_t number, const std::function<bool(double)> &advance) {
        constexpr std::uint64_t kMostBlocks = 0x10000;
        const EvidenceFile *file = m_blocks.file(number);
        if (!file)
            addReasonOnce(m_blocks.lackOf(number));
        if (!file || file->size() <= ChromeDataFile::kSize)
            return true;
        const std::uint64_t count =
            std::min((file->size() - ChromeDataFile::kSize) / LaterEntry::kBlock, kMostBlocks);
        for (std::uint64_t first = 0; first < count; first += kPart / LaterEntry::kBlock) {
            if (!advance(static_cast<double>(first) / static_cast<double>(count)))
                return false;
            m_trap.attempt(first, [&] { walkPart(*file, number, first, count); });
        }
        return true;
    }

    void walkPart(const EvidenceFile &file, std::uint8_t number, std::uint64_t first,
                  std::uint64_t count) {
        const Bytes part = file.read(ChromeDataFile::kSize + first * LaterEntry::kBlock, kPart);
        const ByteView view(part);
        for (std::uint64_t at = 0;
             view.has(at, LaterEntry::kBlock) && first + at / LaterEntry::kBlock < count;
             at += LaterEntry::kBlock)
            if (couldBeEntry(view.sub(at, LaterEntry::kBlock)))
                tryBlock(chromeEntryAddress(
                    number, static_cast<std::uint16_t>(first + at / LaterEntry::kBlock), 1));
    }

    /// A cheap look: the hash of the key decides afterwards.
    static bool couldBeEntry(ByteView block) {
        constexpr std::uint32_t kRankings = 0x9000'0000;
        constexpr std::uint32_t kKind = 0xF000'0000;
        return (block.u32le(8) & kKind) == kRankings && block.u32le(20) <= LaterEntry::doomed &&
               block.u32le(32) > 0 && block.u32le(32) <= limits::kChromeSeparateText;
    }

    void tryBlock(const ChromeAddressMap &map) {
        if (m_met[blockOf(map)] || m_owned.isOwned(map))
            return;
        auto entry = m_entries.at(map);
        if (!entry || !entry->hasItsHash())
            return;
        const std::string_view inPiece =
            (entry->flags & LaterEntry::sparseChild) != 0 ? ", a piece of a larger one" : "";
        dropWhatIsOwned(*entry);
        save(*entry, fmt::format("block {} of data_{} (0x{:X}), which no chain leads to{}",
                                 map.startingBlockNumber, map.dataBlockFileNumber,
                                 map.dataBlockFileOffset, inPiece));
    }

    /// Blocks that a listed entry has by now say nothing of the one that had them before.
    void dropWhatIsOwned(LaterEntry &entry) const {
        for (LaterStream &stream : entry.streams)
            if (stream.address.initialised && m_owned.isOwned(stream.address))
                stream = {};
        if (m_owned.isOwned(entry.rankings))
            entry.rankings = {};
    }

    void tellOfFailures() {
        if (m_trap.failed() == 0)
            return;
        m_result.notReached += m_trap.failed();
        addReason(textOf(m_ctx.file.fullPath) + ": entries could not be read, the log tells which");
    }

    void damage(const std::string &text) {
        if (++m_damaged <= RecordTrap::kLoggedRecords)
            m_ctx.log.write(
                {text, std::string(kProcedure), Severity::Serious, std::string(kContactSupport)});
        if (m_damaged == 1)
            addReason(text);
    }

    void addReasonOnce(const std::string &reason) {
        if (m_result.reason.find(reason) == std::string::npos)
            addReason(reason);
    }

    void addReason(const std::string &reason) {
        if (m_result.state == ReadState::complete)
            m_result.state = ReadState::cutShort;
        m_result.reason += (m_result.reason.empty() ? "" : "; ") + reason;
    }

    ReadContext &m_ctx;
    fs::path m_folder;
    ChromeBlockFiles m_blocks;
    LaterEntries m_entries;
    RecordTrap m_trap;
    std::vector<bool> m_met;
    std::optional<LaterIndexFile> m_index;
    ReadResult m_result;
    ChromeOwnedBlocks m_owned;
    std::set<std::uint8_t> m_files;
    std::vector<std::uint32_t> m_pieces; ///< of larger entries, which may come later
    std::unordered_set<std::uint32_t> m_joined;
    std::uint64_t m_damaged = 0;
    std::int64_t m_count = 0;
};

} // namespace

bool isLaterBlockCache(const ReadContext &ctx) {
    if (!isIndex(ctx.file.fullPath))
        return true;
    return LaterIndexFile(ctx.evidence.open(ctx.file.fullPath)).isLater();
}

ReadResult parseLaterBlockCache(ReadContext &ctx) {
    return LaterReading(ctx).read();
}

} // namespace nv
