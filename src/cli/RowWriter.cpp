#include "cli/RowWriter.h"

#include "base/DisplayText.h"
#include "base/OneLine.h"
#include "base/Text.h"
#include "base/TextRows.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace nv::cli {

namespace {

/// Column widths of the table are taken from this many rows; longer cells that follow are cut.
constexpr std::size_t kRowsMeasured = 100;
constexpr std::size_t kWidestColumn = 80;

class TableWriter final : public RowWriter {
  public:
    TableWriter(std::ostream &out, std::vector<std::string> headings)
        : m_out(out), m_rows{std::move(headings)} {}

    void row(const std::vector<Cell> &cells) override {
        std::vector<std::string> texts;
        texts.reserve(cells.size());
        for (const Cell &cell : cells)
            texts.push_back(printable(plainText(cell), kWidestColumn));
        if (!m_widths.empty())
            return print(texts);
        m_rows.push_back(std::move(texts));
        if (m_rows.size() > kRowsMeasured)
            flush();
    }

    void finish() override {
        if (m_widths.empty())
            flush();
        m_out.flush();
    }

  private:
    void flush() {
        m_widths.assign(m_rows.front().size(), 0);
        for (const auto &row : m_rows)
            for (std::size_t i = 0; i < row.size() && i < m_widths.size(); ++i)
                m_widths[i] = std::max(m_widths[i], charCount(row[i]));
        for (const auto &row : m_rows)
            print(row);
        m_rows.clear();
    }

    void print(const std::vector<std::string> &texts) {
        std::string line;
        for (std::size_t i = 0; i < texts.size() && i < m_widths.size(); ++i) {
            const std::string text = printable(texts[i], m_widths[i]);
            line += text + std::string(m_widths[i] - charCount(text) + 2, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        m_out << line << '\n';
    }

    std::ostream &m_out;
    std::vector<std::vector<std::string>> m_rows;
    std::vector<std::size_t> m_widths;
};

std::vector<std::string> textsOf(const std::vector<Cell> &cells) {
    std::vector<std::string> texts;
    std::ranges::transform(cells, std::back_inserter(texts), plainText);
    return texts;
}

class CsvWriter final : public RowWriter {
  public:
    CsvWriter(std::ostream &out, const std::vector<std::string> &headings) : m_out(out) {
        m_out << csvLine(headings);
    }

    void row(const std::vector<Cell> &cells) override { m_out << csvLine(textsOf(cells)); }

  private:
    std::ostream &m_out;
};

/// Tabs, line breaks and backslashes of cells are written as \t, \n, \r and \\.
class TsvWriter final : public RowWriter {
  public:
    TsvWriter(std::ostream &out, const std::vector<std::string> &headings) : m_out(out) {
        row({headings.begin(), headings.end()});
    }

    void row(const std::vector<Cell> &cells) override {
        for (std::size_t i = 0; i < cells.size(); ++i)
            m_out << (i ? "\t" : "") << escaped(plainText(cells[i]));
        m_out << '\n';
    }

  private:
    static std::string escaped(std::string text) {
        text = replaceAll(text, "\\", "\\\\");
        text = replaceAll(text, "\t", "\\t");
        text = replaceAll(text, "\n", "\\n");
        return replaceAll(text, "\r", "\\r");
    }

    std::ostream &m_out;
};

class JsonLinesWriter final : public RowWriter {
  public:
    JsonLinesWriter(std::ostream &out, std::vector<std::string> headings)
        : m_out(out), m_headings(apart(std::move(headings))) {}

    void row(const std::vector<Cell> &cells) override { m_out << jsonLine(m_headings, cells); }

  private:
    /// An object holds a name once: of columns of equal names those that follow the first get a
    /// number.
    static std::vector<std::string> apart(std::vector<std::string> headings) {
        for (auto heading = headings.begin(); heading != headings.end(); ++heading) {
            const std::string name = *heading;
            for (int number = 2; std::find(headings.begin(), heading, *heading) != heading;
                 ++number)
                *heading = fmt::format("{} ({})", name, number);
        }
        return headings;
    }

    std::ostream &m_out;
    std::vector<std::string> m_headings;
};

} // namespace

std::unique_ptr<RowWriter> makeRowWriter(Format format, std::ostream &out,
                                         std::vector<std::string> headings) {
    switch (format) {
    case Format::csv:
        return std::make_unique<CsvWriter>(out, headings);
    case Format::tsv:
        return std::make_unique<TsvWriter>(out, headings);
    case Format::jsonl:
        return std::make_unique<JsonLinesWriter>(out, std::move(headings));
    case Format::table:
        break;
    }
    return std::make_unique<TableWriter>(out, std::move(headings));
}

std::string printable(std::string_view text, std::size_t columns) {
    if (columns == 0)
        return oneLine(text);
    std::string line =
        isUtf8(text) ? displayText(text, columns) : displayText(decodeText(text), columns);
    if (charCount(line) > columns)
        line = std::string(charSub(line, 0, columns - 1)) + "\u2026";
    return line;
}

std::string printableLines(std::string_view text) {
    std::string lines;
    for (const std::string_view line : split(text, '\n'))
        lines += printable(line) + '\n';
    lines.pop_back();
    return lines;
}

} // namespace nv::cli
