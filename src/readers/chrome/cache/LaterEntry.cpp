#include "readers/chrome/cache/LaterEntry.h"

#include "readers/Limits.h"
#include "readers/chrome/cache/CacheKey.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

namespace nv {

namespace {

constexpr std::uint64_t kFields = LaterEntry::kKeyAt;

LaterEntry fieldsOf(ByteView bytes) {
    LaterEntry entry;
    entry.hash = bytes.u32le(0);
    entry.next = bytes.u32le(4);
    entry.rankings = chromeAddressMapOf(bytes.u32le(8));
    entry.state = bytes.u32le(20);
    entry.created = static_cast<std::int64_t>(bytes.u64le(24));
    entry.keyLength = bytes.u32le(32);
    entry.longKey = chromeAddressMapOf(bytes.u32le(36));
    for (std::size_t i = 0; i < entry.streams.size(); ++i)
        entry.streams[i] = {chromeAddressMapOf(bytes.u32le(56 + 4 * i)), bytes.u32le(40 + 4 * i)};
    entry.flags = bytes.u32le(72);
    return entry;
}

} // namespace

std::uint64_t LaterStream::room() const {
    if (!address.initialised)
        return 0;
    return address.blockFileType == 0
               ? std::numeric_limits<std::uint64_t>::max()
               : (std::uint64_t{address.dataBlocksUsed} + 1) * address.blockSize;
}

bool LaterEntry::hasItsHash() const {
    return chromeKeyHash(key) == hash;
}

std::optional<LaterEntry> LaterEntries::at(std::uint32_t address) {
    return at(chromeAddressMapOf(address));
}

std::optional<LaterEntry> LaterEntries::at(const ChromeAddressMap &address) {
    if (!address.initialised || address.blockSize != LaterEntry::kBlock)
        return std::nullopt;
    const Bytes bytes = m_blocks.read(address, LaterEntry::kMostBytes);
    const ByteView view(bytes);
    if (!view.has(0, kFields))
        return std::nullopt;
    LaterEntry entry = fieldsOf(view);
    entry.address = address;
    const std::uint64_t length = entry.keyLength;
    if (length == 0 || length > limits::kChromeSeparateText)
        return std::nullopt;
    const Bytes outside =
        entry.longKey.initialised ? read({entry.longKey, length}, length) : Bytes();
    const ByteView key = entry.longKey.initialised ? ByteView(outside) : view.from(kFields);
    if (!key.has(0, length))
        return std::nullopt;
    entry.key = std::string(key.sub(0, length).raw());
    return entry;
}

Bytes LaterEntries::read(const LaterStream &stream, std::uint64_t most) {
    const std::uint64_t size = std::min({stream.size, most, stream.room()});
    if (size == 0)
        return {};
    if (stream.address.blockFileType != 0)
        return m_blocks.read(stream.address, size);
    const auto file = fileOf(stream);
    return file ? m_evidence.open(*file).read(0, size) : Bytes();
}

std::optional<std::filesystem::path> LaterEntries::fileOf(const LaterStream &stream) const {
    return stream.address.initialised ? m_evidence.find(m_folder, fileNameOf(stream))
                                      : std::nullopt;
}

std::string LaterEntries::fileNameOf(const LaterStream &stream) {
    return stream.address.blockFileType == 0
               ? stream.address.separateFileName
               : fmt::format("data_{}", stream.address.dataBlockFileNumber);
}

} // namespace nv
