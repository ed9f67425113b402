#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nv::test {

/// A stamp of the Macintosh cache for a time in UTC: seconds since 1904 and five hours.
std::uint32_t macTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

/// One entry. Texts are raw bytes; what is empty has no block.
struct MacEntry {
    std::string url = {};
    std::string mime = {};
    std::string bsrl = {};
    std::string hntt = {};
    std::optional<std::uint32_t> version = 1; ///< HVRS
    std::string post = {};
    std::optional<std::string> body = {};
    std::uint32_t firstVisit = 0;
    std::uint32_t lastVisit = 0;
    std::optional<std::uint32_t> dataSize = {}; ///< when it isn't the body's
    bool marker = true;                         ///< after the body
};

/// Makes the cache file of Internet Explorer for Macintosh.
class MacCache {
  public:
    static constexpr std::size_t kFirstBlock = 0x40;

    MacCache();

    /// Returns the offset of the entry's first block.
    std::size_t add(const MacEntry &entry);
    /// A block as given. Returns its offset.
    std::size_t block(std::string_view tag, std::string_view value);
    /// A block that says it is `length` long.
    std::size_t block(std::string_view tag, std::string_view value, std::uint32_t length);
    MacCache &raw(std::string_view bytes);
    /// Overrides what the header says.
    MacCache &sizeField(std::uint32_t size);
    MacCache &firstBlock(std::uint32_t offset);

    std::size_t size() const { return m_bytes.size(); }
    std::string bytes() const;

  private:
    std::string m_bytes;
    std::optional<std::uint32_t> m_sizeField;
    std::uint32_t m_firstBlock = kFirstBlock;
};

/// A number of 32 bits, big-endian.
std::string big32(std::uint32_t value);
/// The value of a block "CATE", whose fields are told from the block's tag on.
std::string cateValue(std::uint32_t entry, std::uint32_t firstVisit, std::uint32_t lastVisit,
                      std::uint32_t dataSize);

} // namespace nv::test
