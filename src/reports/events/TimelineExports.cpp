#include "base/DisplayText.h"
#include "base/Text.h"
#include "reports/events/RecordEvents.h"
#include "reports/exports/TextExport.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

namespace nv {

namespace {

constexpr std::int64_t kSecond = 1'000'000;

/// Rounded down, before 1970 too.
std::int64_t secondsOf(std::int64_t microseconds) {
    const std::int64_t part = ((microseconds % kSecond) + kSecond) % kSecond;
    return (microseconds - part) / kSecond;
}

/// Lines of forms that know no quotes: what parts their fields is replaced in texts, and counted.
class EventLines : public TextExport {
  public:
    using TextExport::TextExport;

  protected:
    virtual std::string lineOf(ExportCells &cells, std::size_t place, const RecordEvent &event) = 0;
    virtual bool takes(const RecordEvent &) const { return true; }

    std::string field(const std::string &text, char separator, std::string_view instead) {
        const std::string line = displayText(text, std::numeric_limits<std::size_t>::max());
        const auto found = std::ranges::count(line, separator);
        job().counts.signsReplaced += found;
        return found == 0 ? line : replaceAll(line, std::string_view(&separator, 1), instead);
    }

  private:
    void appendRow(ExportCells &cells, std::size_t place) override {
        if (!cells.isRead(place))
            return;
        const auto events = eventsOf(cells, place, cells.facts(place));
        if (events.empty())
            ++job().counts.rowsWithoutDate;
        for (const RecordEvent &event : events) {
            if (!takes(event)) {
                ++job().counts.eventsTooEarly;
                continue;
            }
            text() += lineOf(cells, place, event);
            ++job().counts.events;
        }
    }
};

/// MD5|name|inode|mode|UID|GID|size|atime|mtime|ctime|crtime: an event has one time, and 0 stands
/// for the other three.
class BodyExport final : public EventLines {
  public:
    using EventLines::EventLines;

  private:
    std::string heading() override { return {}; }
    bool takes(const RecordEvent &event) const override {
        return secondsOf(event.microseconds) > 0;
    }
    std::string lineOf(ExportCells &cells, std::size_t place, const RecordEvent &event) override {
        const std::string name =
            fmt::format("{} ({})", messageWithRawAddress(cells, place), event.meaning);
        std::string line = fmt::format("0|{}|{}|0|0|0|{}", field(name, '|', "%7C"),
                                       textAt(cells, place, UrlColumn::Id),
                                       sizeOf(textAt(cells, place, UrlColumn::CacheFileSize)));
        for (const EventMark mark :
             {EventMark::accessed, EventMark::modified, EventMark::changed, EventMark::born})
            line += fmt::format("|{}", mark == event.mark ? secondsOf(event.microseconds) : 0);
        return line + '\n';
    }
    static std::string sizeOf(const std::string &size) {
        const bool isNumber =
            !size.empty() && size.find_first_not_of("0123456789") == std::string::npos;
        return isNumber ? size : "0";
    }
};

/// Its 17 fields; "-" stands for none.
class L2tExport final : public EventLines {
  public:
    using EventLines::EventLines;

  private:
    std::string heading() override {
        return "date,time,timezone,MACB,source,sourcetype,type,user,host,short,desc,version,"
               "filename,inode,notes,format,extra\n";
    }
    std::string lineOf(ExportCells &cells, std::size_t place, const RecordEvent &event) override {
        const auto column = [&](UrlColumn which) {
            return orNone(field(textAt(cells, place, which), ',', " "));
        };
        const CivilTime time = Date::fromUnixSeconds(secondsOf(event.microseconds)).civil();
        std::string macb = "....";
        macb[std::string_view("MACB").find(static_cast<char>(event.mark))] =
            static_cast<char>(event.mark);
        std::string tags;
        for (const std::string &tag : tagsOf(cells, place))
            tags += (tags.empty() ? "" : " ") + tag;
        const std::string raw = field(rawAddressAt(cells, place), ',', " ");
        return fmt::format(
            "{:02}/{:02}/{:04},{:02}:{:02}:{:02},UTC,{},WEBHIST,{},{},{},-,{},{},2,{},{},{},{},"
            "URL_ID: {}; host: {}; visits: {}; offset: {}{}\n",
            time.month, time.day, time.year, time.hour, time.minute, time.second, macb,
            column(UrlColumn::CacheType), field(event.meaning, ',', " "), column(UrlColumn::User),
            column(UrlColumn::Value), orNone(field(eventMessage(cells, place), ',', " ")),
            column(UrlColumn::SourceHistoryFile), textAt(cells, place, UrlColumn::Id),
            orNone(field(tags, ',', " ")), dataTypeOf(textAt(cells, place, UrlColumn::CacheType)),
            textAt(cells, place, UrlColumn::Id), column(UrlColumn::Host), column(UrlColumn::Visits),
            column(UrlColumn::MapFileOffset), raw.empty() ? "" : "; url_raw: " + raw);
    }
    static std::string orNone(std::string text) { return text.empty() ? "-" : text; }
};

} // namespace

std::unique_ptr<ExportWriter> makeBodyWriter(Export &job) {
    return std::make_unique<BodyExport>(job);
}

std::unique_ptr<ExportWriter> makeL2tWriter(Export &job) {
    return std::make_unique<L2tExport>(job);
}

} // namespace nv
