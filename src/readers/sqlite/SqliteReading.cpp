#include "readers/sqlite/SqliteReading.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "readers/sqlite/EvidenceCopy.h"

#include <fmt/format.h>

#include <string>

namespace nv {

namespace {

/// Puts the file's path before each message and keeps the last one.
class FileLog final : public FailureLog {
  public:
    FileLog(FailureLog &log, const std::filesystem::path &file)
        : m_log(log), m_file(textOf(file)) {}

    void write(const Failure &failure) override {
        m_last = fmt::format("{}: {}", m_file, failure.message);
        m_log.write({m_last, failure.procedure, failure.severity, failure.recommendation});
    }
    const std::string &last() const { return m_last; }

  private:
    FailureLog &m_log;
    std::string m_file;
    std::string m_last;
};

bool isDamaged(const ReadResult &result) {
    return result.state == ReadState::cutShort || result.state == ReadState::failed;
}

} // namespace

ReadResult readSqliteFile(ReadContext &ctx, const SqliteReader &reader,
                          const std::function<ReadResult(EvidenceDatabase &)> &body) {
    ctx.task.describe({std::string(reader.title), std::string(reader.subject),
                       textOf(ctx.file.fullPath), std::string(reader.icon)});
    FileLog log(ctx.log, ctx.file.fullPath);
    const auto read = [&] {
        const EvidenceCopy copy(ctx.evidence, ctx.file.fullPath, ctx.scratch);
        EvidenceDatabase database(copy.path(), copy.size());
        ReadResult result = body(database);
        for (const std::string &damage : {database.damage(), copy.logDamage()})
            if (!damage.empty() && result.state != ReadState::cancelled)
                addDamage(result, damage);
        if (isDamaged(result))
            log.write({result.reason, std::string(reader.procedure), Severity::Serious,
                       std::string(kContactSupport)});
        return result;
    };
    const ReadResult failed{ReadState::failed, {}, 0, {}};
    ReadResult result =
        trapped(log, Severity::Serious, reader.procedure, kContactSupport, failed, read);
    // What a trap ended has left its reason in the log alone.
    if (isDamaged(result))
        result.reason = log.last();
    return result;
}

ReadResult eachRow(TableCursor &cursor, ReadContext &ctx, TaskMonitor &task,
                   std::string_view procedure, const std::function<void(const Row &row)> &save) {
    RecordTrap trap(ctx.log, procedure, textOf(ctx.file.fullPath));
    ReadResult result;
    while (cursor.next()) {
        if (!task.advance(cursor.fraction())) {
            result.state = ReadState::cancelled;
            return result;
        }
        trap.attempt(static_cast<std::uint64_t>(cursor.rowId()), [&] { save(cursor.row()); });
    }
    if (trap.failed() > 0)
        result.passedOver["damaged record"] += trap.failed();
    if (cursor.lostRows()) {
        result.state = cursor.given() == 0 ? ReadState::failed : ReadState::cutShort;
        result.reason = cursor.lossText();
        result.notReached = cursor.knownLost();
    }
    return result;
}

ReadResult mainRows(EvidenceDatabase &database, std::string_view table,
                    std::span<const std::string_view> columns, ReadContext &ctx,
                    std::string_view procedure, const TakeRow &take) {
    TableCursor cursor(database, table, columns);
    return eachRow(cursor, ctx, ctx.task, procedure,
                   [&](const Row &row) { take(cursor.rowId(), row); });
}

void addDamage(ReadResult &result, std::string_view reason) {
    if (!result.reason.empty())
        result.reason += "; ";
    result.reason += reason;
    if (result.state == ReadState::complete)
        result.state = ReadState::cutShort;
}

} // namespace nv
