#include "db/hashes/HashSetFile.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

/// Hashes that lie closer together than this are read at once.
constexpr std::uint64_t kReadAtOnce = std::uint64_t{64} << 10; // bytes

bool fits(std::uint64_t offset, std::uint64_t bytes, std::uint64_t size) {
    return offset <= size && bytes <= size - offset;
}

} // namespace

HashSetFile::HashSetFile(const std::filesystem::path &path) : m_file(path) {
    const HashSetTail tail = readTail();
    for (std::size_t at = 0; at < m_sections.size(); ++at) {
        m_sections.at(at).place = tail.sections.at(at);
        m_sections.at(at).width = widthOf(kHashAlgorithms.at(at));
        readSection(m_sections.at(at));
    }
    if (tail.textBytes > kMostHashSetText || !fits(tail.text, tail.textBytes, m_file.size()))
        fail("what it says of itself lies outside of the file");
    m_facts = hashSetFacts(ByteView(read(tail.text, tail.textBytes)).raw());
}

void HashSetFile::fail(std::string_view why) const {
    throw StorageFailure(fmt::format("\"{}\" is no whole file of hashes: {}. Make it anew with "
                                     "hashsets add --overwrite",
                                     textOf(m_file.path()), why));
}

Bytes HashSetFile::read(std::uint64_t offset, std::uint64_t count) const {
    Bytes bytes = m_file.read(offset, count);
    if (bytes.size() != count)
        fail(fmt::format("it ends before {}", offset + count));
    return bytes;
}

HashSetTail HashSetFile::readTail() const {
    const std::uint64_t size = m_file.size();
    if (size < kHashSetStart.size() + HashSetTail::kBytes)
        fail(fmt::format("it has {} bytes only", size));
    if (ByteView(read(0, kHashSetStart.size())).raw() != kHashSetStart)
        fail("it doesn't begin as one");
    const Bytes tail = read(size - HashSetTail::kBytes, HashSetTail::kBytes);
    if (!ByteView(tail).raw().ends_with(kHashSetEnd))
        fail("its end is missing");
    return tailIn(ByteView(tail));
}

void HashSetFile::readSection(Section &section) const {
    const auto &[offset, count, index] = section.place;
    if (count == 0)
        return;
    const std::uint64_t most = m_file.size() / section.width; // keeps the product below from
                                                              // passing 64 bits
    if (count > most || !fits(offset, count * section.width, m_file.size()) ||
        !fits(index, kHashIndexBytes, m_file.size()))
        fail("its hashes lie outside of the file");
    const Bytes bytes = read(index, kHashIndexBytes);
    section.index.reserve(kHashIndexEntries);
    for (std::size_t at = 0; at < kHashIndexBytes; at += sizeof(std::uint64_t))
        section.index.push_back(ByteView(bytes).u64le(at));
    if (section.index.front() != 0 || section.index.back() != count ||
        !std::ranges::is_sorted(section.index))
        fail("its index is damaged");
}

std::uint64_t HashSetFile::count(DigestAlgorithm algorithm) const {
    return m_sections.at(placeOf(algorithm)).place.count;
}

std::uint64_t HashSetFile::count() const {
    std::uint64_t all = 0;
    for (const DigestAlgorithm algorithm : kHashAlgorithms)
        all += count(algorithm);
    return all;
}

bool HashSetFile::has(const HashValue &hash) {
    const Section &section = m_sections.at(placeOf(hash.algorithm));
    if (section.index.empty())
        return false;
    const std::size_t entry = std::size_t{hash.bytes[0]} << 8 | hash.bytes[1];
    return isFound(hash, section, section.index[entry], section.index[entry + 1]);
}

/// Halves the places from `first` to `end` until they can be read at once.
bool HashSetFile::isFound(const HashValue &hash, const Section &section, std::uint64_t first,
                          std::uint64_t end) {
    const std::size_t width = section.width;
    const auto placeIn = [&](std::uint64_t at) { return section.place.offset + at * width; };
    const std::string_view wanted = ByteView(hash.used()).raw();
    while ((end - first) * width > kReadAtOnce) {
        const std::uint64_t middle = first + (end - first) / 2;
        const Bytes bytes = read(placeIn(middle), width);
        (wanted < ByteView(bytes).raw() ? end : first) = middle;
    }
    if (first == end)
        return false;
    if (m_blockPlace != placeIn(first) || m_block.size() != (end - first) * width) {
        m_block = read(placeIn(first), (end - first) * width);
        m_blockPlace = placeIn(first);
    }
    const ByteView block(m_block);
    std::size_t low = 0;
    std::size_t high = m_block.size() / width;
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        const int order = block.sub(middle * width, width).raw().compare(wanted);
        if (order == 0)
            return true;
        if (order < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return false;
}

} // namespace nv
