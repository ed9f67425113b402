#include "app/jobs/TimelinePicture.h"
#include "app/program/DrawingTools.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "cli/AskedSpan.h"
#include "cli/ChosenFilters.h"
#include "cli/Commands.h"
#include "cli/LoadedTable.h"
#include "cli/OutputPath.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "cli/TimelineJson.h"
#include "reports/exports/ExportFile.h"
#include "time/ExactZone.h"
#include "views/timeline/TimelineChart.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

enum class Form { table, csv, tsv, jsonl, json, png };

struct Arguments {
    std::string project;
    RowsAsked rows;
    TimeUnit unit = TimeUnit::day;
    TimeStack stack = TimeStack::none;
    std::string from;
    std::string to;
    bool byHour = false;
    std::optional<std::int64_t> gaps;
    Form form = Form::table;
    std::string out; ///< the picture
    bool overwrite = false;
};

constexpr int kWidth = 1600; ///< of the picture, in pixels
constexpr int kHeight = 500;
constexpr int kHeightWithHours = 900;
constexpr std::size_t kMostBars = 1568; ///< of the picture: one a pixel
constexpr std::size_t kMostLabels = 12;

TimeSpan spanAsked(const Arguments &arguments, const TimedEvents &events) {
    TimeSpan span = wholeSpan(events);
    if (!arguments.from.empty())
        span.begin = std::max(span.begin, secondAsked(arguments.from, "--from"));
    if (!arguments.to.empty())
        span.end = std::min(span.end, endAsked(arguments.to, "--to"));
    return span;
}

void checkArguments(const Arguments &arguments) {
    if ((arguments.form == Form::png) == arguments.out.empty())
        throw UsageError("--format png and --out FILE belong together");
    if (arguments.byHour && arguments.unit > TimeUnit::day)
        throw UsageError("--hours needs --by day, month or year");
    if (arguments.gaps && (*arguments.gaps < 1 || arguments.byHour || arguments.form == Form::png))
        throw UsageError("--gaps takes a number of days from 1 on, and neither --hours nor a "
                         "picture");
    if (!arguments.from.empty())
        secondAsked(arguments.from, "--from");
    if (!arguments.to.empty())
        endAsked(arguments.to, "--to");
}

void checkTarget(const Arguments &arguments, ProgramState &state) {
    if (arguments.form != Form::png)
        return;
    const fs::path file = arguments.out;
    if (toLower(textOf(file.extension())) != ".png")
        throw UsageError(fmt::format("--out {}: a file *.png was expected", arguments.out));
    refuseUntouchable(file, state);
    if (fs::exists(file) && !arguments.overwrite)
        throw UsageError(
            fmt::format("\"{}\" is there already; --overwrite replaces a file", textOf(file)));
}

std::string zoneText(const TimeZone &zone) {
    const std::string exact = exactZoneText(zone);
    return exact.empty() ? zone.tzName : exact;
}

/// Of the parts, those with most events first.
std::vector<std::size_t> orderOf(const std::vector<TimeSlot> &slots, std::size_t parts) {
    std::vector<std::pair<std::uint64_t, std::size_t>> totals;
    totals.reserve(parts);
    for (std::size_t part = 0; part < parts; ++part)
        totals.emplace_back(0, part);
    for (const TimeSlot &slot : slots)
        for (std::size_t part = 0; part < parts; ++part)
            totals[part].first += slot.counts[part];
    std::ranges::stable_sort(totals, std::greater(), &std::pair<std::uint64_t, std::size_t>::first);
    std::vector<std::size_t> order;
    order.reserve(parts);
    for (const auto &[total, part] : totals)
        order.push_back(part);
    return order;
}

class Writing {
  public:
    Writing(Session &session, const Arguments &arguments, const TimedEvents &events)
        : m_session(session), m_arguments(arguments), m_events(events),
          m_span(spanAsked(arguments, events)) {}

    void write() {
        if (m_arguments.form == Form::png)
            writePicture();
        else if (m_arguments.form == Form::json)
            m_session.out << timelineJson(findings());
        else if (m_arguments.gaps)
            writeGaps();
        else if (m_arguments.byHour)
            writeHours();
        else
            writeSlots();
    }

  private:
    std::unique_ptr<RowWriter> writer(std::vector<std::string> headings) const {
        return makeRowWriter(static_cast<Format>(m_arguments.form), m_session.out,
                             std::move(headings));
    }
    std::string timeOf(std::int64_t slot) const { return slotText(slot, m_arguments.unit); }
    std::vector<DayGap> gaps() const {
        return gapsOf(m_events, m_span, m_arguments.gaps.value_or(1));
    }
    const TimeZone &zone() const { return m_session.program.state.gmtZone; }

    TimelineFindings findings() const {
        return {zoneText(zone()),
                m_arguments.unit,
                m_events,
                slotsOf(m_events, m_arguments.unit, m_span),
                m_arguments.byHour ? hoursOf(m_events, m_arguments.unit, m_span)
                                   : std::vector<SlotHours>(),
                gaps()};
    }

    void writeSlots() const {
        const auto slots = slotsOf(m_events, m_arguments.unit, m_span);
        const bool isDivided = m_arguments.stack != TimeStack::none;
        const auto order = orderOf(slots, isDivided ? m_events.parts.size() : 0);
        std::vector<std::string> headings{"Time", "Events"};
        for (const std::size_t part : order)
            headings.push_back(m_events.parts[part]);
        const auto rows = writer(std::move(headings));
        for (const TimeSlot &slot : slots) {
            std::vector<Cell> cells{timeOf(slot.slot), static_cast<std::int64_t>(slot.total)};
            for (const std::size_t part : order)
                cells.emplace_back(static_cast<std::int64_t>(slot.counts[part]));
            rows->row(cells);
        }
        rows->finish();
    }

    void writeHours() const {
        std::vector<std::string> headings{"Time"};
        for (int hour = 0; hour < 24; ++hour)
            headings.push_back(fmt::format("{:02}", hour));
        const auto rows = writer(std::move(headings));
        for (const SlotHours &slot : hoursOf(m_events, m_arguments.unit, m_span)) {
            std::vector<Cell> cells{timeOf(slot.slot)};
            for (const std::uint32_t count : slot.hours)
                cells.emplace_back(static_cast<std::int64_t>(count));
            rows->row(cells);
        }
        rows->finish();
    }

    void writeGaps() const {
        const auto rows = writer({"From", "To", "Days"});
        for (const DayGap &gap : gaps())
            rows->row({slotText(gap.first, TimeUnit::day), slotText(gap.last, TimeUnit::day),
                       gap.days()});
        rows->finish();
    }

    void writePicture() const {
        if (m_span.isEmpty())
            throw UsageError("no event with a date was asked for: there is nothing to draw");
        TimeBars bars = barsOf(m_events, m_arguments.unit, m_span, kMostBars);
        if (!m_arguments.byHour)
            bars.hours.clear();
        TimeChart chart = chartOf(m_events, bars, kMostLabels);
        chart.title = "Timeline of " + printable(textOf(fs::path(m_arguments.project).filename()));
        chart.lines = {fmt::format("{}, zone {}; {}, the highest {}",
                                   counted(m_events.seconds.size(), "event"), zoneText(zone()),
                                   barText(bars), bars.highest())};
        if (m_events.undated > 0)
            chart.lines.push_back(
                fmt::format("{} without a date", counted(m_events.undated, "row")));
        if (m_arguments.byHour)
            chart.lines.emplace_back("Below: the hours of the day, from 0 at the top to 23");
        for (std::string &part : chart.parts)
            part = printable(part);
        ExportFile file(m_arguments.out);
        drawTimeline(chart, kWidth, m_arguments.byHour ? kHeightWithHours : kHeight,
                     *makeDrawing(m_session.scratch()), m_session.scratch(), file.aside());
        file.finish();
    }

    Session &m_session;
    const Arguments &m_arguments;
    const TimedEvents &m_events;
    TimeSpan m_span;
};

void tell(Session &session, const TimedEvents &events) {
    session.err << fmt::format("{} in the zone {}", counted(events.seconds.size(), "event"),
                               zoneText(session.program.state.gmtZone));
    if (events.undated > 0)
        session.err << fmt::format("; {} without a date", counted(events.undated, "row"));
    session.err << '\n';
}

Exit run(Session &session, const Arguments &arguments) {
    checkArguments(arguments);
    session.program.state.filters = filtersFrom(arguments.rows.filter);
    session.openForReading(arguments.project);
    ProgramState &state = session.program.state;
    checkTarget(arguments, state);
    SQLite::Database &project = state.projectDB.connection();
    TimedEvents events;
    bool isWhole = false;
    {
        UrlTable table(project, session.program.log, state.gmtZone);
        isWhole = loadTable(session, choiceOf(arguments.rows), table) != LoadResult::Cancelled &&
                  loadEvents(project, table.ids(), arguments.stack, state.gmtZone,
                             state.enableDSTChanges, session.task, events) == Walk::Finished;
        session.task.clear();
    }
    if (!isWhole || interrupted)
        return Exit::interrupted;
    Writing(session, arguments, events).write();
    tell(session, events);
    const Exit read = tellUnread(session, events.unread);
    closeProject(session.program);
    return read;
}

} // namespace

Command timelineCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "timeline",
            .what = "How many events there were, by year to minute, in the project's zone",
            .readme = {"`timeline PROJECT`",
                       "counts events by time; `--by` year to minute, `--stack` kind or browser, "
                       "`--hours`, `--gaps`, `--format` table, csv, tsv, jsonl, json, png"},
            .examples = {{"timeline case.nvp --by month --stack browser", "a line for each month"},
                         {"timeline case.nvp --gaps 7", "a week and more without an event"},
                         {"timeline case.nvp --stack kind --hours --format png --out time.png",
                          "as a picture, with the hours of the day below"}},
            .arguments =
                {projectWord(given->project), queryOption(given->rows), hostOption(given->rows),
                 filterOption(given->rows),
                 choice<TimeUnit>("--by", given->unit,
                                  {{"year", TimeUnit::year},
                                   {"month", TimeUnit::month},
                                   {"day", TimeUnit::day},
                                   {"hour", TimeUnit::hour},
                                   {"minute", TimeUnit::minute}},
                                  "What one line counts"),
                 choice<TimeStack>("--stack", given->stack,
                                   {{"none", TimeStack::none},
                                    {"kind", TimeStack::kind},
                                    {"browser", TimeStack::browser}},
                                   "By what the counts are divided"),
                 value("--from", given->from, "The first moment by the zone's clock: 2011-03-01"),
                 value("--to", given->to, "The last day or minute, which still counts"),
                 flag("--hours", given->byHour, "Each hour of the day by itself, 00 to 23"),
                 value("--gaps", given->gaps,
                       "Only the gaps of at least so many days without an event"),
                 choice<Form>("--format", given->form,
                              {{"table", Form::table},
                               {"csv", Form::csv},
                               {"tsv", Form::tsv},
                               {"jsonl", Form::jsonl},
                               {"json", Form::json},
                               {"png", Form::png}},
                              "table, csv, tsv, jsonl, json or png"),
                 value("--out", given->out, "The picture to write, *.png"),
                 flag("--overwrite", given->overwrite, "Replace the picture when it is there")},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
