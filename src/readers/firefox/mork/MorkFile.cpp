// A history.dat, text in lines:
//   file       = comment{"<mdb:mork:z v=" version} columns { values | table | group }
//   columns    = "< <(a=c)>" ["//" comment] "(" id "=" name ")"* ">"
//   values     = "<" "(" id "=" value ")"* ">"
//   table      = "{1:^80 {" cell* row "}" row* "}"          the first row holds the byte order
//   group      = "@$${" number "{@" { values | table | row } "@$$}" number "}@"
//   row        = "[" id cell* "]"                           an id with "-" before it: to be deleted
//   cell       = "(^" column "=" value ")" | "(^" column "^" id-of-value ")"
// A "\" at the end of a line breaks a value off; elsewhere it takes a meaning from what follows.

#include "readers/firefox/mork/MorkFile.h"

#include "base/Files.h"
#include "base/Text.h"
#include "readers/Limits.h"
#include "readers/firefox/mork/MorkEntry.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace nv {

namespace {

using Kind = MorkDictionary::Kind;

constexpr std::string_view kColumnMark = "<(a=c)>";
constexpr int kLinesBetweenAsking = 256;

std::string versionIn(std::string_view line) {
    constexpr std::string_view kBefore = " v=\"";
    const std::size_t mark = line.find(kBefore);
    if (mark == std::string_view::npos)
        return {};
    const std::size_t begin = mark + kBefore.size();
    const std::size_t end = line.find("\"/> -->", begin);
    return end == std::string_view::npos ? std::string()
                                         : std::string(line.substr(begin, end - begin));
}

/// Where the columns begin after the mark, which stands at the line's start or, in the files that
/// browsers write, after the "<" of the dictionary itself.
std::optional<std::size_t> behindColumnMark(std::string_view line) {
    const std::size_t mark = line.starts_with("< ") ? 2 : 0;
    if (!line.substr(mark).starts_with(kColumnMark))
        return std::nullopt;
    return mark + kColumnMark.size();
}

std::string_view leftTrimmed(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
}

/// Lines of which no part can belong to a dictionary, unless a value was broken off before them.
bool opensSomethingElse(std::string_view line) {
    const std::string_view text = leftTrimmed(line);
    return text.starts_with('{') || text.starts_with('[') || text.starts_with("@$$") ||
           text.starts_with("<(");
}

void cutShort(ReadResult &result, const std::string &reason) {
    result.state = ReadState::cutShort;
    result.reason += (result.reason.empty() ? "" : "; ") + reason;
}

void count(std::map<std::string, std::uint64_t> &counts, const char *reason, std::uint64_t number) {
    if (number > 0)
        counts[reason] += number;
}

} // namespace

std::optional<double> MorkFileParser::numberOf(std::string_view text) {
    text = trim(text);
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    return isNumber ? std::optional(number) : std::nullopt;
}

Date MorkFileParser::convertSecondsToUTCDate(std::string_view text) {
    const auto seconds = numberOf(text);
    return seconds ? secondsToDate1970(*seconds) : Date();
}

void MorkFileParser::header(std::string_view text) {
    m_header = fromAnsi(cleanedMorkText(text));
}

void MorkFileParser::parseFile(const EvidenceFile &file, TaskMonitor &task, ReadResult &result) {
    const Bytes bytes = file.read(0, limits::kMorkFileBytes);
    parseBytes(ByteView(bytes), task, result);
    if (bytes.size() < file.size() && result.state != ReadState::cancelled)
        cutShort(result,
                 fmt::format("of {} bytes only the first {} are read", file.size(), bytes.size()));
}

void MorkFileParser::parseBytes(ByteView bytes, TaskMonitor &task, ReadResult &result) {
    const std::string_view file = bytes.raw();
    MorkLines lines(file);
    MorkRowScan rows(tableRows);
    if (!readHeader(lines)) {
        result.state = ReadState::failed;
        result.reason = "no line has the mark \"mdb:mork:\"";
        return;
    }
    if (!readFirstColumns(lines, rows)) {
        result.state = ReadState::failed;
        result.reason = "no line begins a dictionary of columns with \"<(a=c)>\"";
        return;
    }
    if (!readLines(lines, rows, task)) {
        result.state = ReadState::cancelled;
        return;
    }
    if (m_dictionary)
        leaveDictionary();
    rows.finish();
    locateMorkRows(tableRows, file);
    makeEntries(result);
    tell(lines, rows, result);
}

bool MorkFileParser::readHeader(MorkLines &lines) {
    while (const auto line = lines.next())
        if (line->text.find("mdb:mork:") != std::string_view::npos) {
            header(line->text);
            version = fromAnsi(versionIn(line->text));
            return true;
        }
    return false;
}

bool MorkFileParser::readFirstColumns(MorkLines &lines, MorkRowScan &rows) {
    while (const auto line = lines.next())
        if (behindColumnMark(line->text)) {
            takeLine(*line, rows);
            return true;
        }
    return false;
}

/// False when cancelled.
bool MorkFileParser::readLines(MorkLines &lines, MorkRowScan &rows, TaskMonitor &task) {
    for (int number = 1; const auto line = lines.next(); ++number) {
        takeLine(*line, rows);
        if (number % kLinesBetweenAsking == 0 && !task.advance(lines.fraction()))
            return false;
    }
    return true;
}

/// A line may hold the end of one dictionary, others whole, and rows after them.
void MorkFileParser::takeLine(MorkLine line, MorkRowScan &rows) {
    for (;;) {
        std::size_t from = 0;
        if (m_dictionary && !m_dictionary->isContinued() && opensSomethingElse(line.text))
            leaveDictionary();
        if (!m_dictionary) {
            const auto opened = openDictionary(line);
            if (!opened)
                return rows.take(line);
            from = *opened;
        }
        const auto behind = m_dictionary->take(line.text.substr(from));
        if (!behind)
            return;
        m_dictionary.reset();
        line = {line.offset + from + *behind, line.text.substr(from + *behind)};
    }
}

/// Returns where in the line the cells begin; nothing when it opens no dictionary.
std::optional<std::size_t> MorkFileParser::openDictionary(const MorkLine &line) {
    const auto columns = behindColumnMark(line.text);
    const std::string_view text = leftTrimmed(line.text);
    if (!columns && !text.starts_with("<("))
        return std::nullopt;
    m_dictionary.emplace(columns ? Kind::columns : Kind::values, line.offset,
                         [this](Kind of, std::string_view cell) {
                             if (of == Kind::columns)
                                 addMorkColumn(cell, colHeaders);
                             else
                                 addMorkValue(cell, values, m_losses);
                         });
    if (!columns)
        return line.text.size() - text.size() + 1;
    const bool isCommented = leftTrimmed(line.text.substr(*columns)).starts_with("//");
    return isCommented ? line.text.size() : *columns;
}

/// Its end was missed, or damage has taken it away.
void MorkFileParser::leaveDictionary() {
    if (!m_unclosedDictionary)
        m_unclosedDictionary = m_dictionary->offset();
    m_dictionary.reset();
}

void MorkFileParser::makeEntries(ReadResult &result) {
    std::uint64_t size = 0;
    for (const MorkRow &row : tableRows) {
        if (size > limits::kMorkTextBytes) {
            result.notReached += tableRows.count() - entries.count();
            return cutShort(result, fmt::format("the first {} rows hold {} bytes of text, which "
                                                "is more than is read",
                                                entries.count(), size));
        }
        size += textSizeOf(entries.add(morkEntryOf(row, values)));
    }
}

void MorkFileParser::tell(const MorkLines &lines, const MorkRowScan &rows,
                          ReadResult &result) const {
    if (const auto at = lines.leftOutAt())
        cutShort(result, fmt::format("the line at {} is longer than {} bytes and is left out", *at,
                                     limits::kMorkLineBytes));
    if (m_unclosedDictionary)
        cutShort(result, fmt::format("the dictionary at {} has no end", *m_unclosedDictionary));
    if (const auto at = rows.cutAt())
        cutShort(result, fmt::format("the file ends before what begins at {} is complete", *at));
    if (rows.behindCap() > 0)
        cutShort(result, fmt::format("only {} rows are read", limits::kMorkRows));
    if (m_losses.behindCap > 0)
        cutShort(result, fmt::format("only {} values are read, {} are left out",
                                     limits::kMorkValues, m_losses.behindCap));
    result.notReached += rows.behindCap() + rows.lost();
    count(result.passedOver, "row outside of the table of pages", rows.outsideOfTable());
    count(result.noted, "row that is broken off, stored with the cells that are whole",
          rows.unclosed());
    count(result.noted, "value that is cut at a \"|\" or a pair of parentheses",
          m_losses.shortened);
    count(result.noted, "value that lost parentheses, angle brackets or backslashes",
          m_losses.stripped);
}

} // namespace nv
