#include "support/builders/ChromeCache.h"

#include "base/Files.h"
#include "support/builders/IndexDat.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace nv::test {

namespace {

constexpr std::array<std::size_t, 4> kBlockSizes = {36, 256, 1024, 4096};
constexpr std::size_t kMostBlocks = 4; ///< of one record or body
constexpr std::uint32_t kInitialised = 0x8000'0000;
constexpr std::size_t kKeyAt = 0x24;

std::string blockFileName(std::size_t number) {
    return fmt::format("data_{}", number);
}

std::string blockFileHead(std::size_t number) {
    std::string bytes(ChromeCache::kBlocksAt, '\0');
    put32(bytes, 0, 0xC103CAC3);
    put32(bytes, 4, 0x10003);
    put16(bytes, 8, static_cast<std::uint16_t>(number));
    put32(bytes, 0xC, static_cast<std::uint32_t>(kBlockSizes[number]));
    return bytes;
}

std::string rankings(const ChromeCacheEntry &entry) {
    std::string bytes(36, '\0');
    put64(bytes, 0, entry.requested + 1'000'000);
    put64(bytes, 8, entry.modified + 1'000'000);
    return bytes;
}

std::string header(const ChromeCacheEntry &entry) {
    std::string bytes(24, '\0');
    put32(bytes, 0, static_cast<std::uint32_t>(24 + entry.answer.size()));
    put32(bytes, 4, 3);
    put64(bytes, 8, entry.requested);
    put64(bytes, 16, entry.modified);
    bytes.append(4, '\0');
    put32(bytes, 24, static_cast<std::uint32_t>(entry.answer.size()));
    return bytes + entry.answer;
}

std::string entryBytes(const ChromeCacheEntry &entry, const ChromeCachePlace &place) {
    std::string bytes(kKeyAt, '\0');
    put32(bytes, 0, 0x1234'5678);
    put32(bytes, 8, place.rankings);
    put32(bytes, 0xC, static_cast<std::uint32_t>(entry.url.size()));
    put32(bytes, 0x14, static_cast<std::uint32_t>(header(entry).size()));
    put32(bytes, 0x18, static_cast<std::uint32_t>(entry.body.size()));
    put32(bytes, 0x1C, place.header);
    put32(bytes, 0x20, place.body);
    return bytes + entry.url + '\0';
}

} // namespace

ChromeCache::ChromeCache(std::uint32_t slots) {
    std::string index(kTableAt + std::size_t{slots} * 4, '\0');
    put32(index, 0, 0xC103CAC3);
    put32(index, 4, 0x10003);
    put32(index, 0x1C, slots);
    m_files["index"] = index;
    for (std::size_t number = 0; number < kBlockSizes.size(); ++number)
        m_files[blockFileName(number)] = blockFileHead(number);
}

std::uint32_t ChromeCache::store(std::size_t number, const std::string &bytes) {
    const std::size_t size = kBlockSizes[number];
    const std::size_t blocks = (std::max<std::size_t>(bytes.size(), 1) + size - 1) / size;
    if (blocks > kMostBlocks)
        throw std::invalid_argument("too long for blocks");
    const auto type = static_cast<std::uint32_t>(number + 1);
    const std::uint32_t address = kInitialised | type << 28 |
                                  static_cast<std::uint32_t>(blocks - 1) << 24 |
                                  static_cast<std::uint32_t>(number) << 16 | m_used[number];
    m_used[number] += static_cast<std::uint32_t>(blocks);
    std::string &target = m_files[blockFileName(number)];
    target += bytes;
    target.resize(kBlocksAt + m_used[number] * size, '\0');
    put32(target, 0x10, m_used[number]);
    put32(target, 0x14, m_used[number]);
    return address;
}

std::uint32_t ChromeCache::storeBody(const ChromeCacheEntry &entry) {
    using enum ChromeCacheEntry::Body;
    if (entry.where == none)
        return 0;
    for (const std::size_t number : {1U, 2U, 3U})
        if (entry.where == bySize && entry.body.size() <= kBlockSizes[number] * kMostBlocks)
            return store(number, entry.body);
    m_files[fmt::format("f_{:06x}", ++m_separate)] = entry.body;
    put32(m_files["index"], 0x10, m_separate);
    return kInitialised | m_separate;
}

ChromeCachePlace ChromeCache::place(const ChromeCacheEntry &entry) {
    ChromeCachePlace placed;
    placed.rankings = store(0, rankings(entry));
    placed.header = entry.hasHeader ? store(1, header(entry)) : 0;
    placed.body = storeBody(entry);
    placed.entry = store(1, entryBytes(entry, placed));
    std::string &index = m_files["index"];
    const std::uint32_t count = m_used[0]; // one node of the rankings for each entry
    put32(index, 8, count);
    return placed;
}

ChromeCachePlace ChromeCache::add(const ChromeCacheEntry &entry) {
    ChromeCachePlace placed = place(entry);
    word(placed.entry);
    placed.slot = m_slots;
    return placed;
}

ChromeCachePlace ChromeCache::addBehind(std::uint32_t address, const ChromeCacheEntry &entry) {
    const ChromeCachePlace placed = place(entry);
    put32(m_files[fileOf(address)], offsetOf(address) + 4, placed.entry);
    return placed;
}

ChromeCache &ChromeCache::word(std::uint32_t address) {
    put32(m_files["index"], kTableAt + m_slots * 4, address);
    ++m_slots;
    return *this;
}

void ChromeCache::removeEmpty() {
    for (std::size_t number = 0; number < m_used.size(); ++number)
        if (m_used[number] == 0)
            remove(blockFileName(number));
}

std::filesystem::path ChromeCache::write(const std::filesystem::path &folder) const {
    std::filesystem::create_directories(folder);
    for (const auto &[name, bytes] : m_files)
        writeWhole(folder / name, bytes);
    return folder / "index";
}

std::size_t ChromeCache::offsetOf(std::uint32_t address) {
    return kBlocksAt + (address & 0xFFFF) * kBlockSizes[((address >> 28) & 7) - 1];
}

std::string ChromeCache::fileOf(std::uint32_t address) {
    return blockFileName((address >> 16) & 0xFF);
}

} // namespace nv::test
