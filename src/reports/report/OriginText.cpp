#include "reports/report/OriginText.h"

#include "db/sql/SqliteErrors.h"
#include "reports/report/Html.h"
#include "views/explain/Explain.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <vector>

namespace nv {

namespace {

/// More would make a book of it; `explain` tells each.
constexpr std::size_t kMostRecords = 500;

/// File by file, so that each is copied once.
std::vector<UrlId> tickedRows(SQLite::Database &project) {
    std::vector<UrlId> ids;
    SQLite::Statement rows(project, "SELECT URL_ID FROM URLs WHERE Tagged <> 0 "
                                    "ORDER BY SourceFile_ID, URL_ID");
    while (rows.executeStep())
        ids.emplace_back(static_cast<UrlId>(rows.getColumn(0).getInt()));
    return ids;
}

std::string shown(const std::string &text) {
    return htmlText(shownOrigin(text));
}

std::string headOf(const RecordOrigin &record) {
    std::string text = "<p>";
    for (const auto &[name, words] : linesOf(record))
        text += fmt::format("<strong>{}</strong> {}<br>\r\n", htmlText(name), shown(words));
    return text + "</p>";
}

std::string tableOf(const RecordOrigin &record) {
    std::string text = headOf(record) + htmlTable(fmt::format("Origin{}", record.id),
                                                  {"Field", "Value", "Lies at", "As it lies",
                                                   "Rule", "Zone", "Check", "Note"});
    for (const ValueOrigin &value : record.values)
        text += htmlRow({shown(value.field), shown(value.value), shown(value.place),
                         shown(value.stored), shown(value.rule), shown(value.zone),
                         htmlText(checkWord(value.check)), shown(value.note)});
    return text + "</table>";
}

} // namespace

std::string originSection(const ReportContext &ctx) {
    const RebuildContext &rebuild = ctx.rebuild;
    std::string text =
        "<br><div style='font-family:Tahoma,sans-serif;font-size:11px;overflow-wrap:anywhere;'>\r\n"
        "<strong>ORIGINS:</strong> where the values of the rows with the tick come from. "
        "\"same\": read from the evidence again for this report.<br>\r\n";
    const auto ids = onProject([&] { return tickedRows(rebuild.project); });
    Explainer explainer({rebuild.project, rebuild.records, rebuild.evidence, rebuild.tempFolderPath,
                         ctx.gmtZone, ctx.settings.dates, rebuild.log});
    std::size_t told = 0;
    for (const UrlId id : ids) {
        if (told == kMostRecords || !rebuild.task.advance(1))
            break;
        if (const auto record = onProject([&] { return explainer.explain(id); }))
            text += tableOf(*record);
        ++told;
    }
    if (told < ids.size())
        text += fmt::format("<p>The first {} of {} rows are told here.</p>", told, ids.size());
    return text + "</div>";
}

} // namespace nv
