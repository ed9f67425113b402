#include "readers/results/PagePlaces.h"

#include "base/Text.h"
#include "platform/ChildProcess.h"
#include "readers/TextPlaces.h"
#include "readers/results/JetProgram.h"
#include "readers/results/NetAnalysisRow.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

namespace nv {

namespace {

/// The fields that a column gives.
struct CaseField {
    std::string_view field;
    std::string_view column;
    enum class Form { text, date, number, file } form = Form::text;
};
using enum CaseField::Form;

constexpr auto kFields = std::to_array<CaseField>({
    {"URL", "InternetHistory"},
    {"URLRawValue", "InternetHistory"},
    {"CacheFileName", "URLFileName"},
    {"MapFileOffset", "FileOffset", number},
    {"HistoryVersion", "HistoryVersion"},
    {"Host", "Hostname"},
    {"MetaData", "ContentData"},
    {"ActionDateUTC", "LastVisited", date},
    {"LastVisited", "LastVisited", date},
    {"OtherDate", "SecondaryDate", date},
    {"URLParameters", "SearchCriteria"},
    {"User", "User"},
    {"Visits", "Hits", number},
});

std::size_t columnAt(std::string_view name) {
    return static_cast<std::size_t>(std::ranges::find(kNetAnalysisColumns, name) -
                                    kNetAnalysisColumns.begin());
}

std::string textOf(const JetCell &cell) {
    if (const auto *text = std::get_if<std::string>(&cell))
        return *text;
    const auto *number = std::get_if<double>(&cell);
    return number ? fmt::format("{}", *number) : std::string();
}

MadeValue madeOf(const CaseField &field, const JetCell &cell) {
    const auto *number = std::get_if<double>(&cell);
    if (field.form == CaseField::Form::text)
        return textOf(cell);
    if (!number)
        return {};
    if (field.form == CaseField::Form::number)
        return static_cast<std::int64_t>(*number);
    const double whole = std::trunc(*number);
    return Date::fromDays(whole + std::abs(*number - whole));
}

/// The event of the record: its address, and its place in the history that it was read from.
bool isOf(const UrlRecord &record, const JetRow &row) {
    if (!row.damage.empty() ||
        textOf(row.cells.at(columnAt("InternetHistory"))) != record.URLRawValue)
        return false;
    const auto *offset = std::get_if<double>(&row.cells.at(columnAt("FileOffset")));
    const auto *hits = std::get_if<double>(&row.cells.at(columnAt("Hits")));
    return (offset ? static_cast<std::int64_t>(*offset) : 0) == record.MapFileOffset &&
           (!hits || static_cast<std::int64_t>(*hits) == record.Visits);
}

JetRow rowOf(const PlaceSearch &search, const std::filesystem::path &program) {
    std::optional<JetRow> found;
    const JetOutcome outcome =
        readJetTable({program, search.source, "History", kNetAnalysisColumns},
                     {[](const JetHead &) {},
                      [&](const JetRow &row) {
                          if (isOf(search.record, row))
                              found = row;
                          return !found;
                      }},
                     [] { return true; });
    if (!found)
        throw std::runtime_error(outcome.failure.empty() ? "the file has no such event any more"
                                                         : outcome.failure);
    return std::move(*found);
}

constexpr std::uint64_t kLongHead = 12; ///< of a long text: length:u32 reference:u32 unused:u32

/// A long text that begins behind its head, which tells its length by the lower bits.
bool isLongText(ByteView bytes) {
    constexpr std::uint32_t kHere = 0x80000000;
    return bytes.has(0, kLongHead) && bytes.u32le(0) == (kHere | (bytes.size() - kLongHead));
}

/// Whether these bytes spell it, packed or in UTF-16: only zeros stand between. Of other letters
/// than those of ASCII that can't be told, and is taken for granted.
bool spells(ByteView bytes, std::string_view text) {
    const auto isZero = [](char c) { return c == '\0'; };
    std::string letters(bytes.raw());
    std::erase_if(letters, isZero);
    const bool isAscii = std::ranges::all_of(text, [](char c) { return c > 0; });
    return !isAscii || letters == text;
}

/// How many of the bytes come before the text, and are numbers or the mark of a packed one. All of
/// them where the text itself lies on another page.
std::uint64_t headOf(ByteView bytes, std::string_view text) {
    std::uint64_t head = isLongText(bytes) ? kLongHead : 0;
    if (bytes.from(head).raw().starts_with("\xFF\xFE"))
        head += 2;
    return spells(bytes.from(head), text) ? head : bytes.size();
}

void place(const PlaceSearch &search, const CaseField &field, const JetRow &row,
           FieldPlaces &places) {
    const std::size_t column = columnAt(field.column);
    const auto &[at, size] = row.places.at(column);
    if (size == 0 || std::holds_alternative<std::monostate>(row.cells.at(column)))
        return;
    SourceBytes bytes = sourceBytes(search, fmt::format("table History, column {}", field.column),
                                    search.source, at, size);
    if (const auto *text = std::get_if<std::string>(&row.cells.at(column)))
        bytes.head = headOf(bytes.view(), *text);
    const bool isDate = field.form == CaseField::Form::date;
    places.value(field.field, bytes, 0, size, madeOf(field, row.cells.at(column)),
                 isDate ? "days since 1899-12-30 as a double of 8 bytes, the lowest first, local "
                          "time of the machine that made the case; long texts lie on a page of "
                          "their own"
                        : "as the tables of a Jet database hold it (docs/formats/netanalysis.md)");
    if (isDate)
        places.isLocal(field.field);
}

} // namespace

void locateInPage(const PlaceSearch &search, FieldPlaces &places) {
    constexpr std::uint64_t kMost = std::uint64_t{1} << 20;
    TextPlaces text(search, search.source, kMost, places);
    const std::string lower = toLower(text.text());
    const std::size_t tag = lower.find("<title");
    const std::size_t begin = tag == std::string::npos ? tag : lower.find('>', tag);
    const std::size_t end = begin == std::string::npos ? begin : lower.find("</title", begin);
    if (end == std::string::npos)
        return;
    const std::string_view title = trim(text.text().substr(begin + 1, end - begin - 1));
    if (!title.empty())
        text.value("WebPageTitle", title, decodeText(title), "element \"title\"");
}

void locateInCase(const PlaceSearch &search, FieldPlaces &places) {
    const auto program = companionProgram("norvelane-jet");
    if (!program)
        throw std::runtime_error("the program norvelane-jet, which reads such files, is missing "
                                 "from the folder of this program");
    const JetRow row = rowOf(search, *program);
    for (const CaseField &field : kFields)
        place(search, field, row, places);
    places.derived("Status", "columns Type and Status of the event");
    places.derived("CacheFileSize", "of the cached file, when it was found in the evidence");
}

} // namespace nv
