#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace nv::test {

/// A record of Opera's cache index; what is empty or 0 is left out.
struct OperaCached {
    std::string url{};
    std::uint32_t visited = 0; ///< seconds since 1970
    std::uint32_t status = 0;
    std::uint32_t size = 0;
    std::string mimeType{};
    std::string fileName{};
};

/// A dcache4.url as Opera 10 lays it out: a header, and records with tagged fields. Numbers are
/// big-endian; the tag's low byte stands first because its high byte is the length's.
class OperaCache {
  public:
    OperaCache();

    OperaCache &add(const OperaCached &record);
    /// Adds the beginning of a record whose fields follow one by one.
    OperaCache &begin() { return raw(std::string_view("\x01\0\0", 3)); }
    /// Adds a field as it is.
    OperaCache &field(std::uint8_t tag, std::string_view value);
    OperaCache &raw(std::string_view bytes);
    const std::string &bytes() const { return m_bytes; }

  private:
    std::string m_bytes;
};

/// A field of the index: tag, length in 16 bits, value.
std::string operaField(std::uint8_t tag, std::string_view value);
/// A number of `width` bytes, the highest first.
std::string bigEndian(std::uint64_t number, std::size_t width);

/// A global_history.dat.
class OperaHistory {
  public:
    explicit OperaHistory(std::string lineEnd = "\n") : m_lineEnd(std::move(lineEnd)) {}

    OperaHistory &add(std::string_view title, std::string_view url, std::string_view visited,
                      std::string_view popularity = "-1");
    OperaHistory &line(std::string_view text);
    const std::string &bytes() const { return m_bytes; }

  private:
    std::string m_lineEnd;
    std::string m_bytes;
};

/// A typed_history.xml.
class OperaTyped {
  public:
    OperaTyped &add(std::string_view content, std::string_view lastTyped,
                    std::string_view type = "text");
    OperaTyped &raw(std::string_view text);
    std::string bytes() const;

  private:
    std::string m_items;
};

/// Two records with a file each, and one whose file name is missing.
void addExampleFiles(OperaCache &cache);
/// Three visits.
void addExampleVisits(OperaHistory &history);

} // namespace nv::test
