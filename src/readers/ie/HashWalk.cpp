#include "readers/ie/HashWalk.h"

#include "base/Files.h"
#include "readers/Limits.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace nv {

namespace {

/// Below it there is no index: the format's header alone fills this much.
constexpr std::size_t kShortestIndex = 4096;
constexpr std::uint64_t kBlock = kIndexBlock;
constexpr std::uint64_t kSignature = 4;

constexpr std::string_view kBehindDamage =
    "hash entry after one that leads out of the file, where the classic rules end";
constexpr std::string_view kBehindCap =
    "hash table behind the last one that the classic rules read";
constexpr std::string_view kMissedTable = "hash table that the classic rules look for elsewhere";

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
        if (!m_ctx.classicOnly)
            m_missed = missedHashChain(m_file);
        return !m_ctx.classicOnly; // its records are remnants then
    }
    m_chain = readHashChain(m_file, first);
    for (const std::string &damage : m_chain.damage)
        noteDamage(damage, result);
    if (!m_chain.damage.empty())
        m_missed = missedHashChain(m_file);
    if (m_ctx.classicOnly)
        result.notReached += usedEntries(m_file, m_missed);
    for (const HashTable &table : m_chain.tables)
        m_entries += table.recordCount;
    return true;
}

void HashWalk::run(const TakeRecord &take, ReadResult &result) {
    m_met.assign(m_file.size() / kBlock + 1, false);
    walkEntries(take, result);
    if (!m_ctx.classicOnly && result.state != ReadState::cancelled)
        walkRest(take, result);
    if (m_trap.failed() > 0)
        result.passedOver["damaged record"] += m_trap.failed();
    if (result.state == ReadState::cancelled || !m_ctx.classicOnly)
        return;
    countBehindCap(result);
    countUnreferenced(result);
}

void HashWalk::walkRest(const TakeRecord &take, ReadResult &result) {
    for (const HashTable &table : m_chain.behindCap)
        m_rest.push_back({&table, 0, kBehindCap});
    for (const auto *tables : {&m_missed.tables, &m_missed.behindCap})
        for (const HashTable &table : *tables)
            m_rest.push_back({&table, 0, kMissedTable});
    for (const Rest &rest : m_rest)
        if (!walkRest(rest, take, result)) {
            result.state = ReadState::cancelled;
            return;
        }
}

/// A record has its row already when another entry leads to it: tables that lie over each other
/// would give it any number of times. False when cancelled.
bool HashWalk::walkRest(const Rest &rest, const TakeRecord &take, ReadResult &result) {
    for (std::int64_t i = rest.entry; i < rest.table->recordCount; ++i) {
        if (!m_file.has(placeOfEntry(*rest.table, i), 8))
            break;
        const HashEntry entry = hashEntry(m_file, *rest.table, i);
        if (!entry.isUsed())
            continue;
        if (!m_ctx.task.advance(kShare))
            return false;
        const std::uint64_t offset = entry.recordOffset;
        if (!m_file.has(offset, kSignature))
            ++result.notReached;
        else if (offset % kBlock != 0)
            ++result.passedOver["hash entry that leads amid a block"];
        else if (!m_met[offset / kBlock])
            attempt({offset, entry.status, rest.rule}, take, result);
    }
    return true;
}

void HashWalk::attempt(const ListedRecord &record, const TakeRecord &take, ReadResult &result) {
    if (record.offset % kBlock == 0)
        m_met[record.offset / kBlock] = true;
    m_trap.attempt(record.offset, [&] {
        if (const std::string_view reason = take(record); !reason.empty())
            ++result.passedOver[std::string(reason)];
    });
}

void HashWalk::walkEntries(const TakeRecord &take, ReadResult &result) {
    for (Place place; place.table < m_chain.tables.size(); ++place.table)
        for (place.entry = 0; place.entry < m_chain.tables[place.table].recordCount;
             ++place.entry) {
            const double share = m_ctx.classicOnly ? 1 : kShare;
            if (!m_ctx.task.advance(share * static_cast<double>(m_done++) /
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
    attempt({offset, entry.status}, take, result);
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

/// By the classic rules no record is sought after an entry that leads out of the file: the rest of
/// the hash is as little to be trusted. What was saved stays; this entry and those that remain are
/// counted.
HashWalk::Step HashWalk::endAt(Place place, const std::string &damage, ReadResult &result) {
    noteDamage(fmt::format("{}, outside of the {} bytes", damage, m_file.size()), result);
    if (!m_ctx.classicOnly) {
        const bool isThere = m_file.has(placeOfEntry(m_chain.tables[place.table], place.entry), 8);
        result.notReached += isThere ? 1 : 0;
        restOfTables(place);
        return Step::leave;
    }
    const std::vector<HashTable> &tables = m_chain.tables;
    result.notReached += usedEntries(m_file, tables[place.table], place.entry);
    for (std::size_t table = place.table + 1; table < tables.size(); ++table)
        result.notReached += usedEntries(m_file, tables[table]);
    return Step::leave;
}

void HashWalk::restOfTables(Place place) {
    const std::vector<HashTable> &tables = m_chain.tables;
    m_rest.push_back({&tables[place.table], place.entry + 1, kBehindDamage});
    for (std::size_t table = place.table + 1; table < tables.size(); ++table)
        m_rest.push_back({&tables[table], 0, kBehindDamage});
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
    const IndexBlocks all = blocks();
    for (std::uint64_t at = 0; m_file.has(at, kSignature); at += kBlock) {
        const std::string_view signature = looseSignatureAt(m_file, at);
        if (!signature.empty() && !all.isListed(at))
            ++result.passedOver[fmt::format("{} record outside of the hash tables",
                                            signature.substr(0, signature.find(' ')))];
    }
}

} // namespace nv
