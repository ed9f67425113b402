// index      = head address*          each address the first entry of a chain, or 0 (LaterIndex.h)
// block file = head[2000] block*      "data_1" and those after it hold the entries (LaterEntry.h)

#include "readers/chrome/LaterCache.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/EvidenceGaps.h"
#include "readers/Limits.h"
#include "readers/chrome/CacheBlocks.h"
#include "readers/chrome/CacheFurther.h"
#include "readers/chrome/LaterEntry.h"
#include "readers/chrome/LaterPieces.h"
#include "readers/chrome/LaterRows.h"
#include "readers/chrome/LaterWalk.h"
#include "readers/sqlite/KeptMessage.h"

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
constexpr double kShareOfIndex = 0.7;
constexpr std::uint32_t kSeparateFile = 0x0FFF'FFFF; ///< of an address: which one

bool isIndex(const fs::path &file) {
    return !toLower(textOf(file.filename())).starts_with("data_");
}

std::size_t blockOf(const ChromeAddressMap &map) {
    return map.address % limits::kChromeCacheBlocks;
}

/// An index as far as it can be had.
struct OpenedIndex {
    enum class Told : std::uint8_t { first, later, nothing };

    std::optional<LaterIndexFile> trusted;
    std::string lack; ///< why it isn't there
    Told told = Told::nothing;
    bool isUnread = false; ///< it couldn't be opened or read
};

/// What it says of itself may be damaged. One that can't be trusted costs a cache nothing but what
/// it leads to.
OpenedIndex openedIndex(const ReadContext &ctx) {
    const fs::path folder = ctx.file.fullPath.parent_path();
    const auto file = isIndex(ctx.file.fullPath) ? std::optional(ctx.file.fullPath)
                                                 : ctx.evidence.find(folder, "index");
    OpenedIndex opened;
    if (!file) {
        opened.lack = textOf(folder / "index") + ": the index is missing";
        return opened;
    }
    KeptMessage failure;
    trapped(failure, Severity::Serious, kProcedure, "", [&] {
        tellingGaps(ctx.log, [&] {
            LaterIndexFile index(ctx.evidence.open(*file));
            if (index.isLater())
                opened.told = OpenedIndex::Told::later;
            else if (index.isOfFirstVersions())
                opened.told = OpenedIndex::Told::first;
            opened.lack = index.damage();
            if (opened.lack.empty())
                opened.trusted.emplace(std::move(index));
            else
                opened.lack = textOf(*file) + ": " + opened.lack;
        });
    });
    opened.isUnread = !failure.text.empty();
    if (opened.isUnread)
        opened.lack = failure.text;
    return opened;
}

class LaterReading {
  public:
    LaterReading(ReadContext &ctx, OpenedIndex index)
        : m_ctx(ctx), m_folder(ctx.file.fullPath.parent_path()),
          m_blocks(ctx.evidence, m_folder, ctx.log, kProcedure),
          m_entries(m_blocks, ctx.evidence, m_folder),
          m_trap(ctx.log, kProcedure, textOf(ctx.file.fullPath)), m_met(limits::kChromeCacheBlocks),
          m_index(std::move(index.trusted)), m_indexLack(std::move(index.lack)),
          m_rows(ctx, m_folder, m_entries, m_result) {}

    ReadResult read() {
        m_ctx.task.describe({"PARSING CHROMIUM CACHE", "Reading INDEX File...",
                             textOf(m_ctx.file.fullPath), "chromeCache-32.gif"});
        m_ctx.file.version =
            m_index ? "Block files " + m_index->versionText() : std::string("Block files");
        if (!m_index)
            damage(m_indexLack);
        const bool isDone = walkIndex() && walkFiles() && saveSeparateFiles();
        for (const std::string &lack : m_blocks.cutShort())
            addReasonOnce(m_result, lack);
        tellOfFailures();
        if (!isDone)
            m_result.state = ReadState::cancelled;
        m_ctx.task.show({"All done.", m_rows.count(), m_rows.count(), {}, 0, 0});
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
            if (!m_rows.isJoined(piece))
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
        m_rows.tellMissing(hasFields ? chromeAddressMapOf(fields.u32le(kKeyAddressAt)) : map);
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
        leadTo(entry);
    }

    void leadTo(const LaterEntry &entry) {
        const auto add = [this](const ChromeAddressMap &map) {
            if (map.initialised && map.blockFileType == 0)
                m_ledTo.insert(map.address & kSeparateFile);
        };
        add(entry.longKey);
        for (const LaterStream &stream : entry.streams)
            add(stream.address);
    }

    void save(const LaterEntry &entry, std::string_view foundHow) {
        m_rows.save(entry, foundHow, [this](const std::string &key) {
            return m_index ? laterEntryOfKey(*m_index, m_entries, key)
                           : m_strays.find(m_entries, key);
        });
    }

    /// What no chain leads to, at the start of every block of the files that hold entries.
    bool walkFiles() {
        m_files.insert(1);
        m_trap.attempt(0, [this] { addNextLaterFiles(m_blocks, m_files); });
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
        saveStrays();
        return true;
    }

    bool walkFile(std::uint8_t number, const std::function<bool(double)> &advance) {
        const EvidenceFile *file = m_blocks.file(number);
        if (!file)
            addReasonOnce(m_result, m_blocks.lackOf(number));
        const std::uint64_t count = file ? laterBlocksIn(*file) : 0;
        for (std::uint64_t first = 0; first < count; first += kLaterPart) {
            if (!advance(static_cast<double>(first) / static_cast<double>(count)))
                return false;
            m_trap.attempt(first, [&] {
                eachLaterBlock(*file, number, first,
                               [this](const ChromeAddressMap &map) { tryBlock(map); });
            });
        }
        return true;
    }

    void tryBlock(const ChromeAddressMap &map) {
        if (m_met[blockOf(map)] || m_owned.isOwned(map))
            return;
        auto entry = m_entries.at(map);
        if (!entry || !entry->hasItsHash())
            return;
        leadTo(*entry);
        if (!m_index && (entry->flags & LaterEntry::sparseChild) != 0)
            m_strays.add(*entry);
        // A parent needs its pieces, and a piece its parent, which may both come later.
        constexpr std::uint32_t kOfPieces = LaterEntry::sparseParent | LaterEntry::sparseChild;
        if (!m_index && (entry->flags & kOfPieces) != 0)
            m_waiting.push_back(map.address);
        else
            saveStray(*entry);
    }

    void saveStray(LaterEntry &entry) {
        const ChromeAddressMap &map = entry.address;
        const std::string_view inPiece =
            (entry.flags & LaterEntry::sparseChild) != 0 ? ", a piece of a larger one" : "";
        dropWhatIsOwned(entry);
        save(entry,
             fmt::format("block {} of data_{} (0x{:X}), {}{}", map.startingBlockNumber,
                         map.dataBlockFileNumber, map.dataBlockFileOffset,
                         m_index ? "which no chain leads to" : "found without the index", inPiece));
    }

    /// Parents first: these say which pieces are theirs.
    void saveStrays() {
        for (const bool isParent : {true, false})
            for (const std::uint32_t address : m_waiting)
                m_trap.attempt(address, [&] {
                    auto entry = m_entries.at(address);
                    if (entry && isParent == ((entry->flags & LaterEntry::sparseParent) != 0) &&
                        !m_rows.isJoined(address))
                        saveStray(*entry);
                });
    }

    bool saveSeparateFiles() {
        std::vector<LaterFile> files;
        m_trap.attempt(0, [&] { files = separateFilesIn(m_ctx.evidence, m_folder); });
        for (const LaterFile &file : files) {
            if (!m_ctx.task.advance(1))
                return false;
            if (!m_ledTo.contains(file.number))
                m_trap.attempt(file.number, [&] { m_rows.saveSeparateFile(file.path); });
        }
        return true;
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
        addReason(m_result,
                  textOf(m_ctx.file.fullPath) + ": entries could not be read, the log tells which");
    }

    void damage(const std::string &text) {
        if (++m_damaged <= RecordTrap::kLoggedRecords)
            m_ctx.log.write(
                {text, std::string(kProcedure), Severity::Serious, std::string(kContactSupport)});
        if (m_damaged == 1)
            addReason(m_result, text);
    }

    ReadContext &m_ctx;
    fs::path m_folder;
    ChromeBlockFiles m_blocks;
    LaterEntries m_entries;
    RecordTrap m_trap;
    std::vector<bool> m_met;
    std::optional<LaterIndexFile> m_index;
    std::string m_indexLack; ///< why there is none
    ReadResult m_result;
    LaterRows m_rows;
    ChromeOwnedBlocks m_owned;
    std::set<std::uint8_t> m_files;
    std::vector<std::uint32_t> m_pieces; ///< of larger entries, which may come later
    LaterStrays m_strays;
    std::vector<std::uint32_t> m_waiting;      ///< addresses of unlisted parents and pieces
    std::unordered_set<std::uint32_t> m_ledTo; ///< numbers of separate files
    std::uint64_t m_damaged = 0;
};

} // namespace

std::optional<ReadResult> parseLaterBlockCache(ReadContext &ctx) {
    const fs::path folder = ctx.file.fullPath.parent_path();
    const bool isByIndex = isIndex(ctx.file.fullPath);
    OpenedIndex index = openedIndex(ctx);
    if (index.told == OpenedIndex::Told::first)
        return std::nullopt;
    // Where the index doesn't tell, the entries do.
    if (index.told != OpenedIndex::Told::later && !hasLaterEntries(ctx.evidence, folder)) {
        if (isByIndex && !index.isUnread)
            return std::nullopt;
        if (isByIndex || hasFirstEntries(ctx.evidence, folder)) {
            ctx.log.write({index.lack, std::string(kProcedure), Severity::Serious,
                           std::string(kContactSupport)});
            return ReadResult{ReadState::failed, index.lack, 0, {}};
        }
    }
    return LaterReading(ctx, std::move(index)).read();
}

} // namespace nv
