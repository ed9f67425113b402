#pragma once

#include "support/builders/Jet4.h"

#include <functional>
#include <string>
#include <vector>

namespace nv::test {

// The parts of a Jet 4 file that lie on one page each.

/// UTF-16 little-endian, or packed to one byte a character where Latin-1 holds the text.
std::string jetText(std::string_view utf8);

bool isFixed(JetType type);

/// The bytes of a row. `longText` gets the bytes of a long text and returns the field that tells
/// where it is.
std::string jetRow(const std::vector<JetColumn> &columns, const std::vector<JetValue> &values,
                   const std::function<std::string(const std::string &)> &longText);

/// The definition of a table: its only page, without the rest that is zero.
std::string jetDefinition(const std::vector<JetColumn> &columns, std::size_t rows,
                          std::uint32_t pagesMap, std::uint32_t freeMap, bool isSystem);

/// A page of rows that is filled from its end.
class JetRowPage {
  public:
    /// `owner` is the definition's page, or "LVAL" as a number for long texts.
    explicit JetRowPage(std::uint32_t owner);
    bool hasRoom(std::size_t bytes) const;
    /// Returns the row's number. The flags 0x8000 (referred to), 0x4000 (a reference) and 0xC000
    /// (deleted) go to its entry.
    std::size_t add(std::string_view row, std::uint16_t flags = 0);
    const std::string &bytes() const { return m_bytes; }

  private:
    std::string m_bytes;
    std::size_t m_lowest = Jet4::kPage;
    std::size_t m_rows = 0;
};

} // namespace nv::test
