#include "base/Text.h"
#include "base/TextRows.h"
#include "reports/events/RecordEvents.h"
#include "reports/exports/TextExport.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>
#include <utility>

namespace nv {

namespace {

/// The program asks for the first three and reads the next; the names of the others are its own
/// custom (docs/export.md).
constexpr std::array<std::string_view, 8> kHead = {"message",        "datetime",  "timestamp",
                                                   "timestamp_desc", "data_type", "source_short",
                                                   "source_long",    "tag"};

/// What else an event tells; a project of an earlier build has no last three.
constexpr std::array<UrlColumn, 16> kTold = {UrlColumn::Id,
                                             UrlColumn::Value,
                                             UrlColumn::RawValue,
                                             UrlColumn::Host,
                                             UrlColumn::WebpageTitle,
                                             UrlColumn::Visits,
                                             UrlColumn::Action,
                                             UrlColumn::Status,
                                             UrlColumn::CacheType,
                                             UrlColumn::User,
                                             UrlColumn::MimeType,
                                             UrlColumn::SourceHistoryFile,
                                             UrlColumn::MapFileOffset,
                                             UrlColumn::Browser,
                                             UrlColumn::Profile,
                                             UrlColumn::Person};

/// Words of a row that its events share.
struct Told {
    std::string message;
    std::string dataType;
    std::string source;
    std::vector<std::string> tags;
    std::vector<Cell> cells; ///< of kTold
    FactList facts;
};

/// Numbers stay whole numbers and texts stay texts: an index of the program keeps to the type that
/// a field had first.
class TimesketchExport : public TextExport {
  public:
    using TextExport::TextExport;

    void begin(const std::vector<ExportColumn> &columns) override {
        const std::size_t missing = eventColumns().size() - columns.size();
        m_told = std::span(kTold).first(kTold.size() - missing);
        m_names.assign(kHead.begin(), kHead.end());
        for (const UrlColumn column : m_told)
            m_names.push_back(fieldName(column));
        TextExport::begin(columns);
    }

  protected:
    virtual void appendEvent(const RecordEvent &event, const Told &told) = 0;

    const std::vector<std::string> &names() const { return m_names; }

  private:
    void appendRow(ExportCells &cells, std::size_t place) override {
        if (!cells.isRead(place))
            return;
        Told told;
        told.facts = cells.facts(place);
        const auto events = eventsOf(cells, place, told.facts);
        if (events.empty()) {
            ++job().counts.rowsWithoutDate;
            return;
        }
        told.message = eventMessage(cells, place);
        const std::string cacheType = textAt(cells, place, UrlColumn::CacheType);
        told.dataType = dataTypeOf(cacheType);
        told.source = cacheType.empty() ? "Web History" : cacheType;
        told.tags = tagsOf(cells, place);
        told.cells.reserve(m_told.size());
        for (const UrlColumn column : m_told)
            told.cells.push_back(toldCell(cells, place, column));
        for (const RecordEvent &event : events)
            appendEvent(event, told);
        job().counts.events += static_cast<std::int64_t>(events.size());
    }

    static Cell toldCell(ExportCells &cells, std::size_t place, UrlColumn column) {
        const bool saysNothing =
            column == UrlColumn::RawValue && rawAddressAt(cells, place).empty();
        return saysNothing ? Cell() : cells.machine(place, column);
    }

    std::span<const UrlColumn> m_told;
    std::vector<std::string> m_names;
};

class TimesketchCsv final : public TimesketchExport {
  public:
    using TimesketchExport::TimesketchExport;

  private:
    std::string heading() override { return csvLine(names()); }
    void appendEvent(const RecordEvent &event, const Told &told) override {
        std::vector<std::string> texts = {told.message,
                                          isoWithFraction(event.microseconds),
                                          std::to_string(event.microseconds),
                                          event.meaning,
                                          told.dataType,
                                          "WEBHIST",
                                          told.source,
                                          joinedTags(told.tags)};
        for (const Cell &cell : told.cells)
            texts.push_back(plainText(cell));
        for (std::string &each : texts)
            showNuls(each);
        text() += csvLine(texts);
    }
    /// The program parts the field at each comma, so that one in a name would make two tags.
    std::string joinedTags(const std::vector<std::string> &tags) {
        std::string text;
        for (const std::string &tag : tags) {
            job().counts.signsReplaced += std::ranges::count(tag, ',');
            text += (text.empty() ? "" : ",") + replaceAll(tag, ",", ";");
        }
        return text;
    }
    /// The program's reader of CSV refuses the file for a NUL, or takes it for the end of a text.
    void showNuls(std::string &cell) {
        for (std::size_t at = cell.find('\0'); at != std::string::npos; at = cell.find('\0', at)) {
            cell.replace(at, 1, "\u2400");
            ++job().counts.signsReplaced;
        }
    }
};

std::string quotedJson(const std::string &text) {
    const std::array<std::string, 1> name = {"x"};
    const std::array<Cell, 1> cell = {Cell(text)};
    constexpr std::size_t kBefore = 5; // {"x":
    const std::string line = jsonLine(name, cell);
    return line.substr(kBefore, line.rfind('}') - kBefore);
}

class TimesketchLines final : public TimesketchExport {
  public:
    using TimesketchExport::TimesketchExport;

  private:
    std::string heading() override {
        // A list is no cell: it goes behind them.
        m_fields = names();
        std::erase(m_fields, "tag");
        return {};
    }
    void appendEvent(const RecordEvent &event, const Told &told) override {
        std::vector<Cell> cells = {told.message,       isoWithFraction(event.microseconds),
                                   event.microseconds, event.meaning,
                                   told.dataType,      "WEBHIST",
                                   told.source};
        cells.insert(cells.end(), told.cells.begin(), told.cells.end());
        std::string further;
        for (const std::string &tag : told.tags)
            further += (further.empty() ? "" : ",") + quotedJson(tag);
        text() += jsonLine(m_fields, cells, "\"tag\":[" + further + "]" + factFields(told.facts));
    }

    /// All as texts, since one name may have numbers and words; of several the first with the
    /// others behind it.
    static std::string factFields(const FactList &facts) {
        std::vector<std::pair<std::string, std::string>> fields;
        for (const RecordFact &fact : facts) {
            const std::string value =
                plainText(std::visit([](const auto &held) { return Cell(held); }, fact.value));
            const auto there =
                std::ranges::find(fields, fact.name, [](const auto &field) { return field.first; });
            if (there == fields.end())
                fields.emplace_back(fact.name, value);
            else
                there->second += "\n" + value;
        }
        std::string text;
        for (const auto &[name, value] : fields)
            text += "," + quotedJson("fact_" + name) + ":" + quotedJson(value);
        return text;
    }

    std::vector<std::string> m_fields;
};

} // namespace

std::unique_ptr<ExportWriter> makeTimesketchWriter(Export &job) {
    if (job.format == ExportFormat::timesketchCsv)
        return std::make_unique<TimesketchCsv>(job);
    return std::make_unique<TimesketchLines>(job);
}

} // namespace nv
