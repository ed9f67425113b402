#include "support/TestProject.h"
#include "views/rows/DateIndex.h"
#include "views/table/UrlTable.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>

namespace nv {
namespace {

/// A million rows with three hashes each, 300,000 of them in a known set and 10,000 in a notable
/// one, and 100,000 with a tag.
struct MatchedProject {
    MatchedProject() {
        SQLite::Database &db = project.connection();
        const std::string rows =
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000000) ";
        db.exec(rows + "INSERT INTO URLs(URL, Host, CacheType, ActionDateUTC, ActionDateLocal) "
                       "SELECT 'http://host' || (i % 997) || '.example/' || i, 'host' || (i % "
                       "997) || '.example', 'IE CACHE', 40000 + i / 1000.0, 40000 + i / 1000.0 "
                       "FROM n");
        for (const char *name : {"content_md5", "content_sha1", "content_sha256"})
            db.exec(rows + "INSERT INTO RecordFacts SELECT i, '" + name +
                    "', hex(randomblob(16)), NULL FROM n");
        db.exec(rows + "INSERT INTO RecordFacts SELECT i, 'hashset_known', 'library', 'MD5' FROM n "
                       "WHERE i % 10 < 3");
        db.exec(rows + "INSERT INTO RecordFacts SELECT i, 'hashset_notable', 'cases', 'MD5' FROM n "
                       "WHERE i % 100 = 0");
        NamedTags tags(db);
        for (const char *name : {"Important", "Later"})
            tags.add({.tagID = 0, .name = name, .color = {}, .position = 0, .note = {}});
        RowIds tagged;
        tagged.reserve(100'000);
        for (std::int32_t id = 5; id <= 1'000'000; id += 10)
            tagged.push_back(id);
        const std::span<const std::int32_t> all = tagged;
        RecordTags(db).set(1, all.first(60'000), {}, task);
        RecordTags(db).set(2, all.last(60'000), {}, task);
        ensureDateIndex(db, task);
        ensureHashSetIndex(db, task);
    }
    test::TestProject project;
    Unwatched task;
};

UrlTable &loadedTable() {
    static MatchedProject matched;
    static UrlTable table(matched.project.connection(), matched.project.log, matched.project.zone);
    if (table.emptyState() == EmptyState::NotLoaded)
        table.loadURLs(matched.task);
    return table;
}

/// The chip comes, from the click to the rows.
void limitByHashSets(benchmark::State &state, const HashLimit &limit) {
    UrlTable &table = loadedTable();
    Unwatched task;
    for (auto _ : state) {
        table.hashSets = limit;
        if (table.narrow(task) != LoadResult::Loaded)
            state.SkipWithError("not narrowed");
        state.PauseTiming();
        table.hashSets = {};
        table.narrow(task);
        state.ResumeTiming();
    }
}
BENCHMARK_CAPTURE(limitByHashSets, oneSet, HashLimit{.sets = {"library"}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(limitByHashSets, withoutKnown, HashLimit{.withoutKnown = true})
    ->Unit(benchmark::kMillisecond);

void sortByTexts(benchmark::State &state, UrlColumn column) {
    UrlTable &table = loadedTable();
    Unwatched task;
    for (auto _ : state)
        if (table.sortBy(column, SortDirection::Ascending, task) != LoadResult::Loaded)
            state.SkipWithError("not sorted");
}
BENCHMARK_CAPTURE(sortByTexts, tagNames, UrlColumn::TagNames)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(sortByTexts, hashSets, UrlColumn::HashSets)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace nv
