#pragma once

#include "support/builders/IndexDat.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nv::test {

/// Makes a results file: header, records, table of entries after them.
class Nvd {
  public:
    Nvd();

    /// Adds the record and its entry; returns the record's offset.
    std::size_t add(const IndexRecord &record);
    std::size_t addRedirect(std::string_view url);
    /// An entry as given: the record's offset and its size in bytes.
    Nvd &entry(std::uint32_t offset, std::uint32_t size);
    /// Override what the header says.
    Nvd &count(std::uint32_t entries);
    Nvd &table(std::uint32_t offset);

    /// Where the table of entries begins.
    std::size_t tableOffset() const { return m_records.size(); }
    std::string bytes() const;

  private:
    std::size_t append(const std::string &record);

    std::string m_records; ///< with the header before them
    std::string m_table;
    std::optional<std::uint32_t> m_count;
    std::optional<std::uint32_t> m_offset;
};

} // namespace nv::test
