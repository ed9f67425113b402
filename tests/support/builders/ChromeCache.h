#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace nv::test {

/// One cached object. Texts are raw bytes.
struct ChromeCacheEntry {
    enum class Body { bySize, separate, none };

    std::string url{};
    std::uint64_t requested = 0; ///< microseconds since 1601
    std::uint64_t modified = 0;
    std::string body{};
    Body where = Body::bySize; ///< up to 16 KiB in blocks, otherwise a separate file
    bool hasHeader = true;
    std::string answer = "HTTP/1.1 200 OK"; ///< after the dates of the header
};

/// Where the parts of an entry went.
struct ChromeCachePlace {
    std::size_t slot = 0;    ///< 1-based; 0 for an entry after another one
    std::uint32_t entry = 0; ///< addresses
    std::uint32_t header = 0;
    std::uint32_t rankings = 0;
    std::uint32_t body = 0;
};

/// Makes the files of Chrome's first block cache: an index, block files with blocks of 36, 256,
/// 1024 and 4096 bytes, and separate files.
class ChromeCache {
  public:
    static constexpr std::size_t kTableAt = 0x40;
    static constexpr std::size_t kBlocksAt = 0x2000;

    explicit ChromeCache(std::uint32_t slots = 32);

    /// Into the next free slot.
    ChromeCachePlace add(const ChromeCacheEntry &entry);
    /// After the entry at that address, in the same slot.
    ChromeCachePlace addBehind(std::uint32_t address, const ChromeCacheEntry &entry);
    /// Into the next free slot, as given.
    ChromeCache &word(std::uint32_t address);

    /// The bytes of a file, to be damaged: "index", "data_1", "f_000001". Heads of block files are
    /// brought up to date by add() only.
    std::string &file(const std::string &name) { return m_files.at(name); }
    void remove(const std::string &name) { m_files.erase(name); }
    /// Leaves out the block files that hold nothing.
    void removeEmpty();
    /// Writes all files; the path of the index.
    std::filesystem::path write(const std::filesystem::path &folder) const;

    /// The offset in its block file.
    static std::size_t offsetOf(std::uint32_t address);
    /// The name and the offset of what lies at an address that names a block.
    static std::string fileOf(std::uint32_t address);

  private:
    std::uint32_t store(std::size_t number, const std::string &bytes);
    std::uint32_t storeBody(const ChromeCacheEntry &entry);
    ChromeCachePlace place(const ChromeCacheEntry &entry);

    std::map<std::string, std::string> m_files;
    std::size_t m_slots = 0;               ///< in use
    std::uint32_t m_separate = 0;          ///< files
    std::array<std::uint32_t, 4> m_used{}; ///< blocks of each block file
};

} // namespace nv::test
