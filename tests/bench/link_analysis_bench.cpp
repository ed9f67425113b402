#include "support/TestProject.h"
#include "views/links/LinkAnalysis.h"
#include "views/links/LinkList.h"
#include "views/rows/DateIndex.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>

namespace nv {
namespace {

/// Half a million records and two million links. An eighth of the records are pages, whose links
/// lead all over the project, and every second one of whose rows names the page itself, as an
/// import leaves them; most records share their URL with others.
struct LinkedProject {
    LinkedProject() {
        project.connection().exec(
            "BEGIN; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "
            "500000) INSERT INTO URLs(URL, HashedURL, CacheType, IsHistory, MetaData) SELECT "
            "'http://host.example/page' || (i * 7919 % 300007), printf('%032x', i * 7919 % 300007),"
            " 'IE History', i % 8 <> 0, hex(randomblob(150)) FROM n;"
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2000000) "
            "INSERT INTO Links(URL_ID, URL, HashedURL) SELECT page, 'http://host.example/page' || "
            "target, printf('%032x', target) FROM (SELECT 8 * (1 + i / 40 % 62500) AS page, "
            "CASE WHEN i % 2 THEN 8 * (1 + i / 40 % 62500) * 7919 % 300007 ELSE i * 104729 % "
            "300007 END AS target FROM n); COMMIT");
    }
    test::TestProject project;
    RecordStore store = project.store();
    Evidence evidence{project.folder.path()};
    Unwatched task;
};

LinkedProject &linkedProject() {
    static LinkedProject linked;
    return linked;
}

/// With the making of the hash index, which only the first run of a project needs.
void runLinkAnalysis(benchmark::State &state) {
    LinkedProject &linked = linkedProject();
    LinkTotals totals;
    for (auto _ : state) {
        linked.project.connection().exec("DROP INDEX IF EXISTS LinkHashIndex");
        totals = runLinkAnalysis({linked.project.connection(), linked.store, linked.evidence,
                                  linked.project.folder.path(), linked.project.log, linked.task});
    }
    state.counters["matches"] = static_cast<double>(totals.matches);
}
BENCHMARK(runLinkAnalysis)->Iterations(1)->Unit(benchmark::kMillisecond);

/// The limit: the database's own join over the same index, with no progress and no way to stop it.
void plainJoin(benchmark::State &state) {
    LinkedProject &linked = linkedProject();
    SQLite::Database &project = linked.project.connection();
    for (auto _ : state) {
        project.exec("DROP INDEX IF EXISTS LinkHashIndex; DELETE FROM LinkAnalysis");
        ensureLinkHashIndex(project, linked.task);
        SQLite::Transaction together(project);
        project.exec("INSERT INTO LinkAnalysis (Parent_ID, Child_ID, URL, HashedURL) SELECT "
                     "L.URL_ID, U.URL_ID, trim(L.URL), L.HashedURL FROM URLs U JOIN Links L ON "
                     "L.HashedURL = trim(U.HashedURL) WHERE L.URL_ID <> U.URL_ID GROUP BY "
                     "U.URL_ID, L.URL_ID");
        together.commit();
    }
    state.counters["matches"] =
        static_cast<double>(project.execAndGet("SELECT Count(*) FROM LinkAnalysis").getInt64());
}
BENCHMARK(plainJoin)->Iterations(1)->Unit(benchmark::kMillisecond);

void loadLinksOfARecord(benchmark::State &state) {
    LinkedProject &linked = linkedProject();
    ensureLinkIndexes(linked.project.connection(), linked.task);
    std::int64_t id = 1;
    for (auto _ : state) {
        id = 1 + (id + 104729) % 500000;
        benchmark::DoNotOptimize(
            loadLinks(linked.project.connection(), UrlId{id}, RecordIds::wide, linked.project.log));
    }
}
BENCHMARK(loadLinksOfARecord)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace nv
