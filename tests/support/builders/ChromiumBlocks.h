#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace nv::test {

/// One object of a block cache as it is since 2012. Texts are raw bytes, times microseconds since
/// 1601.
struct ChromiumBlockEntry {
    std::string key{};
    std::string head{}; ///< ChromiumAnswer::bytes()
    std::string body{};
    std::int64_t created = 0;
    std::int64_t lastUsed = 0;
};

/// Makes the files of a block cache of version 3.0: the index, block files with blocks of 36, 256,
/// 1024 and 4096 bytes, separate files for bodies over 16 KiB.
class ChromiumBlocks {
  public:
    /// `slots` is a power of two.
    explicit ChromiumBlocks(std::uint32_t slots = 1024);

    void add(const ChromiumBlockEntry &entry);
    void write(const std::filesystem::path &folder) const;

  private:
    std::uint32_t store(std::size_t number, const std::string &bytes);
    std::uint32_t storeBody(const std::string &bytes);

    std::map<std::string, std::string> m_files;
    std::map<std::uint32_t, std::uint32_t> m_last; ///< address of a slot's last entry
    std::uint32_t m_slots;
    std::uint32_t m_separate = 0; ///< files
    std::uint64_t m_bytes = 0;
    std::array<std::uint32_t, 4> m_used{}; ///< blocks of each block file
};

} // namespace nv::test
