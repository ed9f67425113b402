#include "views/explain/SourceValues.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/TextPlaces.h"
#include "readers/sqlite/CellPath.h"
#include "readers/sqlite/EvidenceCopy.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainForm.Explain()";
constexpr std::size_t kMostBlob = 64;
constexpr std::size_t kMostText = 65536; // bytes that are compared
constexpr std::size_t kMostShown = 4096;
constexpr std::size_t kLongestNumber = 40; // digits and blanks

std::string hexOf(const std::string &bytes) {
    const Bytes first(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(
                                                         std::min(bytes.size(), kMostBlob)));
    return bytesToHex(ByteView(first), 0, first.size()) +
           (bytes.size() > kMostBlob ? "\u2026" : "");
}

/// The text is bounded: a cell may hold a gigabyte.
std::string boundedText(const std::string &bytes, std::size_t most) {
    return decodeText(std::string_view(bytes).substr(0, most)) +
           (bytes.size() > most ? "\u2026" : "");
}

SourceValue unread(const FieldRule &rule, std::string why) {
    SourceValue value;
    value.place = wordsOfPath(rule.path);
    value.whyNot = std::move(why);
    return value;
}

/// As the readers take numbers with a fraction, and those that 64 bits can't hold.
std::optional<std::int64_t> wholeOf(double number) {
    constexpr double kTwoTo63 = 9223372036854775808.0;
    using Limits = std::numeric_limits<std::int64_t>;
    if (!std::isfinite(number))
        return std::nullopt;
    return number >= kTwoTo63   ? Limits::max()
           : number < -kTwoTo63 ? Limits::min()
                                : static_cast<std::int64_t>(number);
}

std::optional<std::int64_t> numberIn(std::string_view text) {
    text = trim(text.substr(0, kLongestNumber));
    if (const auto whole = wholeNumberIn(text))
        return whole;
    double number = 0;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end && !text.empty() ? wholeOf(number) : std::nullopt;
}

std::string whyNone(EvidenceDatabase &database, const std::string &table, std::string_view path) {
    const bool isOwn = path.find_first_of(">@") == std::string_view::npos;
    return isOwn && !database.columnsOf(table).contains(toLower(path))
               ? "the file has no such column"
               : "the file has no such row any more";
}

SourceValue valueOf(const CellFound &cell) {
    SourceValue value;
    value.place = cell.place;
    if (const auto *number = std::get_if<std::int64_t>(&cell.value)) {
        value.number = *number;
        value.text = value.stored = std::to_string(*number);
    } else if (const auto *real = std::get_if<double>(&cell.value)) {
        value.text = value.stored = fmt::format("{}", *real);
        value.number = wholeOf(*real);
    } else if (const auto *bytes = std::get_if<std::string>(&cell.value)) {
        value.bytes = *bytes;
        value.text = decodeText(std::string_view(*bytes).substr(0, kMostText));
        value.number = numberIn(value.text);
        const bool isReadable = isUtf8(*bytes);
        value.stored = cell.isText && isReadable ? boundedText(*bytes, kMostShown) : hexOf(*bytes);
        if (cell.isText && !isReadable)
            value.conversion = "; the bytes are no UTF-8: each is a letter of Windows-1252";
    } else {
        value.stored = "NULL";
    }
    return value;
}

} // namespace

struct EvidenceTables::Opened {
    Opened(const Evidence &evidence, std::filesystem::path of, const std::filesystem::path &scratch)
        : file(std::move(of)), copy(evidence, file, scratch, "~explained.sqlite"),
          database(copy.path(), copy.size()), cells(evidence, file) {}

    std::filesystem::path file;
    EvidenceCopy copy;
    EvidenceDatabase database;
    CellFinder cells;
};

EvidenceTables::EvidenceTables(const Evidence &evidence, std::filesystem::path scratch)
    : m_evidence(evidence), m_scratch(std::move(scratch)) {}

EvidenceTables::~EvidenceTables() = default;

std::optional<CellBytes> EvidenceTables::bytesOf(const std::filesystem::path &file,
                                                 const CellFound &cell) {
    EvidenceDatabase &database = of(file);
    return cell.name ? m_opened->cells.find(database, *cell.name, cell.value) : std::nullopt;
}

EvidenceDatabase &EvidenceTables::of(const std::filesystem::path &file) {
    if (!m_opened || m_opened->file != file) {
        m_opened.reset(); // two copies would have one name
        m_opened = std::make_unique<Opened>(m_evidence, file, m_scratch);
    }
    return m_opened->database;
}

SourceValues::SourceValues(EvidenceTables &tables, FailureLog &log, std::filesystem::path file,
                           RecordPlace place, const FactList &facts)
    : m_tables(tables), m_log(log), m_file(std::move(file)), m_place(std::move(place)),
      m_facts(facts) {}

std::vector<SourceValue> SourceValues::read(const FieldRule &rule) {
    std::vector<SourceValue> values;
    const auto failure = failureOf(m_log, kProcedure, [&] { readCells(rule, values); });
    if (failure)
        values.assign(1, unread(rule, *failure));
    return values;
}

void SourceValues::setBytes(const CellFound &cell, SourceValue &value) {
    logFailureOf(m_log, kProcedure, [&] {
        if (auto bytes = m_tables.bytesOf(m_file, cell)) {
            value.file = std::move(bytes->file);
            value.offset = bytes->offset;
            value.length = bytes->length;
        }
    });
}

void SourceValues::readCells(const FieldRule &rule, std::vector<SourceValue> &values) {
    if (!m_place.rowId || m_place.table.empty()) {
        values.push_back(unread(rule, "the project doesn't say in which row the record lies"));
        return;
    }
    std::optional<std::int64_t> start;
    const std::string_view name = startOf(rule.path);
    for (const RecordFact &fact : m_facts)
        if (const auto *number = std::get_if<std::int64_t>(&fact.value);
            number && fact.name == name)
            start = *number;
    for (const CellFound &cell :
         cellsAt(m_tables.of(m_file), {m_place.table, *m_place.rowId}, rule.path, start)) {
        values.push_back(valueOf(cell));
        setBytes(cell, values.back());
    }
    if (values.empty())
        values.push_back(unread(rule, whyNone(m_tables.of(m_file), m_place.table, rule.path)));
}

} // namespace nv
