#include "reports/case/CaseIndex.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/TextRows.h"
#include "db/sql/SqliteErrors.h"
#include "db/trail/CaseTrail.h"
#include "import/ImportTrail.h"
#include "reports/case/CaseTables.h"
#include "reports/case/CaseText.h"
#include "reports/case/TimelineSvg.h"
#include "reports/exports/ExportWriter.h"
#include "reports/report/Html.h"
#include "reports/report/ReportWriter.h"
#include "time/DateFormat.h"
#include "time/ExactZone.h"
#include "views/timeline/TimelineChart.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <array>
#include <fstream>
#include <optional>
#include <set>

namespace nv {

namespace {

constexpr std::size_t kMostFiles = 500; ///< of evidence on the page; the list has all
constexpr std::size_t kMostEntries = 2000;
constexpr std::size_t kMostBars = 200;
constexpr std::size_t kLeastBars = 30;
constexpr std::size_t kMostLabels = 10;

/// A row of `SourceFiles`; a project of an earlier build lacks some of its columns. Or a file that
/// was read beside one, as the trail tells.
struct SourceRow {
    std::string path;
    std::string browser;
    std::string profile;
    std::string person;
    std::int64_t size = 0;
    std::string md5;
    std::string sha256;
    bool isWhole = false;
    bool isClassic = false;
    bool isBeside = false;
};

class SourceRows {
  public:
    explicit SourceRows(SQLite::Database &project)
        : m_row(project, "SELECT * FROM SourceFiles ORDER BY SourceFile_ID") {
        for (int at = 0; at < m_row.getColumnCount(); ++at)
            m_names.insert(m_row.getColumnName(at));
        if (project.tableExists(kCaseTrailTable))
            m_beside
                .emplace(project, "SELECT FilePath, FileSize, MD5Hash, SHA256Hash FROM "
                                  "AuditTrail WHERE Action = ? GROUP BY FilePath, SHA256Hash "
                                  "ORDER BY min(Trail_ID)")
                .bind(1, kBesideAction);
    }
    bool next(SourceRow &row) {
        if (m_row.isDone() || !m_row.executeStep()) // which throws behind the last one
            return nextBeside(row);
        row = {textIn("FilePath"),   textIn("Browser"),           textIn("Profile"),
               textIn("Person"),     numberIn("FileSize"),        textIn("MD5Hash"),
               textIn("SHA256Hash"), numberIn("Successful") != 0, numberIn("ClassicOnly") != 0};
        return true;
    }

  private:
    std::string textIn(const char *name) {
        return m_names.contains(name) ? m_row.getColumn(name).getString() : std::string();
    }
    bool nextBeside(SourceRow &row) {
        if (!m_beside || !m_beside->executeStep())
            return false;
        row = {};
        row.path = m_beside->getColumn(0).getString();
        row.size = m_beside->getColumn(1).getInt64();
        row.md5 = m_beside->getColumn(2).getString();
        row.sha256 = m_beside->getColumn(3).getString();
        row.isWhole = row.isBeside = true;
        return true;
    }
    std::int64_t numberIn(const char *name) {
        return m_names.contains(name) ? m_row.getColumn(name).getInt64() : 0;
    }
    SQLite::Statement m_row;
    std::optional<SQLite::Statement> m_beside;
    std::set<std::string> m_names;
};

std::string stateOf(const SourceRow &row) {
    if (row.isBeside)
        return "read beside others";
    return row.isWhole ? row.isClassic ? "read, by the classic rules only" : "read"
                       : "not read to its end";
}

std::string safeCell(const std::string &text) {
    return looksLikeFormula(text) ? "'" + text : text;
}

std::string zoneText(const ReportContext &ctx) {
    const TimeZone &zone = ctx.gmtZone;
    const std::string exact = exactZoneText(zone);
    if (!exact.empty())
        return exact;
    return zone.tzName == zone.tzBiasAsText
               ? zone.tzName
               : fmt::format("{} ({})", zone.tzName, zone.tzBiasAsText);
}

std::string entryRow(const TrailEntry &entry, Redactor &redactor) {
    return fmt::format("<tr>{}{}{}{}{}</tr>\n",
                       caseCell("Date [UTC]", fmt::format("<span class=\"n\">{}</span>",
                                                          isoUtc(entry.actionDateUTC))),
                       caseCell("Done", caseText(redactor.text(entry.action))),
                       caseCell("How", caseText(redactor.text(entry.detail))),
                       caseCell("File", caseText(redactor.text(entry.filePath))),
                       caseCell("SHA-256", caseText(entry.sha256Hash), "hash"));
}

} // namespace

std::string CaseIndex::text(const std::string &value) {
    return caseText(m_redactor.text(value));
}

bool CaseIndex::write(std::ostream &file, const RowIds &ids, const std::filesystem::path &folder,
                      TaskMonitor &task) {
    // What comes last is written first: only then is it known how much was redacted.
    const std::filesystem::path lastPart = folder / "~last";
    {
        std::ofstream last(lastPart, std::ios::binary | std::ios::trunc);
        if (m_report.caseOptions.timeline && !time(last, ids, task))
            return false;
        if (m_report.caseOptions.evidence)
            evidence(last, folder);
        notRead(last);
        if (m_report.includeCaseTrail)
            trail(last);
        checkWritten(last, lastPart);
    }
    m_frame.writeHead(file, kCaseIndex, m_frame.title);
    cover(file);
    contents(file);
    redactions(file);
    readInBlocks(lastPart, [&file](std::string_view block, std::uint64_t) {
        file << block;
        return true;
    });
    std::filesystem::remove(lastPart);
    m_frame.writeTail(file);
    return true;
}

void CaseIndex::cover(std::ostream &file) {
    file << "<section class=\"cover\">\n";
    if (!logo.empty())
        file << fmt::format("<img class=\"logo\" src=\"{}\" alt=\"\">\n", htmlAddress(logo));
    file << "<h1>" << htmlText(m_frame.title) << "</h1>\n<dl>\n";
    if (!m_report.skipHeader)
        file << caseField("Case", text(m_report.caseNumber))
             << caseField("Examiner", text(m_report.reportedBy))
             << caseField("Organization", text(m_report.organization));
    file << caseField("Made", htmlText(m_report.reportDate))
         << caseField("Time zone", htmlText(zoneText(m_ctx)))
         << caseField("Made with", "Norvelane " + htmlText(m_ctx.settings.version))
         << caseField("Rows", grouped(rows))
         << caseField("Holds", m_report.caseOptions.content.empty()
                                   ? "all rows of the project"
                                   : text(m_report.caseOptions.content))
         << caseField("Order", m_report.sortAscending ? "oldest first" : "newest first");
    file << "</dl>\n";
}

void CaseIndex::contents(std::ostream &file) {
    file << "<h2 id=\"contents\">What is in it</h2>\n<table class=\"plain\"><thead><tr><th "
            "scope=\"col\">Part</th><th class=\"num\" scope=\"col\">Rows</th><th class=\"num\" "
            "scope=\"col\">Pages</th><th "
            "scope=\"col\">List</th></tr></thead>\n<tbody>\n";
    for (const CaseSection &section : m_frame.sections) {
        if (section.rows == 0)
            continue;
        const bool hasList =
            section.part == CaseSection::Part::kind || section.part == CaseSection::Part::tag;
        const std::string_view before = section.part == CaseSection::Part::cards ? "Cards: "
                                        : section.part == CaseSection::Part::tag ? "Tag: "
                                                                                 : "";
        const std::string note = section.note.empty()
                                     ? std::string()
                                     : fmt::format("<br><span class=\"dim\"><bdi>{}</bdi></span>",
                                                   caseText(section.note));
        const std::string list =
            hasList ? fmt::format("<a href=\"{0}\">{0}</a>", section.list()) : std::string();
        file << "<tr>"
             << caseCell("Part",
                         fmt::format("{}<a href=\"{}\">{}{}</a>{}", caseSwatch(section.color),
                                     section.page(1), before, htmlText(section.title), note))
             << caseCell("Rows", grouped(section.rows), "num")
             << caseCell("Pages", grouped(section.pages()), "num") << caseCell("List", list)
             << "</tr>\n";
    }
    file << "</tbody></table>\n<p class=\"dim\">The lists are CSV in UTF-8 and hold every row of "
            "their part with all its values. A cell that a spreadsheet would take for a formula "
            "has an apostrophe in front. <a href=\"files.csv\">files.csv</a> names each file of "
            "this report with its SHA-256.</p>\n";
}

void CaseIndex::redactions(std::ostream &file) {
    const RedactionRules &rules = m_redactor.rules();
    if (rules.empty()) {
        file << "<p>Nothing was redacted.</p>\n</section>\n";
        return;
    }
    const RedactionCounts &counts = m_redactor.counts;
    const RedactionRules unmet = m_redactor.unmet();
    file << "<h2 id=\"redactions\">Redacted</h2>\n<p class=\"note\">"
         << (redactedText(counts).empty()
                 ? "Nothing was redacted. "
                 : "On purpose this report doesn't show all that was found. ")
         << "Chosen were " << htmlText(chosenText(rules)) << "."
         << (unmet.empty()
                 ? std::string()
                 : fmt::format(" Nothing in this report fits {} of these: {}.",
                               unmet.size() == rules.size() ? "any" : std::to_string(unmet.size()),
                               htmlText(chosenText(unmet))))
         << "</p>\n<dl>\n"
         << caseField("Rows left out", grouped(counts.rowsLeftOut))
         << caseField("Places in texts",
                      fmt::format("{}, where {} stands", grouped(counts.placesBlurred), kRedacted))
         << caseField("Pictures blurred", grouped(counts.picturesBlurred))
         << caseField("Pictures left out", grouped(counts.picturesLeftOut))
         << caseField("Pages and texts changed", grouped(counts.filesChanged))
         << caseField("Contents left out", grouped(counts.filesLeftOut)) << "</dl>\n</section>\n";
}

bool CaseIndex::time(std::ostream &file, const RowIds &ids, TaskMonitor &task) {
    TimedEvents events;
    if (loadEvents(m_ctx.rebuild.project, ids, TimeStack::kind, m_ctx.gmtZone,
                   m_ctx.settings.dates.enableDSTChanges, task, events) == Walk::Cancelled)
        return false;
    const TimeSpan span = wholeSpan(events);
    file << "<h2 id=\"time\">Time</h2>\n";
    if (span.isEmpty()) {
        file << "<p>No row has a date.</p>\n";
        return true;
    }
    const TimeUnit unit = unitFor(span, kLeastBars);
    const TimeBars bars = barsOf(events, unit, span, kMostBars);
    const TimeChart chart = chartOf(events, bars, kMostLabels);
    file << fmt::format("<p class=\"dim\">{} to {} by the clock of {}; {}, the highest has {}. {} "
                        "of {} rows have no date. Grey ground means whole days without an "
                        "event.</p>\n",
                        slotText(slotOf(span.begin, TimeUnit::day), TimeUnit::day),
                        slotText(slotOf(span.end - 1, TimeUnit::day), TimeUnit::day),
                        htmlText(zoneText(m_ctx)), barText(bars), grouped(bars.highest()),
                        grouped(events.undated), grouped(ids.size()))
         << "<div class=\"time\">" << barsSvg(chart) << "</div>\n"
         << barsKey(chart) << "<h3>Hours of the day</h3>\n";
    const TimeUnit days = unit > TimeUnit::day ? TimeUnit::day : unit;
    const TimeBars hours = barsOf(events, days, span, kMostBars);
    file << fmt::format("<p class=\"dim\">Each column is {}, from midnight at the top; the "
                        "darker, the more events.</p>\n",
                        days == TimeUnit::day && hours.step == 1 ? "a day" : "a span of days")
         << "<div class=\"time\">" << hoursSvg(chartOf(events, hours, kMostLabels)) << "</div>\n";
    return true;
}

void CaseIndex::evidence(std::ostream &file, const std::filesystem::path &folder) {
    std::ofstream list(folder / "evidence.csv", std::ios::binary | std::ios::trunc);
    list << csvLine(std::array<std::string, 8>{"file", "browser", "profile", "person", "size",
                                               "md5", "sha256", "state"});
    file << "<h2 id=\"evidence\">Files of evidence</h2>\n<table><thead><tr><th scope=\"col\">File"
            "</th><th class=\"w3\" scope=\"col\">Whose</th><th class=\"w3\" scope=\"col\">Size and "
            "state</th><th scope=\"col\">Hashes</th></tr></thead>\n<tbody>\n";
    std::size_t shown = 0;
    onProject([&] {
        SourceRows sources(m_ctx.rebuild.project);
        for (SourceRow row; sources.next(row); ++shown) {
            for (std::string *each : {&row.path, &row.browser, &row.profile, &row.person})
                *each = m_redactor.text(*each);
            list << csvLine(std::array<std::string, 8>{safeCell(row.path), safeCell(row.browser),
                                                       safeCell(row.profile), safeCell(row.person),
                                                       std::to_string(row.size), safeCell(row.md5),
                                                       safeCell(row.sha256), stateOf(row)});
            if (shown >= kMostFiles)
                continue;
            std::string whose = row.browser;
            for (const std::string *each : {&row.profile, &row.person})
                if (!each->empty())
                    whose += (whose.empty() ? "" : ", ") + *each;
            file << "<tr>" << caseCell("File", "<bdi>" + caseText(row.path) + "</bdi>")
                 << caseCell("Whose", caseText(whose))
                 << caseCell("Size",
                             fmt::format("{}<br><span class=\"{}\">{}</span>", caseSize(row.size),
                                         row.isWhole ? "dim" : "warn", stateOf(row)))
                 << caseCell("Hashes",
                             fmt::format("MD5 {}<br>SHA-256 {}", caseText(row.md5),
                                         caseText(row.sha256)),
                             "hash")
                 << "</tr>\n";
        }
    });
    checkWritten(list, folder / "evidence.csv");
    file << "</tbody></table>\n"
         << fmt::format("<p class=\"dim\">{} in all{}: <a href=\"evidence.csv\">evidence.csv</a>."
                        "</p>\n",
                        counted(shown, "file"),
                        shown > kMostFiles
                            ? fmt::format(", of which the first {} are shown", kMostFiles)
                            : std::string());
}

void CaseIndex::notRead(std::ostream &file) {
    file << "<h2 id=\"notread\">What was not read</h2>\n";
    std::string rowsOfTable;
    std::size_t count = 0;
    for (const TrailEntry &entry :
         onProject([&] { return CaseTrail(m_ctx.rebuild.project).entries(); }))
        if (entry.action == "Not Readable" && ++count <= kMostEntries)
            rowsOfTable += fmt::format("<tr>{}{}</tr>\n",
                                       caseCell("Place", "<bdi>" + text(entry.filePath) + "</bdi>"),
                                       caseCell("Why", text(entry.detail)));
    const auto warn = [&file](std::size_t number, std::string_view what, std::string_view is) {
        if (number > 0)
            file << fmt::format("<p class=\"warn\">{} {}.</p>\n", counted(number, what), is);
    };
    warn(m_report.recordsFailed, "row", "of the project could not be read; their lines say so");
    warn(m_report.filesFailed, "cached file", "could not be read; their cards say so");
    warn(m_report.changedRows.size(), "card",
         "with content that is NOT what was imported; the cards say so");
    warn(m_report.pagesIncomplete, "rebuilt page",
         "could not be brought with all parts; their cards say so");
    if (count == 0) {
        file << "<p>No file and no folder that the imports came by was unreadable, as far as the "
                "case trail tells.</p>\n";
        return;
    }
    file
        << "<table><thead><tr><th scope=\"col\">Place</th><th scope=\"col\">Why</th></tr></thead>\n"
           "<tbody>\n"
        << rowsOfTable << "</tbody></table>\n";
    if (count > kMostEntries)
        file << fmt::format("<p class=\"dim\">{} in all; the first {} are shown.</p>\n",
                            grouped(count), grouped(kMostEntries));
}

void CaseIndex::trail(std::ostream &file) {
    file << "<h2 id=\"trail\">Case trail</h2>\n<p class=\"dim\">What was done with the project up "
            "to this report.</p>\n<table><thead><tr><th class=\"w2\" scope=\"col\">Date [UTC]</th>"
            "<th class=\"w3\" scope=\"col\">Done</th><th scope=\"col\">How</th><th scope=\"col\">"
            "File</th><th scope=\"col\">SHA-256</th></tr></thead>\n<tbody>\n";
    std::size_t beside = 0; // a cache may have ten thousand
    for (const TrailEntry &entry :
         onProject([&] { return CaseTrail(m_ctx.rebuild.project).entries(); }))
        if (entry.action == kBesideAction)
            ++beside;
        else
            file << entryRow(entry, m_redactor);
    file << "</tbody></table>\n";
    if (beside > 0)
        file << fmt::format("<p class=\"dim\">{} read beside others: <a "
                            "href=\"evidence.csv\">evidence.csv</a> has their hashes.</p>\n",
                            counted(beside, "file"));
}

} // namespace nv
