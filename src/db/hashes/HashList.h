#pragma once

#include "db/hashes/HashValue.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What a list held.
struct HashListCounts {
    std::uint64_t lines = 0;  ///< empty ones and comments left out
    std::uint64_t hashes = 0; ///< of them, with the same one several times
    /// The first lines that give no hash, in words: "line 3: ...". All others are only counted.
    std::vector<std::string> refused;

    std::uint64_t withoutHash() const { return lines - hashes; }
};

/// Reads a text of hashes that arrives in blocks, and hands each line's hash on. Known are: one a
/// line; what md5sum and its kin print, also in their form "MD5 (name) = hash"; and tables with a
/// heading that names a column "MD5", "SHA-1" or "SHA-256", as that of the national reference
/// library. A line's strongest hash is taken. UTF-8, and UTF-16 where the text has its mark.
class HashListReader {
  public:
    /// Of a line no more is looked at, so that a file without lines costs no memory.
    static constexpr std::size_t kLongestLine = 16384; // bytes

    explicit HashListReader(std::function<void(const HashValue &)> take)
        : m_take(std::move(take)) {}

    void add(std::string_view block);
    /// After the last block.
    const HashListCounts &finish();

  private:
    enum class Coding { unknown, bytes, utf16Little, utf16Big };

    void recognise(std::string_view &block);
    void addUtf16(std::string_view block);
    void addBytes(std::string_view block);
    void append(std::string_view part);
    void endLine();
    void line(std::string_view whole);
    std::optional<HashValue> hashInTable(std::string_view line) const;
    bool isHeading(std::string_view text);
    void refuse(std::string_view text);

    std::function<void(const HashValue &)> m_take;
    HashListCounts m_counts;
    Coding m_coding = Coding::unknown;
    std::string m_start; ///< as long as the coding isn't known
    std::string m_line;
    std::string m_half;                 ///< of a UTF-16 character at the end of a block
    std::uint64_t m_number = 0;         ///< of the line, from 1
    bool m_isBegun = false;             ///< a line with something in it was seen
    char m_separator = '\0';            ///< of a table; none for lists
    std::vector<std::size_t> m_columns; ///< of hashes, the strongest first
};

} // namespace nv
