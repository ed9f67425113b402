#pragma once

#include "support/builders/IndexDat.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace nv::test {

/// Makes a file of index records cut out of unallocated space: a header of one block, then the
/// records one after the other.
class HistEx {
  public:
    /// `version` stands at 0x1F, where seven characters are read. Without a header, records begin
    /// with the file.
    explicit HistEx(std::string_view version = "Ver 5.2");
    static HistEx withoutHeader();

    /// Returns the record's offset.
    std::size_t add(const IndexRecord &record);
    std::size_t addRedirect(std::string_view url);
    /// Blocks of 128 bytes without a record.
    HistEx &filler(std::size_t blocks);
    /// Bytes as given, which may put what follows off the blocks.
    HistEx &raw(std::string_view bytes);
    /// Text of the header, from its start.
    HistEx &mark(std::string_view text);

    const std::string &bytes() const { return m_bytes; }

  private:
    std::string m_bytes;
};

} // namespace nv::test
