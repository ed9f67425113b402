// index      = head pad word*@40          a word is the address of the first entry of a slot, or 0
// block file = head[2000] block*          "data_0" and so on, each with blocks of one size
// Entry, header and rankings are blocks; a body is a run of blocks or a separate file "f_000001".

#include "readers/chrome/cache/CacheWalk.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace nv {

ChromeCacheWalk::ChromeCacheWalk(ChromeBlockCache &cache, EvidenceFile index,
                                 ChromeBlockFiles &blocks, FailureLog &log, TaskMonitor &task,
                                 const ChromeBlockCache::TakeEntry &take,
                                 const ChromeBlockCache::TakeFurther &takeFurther)
    : m_cache(cache), m_blocks(blocks), m_log(log), m_task(task), m_take(take),
      m_takeFurther(takeFurther), m_index(std::move(index)),
      m_trap(log, kProcedure, textOf(cache.indexPath)), m_further(cache, blocks, m_chains) {}

ReadResult ChromeCacheWalk::run() {
    m_cache.indexInfo = m_index.head();
    if (!isReadable())
        return m_result;
    const bool isDone =
        walkTable() && (m_takeFurther ? walkFurther() : countBehindTable() && countChains());
    if (isDone)
        noteTableCutShort();
    else
        m_result.state = ReadState::cancelled;
    noteFailures();
    return m_result;
}

bool ChromeCacheWalk::isReadable() {
    const std::string path = textOf(m_cache.indexPath);
    if (!m_index.hasHead())
        m_result.reason = fmt::format("{}: the index has {} bytes, its head alone has {}", path,
                                      m_index.size(), ChromeIndex::kSize);
    else if (m_index.isLater())
        // Its records would come out with dates and lengths taken from the wrong places.
        m_result.reason = "later block cache, not read yet";
    else if (m_index.isOfUnknownVersion())
        m_result.reason =
            fmt::format("block cache of version {}.{}, not read yet", m_index.head().version >> 16,
                        m_index.head().version & 0xFFFF);
    else
        return true;
    m_result.state = m_index.hasHead() ? ReadState::notReadYet : ReadState::failed;
    m_result.notReached = m_index.head().entryCount;
    write(m_index.hasHead() ? path + ": " + m_result.reason : m_result.reason);
    return false;
}

bool ChromeCacheWalk::walkTable() {
    for (std::uint64_t slot = 1; slot <= slots(); ++slot) {
        if (!goOn(slot))
            return false;
        if (slot == 1 || m_task.wantsStep())
            showStep(slot);
        m_trap.attempt(ChromeIndexFile::placeOf(slot), [&] { takeSlot(slot); });
    }
    showStep(slots());
    return true;
}

void ChromeCacheWalk::showStep(std::uint64_t slot) {
    const auto total = static_cast<std::int64_t>(m_index.head().addressCount);
    const auto now = static_cast<std::int64_t>(slot);
    m_task.show({fmt::format("MAP bucket {} of {}", now, total), now, total, {}, 0, 0});
}

void ChromeCacheWalk::takeSlot(std::uint64_t slot) {
    const auto map = ChromeBlockCache::getAddressMap(m_index.word(slot));
    if (!map)
        return;
    if (!map->initialised)
        return passOver("slot with a word that is no address");
    ++m_addresses;
    auto entry = m_cache.getEntry(*map);
    if (!entry)
        return miss("entry", *map, "slot that leads to no block file");
    m_chains.add(*map, entry->nextEntryAddressMap, slot);
    if (!entry->headerObject)
        return m_takeFurther ? keepHeadless(*entry, slot)
                             : miss("header", entry->headerAddressMap, "entry without a header");
    if (m_takeFurther)
        m_further.complete(*entry, {slot, 1}, m_result);
    else
        noteKeyLost(*entry);
    notePartsLost(*entry);
    m_take(*entry);
}

/// It has a URL and a body all the same, and comes after the classic records.
void ChromeCacheWalk::keepHeadless(const ChromeEntry &entry, std::uint64_t slot) {
    m_further.addHeadless(entry.addressMap, slot);
    const ChromeAddressMap &header = entry.headerAddressMap;
    if (header.dataBlockFileOffset == 0)
        return;
    ++m_result.noted["entry whose header could not be read"];
    damage(m_blocks.file(header.dataBlockFileNumber)
               ? fmt::format("{}: no header at {}", m_blocks.pathOf(header.dataBlockFileNumber),
                             header.dataBlockFileOffset)
               : m_blocks.lackOf(header.dataBlockFileNumber));
}

void ChromeCacheWalk::noteKeyLost(const ChromeEntry &entry) {
    if (entry.keyAddress != 0)
        passOver("URL that is kept outside of its entry");
    else if (entry.isKeyCutShort)
        passOver("rest of a URL of more than 218 characters");
}

void ChromeCacheWalk::notePartsLost(const ChromeEntry &entry) {
    if (entry.headerObject->isCutShort)
        noteHeaderCutShort(entry.headerAddressMap);
    // Asked for here so that a missing file is logged, though nothing is read of it.
    if (entry.contentAddressMap.dataBlockFileOffset != 0)
        m_blocks.file(entry.contentAddressMap.dataBlockFileNumber);
}

/// Only the first is logged: many addresses may lead to the end of one file.
void ChromeCacheWalk::noteHeaderCutShort(const ChromeAddressMap &map) {
    const auto text =
        damage(fmt::format("{}: the file ends in the header at {}",
                           m_blocks.pathOf(map.dataBlockFileNumber), map.dataBlockFileOffset));
    if (++m_result.passedOver["header that is cut short, its dates read as 1601-01-01"] == 1)
        write(text);
}

/// An entry can't be had. Addresses that name no block are as the browser wrote them; everything
/// else is damage.
void ChromeCacheWalk::miss(std::string_view what, const ChromeAddressMap &map,
                           std::string_view reason) {
    if (map.dataBlockFileOffset == 0)
        return passOver(reason);
    const std::string path = m_blocks.pathOf(map.dataBlockFileNumber);
    const EvidenceFile *file = m_blocks.file(map.dataBlockFileNumber);
    if (!file) {
        ++m_result.notReached; // the file was logged when it was looked for
        damage(m_blocks.lackOf(map.dataBlockFileNumber));
        return;
    }
    throw std::runtime_error(
        damage(fmt::format("{}: no whole {} at {}, the file has {} bytes", path, what,
                           map.dataBlockFileOffset, file->size())));
}

bool ChromeCacheWalk::countBehindTable() {
    for (std::uint64_t slot = slots() + 1; slot <= m_index.wordsThere(); ++slot) {
        if (!goOn(slot))
            return false;
        m_trap.attempt(ChromeIndexFile::placeOf(slot), [&] {
            if (chromeAddressMapOf(m_index.word(slot)).initialised)
                passOver("address behind the slots that the index counts");
        });
    }
    return true;
}

/// What the classic rules count, as records of its own.
bool ChromeCacheWalk::walkFurther() {
    ChromeFurther::Words behind;
    for (std::uint64_t slot = slots() + 1; slot <= m_index.wordsThere(); ++slot) {
        if (!goOn(slot))
            return false;
        m_trap.attempt(ChromeIndexFile::placeOf(slot), [&] {
            if (const std::uint32_t word = m_index.word(slot); chromeAddressMapOf(word).initialised)
                behind.push_back({word, slot});
        });
    }
    return m_further.run(behind, m_index.head().addressCount, m_takeFurther, m_task, m_trap,
                         m_result);
}

bool ChromeCacheWalk::countChains() {
    bool isDone = true;
    m_trap.attempt(0, [&] {
        const auto others = m_chains.countOthers(m_blocks, m_task);
        isDone = others.has_value();
        if (others.value_or(0) > 0)
            m_result.passedOver["entry that shares a slot with the one before it"] = *others;
    });
    return isDone;
}

void ChromeCacheWalk::noteTableCutShort() {
    const ChromeIndex &head = m_index.head();
    if (slots() == head.addressCount)
        return;
    write(damage(fmt::format("{}: the table of addresses ends behind slot {} of {}",
                             textOf(m_cache.indexPath), slots(), head.addressCount)));
    // Most slots of a cache are empty: the entries that the index counts say more.
    const std::uint64_t unmet =
        head.entryCount - std::min<std::uint64_t>(head.entryCount, m_addresses);
    m_result.notReached += std::min(head.addressCount - slots(), unmet);
}

void ChromeCacheWalk::noteFailures() {
    if (m_trap.failed() == 0)
        return;
    m_result.notReached += m_trap.failed();
    damage(textOf(m_cache.indexPath) + ": entries could not be read, the log tells which");
}

bool ChromeCacheWalk::goOn(std::uint64_t slot) {
    const auto done = static_cast<double>(slot - 1);
    const double share = m_takeFurther ? ChromeFurther::kShareBefore : 1;
    return m_cache.isReading &&
           m_task.advance(share * done / static_cast<double>(m_index.wordsThere()));
}

/// Those that the index counts, as far as the file reaches.
std::uint64_t ChromeCacheWalk::slots() const {
    return std::min<std::uint64_t>(m_index.head().addressCount, m_index.wordsThere());
}

/// The first damage is what the result tells.
std::string ChromeCacheWalk::damage(const std::string &text) {
    if (m_result.state == ReadState::complete)
        m_result.state = ReadState::cutShort;
    if (m_result.reason.empty())
        m_result.reason = text;
    return text;
}

void ChromeCacheWalk::write(const std::string &text) {
    m_log.write({text, std::string(kProcedure), Severity::Serious, std::string(kContactSupport)});
}

} // namespace nv
