#include "readers/ie/HashWalk.h"

#include "base/Files.h"
#include "readers/Limits.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

namespace nv {

namespace {

/// Below it there is no index: the format's header alone fills this much.
constexpr std::size_t kShortestIndex = 4096;
constexpr std::uint64_t kBlock = 0x80;
constexpr std::uint64_t kSignature = 4;

/// The blocks at which records begin, true for those that a hash entry leads to.
class ReferencedBlocks {
  public:
    explicit ReferencedBlocks(ByteView file)
        : m_file(file), m_referenced(file.size() / kBlock + 1) {}

    void mark(const HashChain &chain) {
        for (const HashTable &table : chain.tables)
            mark(table);
        for (const HashTable &table : chain.behindCap)
            mark(table);
    }
    bool has(std::uint64_t offset) const { return m_referenced[offset / kBlock]; }

  private:
    void mark(const HashTable &table) {
        for (std::int64_t i = 0; i < table.recordCount; ++i) {
            if (!m_file.has(placeOfEntry(table, i), 8))
                return;
            const HashEntry entry = hashEntry(m_file, table, i);
            if (entry.isUsed() && entry.recordOffset < m_file.size() &&
                entry.recordOffset % kBlock == 0)
                m_referenced[entry.recordOffset / kBlock] = true;
        }
    }

    ByteView m_file;
    std::vector<bool> m_referenced;
};

} // namespace

ByteView recordAt(ByteView file, std::uint64_t offset) {
    const std::int32_t blocks = file.i32le(offset + kSignature);
    // A length below zero is as far outside of the file as one after its end.
    return blocks < 0 ? file.sub(offset, std::numeric_limits<std::uint64_t>::max())
                      : file.sub(offset, static_cast<std::uint64_t>(blocks) * kBlock);
}

HashWalk::HashWalk(ReadContext &ctx, ByteView file, std::string_view procedure)
    : m_ctx(ctx), m_file(file), m_procedure(procedure),
      m_trap(ctx.log, procedure, textOf(ctx.file.fullPath)) {}

bool HashWalk::open(ReadResult &result) {
    if (m_file.size() < kShortestIndex) {
        noteDamage(fmt::format("the file is {} bytes long, and an index has {} or more: what "
                               "follows was cut off",
                               m_file.size(), kShortestIndex),
                   result);
        return false;
    }
    const std::int32_t first = firstHashTable(m_file);
    if (first == 0) {
        ++result.passedOver["file without a hash table"];
        return false;
    }
    m_chain = readHashChain(m_file, first);
    for (const std::string &damage : m_chain.damage)
        noteDamage(damage, result);
    if (!m_chain.damage.empty())
        m_missed = missedHashChain(m_file);
    result.notReached += usedEntries(m_file, m_missed);
    for (const HashTable &table : m_chain.tables)
        m_entries += table.recordCount;
    return true;
}

void HashWalk::run(const TakeRecord &take, ReadResult &result) {
    walkEntries(take, result);
    if (m_trap.failed() > 0)
        result.passedOver["damaged record"] += m_trap.failed();
    if (result.state == ReadState::cancelled)
        return;
    countBehindCap(result);
    countUnreferenced(result);
}

void HashWalk::walkEntries(const TakeRecord &take, ReadResult &result) {
    for (Place place; place.table < m_chain.tables.size(); ++place.table)
        for (place.entry = 0; place.entry < m_chain.tables[place.table].recordCount;
             ++place.entry) {
            if (!m_ctx.task.advance(static_cast<double>(m_done++) /
                                    static_cast<double>(m_entries))) {
                result.state = ReadState::cancelled;
                return;
            }
            if (walkEntry(place, take, result) == Step::leave)
                return;
        }
}

HashWalk::Step HashWalk::walkEntry(Place place, const TakeRecord &take, ReadResult &result) {
    showStep(place);
    const HashTable &table = m_chain.tables[place.table];
    const std::uint64_t at = placeOfEntry(table, place.entry);
    if (!m_file.has(at, 8))
        return endAt(place, fmt::format("a hash entry was expected at {}", at), result);
    const HashEntry entry = hashEntry(m_file, table, place.entry);
    if (!entry.isUsed())
        return Step::goOn;
    const std::uint64_t offset = entry.recordOffset;
    const bool negative = offset > std::numeric_limits<std::int32_t>::max();
    if (negative || !m_file.has(offset, kSignature))
        return endAt(place,
                     fmt::format("the hash entry at {} expects a record at {}", at,
                                 static_cast<std::int32_t>(entry.recordOffset)),
                     result);
    m_trap.attempt(offset, [&] {
        if (const std::string_view reason = take(offset); !reason.empty())
            ++result.passedOver[std::string(reason)];
    });
    return Step::goOn;
}

void HashWalk::showStep(Place place) {
    if (place.entry != 1 && !m_ctx.task.wantsStep())
        return;
    const auto table = static_cast<std::int64_t>(place.table) + 1;
    const auto tables = static_cast<std::int64_t>(m_chain.tables.size());
    const std::int64_t entries = m_chain.tables[place.table].recordCount;
    m_ctx.task.show({fmt::format("Reading Hash Table {} of {}", table, tables), table, tables,
                     fmt::format("Processing Hash Record {} of {}", place.entry, entries),
                     place.entry, entries});
}

void HashWalk::noteDamage(const std::string &damage, ReadResult &result) {
    const std::string text = fmt::format("{}: {}", textOf(m_ctx.file.fullPath), damage);
    m_ctx.log.write(
        {text, std::string(m_procedure), Severity::Warning, std::string(kContactSupport)});
    result.state = ReadState::cutShort;
    if (result.reason.empty())
        result.reason = text;
}

/// No record is sought after an entry that leads out of the file: the rest of the hash is as
/// little to be trusted. What was saved stays; this entry and those that remain are counted.
HashWalk::Step HashWalk::endAt(Place place, const std::string &damage, ReadResult &result) {
    noteDamage(fmt::format("{}, outside of the {} bytes", damage, m_file.size()), result);
    const std::vector<HashTable> &tables = m_chain.tables;
    result.notReached += usedEntries(m_file, tables[place.table], place.entry);
    for (std::size_t table = place.table + 1; table < tables.size(); ++table)
        result.notReached += usedEntries(m_file, tables[table]);
    return Step::leave;
}

void HashWalk::countBehindCap(ReadResult &result) const {
    if (m_chain.behindCap.empty())
        return;
    const auto behind = fmt::format(" behind hash table {}", limits::kIndexHashTables);
    result.passedOver["hash table" + behind] += m_chain.behindCap.size();
    for (const HashTable &table : m_chain.behindCap)
        if (const std::uint64_t used = usedEntries(m_file, table))
            result.passedOver["hash entry" + behind] += used;
}

/// Records stand at the start of blocks. Those that no entry leads to were deleted, or could not
/// be deleted at once; examiners want to know that they are there.
void HashWalk::countUnreferenced(ReadResult &result) const {
    ReferencedBlocks referenced(m_file);
    referenced.mark(m_chain);
    referenced.mark(m_missed);
    constexpr std::array<std::string_view, 3> kSignatures = {"URL ", "LEAK", "REDR"};
    for (std::uint64_t at = 0; m_file.has(at, kSignature); at += kBlock) {
        const std::string_view signature = m_file.sub(at, kSignature).raw();
        const auto *known = std::find(kSignatures.begin(), kSignatures.end(), signature);
        if (known != kSignatures.end() && !referenced.has(at))
            ++result.passedOver[fmt::format("{} record outside of the hash tables",
                                            signature.substr(0, signature.find(' ')))];
    }
}

} // namespace nv
