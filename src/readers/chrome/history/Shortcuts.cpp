// omni_box_shortcuts       = text url contents description transition keyword last_access_time
//                            number_of_hits
// network_action_predictor = user_text url number_of_hits number_of_misses
// with dates in microseconds since 1601, UTC; the second has none.

#include "readers/chrome/history/Shortcuts.h"

#include "readers/chrome/Kinds.h"
#include "readers/chrome/shared/MetaTable.h"
#include "readers/chrome/shared/ProfileRow.h"
#include "readers/chrome/shared/StoredDate.h"
#include "readers/chrome/shared/Transition.h"
#include "readers/chrome/shared/UnreadTables.h"
#include "readers/sqlite/SchemaVersion.h"
#include "readers/sqlite/SqliteReading.h"
#include "time/SourceClocks.h"

#include <array>

namespace nv {

namespace {

using Names = std::string_view;

constexpr SqliteReader kShortcutsReader = {"ParserClass.ParseChromeShortcutsFile()",
                                           "PARSING CHROME SHORTCUTS FILE", "Google Chrome",
                                           "chrome-32.png"};
constexpr SqliteReader kPredictorReader = {"ParserClass.ParseChromePredictorFile()",
                                           "PARSING CHROME PREDICTOR FILE", "Google Chrome",
                                           "chrome-32.png"};

constexpr Names kShortcutsTable = "omni_box_shortcuts";
constexpr Names kPredictorTable = "network_action_predictor";

/// Hosts and addresses that the browser prepares for, with what it learnt of them. They name sites
/// that were visited; the times of some stand within packed values, whose form differs with the
/// version.
constexpr auto kUnreadPredictions = std::to_array<Names>(
    {"resource_prefetch_predictor_url", "resource_prefetch_predictor_url_redirect",
     "resource_prefetch_predictor_host", "resource_prefetch_predictor_host_redirect",
     "resource_prefetch_predictor_origin", "resource_prefetch_predictor_manifest",
     "lcp_critical_path_predictor", "lcp_critical_path_predictor_initiator_origin"});

void addNumber(FactList &facts, FactName name, std::optional<std::int64_t> number) {
    if (number)
        facts.add(name, *number);
}

UrlRecord typedRecord(const ReadContext &ctx, const ProfileRow &row, Date fileCreated) {
    UrlRecord record = profileRecord(ctx, row, kChromeShortcut.word, fileCreated);
    record.Action = "Typed";
    record.Typed = true;
    return record;
}

constexpr auto kShortcutColumns =
    std::to_array<Names>({"text", "url", "contents", "description", "transition", "keyword",
                          "last_access_time", "number_of_hits"});
enum ShortcutColumn : std::size_t {
    kText,
    kUrl,
    kContents,
    kDescription,
    kTransition,
    kKeyword,
    kLastAccess,
    kHits
};

UrlRecord shortcutRecord(const ReadContext &ctx, const Row &row, std::int64_t rowId,
                         Date fileCreated) {
    std::string title = row.text(kDescription);
    if (title.empty())
        title = row.text(kContents);
    UrlRecord record =
        typedRecord(ctx, {kShortcutsTable, rowId, row.text(kUrl), title}, fileCreated);
    record.ActionDateUTC = chromeMoment(row.number(kLastAccess));
    record.LastVisited = record.ActionDateUTC;
    record.ActionDateLocal = utcDateToLocal(record.ActionDateUTC, ctx.clock);
    record.facts.add("typed_input", row.text(kText));
    addNumber(record.facts, "count", row.number(kHits));
    if (const auto transition = row.number(kTransition))
        record.facts.add("transition", transitionText(*transition), *transition);
    record.facts.add("keyword", row.text(kKeyword));
    return record;
}

constexpr auto kPredictorColumns =
    std::to_array<Names>({"user_text", "url", "number_of_hits", "number_of_misses"});
enum PredictorColumn : std::size_t { kUserText, kPredicted, kPredictorHits, kMisses };

UrlRecord predictorRecord(const ReadContext &ctx, const Row &row, std::int64_t rowId,
                          Date fileCreated) {
    UrlRecord record =
        typedRecord(ctx, {kPredictorTable, rowId, row.text(kPredicted), {}}, fileCreated);
    record.facts.add("typed_input", row.text(kUserText));
    addNumber(record.facts, "count", row.number(kPredictorHits));
    addNumber(record.facts, "misses", row.number(kMisses));
    return record;
}

using MakeRecord = UrlRecord (*)(const ReadContext &ctx, const Row &row, std::int64_t rowId,
                                 Date fileCreated);

ReadResult readTyped(ReadContext &ctx, const SqliteReader &reader, Names name, Names table,
                     std::span<const Names> columns, MakeRecord make,
                     std::span<const Names> unread = {}) {
    return readSqliteFile(ctx, reader, [&](EvidenceDatabase &database) {
        noteSchemaVersion(ctx, name, schemaVersion(ctx, database));
        const Date fileCreated = ctx.evidence.factsOf(ctx.file.fullPath).created;
        TableCursor cursor(database, table, columns);
        const auto save = [&](const Row &row) {
            UrlRecord record = make(ctx, row, cursor.rowId(), fileCreated);
            ctx.sink.save(record);
        };
        ReadResult result = eachRow(cursor, ctx, ctx.task, reader.procedure, save);
        if (result.state != ReadState::cancelled &&
            !countUnread(ctx, database, unread, reader.procedure, result))
            result.state = ReadState::cancelled;
        return result;
    });
}

} // namespace

ReadResult parseChromeShortcutsFile(ReadContext &ctx) {
    return readTyped(ctx, kShortcutsReader, "Shortcuts", kShortcutsTable, kShortcutColumns,
                     shortcutRecord);
}

ReadResult parseChromePredictorFile(ReadContext &ctx) {
    return readTyped(ctx, kPredictorReader, "Network Action Predictor", kPredictorTable,
                     kPredictorColumns, predictorRecord, kUnreadPredictions);
}

} // namespace nv
