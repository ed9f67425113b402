#pragma once

#include "support/builders/SqliteFile.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace nv::test {

/// One object of Chromium's SQL cache. Texts are raw bytes, times microseconds since 1601.
struct ChromiumSqlEntry {
    std::string key{};
    std::string head{}; ///< ChromiumAnswer::bytes()
    std::string body{};
    std::int64_t lastUsed = 0;
};

/// What the cache keeps beside a head or a piece of a body whose key has that hash.
std::int32_t sqlChecksum(std::string_view bytes, std::uint32_t keyHash);

/// Makes a folder of an SQL cache: the index and three databases, among which the hash of the key
/// chooses.
class ChromiumSql {
  public:
    static constexpr std::size_t kParts = 3;

    explicit ChromiumSql(const std::filesystem::path &folder);

    void add(const ChromiumSqlEntry &entry);
    /// Writes the totals. Nothing may be added afterwards.
    void finish();

  private:
    struct Part {
        std::unique_ptr<SqliteFile> file;
        std::int64_t entries = 0;
        std::int64_t bytes = 0;
    };
    std::vector<Part> m_parts;
};

} // namespace nv::test
