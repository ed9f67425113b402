#include "db/hashes/HashList.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <array>
#include <optional>
#include <utility>

namespace nv {

namespace {

constexpr std::size_t kRefusedTold = 5;
constexpr std::size_t kRefusedShown = 60; ///< characters of such a line
constexpr std::string_view kSeparators = ",;\t|";

/// The field from `at` on without its quotation marks, and where the next one begins; a field in
/// quotation marks may hold the separator. npos after the last one.
std::pair<std::string_view, std::size_t> fieldAt(std::string_view line, std::size_t at,
                                                 char separator) {
    std::size_t end = at;
    if (at < line.size() && line[at] == '"') {
        end = line.find('"', at + 1);
        while (end != std::string_view::npos && end + 1 < line.size() && line[end + 1] == '"')
            end = line.find('"', end + 2);
        end = end == std::string_view::npos ? line.size() : end;
    }
    end = std::min(line.find(separator, end), line.size());
    std::string_view field = trim(line.substr(at, end - at));
    if (field.size() >= 2 && field.front() == '"' && field.back() == '"')
        field = field.substr(1, field.size() - 2);
    return {field, end < line.size() ? end + 1 : std::string_view::npos};
}

std::vector<std::string_view> fieldsOf(std::string_view line, char separator) {
    std::vector<std::string_view> fields;
    for (std::size_t at = 0; at != std::string_view::npos;) {
        const auto [field, next] = fieldAt(line, at, separator);
        fields.push_back(field);
        at = next;
    }
    return fields;
}

/// "SHA-1", "sha1" and "sha_1" are one.
std::string plainName(std::string_view heading) {
    std::string name = toLower(heading);
    std::erase_if(name, [](char c) { return c == '-' || c == '_' || c == ' '; });
    return name;
}

/// The columns of hashes that a heading names, the strongest first.
std::vector<std::size_t> hashColumns(const std::vector<std::string_view> &headings) {
    constexpr std::array<std::string_view, 3> kStrongestFirst = {"sha256", "sha1", "md5"};
    std::vector<std::size_t> columns;
    for (const std::string_view wanted : kStrongestFirst)
        for (std::size_t at = 0; at < headings.size(); ++at)
            if (plainName(headings[at]) == wanted)
                columns.push_back(at);
    return columns;
}

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// The hash that the text begins with, when nothing but an end of the word stands behind it.
std::optional<HashValue> hashAtStart(std::string_view text) {
    if (text.starts_with('\\') || text.starts_with('"')) // a name with an escape; a quoted field
        text.remove_prefix(1);
    std::size_t end = 0;
    while (end < text.size() && isHexDigit(text[end]))
        ++end;
    constexpr std::string_view kEnds = " \t*,;|\"";
    if (end < text.size() && kEnds.find(text[end]) == std::string_view::npos)
        return std::nullopt;
    return hashIn(text.substr(0, end));
}

/// "SHA256 (name) = hash". The name may hold anything, so the last sign counts.
std::optional<HashValue> hashAtEnd(std::string_view text) {
    constexpr std::string_view kSign = ") = ";
    const std::size_t sign = text.rfind(kSign);
    return sign == std::string_view::npos ? std::nullopt
                                          : hashIn(trim(text.substr(sign + kSign.size())));
}

std::optional<HashValue> hashInLine(std::string_view text) {
    const auto hash = hashAtStart(text);
    return hash ? hash : hashAtEnd(text);
}

} // namespace

void HashListReader::add(std::string_view block) {
    constexpr std::size_t kMark = 3; // the longest mark of a coding
    if (m_coding == Coding::unknown) {
        m_start.append(block);
        if (m_start.size() < kMark)
            return;
        const std::string start = std::exchange(m_start, {});
        block = start;
        recognise(block);
        return m_coding == Coding::bytes ? addBytes(block) : addUtf16(block);
    }
    m_coding == Coding::bytes ? addBytes(block) : addUtf16(block);
}

void HashListReader::recognise(std::string_view &block) {
    m_coding = Coding::bytes;
    if (block.starts_with("\xEF\xBB\xBF"))
        return block.remove_prefix(3);
    if (block.starts_with("\xFF\xFE"))
        m_coding = Coding::utf16Little;
    else if (block.starts_with("\xFE\xFF"))
        m_coding = Coding::utf16Big;
    else
        return;
    block.remove_prefix(2);
}

/// Hashes are ASCII: of any other character nothing has to be known but that it is none.
void HashListReader::addUtf16(std::string_view block) {
    std::string bytes = std::exchange(m_half, {});
    bytes.append(block);
    const std::size_t high = m_coding == Coding::utf16Little ? 1 : 0;
    std::string plain;
    plain.reserve(bytes.size() / 2);
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2)
        plain.push_back(bytes[at + high] == '\0' ? bytes[at + 1 - high] : '?');
    if (bytes.size() % 2 != 0)
        m_half = bytes.back();
    addBytes(plain);
}

void HashListReader::addBytes(std::string_view block) {
    for (std::size_t end = block.find('\n'); end != std::string_view::npos;
         end = block.find('\n')) {
        append(block.substr(0, end));
        endLine();
        block.remove_prefix(end + 1);
    }
    append(block);
}

void HashListReader::append(std::string_view part) {
    m_line.append(part.substr(0, kLongestLine - std::min(kLongestLine, m_line.size())));
}

void HashListReader::endLine() {
    ++m_number;
    if (!trim(m_line).empty())
        line(m_line);
    m_line.clear();
}

/// Tabs at its ends part the fields of a table.
void HashListReader::line(std::string_view whole) {
    const std::string_view text = trim(whole);
    if (text.starts_with('#'))
        return;
    if (!std::exchange(m_isBegun, true) && !hashInLine(text) && isHeading(whole))
        return;
    ++m_counts.lines;
    const auto hash = m_columns.empty() ? hashInLine(text) : hashInTable(whole);
    if (!hash)
        return refuse(text);
    ++m_counts.hashes;
    m_take(*hash);
}

std::optional<HashValue> HashListReader::hashInTable(std::string_view line) const {
    const auto fields = fieldsOf(line, m_separator);
    for (const std::size_t column : m_columns)
        if (column < fields.size())
            if (const auto hash = hashIn(fields[column]))
                return hash;
    return std::nullopt;
}

bool HashListReader::isHeading(std::string_view text) {
    for (const char separator : kSeparators) {
        m_columns = hashColumns(fieldsOf(text, separator));
        m_separator = separator;
        if (!m_columns.empty())
            return true;
    }
    return false;
}

void HashListReader::refuse(std::string_view text) {
    if (m_counts.refused.size() < kRefusedTold)
        m_counts.refused.push_back(
            fmt::format("line {}: \"{}\" holds no MD5, SHA-1 or SHA-256 where one was expected",
                        m_number, charSub(decodeText(text), 0, kRefusedShown)));
}

const HashListCounts &HashListReader::finish() {
    if (m_coding == Coding::unknown) {
        m_coding = Coding::bytes;
        addBytes(m_start);
    }
    if (!m_line.empty())
        endLine();
    return m_counts;
}

} // namespace nv
