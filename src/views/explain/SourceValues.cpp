#include "views/explain/SourceValues.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/sqlite/EvidenceCopy.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainForm.Explain()";
constexpr std::size_t kMostBlob = 64;

std::string hexOf(const ByteView &bytes) {
    return bytesToHex(bytes, 0, std::min<std::uint64_t>(bytes.size(), kMostBlob)) +
           (bytes.size() > kMostBlob ? "\u2026" : "");
}

} // namespace

struct EvidenceTables::Opened {
    Opened(const Evidence &evidence, std::filesystem::path of, const std::filesystem::path &scratch)
        : file(std::move(of)), copy(evidence, file, scratch, "~explained.sqlite"),
          database(copy.path(), copy.size()) {}

    std::filesystem::path file;
    EvidenceCopy copy;
    EvidenceDatabase database;
};

EvidenceTables::EvidenceTables(const Evidence &evidence, std::filesystem::path scratch)
    : m_evidence(evidence), m_scratch(std::move(scratch)) {}

EvidenceTables::~EvidenceTables() = default;

EvidenceDatabase &EvidenceTables::of(const std::filesystem::path &file) {
    if (!m_opened || m_opened->file != file) {
        m_opened.reset(); // two copies would have one name
        m_opened = std::make_unique<Opened>(m_evidence, file, m_scratch);
    }
    return m_opened->database;
}

SourceValues::SourceValues(EvidenceTables &tables, FailureLog &log, std::filesystem::path file,
                           RecordPlace place)
    : m_tables(tables), m_log(log), m_file(std::move(file)), m_place(std::move(place)) {}

SourceValue SourceValues::read(const FieldRule &rule) {
    SourceValue value;
    const auto failure = failureOf(m_log, kProcedure, [&] { readCell(rule, value); });
    if (failure)
        value.whyNot = *failure;
    return value;
}

void SourceValues::readCell(const FieldRule &rule, SourceValue &value) {
    if (!m_place.rowId || m_place.table.empty()) {
        value.whyNot = "the project doesn't say in which row the record lies";
        return;
    }
    value.place =
        fmt::format("table {}, row {}, column {}", m_place.table, *m_place.rowId, rule.column);
    EvidenceDatabase &database = m_tables.of(m_file);
    if (!database.hasTable(m_place.table) ||
        !database.columnsOf(m_place.table).contains(toLower(rule.column))) {
        value.whyNot = "the file has no such column";
        return;
    }
    SQLite::Statement row = database.prepare(
        fmt::format("SELECT \"{}\" FROM \"{}\" WHERE rowid = ?", rule.column, m_place.table));
    row.bind(1, *m_place.rowId);
    database.expectOneRow();
    if (!row.executeStep()) {
        value.whyNot = "the file has no such row any more";
        return;
    }
    const SQLite::Column cell = row.getColumn(0);
    if (cell.isNull()) {
        value.stored = "NULL";
    } else if (cell.isInteger()) {
        value.number = cell.getInt64();
        value.stored = std::to_string(*value.number);
    } else if (cell.isBlob()) {
        const std::string bytes = cell.getString();
        value.stored = hexOf(ByteView(Bytes(bytes.begin(), bytes.end())));
        value.text = decodeText(bytes);
    } else {
        value.stored = value.text = decodeText(cell.getString());
    }
}

} // namespace nv
