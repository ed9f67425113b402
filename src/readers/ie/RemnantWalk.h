#pragma once

#include "base/ByteView.h"
#include "base/Trap.h"
#include "db/records/UrlRecord.h"
#include "readers/Reader.h"
#include "readers/ie/IndexBlocks.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace nv {

/// A record that no hash entry leads to: it was deleted, or could not be deleted at once.
struct Remnant {
    std::uint64_t offset = 0;
    /// As many of its blocks as are nobody else's. Offsets in its head that lead out of them are 0.
    Bytes bytes;
    std::string foundHow;
};

/// Looks for remnants at the start of every block of an index.
class RemnantWalk {
  public:
    /// Makes a record of the remnant and saves it. What it throws ends this remnant only.
    using Take = std::function<void(const Remnant &remnant)>;

    /// All must outlive the walk.
    RemnantWalk(ReadContext &ctx, ByteView file, const IndexBlocks &blocks,
                std::string_view procedure);

    /// In the order of the file. What stands within the blocks of a listed record is that record's,
    /// and only counted.
    void run(const Take &take, ReadResult &result);

  private:
    Remnant remnantAt(std::uint64_t at, std::string_view signature) const;
    std::uint64_t ownBlocks(std::uint64_t at, std::uint64_t claimed) const;

    ReadContext &m_ctx;
    ByteView m_file;
    const IndexBlocks &m_blocks;
    RecordTrap m_trap;
};

/// Makes a record of a listed kind one that was recovered.
void setRecovered(UrlRecord &url, const Remnant &remnant);

} // namespace nv
