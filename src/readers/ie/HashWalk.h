#pragma once

#include "base/ByteView.h"
#include "base/Trap.h"
#include "readers/Reader.h"
#include "readers/ie/HashChain.h"
#include "readers/ie/IndexBlocks.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// The record at `offset` in the length that it gives itself. Throws when the file ends before it.
ByteView recordAt(ByteView file, std::uint64_t offset);

/// A record that a hash entry leads to. At least the four bytes of a signature are there.
struct ListedRecord {
    std::uint64_t offset = 0;
    std::uint32_t hashStatus = 0;
    /// Why the classic rules don't reach it; empty where they do.
    std::string_view classicRule = {};
};

/// Handles the record. Empty when it was saved, otherwise the reason why it is passed over. What it
/// throws ends this record only.
using TakeRecord = std::function<std::string_view(const ListedRecord &record)>;

/// One walk through the hash of an index, which caches, histories and cookies have in common.
class HashWalk {
  public:
    /// `procedure` is the name in the log. All must outlive the walk.
    HashWalk(ReadContext &ctx, ByteView file, std::string_view procedure);

    /// Reads the chain. False when the rules pass over the file: the result says why.
    bool open(ReadResult &result);
    /// Of an index that the classic rules pass over, the chain that they miss.
    const HashChain &chain() const {
        return m_ctx.classicOnly || !m_chain.tables.empty() ? m_chain : m_missed;
    }
    /// Hands the record of each entry in use to `take`, in the order of the hash. By the classic
    /// rules alone it counts what they don't reach and what no entry leads to; otherwise it goes on
    /// with the entries that they don't reach, each record once.
    void run(const TakeRecord &take, ReadResult &result);
    /// Whose the blocks of the file are, by all tables that are known.
    IndexBlocks blocks() const { return {m_file, {&m_chain, &m_missed}}; }

    /// Walking the hash is this part of the task when all of the file is read.
    static constexpr double kShare = 0.8;

  private:
    struct Place {
        std::size_t table = 0;
        std::int64_t entry = 0;
    };
    enum class Step { goOn, leave };
    /// Entries of a table that the classic rules don't reach.
    struct Rest {
        const HashTable *table;
        std::int64_t entry; ///< the first of them
        std::string_view rule;
    };

    void walkEntries(const TakeRecord &take, ReadResult &result);
    Step walkEntry(Place place, const TakeRecord &take, ReadResult &result);
    void walkRest(const TakeRecord &take, ReadResult &result);
    bool walkRest(const Rest &rest, const TakeRecord &take, ReadResult &result);
    void restOfTables(Place place);
    void attempt(const ListedRecord &record, const TakeRecord &take, ReadResult &result);
    void showStep(Place place);
    void noteDamage(const std::string &damage, ReadResult &result);
    Step endAt(Place place, const std::string &damage, ReadResult &result);
    void countBehindCap(ReadResult &result) const;
    void countUnreferenced(ReadResult &result) const;

    ReadContext &m_ctx;
    ByteView m_file;
    std::string_view m_procedure;
    HashChain m_chain;
    HashChain m_missed; ///< of no classic record
    std::vector<Rest> m_rest;
    std::vector<bool> m_met; ///< by block: the record was handed on
    RecordTrap m_trap;
    std::int64_t m_entries = 0; ///< of all tables
    std::int64_t m_done = 0;
};

} // namespace nv
