#pragma once

#include "readers/Reader.h"
#include "readers/sqlite/EvidenceDatabase.h"
#include "readers/sqlite/Row.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

namespace nv {

/// A stretch of a task, 0 to 1.
struct Stretch {
    double from = 0;
    double to = 1;
};

/// Walks the tables beside the one that gives a file's first records. A table that a version lacks
/// has no rows, and one that can't be read loses no other: what is lost is added to the result. All
/// must outlive it.
class FurtherTables {
  public:
    FurtherTables(ReadContext &ctx, EvidenceDatabase &database, std::string_view procedure,
                  ReadResult &result)
        : m_ctx(ctx), m_database(database), m_procedure(procedure), m_result(result) {}

    using Columns = std::span<const std::string_view>;
    using TakeRow = std::function<void(std::int64_t rowId, const Row &row)>;

    /// In the order of row ids, going round damage. False when cancelled.
    [[nodiscard]] bool each(std::string_view table, Columns columns, Stretch stretch,
                            const TakeRow &take);
    /// The same for a table that was made without row ids: in the order of its key, as far as
    /// damage lets it, with the row's place in that order, from 1.
    [[nodiscard]] bool eachByKey(std::string_view table, Columns columns, Stretch stretch,
                                 const TakeRow &take);

  private:
    bool guarded(std::string_view table, const std::function<bool()> &walk);
    bool walkByKey(std::string_view table, Columns columns, Stretch stretch, const TakeRow &take);

    ReadContext &m_ctx;
    EvidenceDatabase &m_database;
    std::string_view m_procedure;
    ReadResult &m_result;
};

/// Adds what one reading lost, passed over and noted to another's, but for its state.
void addLosses(ReadResult &result, const ReadResult &further);

/// The same context with another task.
ReadContext withTask(const ReadContext &ctx, TaskMonitor &task);

} // namespace nv
