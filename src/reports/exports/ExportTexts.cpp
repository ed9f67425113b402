#include "base/TextRows.h"
#include "reports/events/RecordEvents.h"
#include "reports/exports/FactsJson.h"
#include "reports/exports/TextExport.h"

#include <utility>

namespace nv {

namespace {

constexpr std::string_view kLineBreak = "\r\n";

/// A cell that holds the delimiter isn't quoted: readers of this form never knew quotes.
class DelimitedWriter final : public TextExport {
  public:
    using TextExport::TextExport;

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

class CsvWriter final : public TextExport {
  public:
    using TextExport::TextExport;

  private:
    std::string heading() override {
        std::vector<std::string> words;
        words.reserve(columns().size());
        for (const ExportColumn &column : columns())
            words.push_back(nameOf(column, job()));
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

class JsonLinesWriter final : public TextExport {
  public:
    using TextExport::TextExport;

  private:
    std::string heading() override {
        m_names = {"message", "datetime", "timestamp", "timestamp_desc"};
        for (const ExportColumn &column : columns())
            if (!isOfTags(column))
                m_names.push_back(nameOf(column, job()));
        return {};
    }
    void appendRow(ExportCells &cells, std::size_t place) override {
        std::vector<Cell> event{eventMessage(cells, place)};
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

    /// A made-up date would be worse than none: events without one say so.
    static void addDate(std::vector<Cell> &event, Date date) {
        const std::int64_t time = date.has() ? unixMicroseconds(date) : 0;
        event.push_back(date.has() ? Cell(isoWithFraction(time)) : Cell());
        event.push_back(date.has() ? Cell(time) : Cell());
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
