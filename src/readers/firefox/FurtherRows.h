#pragma once

#include "readers/Reader.h"
#include "readers/sqlite/SqliteReading.h"

#include <functional>
#include <span>
#include <string_view>

namespace nv {

/// A part of a reading: the same, with a part of its task.
class ReadingPart {
  public:
    ReadingPart(ReadContext &whole, double from, double to)
        : m_task(whole.task, from, to), context{whole.file,       whole.evidence, whole.content,
                                                whole.clock,      whole.scratch,  whole.sink,
                                                whole.log,        m_task,         whole.deleted,
                                                whole.classicOnly} {}
    ReadingPart(const ReadingPart &) = delete;
    ReadingPart &operator=(const ReadingPart &) = delete;

  private:
    SubTask m_task;

  public:
    ReadContext context;
};

using RowReceiver = std::function<void(std::int64_t rowId, const Row &row)>;

/// Notes the number that Firefox gives its tables, such as "places 86", where the version of the
/// program isn't known.
void noteUserVersion(ReadContext &ctx, EvidenceDatabase &database, std::string_view name);

/// Hands on each row of the table that a file is there for, with its row id. Throws EvidenceDamage
/// when it isn't there.
ReadResult mainRows(EvidenceDatabase &database, std::string_view table,
                    std::span<const std::string_view> columns, ReadContext &ctx,
                    std::string_view procedure, const RowReceiver &save);

/// As eachFurtherRow(); a table that can't be opened at all costs its own rows alone. False when
/// cancelled, which stands in `result` then.
[[nodiscard]] bool furtherRows(EvidenceDatabase &database, std::string_view table,
                               std::span<const std::string_view> columns, ReadContext &ctx,
                               std::string_view procedure, ReadResult &result,
                               const RowReceiver &save);

/// The same for a table that may have been made without row ids, as those have that join two
/// others: their rows come in the order of their key. Damage ends such a table.
[[nodiscard]] bool joiningRows(EvidenceDatabase &database, std::string_view table,
                               std::span<const std::string_view> columns, ReadContext &ctx,
                               ReadResult &result, const std::function<void(const Row &row)> &take);

} // namespace nv
