// icon_mapping    = page_url icon_id
// favicons        = id url last_updated                      last_updated until 2012
// favicon_bitmaps = icon_id last_updated last_requested
// with dates in microseconds since 1601, UTC. Pages share icons: the date is the icon's.

#include "readers/chrome/history/Favicons.h"

#include "readers/chrome/Kinds.h"
#include "readers/chrome/history/HistoryBeside.h"
#include "readers/chrome/shared/MetaTable.h"
#include "readers/chrome/shared/ProfileRow.h"
#include "readers/chrome/shared/StoredDate.h"
#include "readers/sqlite/FurtherTables.h"
#include "readers/sqlite/SchemaVersion.h"
#include "readers/sqlite/SqliteReading.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace nv {

namespace {

using Names = std::string_view;

constexpr SqliteReader kReader = {"ParserClass.ParseChromeFaviconsFile()",
                                  "PARSING CHROME FAVICONS FILE", "Google Chrome", "chrome-32.png"};
constexpr Stretch kIconList = {0, 0.4};
constexpr Stretch kPages = {0.4, 1};

struct Icon {
    std::string url;
    std::int64_t updated = 0;   ///< as stored
    std::int64_t requested = 0; ///< the same
    bool hasPage = false;
};
using Icons = std::unordered_map<std::int64_t, Icon>;

bool readIcons(FurtherTables &tables, Icons &icons) {
    constexpr auto kIcons = std::to_array<Names>({"id", "url", "last_updated"});
    constexpr auto kBitmaps = std::to_array<Names>({"icon_id", "last_updated", "last_requested"});
    const auto takeIcon = [&icons](std::int64_t rowId, const Row &row) {
        Icon &icon = icons[row.number(0).value_or(rowId)];
        icon.url = row.text(1);
        icon.updated = row.number(2).value_or(0);
    };
    const auto takeBitmap = [&icons](std::int64_t, const Row &row) {
        const auto icon = icons.find(row.number(0).value_or(0));
        if (icon == icons.end())
            return;
        icon->second.updated = std::max(icon->second.updated, row.number(1).value_or(0));
        icon->second.requested = std::max(icon->second.requested, row.number(2).value_or(0));
    };
    return tables.each("favicons", kIcons, kIconList, takeIcon) &&
           tables.each("favicon_bitmaps", kBitmaps, kIconList, takeBitmap);
}

void addIcon(UrlRecord &record, const Icon &icon) {
    record.facts.add("icon_url", icon.url);
    addChromeDate(record.facts, "last_updated", icon.updated);
    addChromeDate(record.facts, "last_used", icon.requested);
    record.OtherDate = chromeDate(icon.updated);
    if (record.OtherDate.has())
        record.OtherDateMeaning = "Icon Updated (UTC)";
}

ReadResult readPages(ReadContext &ctx, EvidenceDatabase &database, Icons &icons) {
    constexpr auto kMapping = std::to_array<Names>({"page_url", "icon_id"});
    HistoryBeside history(ctx, kReader.procedure);
    const Date fileCreated = ctx.evidence.factsOf(ctx.file.fullPath).created;
    TableCursor cursor(database, "icon_mapping", kMapping);
    SubTask task(ctx.task, kPages.from, kPages.to);
    ReadResult result = eachRow(cursor, ctx, task, kReader.procedure, [&](const Row &row) {
        const auto icon = icons.find(row.number(1).value_or(0));
        if (icon != icons.end())
            icon->second.hasPage = true;
        const std::string url = row.text(0);
        if (history.holds(url))
            return;
        UrlRecord record = profileRecord(ctx, {"icon_mapping", cursor.rowId(), url, {}},
                                         kChromeIcon.word, fileCreated);
        if (icon != icons.end())
            addIcon(record, icon->second);
        ctx.sink.save(record);
    });
    history.note(result);
    return result;
}

} // namespace

ReadResult parseChromeFaviconsFile(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        noteSchemaVersion(ctx, "Favicons", schemaVersion(ctx, database));
        ReadResult further;
        Icons icons;
        FurtherTables tables(ctx, database, kReader.procedure, further);
        if (!readIcons(tables, icons))
            return further;
        ReadResult result = readPages(ctx, database, icons);
        const auto unused =
            std::ranges::count_if(icons, [](const auto &each) { return !each.second.hasPage; });
        if (unused > 0)
            result.passedOver["icons that no page has"] = static_cast<std::uint64_t>(unused);
        addLosses(result, further);
        return result;
    });
}

} // namespace nv
