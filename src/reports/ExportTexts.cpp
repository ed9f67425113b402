#include "base/TextRows.h"
#include "reports/ExportWriter.h"
#include "reports/FactsJson.h"

#include <fmt/format.h>

#include <cmath>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kLineBreak = "\r\n";

/// What forms of text share: lines go to the job, which hands them on to the file.
class TextWriter : public ExportWriter {
  public:
    explicit TextWriter(Export &job) : m_job(job) {}

    void begin(const std::vector<ExportColumn> &columns) override {
        m_columns = columns;
        m_job.exportText = heading();
    }
    void row(ExportCells &cells, std::size_t place) override {
        appendRow(cells, place);
        m_job.drain();
    }
    void finish() override { m_job.exportToFile(); }

  protected:
    virtual std::string heading() = 0;
    virtual void appendRow(ExportCells &cells, std::size_t place) = 0;

    const std::vector<ExportColumn> &columns() const { return m_columns; }
    Export &job() { return m_job; }
    std::string &text() { return m_job.exportText; }

  private:
    Export &m_job;
    std::vector<ExportColumn> m_columns;
};

/// A cell that holds the delimiter isn't quoted: readers of this form never knew quotes.
class DelimitedWriter final : public TextWriter {
  public:
    using TextWriter::TextWriter;

  private:
    std::string heading() override {
        std::string line;
        for (const ExportColumn &column : columns())
            line.append(&column == &columns().front() ? "" : job().delimiter).append(column.header);
        return line.append(kLineBreak);
    }
    void appendRow(ExportCells &cells, std::size_t place) override {
        bool first = true;
        for (const ExportColumn &column : columns()) {
            text()
                .append(std::exchange(first, false) ? "" : job().delimiter)
                .append(cells.shown(place, column));
        }
        text().append(kLineBreak);
    }
};

class CsvWriter final : public TextWriter {
  public:
    using TextWriter::TextWriter;

  private:
    /// Columns without a heading have their key.
    std::string heading() override {
        std::vector<std::string> words;
        for (const ExportColumn &column : columns())
            words.push_back(column.header.empty() ? column.key : column.header);
        return lineOf(words);
    }
    void appendRow(ExportCells &cells, std::size_t place) override {
        std::vector<std::string> texts;
        for (const ExportColumn &column : columns()) {
            const Cell value = cells.machine(place, column);
            const auto *words = std::get_if<std::string>(&value);
            const bool guarded = words && job().guardFormulas && looksLikeFormula(*words);
            texts.push_back(guarded ? "'" + *words : plainText(value));
            job().counts.cellsGuarded += guarded ? 1 : 0;
        }
        text() += lineOf(texts);
    }

    /// A line without anything would be no row to most readers.
    static std::string lineOf(const std::vector<std::string> &cells) {
        const std::string line = csvLine(cells);
        return line == kLineBreak ? "\"\"" + line : line;
    }
};

/// Milliseconds since 1970: a date is stored as a float of days, which holds no less for sure.
std::int64_t unixMilliseconds(Date date) {
    return std::llround((date.days() - Date::kUnixEpoch) * 86'400'000.0);
}

/// "2009-02-13T23:31:30.500000+00:00".
std::string isoWithFraction(std::int64_t milliseconds) {
    const std::int64_t fraction = ((milliseconds % 1000) + 1000) % 1000;
    const CivilTime time = Date::fromUnixSeconds((milliseconds - fraction) / 1000).civil();
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}000+00:00", time.year, time.month,
                       time.day, time.hour, time.minute, time.second, fraction);
}

class JsonLinesWriter final : public TextWriter {
  public:
    using TextWriter::TextWriter;

  private:
    std::string heading() override {
        m_names = {"message", "datetime", "timestamp", "timestamp_desc"};
        for (const ExportColumn &column : columns())
            if (!isOfTags(column))
                m_names.push_back(column.key);
        return {};
    }
    void appendRow(ExportCells &cells, std::size_t place) override {
        std::vector<Cell> event{message(cells, place)};
        addDate(event, cells.actionDate(place));
        if (event.back().isNothing() && cells.isRead(place))
            ++job().counts.rowsWithoutDate;
        const std::string action = plainText(cells.machine(place, UrlColumn::Action));
        event.emplace_back(action.empty() ? "Action Date" : action);
        for (const ExportColumn &column : columns())
            if (!isOfTags(column))
                event.push_back(cells.machine(place, column));
        std::string further = factMembers(cells.facts(place));
        if (const std::string tags = tagMember(cells.tags(place)); !tags.empty())
            further += (further.empty() ? "" : ",") + tags;
        text() += jsonLine(m_names, event, further);
    }

    /// The names are a list of their own, whatever columns were chosen.
    static bool isOfTags(const ExportColumn &column) {
        return column.column == UrlColumn::TagNames;
    }

    static std::string message(ExportCells &cells, std::size_t place) {
        if (!cells.isRead(place))
            return fmt::format("row {} of the project could not be read",
                               plainText(cells.machine(place, UrlColumn::Id)));
        std::string words;
        for (const UrlColumn column :
             {UrlColumn::CacheType, UrlColumn::Action, UrlColumn::Value, UrlColumn::WebpageTitle}) {
            const std::string word = plainText(cells.machine(place, column));
            if (!word.empty())
                words += (words.empty() ? "" : " ") + word;
        }
        return words;
    }

    /// A made-up date would be worse than none: events without one say so.
    static void addDate(std::vector<Cell> &event, Date date) {
        const std::int64_t milliseconds = date.has() ? unixMilliseconds(date) : 0;
        event.push_back(date.has() ? Cell(isoWithFraction(milliseconds)) : Cell());
        event.push_back(date.has() ? Cell(milliseconds * 1000) : Cell());
    }

    std::vector<std::string> m_names;
};

} // namespace

std::unique_ptr<ExportWriter> makeDelimitedWriter(Export &job) {
    return std::make_unique<DelimitedWriter>(job);
}

std::unique_ptr<ExportWriter> makeCsvWriter(Export &job) {
    return std::make_unique<CsvWriter>(job);
}

std::unique_ptr<ExportWriter> makeJsonLinesWriter(Export &job) {
    return std::make_unique<JsonLinesWriter>(job);
}

} // namespace nv
