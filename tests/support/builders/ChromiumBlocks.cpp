// index      = head[170] address*    by the hash of the key; further entries by "next"
// block file = head[2000] block*

#include "support/builders/ChromiumBlocks.h"

#include "base/Files.h"
#include "support/builders/ChromiumCache.h"
#include "support/builders/IndexDat.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv::test {

namespace {

constexpr std::array<std::size_t, 4> kBlockSizes = {36, 256, 1024, 4096};
constexpr std::size_t kMostBlocks = 4; ///< of one record or body
constexpr std::size_t kTableAt = 0x170;
constexpr std::size_t kBlocksAt = 0x2000;
constexpr std::size_t kBitsAt = 80;
constexpr std::size_t kKeyAt = 96;
constexpr std::size_t kLongestKey = 927;
constexpr std::uint32_t kVersion = 0x3'0000;
constexpr std::uint32_t kInUse = 0x8000'0000;

std::string blockFile(std::size_t number) {
    return fmt::format("data_{}", number);
}

std::string blockFileHead(std::size_t number) {
    std::string bytes(kBlocksAt, '\0');
    put32(bytes, 0, 0xC104CAC3);
    put32(bytes, 4, kVersion);
    put16(bytes, 8, static_cast<std::uint16_t>(number));
    put32(bytes, 12, static_cast<std::uint32_t>(kBlockSizes.at(number)));
    return bytes;
}

std::size_t offsetOf(std::uint32_t address) {
    return kBlocksAt + (address & 0xFFFF) * kBlockSizes.at((address >> 28 & 7) - 1);
}

} // namespace

ChromiumBlocks::ChromiumBlocks(std::uint32_t slots) : m_slots(slots) {
    std::string &index = m_files["index"];
    index.resize(kTableAt + std::size_t{slots} * 4);
    put32(index, 0, 0xC103CAC3);
    put32(index, 4, kVersion);
    put32(index, 28, slots);
    for (std::size_t number = 0; number < kBlockSizes.size(); ++number)
        m_files[blockFile(number)] = blockFileHead(number);
}

std::uint32_t ChromiumBlocks::store(std::size_t number, const std::string &bytes) {
    const std::size_t size = kBlockSizes.at(number);
    const auto blocks = static_cast<std::uint32_t>((bytes.size() + size - 1) / size);
    std::uint32_t &used = m_used.at(number);
    if (used % kMostBlocks + blocks > kMostBlocks) // a run lies within one group of four
        used += static_cast<std::uint32_t>(kMostBlocks - used % kMostBlocks);
    const std::uint32_t address = kInUse | static_cast<std::uint32_t>(number + 1) << 28 |
                                  (blocks - 1) << 24 | static_cast<std::uint32_t>(number) << 16 |
                                  used;
    std::string &file = m_files[blockFile(number)];
    file.resize(kBlocksAt + used * size);
    file += bytes;
    for (std::uint32_t block = used; block < used + blocks; ++block)
        file[kBitsAt + block / 8] = static_cast<char>(
            static_cast<std::uint8_t>(file[kBitsAt + block / 8]) | 1U << block % 8);
    used += blocks;
    file.resize(kBlocksAt + used * size);
    put32(file, 16, used);
    put32(file, 20, used);
    return address;
}

std::uint32_t ChromiumBlocks::storeBody(const std::string &bytes) {
    if (bytes.empty())
        return 0;
    for (const std::size_t number : {1U, 2U, 3U})
        if (bytes.size() <= kBlockSizes.at(number) * kMostBlocks)
            return store(number, bytes);
    m_files[fmt::format("f_{:06x}", ++m_separate)] = bytes;
    return kInUse | m_separate;
}

void ChromiumBlocks::add(const ChromiumBlockEntry &entry) {
    const std::uint32_t hash = chromiumKeyHash(entry.key);
    const bool isLong = entry.key.size() > kLongestKey;
    std::string rankings(36, '\0');
    put64(rankings, 0, static_cast<std::uint64_t>(entry.lastUsed));
    put64(rankings, 8, static_cast<std::uint64_t>(entry.created));
    std::string bytes(kKeyAt, '\0');
    put32(bytes, 0, hash);
    put32(bytes, 8, store(0, rankings));
    put64(bytes, 24, static_cast<std::uint64_t>(entry.created));
    put32(bytes, 32, static_cast<std::uint32_t>(entry.key.size()));
    put32(bytes, 36, isLong ? storeBody(entry.key + '\0') : 0);
    put32(bytes, 40, static_cast<std::uint32_t>(entry.head.size()));
    put32(bytes, 44, static_cast<std::uint32_t>(entry.body.size()));
    put32(bytes, 56, storeBody(entry.head));
    put32(bytes, 60, storeBody(entry.body));
    const std::uint32_t address = store(1, isLong ? bytes : bytes + entry.key + '\0');
    const std::uint32_t slot = hash & (m_slots - 1);
    std::string &index = m_files["index"];
    if (const auto before = m_last.find(slot); before != m_last.end())
        put32(m_files[blockFile(1)], offsetOf(before->second) + 4, address);
    else
        put32(index, kTableAt + std::size_t{slot} * 4, address);
    m_last[slot] = address;
    m_bytes += entry.head.size() + entry.body.size();
    put32(index, 8, m_used[0]); // a node of the rankings for each entry
    put32(index, 16, m_separate);
    put64(index, 40, static_cast<std::uint64_t>(entry.created));
    put64(index, 48, m_bytes);
}

void ChromiumBlocks::write(const std::filesystem::path &folder) const {
    std::filesystem::create_directories(folder);
    for (const auto &[name, bytes] : m_files)
        writeWhole(folder / name, bytes);
}

} // namespace nv::test
