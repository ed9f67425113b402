#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv::test {

/// The names and values of headers as the browser keeps them, each with a zero after it.
std::string cacheHeaders(std::string_view contentType);
/// With a status line and headers, without line ends.
std::string cacheHeaders(const std::vector<std::string> &answer);

/// One entry of the cache. Texts are raw bytes.
struct FirefoxCacheEntry {
    std::string key = {}; ///< such as "HTTP:http://host/"
    std::string headers = cacheHeaders("text/html");
    std::string body = {};
    std::uint32_t fetched = 1300000000;  ///< seconds since 1970: 2011-03-13 07:06:40
    std::uint32_t modified = 1299999999; ///< one second before
    std::uint32_t expires = 0xFFFFFFFF;
    std::uint32_t fetchCount = 1;
    bool closingZero = true; ///< after the key, and counted with it
    std::uint32_t hash = 0;  ///< 0: one made from the number of the bucket
    int metaDataFile = 0;    ///< 1 to 3; 0: the first whose four blocks are enough
    /// At least two, so that the entry is listed.
    std::uint32_t metaDataBlocks = 2;
    int bodyFile = -1; ///< 1 to 3, 0 for a separate file; -1: as the browser chooses by size
};

/// The files of a disk cache of Firefox 2 or 3.
class FirefoxCache {
  public:
    static constexpr std::uint32_t kFirefox2 = 0x00010008;
    static constexpr std::uint32_t kFirefox3 = 0x0001000B;
    static constexpr std::size_t kFirstBucket = 0x114;

    explicit FirefoxCache(std::uint32_t version = kFirefox3, std::uint32_t buckets = 16);

    /// Into the next bucket, the first one being 1.
    FirefoxCache &add(const FirefoxCacheEntry &entry);
    FirefoxCache &addAt(std::uint32_t bucket, const FirefoxCacheEntry &entry);

    /// Writes all files below `folder`, which is made. Returns the map's path.
    std::filesystem::path writeTo(const std::filesystem::path &folder) const;

    // The bytes, which tests damage. Block file n is blocks[n]; blocks[0] is not used.
    std::string map;
    std::array<std::string, 4> blocks;
    std::map<std::string, std::string> separateFiles; ///< by name below the cache's folder

    /// Where bucket n lies in the map, and its words.
    static std::size_t placeOf(std::uint32_t bucket);
    std::uint32_t metaDataLocation(std::uint32_t bucket) const;
    /// Offset of the entry's metadata in its block file.
    std::size_t metaDataOffset(std::uint32_t bucket) const;

  private:
    std::uint32_t store(int file, std::string_view bytes, std::uint32_t minimum);
    std::uint32_t storeBody(const FirefoxCacheEntry &entry, std::uint32_t hash);
    std::uint32_t storeMetaData(const FirefoxCacheEntry &entry);

    std::uint32_t m_version;
    std::uint32_t m_next = 1;
    std::uint32_t m_entries = 0;
};

/// A big-endian word written over four bytes.
void put32be(std::string &bytes, std::size_t at, std::uint32_t value);
std::uint32_t get32be(std::string_view bytes, std::size_t at);

/// A page, a picture and a script: a body in each block file and one of its own.
void addExampleEntries(FirefoxCache &cache);

} // namespace nv::test
