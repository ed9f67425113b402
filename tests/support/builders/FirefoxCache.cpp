#include "support/builders/FirefoxCache.h"

#include "base/Files.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace nv::test {

namespace {

constexpr std::size_t kHeader = 0x114;
constexpr std::size_t kBucket = 16;
constexpr std::size_t kBitmap = 4096;
constexpr std::uint32_t kMostBlocks = 4;
constexpr std::uint32_t kValid = 0x80000000;

std::size_t blockSize(int file) {
    return file == 1 ? 256 : file == 2 ? 1024 : 4096;
}

/// 0 when the bytes are too many for any block file.
int fileFor(std::size_t size) {
    for (int file = 1; file <= 3; ++file)
        if (size <= kMostBlocks * blockSize(file))
            return file;
    return 0;
}

void append32be(std::string &bytes, std::uint32_t value) {
    bytes.append(4, '\0');
    put32be(bytes, bytes.size() - 4, value);
}

} // namespace

void put32be(std::string &bytes, std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i)
        bytes.at(at + i) = static_cast<char>(value >> (24 - 8 * i));
}

std::uint32_t get32be(std::string_view bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8 | static_cast<std::uint8_t>(bytes.at(at + i));
    return value;
}

std::string cacheHeaders(const std::vector<std::string> &answer) {
    std::string headers;
    for (const std::string_view text : {"request-method", "GET", "response-head"})
        headers.append(text).push_back('\0');
    for (const std::string &line : answer)
        headers.append(line).append("\r\n");
    headers.push_back('\0');
    return headers;
}

std::string cacheHeaders(std::string_view contentType) {
    return cacheHeaders(
        std::vector{std::string("HTTP/1.1 200 OK"), fmt::format("Content-Type: {}", contentType)});
}

FirefoxCache::FirefoxCache(std::uint32_t version, std::uint32_t buckets)
    : map(kHeader + buckets * kBucket, '\0'), m_version(version) {
    put32be(map, 0, version);
    put32be(map, 16, buckets);
    for (int file = 1; file <= 3; ++file)
        blocks.at(static_cast<std::size_t>(file)).assign(kBitmap, '\0');
}

FirefoxCache &FirefoxCache::add(const FirefoxCacheEntry &entry) {
    return addAt(m_next++, entry);
}

FirefoxCache &FirefoxCache::addAt(std::uint32_t bucket, const FirefoxCacheEntry &entry) {
    const std::uint32_t hash = entry.hash != 0 ? entry.hash : 0xA1000000 + bucket;
    const std::size_t at = placeOf(bucket);
    put32be(map, at, hash);
    put32be(map, at + 4, 0x7FFFFFFF - bucket);
    put32be(map, at + 8, storeBody(entry, hash));
    put32be(map, at + 12, storeMetaData(entry));
    put32be(map, 8, ++m_entries);
    return *this;
}

std::filesystem::path FirefoxCache::writeTo(const std::filesystem::path &folder) const {
    std::filesystem::create_directories(folder);
    for (std::size_t file = 1; file <= 3; ++file)
        writeWhole(folder / fmt::format("_CACHE_00{}_", file), blocks.at(file));
    for (const auto &[name, bytes] : separateFiles) {
        std::filesystem::create_directories((folder / name).parent_path());
        writeWhole(folder / name, bytes);
    }
    writeWhole(folder / "_CACHE_MAP_", map);
    return folder / "_CACHE_MAP_";
}

std::size_t FirefoxCache::placeOf(std::uint32_t bucket) {
    return kHeader + bucket * kBucket;
}

std::uint32_t FirefoxCache::metaDataLocation(std::uint32_t bucket) const {
    return get32be(map, placeOf(bucket) + 12);
}

std::size_t FirefoxCache::metaDataOffset(std::uint32_t bucket) const {
    const std::uint32_t location = metaDataLocation(bucket);
    return kBitmap + (location & 0xFFFFFF) * blockSize(static_cast<int>(location >> 28 & 3));
}

/// Puts the bytes after the last block in use; returns their location.
std::uint32_t FirefoxCache::store(int file, std::string_view bytes, std::uint32_t minimum) {
    std::string &target = blocks.at(static_cast<std::size_t>(file));
    const std::size_t size = blockSize(file);
    const std::size_t needed = std::max<std::size_t>(minimum, (bytes.size() + size - 1) / size);
    if (needed < 1 || needed > kMostBlocks)
        throw std::invalid_argument("an entry has one to four blocks");
    const std::size_t start = (target.size() - kBitmap) / size;
    target.append(bytes);
    target.resize(kBitmap + (start + needed) * size);
    return kValid | static_cast<std::uint32_t>(file) << 28 |
           static_cast<std::uint32_t>(needed - 1) << 24 | static_cast<std::uint32_t>(start);
}

std::uint32_t FirefoxCache::storeBody(const FirefoxCacheEntry &entry, std::uint32_t hash) {
    const int file = entry.bodyFile < 0 ? fileFor(entry.body.size()) : entry.bodyFile;
    if (file != 0)
        return store(file, entry.body, 1);
    separateFiles[fmt::format("{:08X}d01", hash)] = entry.body;
    const auto kilobytes = static_cast<std::uint32_t>((entry.body.size() + 1023) / 1024);
    return kValid | (kilobytes & 0xFFFF) << 8 | 1;
}

std::uint32_t FirefoxCache::storeMetaData(const FirefoxCacheEntry &entry) {
    const std::string key = entry.closingZero ? entry.key + '\0' : entry.key;
    std::string bytes;
    for (const std::uint32_t word :
         {m_version, std::uint32_t{0}, entry.fetchCount, entry.fetched, entry.modified,
          entry.expires, static_cast<std::uint32_t>(entry.body.size()),
          static_cast<std::uint32_t>(key.size()), static_cast<std::uint32_t>(entry.headers.size())})
        append32be(bytes, word);
    bytes += key + entry.headers;
    const int file = entry.metaDataFile == 0 ? fileFor(bytes.size()) : entry.metaDataFile;
    const std::uint32_t location = store(file, bytes, entry.metaDataBlocks);
    std::string &target = blocks.at(static_cast<std::size_t>(file));
    put32be(target, kBitmap + (location & 0xFFFFFF) * blockSize(file) + 4, location);
    return location;
}

void addExampleEntries(FirefoxCache &cache) {
    cache
        .add({.key = "HTTP:http://www.harbour-news.example/a/index.html?x=1",
              .body = "<html><body>Harbour</body></html>",
              .fetchCount = 3})
        .add({.key = "HTTP:http://www.harbour-news.example/ship.gif",
              .headers = cacheHeaders("image/gif"),
              .body = "GIF89a" + std::string(2000, 'g')})
        .add({.key = "HTTP:http://www.harbour-news.example/menu.js",
              .headers = cacheHeaders("text/javascript"),
              .body = std::string(9000, 'j')})
        .add({.key = "HTTP:http://www.harbour-news.example/long.html",
              .body = "<html>" + std::string(30000, 'p'),
              .hash = 0xF3D3A001});
}

} // namespace nv::test
