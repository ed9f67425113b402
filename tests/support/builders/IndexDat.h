#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv::test {

/// Ticks of 100 ns since 1601 for a time in UTC.
std::uint64_t fileTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
/// Date in the low word, time in the high one, as records keep it at 0x5C.
std::uint32_t dosDate(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

/// One "URL ", "LEAK" or "FILE" record. Texts are raw bytes (Windows-1252).
struct IndexRecord {
    std::string signature = "URL ";
    std::string url = {};
    std::uint64_t firstDate = 0;  ///< FILETIME at 8
    std::uint64_t secondDate = 0; ///< FILETIME at 0x10
    std::uint64_t expiry = 0;     ///< FILETIME at 0x18, which cookies have
    std::uint32_t fileSize = 0;
    std::uint8_t folder = 0xFE; ///< 0xFE is none
    std::uint32_t hits = 1;
    std::uint64_t created = 0; ///< eight bytes at 0x5C: a DOS date, or a FILETIME
    std::string fileName = {}; ///< empty: an offset of 0
    std::string headers = {};  ///< HTTP headers; empty: an offset of 0
};

/// The bytes of a record, filled up to whole blocks.
std::string recordBytes(const IndexRecord &record);
std::string redirectBytes(std::string_view url);

/// Makes an index.dat: header, tables of the hash with filler at their ends, records after them.
/// Records are written as they are added, so a million of them is a matter of a second.
class IndexDat {
  public:
    static constexpr std::size_t kFirstTable = 0x4000;

    /// Tables have `blocks` of 128 bytes, of whose entries the last `filler` ones are never used.
    explicit IndexDat(std::uint32_t blocks = 32, std::size_t filler = 62);

    IndexDat &version(std::string_view text);
    IndexDat &folder(std::string_view name);
    /// Adds the record and its hash entry; returns the record's offset.
    std::size_t add(const IndexRecord &record);
    std::size_t addRedirect(std::string_view url);
    /// A record that no hash entry leads to.
    std::size_t addUnreferenced(const IndexRecord &record);
    /// A hash entry as given. `status` is little-endian: 3 is the free slot "03000000".
    IndexDat &entry(std::uint32_t status, std::uint32_t recordOffset);
    /// Ends the table in hand: the next entry opens another one.
    IndexDat &endTable();
    /// Overrides what the header says the file's size is.
    IndexDat &sizeField(std::uint32_t size);

    /// Offsets of the tables so far.
    const std::vector<std::size_t> &tables() const { return m_tables; }
    std::string bytes() const;

  private:
    std::size_t append(const std::string &record);
    void openTable();
    std::size_t capacity() const;

    std::uint32_t m_blocks;
    std::size_t m_filler;
    std::string m_bytes;
    std::vector<std::string> m_folders;
    std::string m_version = "5.2";
    std::vector<std::size_t> m_tables;
    std::size_t m_used = 0; ///< entries of the last table
    std::optional<std::uint32_t> m_sizeField;
};

/// Overwrites bytes, little-endian.
void put16(std::string &bytes, std::size_t at, std::uint16_t value);
void put32(std::string &bytes, std::size_t at, std::uint32_t value);
void put64(std::string &bytes, std::size_t at, std::uint64_t value);

} // namespace nv::test
