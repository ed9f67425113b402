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
constexpr std::uint64_t kMostText = 4096; // bytes of a text that are shown
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
    const auto failure = failureOf(m_log, kProcedure, [&] {
        if (rule.column.empty())
            readBytes(rule, value);
        else
            readCell(rule, value);
    });
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

void SourceValues::readBytes(const FieldRule &rule, SourceValue &value) const {
    if (!m_place.offset) {
        value.whyNot = "the project doesn't say where in the file the record lies";
        return;
    }
    constexpr std::uint64_t kMark = 4;
    constexpr std::array<std::string_view, 3> kMarks = {"URL ", "LEAK", "FILE"};
    const FileReader file(m_file);
    const Bytes mark = file.read(*m_place.offset, kMark);
    if (std::ranges::find(kMarks, ByteView(mark).raw()) == kMarks.end()) {
        value.whyNot = fmt::format("no record with dates begins at byte {}", *m_place.offset);
        return;
    }
    const std::uint64_t at = *m_place.offset + static_cast<std::uint64_t>(rule.offset);
    const std::uint64_t size = rule.size == 0 ? kMostText : static_cast<std::uint64_t>(rule.size);
    Bytes bytes = file.read(at, size);
    value.offset = at;
    if (rule.size == 0) {
        const std::string_view whole = ByteView(bytes).raw();
        value.length = std::min(whole.find('\0'), whole.size());
        value.stored = value.text = fromAnsi(whole.substr(0, value.length));
    } else if (bytes.size() < size) {
        value.whyNot = "the file ends before";
    } else {
        value.length = size;
        value.stored = hexOf(ByteView(bytes));
        constexpr std::uint64_t kWord = 4;
        value.number = size == kWord ? std::int64_t{ByteView(bytes).i32le(0)}
                                     : static_cast<std::int64_t>(ByteView(bytes).u64le(0));
        value.stored += fmt::format(" = {}", *value.number);
    }
    value.place =
        fmt::format("bytes {} to {}", at, at + std::max<std::uint64_t>(value.length, 1) - 1);
}

Date dateOf(SourceForm form, std::int64_t number) {
    constexpr std::int64_t kLongNumber = 100'000'000'000; // more than seconds of any year to come
    if (number == 0)
        return {};
    switch (form) {
    case SourceForm::chromeTime:
        return chromeTimeToDate(number);
    case SourceForm::chromeOrUnixTime:
        return number > kLongNumber * 100 ? chromeTimeToDate(number)
                                          : Date::fromUnixSeconds(number);
    case SourceForm::unixSeconds:
        return Date::fromUnixSeconds(number > kLongNumber ? number / 1000 : number);
    case SourceForm::unixMicroseconds:
        return Date::fromUnixMicroseconds(number);
    case SourceForm::fileTime:
    case SourceForm::fileTimeLocal:
        return fileTimeToUtc(static_cast<std::uint64_t>(number));
    case SourceForm::text:
    case SourceForm::number:
        break;
    }
    return {};
}

} // namespace nv
