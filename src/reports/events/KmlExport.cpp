#include "base/DisplayText.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/CachedBody.h"
#include "readers/Scratch.h"
#include "rebuild/RebuildContext.h"
#include "reports/events/RecordEvents.h"
#include "reports/exports/TextExport.h"
#include "reports/warc/WarcSource.h"
#include "views/record/ExifPosition.h"

#include <fmt/format.h>

#include <array>
#include <limits>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainForm.ExportColumns()";

/// Of a text that shows no control characters; XML has no others to escape.
std::string xmlText(const std::string &text) {
    std::string safe = displayText(text, std::numeric_limits<std::size_t>::max());
    constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kSigns = {
        {{"&", "&amp;"}, {"<", "&lt;"}, {">", "&gt;"}, {"\"", "&quot;"}}};
    for (const auto &[sign, escape] : kSigns)
        safe = replaceAll(safe, sign, escape);
    // U+FFFE and U+FFFF are no characters of XML.
    safe = replaceAll(safe, "\xEF\xBF\xBE", "\uFFFD");
    return replaceAll(safe, "\xEF\xBF\xBF", "\uFFFD");
}

/// Only these are fetched: a look at each content would take hours.
bool mayHavePosition(ExportCells &cells, std::size_t place) {
    const std::string type = textAt(cells, place, UrlColumn::MimeType);
    return textAt(cells, place, UrlColumn::Category) == "Pictures" ||
           containsNoCase(type, "jpeg") || containsNoCase(type, "tiff");
}

/// Takes away what was fetched for a look.
class Fetched {
  public:
    explicit Fetched(UrlRecord record) : m_record(std::move(record)) {}
    ~Fetched() {
        if (!m_record.RunTimeTempFilePath.empty())
            scratch::drop(m_record.RunTimeTempFilePath);
    }
    Fetched(const Fetched &) = delete;
    Fetched &operator=(const Fetched &) = delete;
    UrlRecord &record() { return m_record; }

  private:
    UrlRecord m_record;
};

class KmlExport final : public TextExport {
  public:
    using TextExport::TextExport;

  private:
    std::string heading() override {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<kml xmlns=\"http://www.opengis.net/kml/2.2\">\n<Document>\n"
               "<name>Places that records name</name>\n";
    }
    std::string ending() override { return "</Document>\n</kml>\n"; }

    void appendRow(ExportCells &cells, std::size_t place) override {
        if (!cells.isRead(place))
            return;
        const std::int64_t before = job().counts.events;
        if (const auto position = positionOfPicture(cells, place))
            append(cells, place, *position, "from the picture: where the camera says it was");
        if (const auto position = positionInAddress(textAt(cells, place, UrlColumn::Value)))
            append(cells, place, *position,
                   "from the address: what was looked at, not where anybody was");
        job().counts.rowsWithPlace += job().counts.events > before ? 1 : 0;
    }

    /// A picture that can't be fetched or read has none; the log says why.
    std::optional<Position> positionOfPicture(ExportCells &cells, std::size_t place) {
        if (!job().contents || !mayHavePosition(cells, place))
            return std::nullopt;
        const RebuildContext &from = job().contents->records;
        return trapped(from.log, Severity::Low, kProcedure, kNotSerious, std::optional<Position>(),
                       [&]() -> std::optional<Position> {
                           auto record = from.records.getURL(cells.idAt(place));
                           if (!record)
                               return std::nullopt;
                           Fetched fetched(std::move(*record));
                           const auto file = contentOf(fetched.record(), from.extraction());
                           return file ? positionOf(ExifPicture(*file)) : std::nullopt;
                       });
    }

    void append(ExportCells &cells, std::size_t place, const Position &position,
                std::string_view from) {
        const Date date = cells.actionDate(place);
        const std::string title = textAt(cells, place, UrlColumn::WebpageTitle);
        const std::string url = textAt(cells, place, UrlColumn::Value);
        text() +=
            fmt::format("<Placemark>\n<name>{}</name>\n<description>{}</description>\n",
                        xmlText(title.empty() ? url : title),
                        xmlText(fmt::format("{} | row {} | {}", messageWithRawAddress(cells, place),
                                            textAt(cells, place, UrlColumn::Id), from)));
        if (date.has())
            text() += fmt::format("<TimeStamp><when>{}</when></TimeStamp>\n", isoUtc(date));
        text() += fmt::format("<Point><coordinates>{:.7f},{:.7f}</coordinates></Point>\n"
                              "</Placemark>\n",
                              position.longitude, position.latitude);
        ++job().counts.events;
    }
};

} // namespace

std::unique_ptr<ExportWriter> makeKmlWriter(Export &job) {
    return std::make_unique<KmlExport>(job);
}

} // namespace nv
