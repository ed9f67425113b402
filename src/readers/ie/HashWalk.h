#pragma once

#include "base/ByteView.h"
#include "base/Trap.h"
#include "readers/Reader.h"
#include "readers/ie/HashChain.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace nv {

/// The record at `offset` in the length that it gives itself. Throws when the file ends before it.
ByteView recordAt(ByteView file, std::uint64_t offset);

/// Handles the record at `offset`, where at least the four bytes of a signature are. Empty when it
/// was saved, otherwise the reason why it is passed over. What it throws ends this record only.
using TakeRecord = std::function<std::string_view(std::uint64_t offset)>;

/// One walk through the hash of an index, which caches, histories and cookies have in common.
class HashWalk {
  public:
    /// `procedure` is the name in the log. All must outlive the walk.
    HashWalk(ReadContext &ctx, ByteView file, std::string_view procedure);

    /// Reads the chain. False when the rules pass over the file: the result says why.
    bool open(ReadResult &result);
    const HashChain &chain() const { return m_chain; }
    /// Hands the record of each entry in use to `take`, in the order of the hash, and counts what
    /// no entry leads to.
    void run(const TakeRecord &take, ReadResult &result);

  private:
    struct Place {
        std::size_t table = 0;
        std::int64_t entry = 0;
    };
    enum class Step { goOn, leave };

    void walkEntries(const TakeRecord &take, ReadResult &result);
    Step walkEntry(Place place, const TakeRecord &take, ReadResult &result);
    void showStep(Place place);
    void noteDamage(const std::string &damage, ReadResult &result);
    Step endAt(Place place, const std::string &damage, ReadResult &result);
    void countBehindCap(ReadResult &result) const;
    void countUnreferenced(ReadResult &result) const;

    ReadContext &m_ctx;
    ByteView m_file;
    std::string_view m_procedure;
    HashChain m_chain;
    HashChain m_missed; ///< only counted
    RecordTrap m_trap;
    std::int64_t m_entries = 0; ///< of all tables
    std::int64_t m_done = 0;
};

} // namespace nv
