// What Firefox's site caches and Chromium's stores are packed in: Snappy's frames, and LevelDB's
// logs and tables, with checksums that are right, since nothing gets past wrong ones.
//   input = which:u8 content

#include "fuzz/Reading.h"
#include "readers/Crc32c.h"
#include "readers/Unpacker.h"
#include "readers/firefox/cache/SiteCacheRecord.h"
#include "readers/leveldb/LevelStore.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using nv::fuzz::require;

void put(std::string &bytes, std::uint64_t number, int count) {
    for (int i = 0; i < count; ++i)
        bytes.push_back(static_cast<char>(number >> (8 * i) & 0xFFU));
}

void unpack(std::string_view stream, std::size_t step) {
    const auto unpacker = nv::snappyUnpacker();
    std::size_t size = 0;
    const auto take = [&size](std::string_view piece) {
        require(!piece.empty() && piece.size() <= 65536);
        size += piece.size();
        return true;
    };
    while (!stream.empty() && unpacker->feed(stream.substr(0, step), take))
        stream.remove_prefix(std::min(step, stream.size()));
    require(stream.empty() || !unpacker->problem().empty());
}

void requireShort(const nv::LevelEntry &entry, std::size_t size) {
    require(entry.key.size() <= 64 * size + 64 && entry.value.size() <= 64 * size + 64);
}

std::string logOf(std::string_view batch) {
    const std::string checked = '\1' + std::string(batch.substr(0, 32000));
    std::string file;
    put(file, nv::maskedCrc(nv::crc32c(checked)), 4);
    put(file, checked.size() - 1, 2);
    return file + checked;
}

/// One block of content, packed or not, and an index that leads to it.
std::string tableOf(std::string_view content, bool isPacked) {
    const auto add = [](std::string &file, std::string_view block, char packing) {
        const std::string checked = std::string(block) + packing;
        file += checked;
        put(file, nv::maskedCrc(nv::crc32c(checked)), 4);
    };
    constexpr std::size_t kMost = 16000; // in two bytes of seven bits
    const std::string_view block = content.substr(0, kMost);
    const auto varint = [](std::size_t number) {
        return std::string{static_cast<char>((number & 0x7FU) | 0x80U),
                           static_cast<char>(number >> 7U)};
    };
    std::string file;
    add(file, block, isPacked ? '\1' : '\0');
    std::string index = std::string("\0\1\3k\0", 5) + varint(block.size());
    put(index, 0, 4);
    put(index, 1, 4);
    const std::size_t at = file.size();
    add(file, index, '\0');
    std::string foot = std::string(2, '\0') + varint(at) + varint(index.size());
    foot.resize(40);
    file += foot;
    put(file, 0xDB47'7524'8B80'FB57, 8);
    return file;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string_view rest(reinterpret_cast<const char *>(data) + 1, size - 1);
    const auto take = [size](const nv::LevelEntry &entry) { requireShort(entry, size); };
    switch (data[0] % 6) {
    case 0:
        unpack(rest, std::max<std::size_t>(1, data[0]));
        break;
    case 1:
        unpack(std::string("\xFF\x06\0\0sNaPpY", 10).append(rest), 1000);
        break;
    case 2:
        static_cast<void>(nv::eachOfLevelLog(nv::viewOf(rest), take));
        static_cast<void>(nv::eachOfLevelTable(nv::viewOf(rest), take));
        break;
    case 3:
        static_cast<void>(nv::eachOfLevelLog(nv::viewOf(logOf(rest)), take));
        break;
    case 4:
        static_cast<void>(nv::eachOfLevelTable(nv::viewOf(tableOf(rest, data[0] >= 128)), take));
        break;
    default:
        static_cast<void>(nv::siteOriginOf(rest));
        require(nv::siteBodyFile(rest).find("..") == std::string::npos);
        break;
    }
    return 0;
}
