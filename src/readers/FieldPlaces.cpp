#include "readers/FieldPlaces.h"

#include "base/Text.h"
#include "readers/BigEndian.h"
#include "readers/sqlite/CellPath.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace nv {

namespace {

constexpr std::uint64_t kMostText = 4096; // bytes of a text that are shown
constexpr std::uint64_t kMostHex = 64;

std::uint64_t littleEndian(ByteView bytes) {
    std::uint64_t number = 0;
    for (std::uint64_t at = bytes.size(); at > 0; --at)
        number = number << 8 | bytes.u8(at - 1);
    return number;
}

std::string hexOf(ByteView bytes) {
    return bytesToHex(bytes, 0, std::min<std::uint64_t>(bytes.size(), kMostHex)) +
           (bytes.size() > kMostHex ? "\u2026" : "");
}

/// Controls but for the ends of texts and lines.
bool isControl(char c) {
    return c >= 0 && c < ' ' && c != '\0' && c != '\r' && c != '\n' && c != '\t';
}

bool isPrinted(char c) {
    return c >= ' ' && c <= '~';
}

/// Bytes that hold no text are shown as such. Those of a date or a number are text only where they
/// are written out: a stored one may look like letters.
std::string shown(ByteView bytes, bool isOfText) {
    const std::string_view raw = bytes.raw().substr(0, kMostText);
    const bool isText =
        isOfText ? std::ranges::none_of(raw, isControl) : std::ranges::all_of(raw, isPrinted);
    std::string text =
        isText ? replaceAll(decodeText(raw), std::string_view("\0", 1), "\u2400") : hexOf(bytes);
    return isText && bytes.size() > kMostText ? text + "\u2026" : text;
}

/// Numbers before a text stay numbers. The text, which may be packed, stands as it was made.
std::string shownWithHead(ByteView bytes, std::uint64_t head, const std::string &text) {
    const std::string number = hexOf(bytes.sub(0, head));
    if (head == bytes.size())
        return number; // the text lies elsewhere
    std::size_t end = std::min<std::size_t>(text.size(), kMostText);
    while (end < text.size() && end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        --end; // not amid a character
    return fmt::format("{}, then {}{}", number, text.substr(0, end),
                       end < text.size() ? "\u2026" : "");
}

bool endsLine(char c) {
    return c == '\0' || c == '\r' || c == '\n';
}

} // namespace

FieldPlace *FieldPlaces::add(std::string_view field) {
    if (of(field))
        return nullptr;
    m_places.emplace_back().field = field;
    return &m_places.back();
}

const FieldPlace *FieldPlaces::of(std::string_view field) const {
    const auto found = std::ranges::find_if(
        m_places, [field](const FieldPlace &each) { return equalsNoCase(each.field, field); });
    return found == m_places.end() ? nullptr : &*found;
}

void FieldPlaces::number(const SourceBytes &bytes, const NumberRule &rule) {
    const ByteView own = bytes.view().sub(rule.at, rule.size);
    const std::uint64_t bits = rule.order == ByteOrder::big ? bigEndian(own) : littleEndian(own);
    const auto number = static_cast<std::int64_t>(bits);
    const bool isNumber = rule.form == SourceForm::number;
    value(rule.field, bytes, rule.at, rule.size,
          isNumber ? MadeValue(number) : MadeValue(dateOf(rule.form, number)),
          fmt::format("{}{}", wordsOf(rule.form, number),
                      rule.size == 1 ? ""
                      : rule.order == ByteOrder::big
                          ? fmt::format("; {} bytes, the highest first", rule.size)
                          : fmt::format("; {} bytes, the lowest first", rule.size)));
    if (FieldPlace &place = m_places.back(); equalsNoCase(place.field, rule.field)) {
        place.form = rule.form;
        place.stored = fmt::format("{} = {}", hexOf(own), number);
    }
}

void FieldPlaces::numbers(const SourceBytes &bytes, std::span<const NumberRule> rules) {
    for (const NumberRule &rule : rules)
        number(bytes, rule);
}

void FieldPlaces::value(std::string_view field, const SourceBytes &bytes, std::uint64_t at,
                        std::uint64_t size, MadeValue made, std::string rule) {
    const ByteView own = bytes.view().sub(at, size);
    FieldPlace *place = add(field);
    if (!place)
        return;
    place->name = bytes.name;
    place->file = bytes.file;
    place->cell = bytes.cell;
    place->cellBytes = bytes.cellBytes;
    place->offset = bytes.at + at;
    place->length = size;
    const auto *text = std::get_if<std::string>(&made);
    place->stored = bytes.head == 0 || !text ? shown(own, text != nullptr)
                                             : shownWithHead(own, bytes.head, *text);
    place->made = std::move(made);
    place->rule = rule.empty() ? std::string(wordsOf(SourceForm::text)) : std::move(rule);
}

void FieldPlaces::headerLine(std::string_view field, const SourceBytes &headers,
                             std::string_view name, MadeValue made, std::string rule) {
    const std::string_view text = headers.view().raw();
    for (std::size_t at = 0; at < text.size();) {
        const auto *const begin = text.begin() + static_cast<std::ptrdiff_t>(at);
        const auto size =
            static_cast<std::size_t>(std::find_if(begin, text.end(), endsLine) - begin);
        const std::string_view line = text.substr(at, size);
        if (startsWithNoCase(line, name) && line.substr(name.size()).starts_with(':')) {
            value(field, headers, at, size, std::move(made),
                  fmt::format("line \"{}\" of the headers{}{}", name, rule.empty() ? "" : ": ",
                              rule));
            return;
        }
        at += size + 1;
    }
}

void FieldPlaces::isLocal(std::string_view field) {
    for (FieldPlace &place : m_places)
        if (equalsNoCase(place.field, field))
            place.form = SourceForm::fileTimeLocal;
}

void FieldPlaces::derived(std::string_view field, std::string_view rule) {
    if (FieldPlace *place = add(field)) {
        place->state = FieldPlace::State::derived;
        place->rule = rule;
    }
}

void FieldPlaces::unknown(std::string_view field, std::string_view why) {
    if (FieldPlace *place = add(field)) {
        place->state = FieldPlace::State::unknown;
        place->note = why;
    }
}

void FieldPlaces::derivedOfAddress() {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 7> kOfAddress = {{
        {"Host", "part of URL (docs/formats/addresses.md)"},
        {"URLFileName", "the last part of URL's path"},
        {"URLParameters", "what follows \"?\" in URL"},
        {"User", "what stands before \"@\" in the stored address"},
        {"CacheFileName", "the last part of URL's path"},
        {"CacheFolderName", "folder of the cached file"},
        {"Links", "addresses that the cached page names, or the record's own"},
    }};
    for (const auto &[field, rule] : kOfAddress)
        derived(field, rule);
    derived("Action", "a word of this program for records of caches");
    derived("Status", "a word of this program: whether the cache lists the entry");
    derived("MetaDataRecordOffset", "where the headers begin");
    derived("RecordSize", "length of the record, by its format");
    derived("WebPageTitle", "title in the cached page");
    derived("Hidden", "a mark of histories, which caches don't have");
    for (const std::string_view field : {"Reference_ID", "MapFileOffset", "DataBlockFileOffset"})
        derived(field, "where this program found the record; 0 where the format has no such place");
}

SourceBytes sourceBytes(const ByteSource &file, std::string name, std::uint64_t at,
                        std::uint64_t size) {
    SourceBytes bytes{std::move(name), file.path(), {}, at, file.read(at, size)};
    if (bytes.bytes.size() < size)
        throw OutOfBytes(at, size, bytes.bytes.size());
    return bytes;
}

std::filesystem::path sourceFolder(const PlaceSearch &search) {
    return search.evidence.kindOf(search.source) == PlaceKind::folder ? search.source
                                                                      : search.source.parent_path();
}

std::filesystem::path ownFile(const PlaceSearch &search) {
    const std::string name = factWords(search.record, "source_file");
    const auto file = search.evidence.find(sourceFolder(search), name);
    if (!file)
        throw std::runtime_error(fmt::format("the record's file {} isn't there", name));
    return *file;
}

SourceBytes sourceBytes(const PlaceSearch &search, std::string name,
                        const std::filesystem::path &file, std::uint64_t at, std::uint64_t size) {
    return sourceBytes(search.evidence.open(file), std::move(name), at, size);
}

SourceBytes cellBytes(const PlaceSearch &search, const std::filesystem::path &file,
                      std::string_view table, std::int64_t row, std::string_view column) {
    EvidenceDatabase &database = search.database(file);
    const std::string place = fmt::format("table {}, row {}, column {}", table, row, column);
    if (!database.hasTable(table) || !database.columnsOf(table).contains(toLower(column)))
        throw EvidenceDamage(fmt::format("{}: the file has no such column", place));
    // Table and column are this program's own words, never texts of evidence.
    SQLite::Statement query =
        database.prepare(fmt::format("SELECT \"{}\" FROM \"{}\" WHERE rowid = ?", column, table));
    query.bind(1, row);
    database.expectOneRow();
    if (!query.executeStep())
        throw EvidenceDamage(fmt::format("{}: the file has no such row", place));
    const CellValue value = valueOf(query.getColumn(0));
    const std::string bytes = query.getColumn(0).getString();
    return {std::string(column),
            file,
            place,
            0,
            Bytes(bytes.begin(), bytes.end()),
            0,
            CellFinder(search.evidence, file)
                .find(database, {std::string(table), row, std::string(column)}, value)};
}

std::optional<std::int64_t> factNumber(const UrlRecord &record, std::string_view name) {
    for (const RecordFact &fact : record.facts)
        if (const auto *number = std::get_if<std::int64_t>(&fact.value);
            number && fact.name == name)
            return *number;
    return std::nullopt;
}

std::string factWords(const UrlRecord &record, std::string_view name) {
    for (const RecordFact &fact : record.facts)
        if (const auto *text = std::get_if<std::string>(&fact.value); text && fact.name == name)
            return *text;
    return {};
}

} // namespace nv
