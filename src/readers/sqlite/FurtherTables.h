#pragma once

#include "readers/ReadingPart.h"
#include "readers/sqlite/EvidenceDatabase.h"
#include "readers/sqlite/SqliteReading.h"

#include <functional>
#include <span>
#include <string_view>

namespace nv {

/// Walks the tables beside the one that gives a file's first records. A table that a version lacks
/// has no rows, and one that can't be read loses no other: what is lost is added to the result. All
/// must outlive it.
class FurtherTables {
  public:
    FurtherTables(ReadContext &ctx, EvidenceDatabase &database, std::string_view procedure,
                  ReadResult &result)
        : m_ctx(ctx), m_database(database), m_procedure(procedure), m_result(result) {}

    using Columns = std::span<const std::string_view>;

    // Each is false when cancelled, which stands in the result then.

    /// In the order of row ids, going round damage.
    [[nodiscard]] bool each(std::string_view table, Columns columns, Stretch stretch,
                            const TakeRow &take);
    [[nodiscard]] bool each(std::string_view table, Columns columns, const TakeRow &take) {
        return each(table, columns, {}, take);
    }
    /// The same for a table that may have been made without row ids, as those have that join two
    /// others: in the order of its key, as far as damage lets it, with the row's place in that
    /// order, from 1.
    [[nodiscard]] bool eachByKey(std::string_view table, Columns columns, Stretch stretch,
                                 const TakeRow &take);
    [[nodiscard]] bool eachByKey(std::string_view table, Columns columns, const TakeRow &take) {
        return eachByKey(table, columns, {}, take);
    }

  private:
    bool guarded(std::string_view table, const std::function<bool()> &walk);
    bool walk(std::string_view table, Columns columns, ReadContext &ctx, const TakeRow &take);
    bool walkByKey(std::string_view table, Columns columns, Stretch stretch, const TakeRow &take);
    void passOver(std::string_view table, std::string_view reason, std::uint64_t rows);

    ReadContext &m_ctx;
    EvidenceDatabase &m_database;
    std::string_view m_procedure;
    ReadResult &m_result;
};

/// Adds what one reading lost, passed over and noted to another's, but for its state.
void addLosses(ReadResult &result, const ReadResult &further);

} // namespace nv
