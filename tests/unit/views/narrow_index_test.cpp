#include "db/sql/Connection.h"
#include "unit/views/MadeProject.h"
#include "views/limits/ColumnLimit.h"
#include "views/limits/PlaceLimit.h"
#include "views/limits/Places.h"
#include "views/rows/NarrowIndex.h"
#include "views/timeline/TimeLimit.h"
#include "views/timeline/Timeline.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <tuple>

namespace nv {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// All that is told by the narrow indexes: by the rows themselves where there are none.
struct Told {
    std::vector<std::pair<std::int64_t, std::string>> events;
    std::vector<std::string> parts;
    std::uint64_t undated = 0;
    std::vector<CountedValues> values;
    std::vector<RowIds> kept;
    std::vector<std::string> hosts; ///< among the places, with their counts
};

struct NarrowIndexTest : testing::Test {
    void add(std::mt19937 &random) {
        const auto any = [&](int most) {
            return static_cast<int>(random() % static_cast<unsigned>(most));
        };
        using Value = test::MadeProject::Value;
        const std::string names[] = {"", "Edge", "Firefox", "\xC3\x96gg \xF0\x9F\x98\x80"};
        const std::string kinds[] = {"Chrome History", "CHROME HISTORY", "Firefox Cookies", "none"};
        const Value dates[] = {40000.5 + any(4000) / 7.0, -200.25, nullptr, std::string("soon"),
                               std::int64_t{40123},       1e300};
        project.add({{"ActionDateUTC", any(4) != 0 ? dates[0] : dates[any(6)]},
                     {"CacheType", any(9) != 0 ? Value(kinds[any(4)]) : Value(nullptr)},
                     {"Browser", any(9) != 0 ? Value(names[any(4)]) : Value(nullptr)},
                     {"Host", any(9) != 0 ? Value(fmt::format("{}.{}", any(5),
                                                              any(3) != 0 ? "EXAMPLE" : "example"))
                                          : Value(nullptr)}});
    }
    void addMany(int rows) {
        std::mt19937 random(7);
        for (int i = 0; i < rows; ++i)
            add(random);
    }
    void index() { EXPECT_EQ(ensureNarrowIndexes(project.db(), task), IndexState::Made); }
    static void dropIndexes(SQLite::Database &db) {
        db.exec("DROP INDEX IF EXISTS URLTimeIndex; DROP INDEX IF EXISTS URLHostIndex");
    }
    RowIds all() { return idsOf("SELECT URL_ID FROM URLs ORDER BY Host, URL_ID"); }
    RowIds idsOf(const std::string &query) {
        RowIds ids;
        EXPECT_EQ(collectIds(project.db(), {query, ""}, task, ids), Walk::Finished);
        return ids;
    }

    Told told(SQLite::Database &db, const RowIds &ids) {
        Told told;
        for (const TimeStack stack : {TimeStack::none, TimeStack::kind, TimeStack::browser}) {
            TimedEvents events;
            EXPECT_EQ(loadEvents(db, ids, stack, project.zone, true, task, events), Walk::Finished);
            for (std::size_t at = 0; at < events.seconds.size(); ++at)
                told.events.emplace_back(events.seconds[at], events.parts.at(events.part[at]));
            told.parts.insert(told.parts.end(), events.parts.begin(), events.parts.end());
            told.undated += events.undated;
            EXPECT_TRUE(events.unread.empty());
        }
        std::ranges::sort(told.events);
        for (const UrlColumn column : {UrlColumn::Host, UrlColumn::Type, UrlColumn::Browser}) {
            told.values.emplace_back();
            EXPECT_EQ(countValues(db, ids, column, 4, task, told.values.back()), Walk::Finished);
        }
        DateRange range;
        range.within = {Date::fromDays(40100.5), Date::fromDays(40400)};
        for (const ColumnLimit &limit :
             {ColumnLimit{.column = UrlColumn::Host, .oneOf = {{"1.EXAMPLE", ""}}},
              ColumnLimit{.column = UrlColumn::Host, .part = "3.ex"},
              ColumnLimit{.column = UrlColumn::Type, .oneOf = {{"CHROME HISTORY"}}},
              ColumnLimit{.column = UrlColumn::Browser, .part = "\xC3\xB6"},
              ColumnLimit{.column = UrlColumn::ActionDateUtc, .dates = range}}) {
            told.kept.push_back(ids);
            EXPECT_EQ(keepByColumn(db, limit, task, told.kept.back()), Walk::Finished);
        }
        told.kept.push_back(ids);
        EXPECT_EQ(keepWithin(db, range.within, task, told.kept.back()), Walk::Finished);
        for (const PlaceTerm &term :
             {PlaceTerm{PlaceField::Host, "2.example"},
              PlaceTerm{PlaceField::Kind, "CHROME HISTORY"}, PlaceTerm{PlaceField::Browser, "Edge"},
              PlaceTerm{PlaceField::Domain, "4.example"}}) {
            told.kept.push_back(ids);
            EXPECT_EQ(keepIn(db, {{{{term}}}, {}}, task, told.kept.back()), Walk::Finished);
        }
        Places places;
        EXPECT_EQ(loadPlaces(db, task, places), Walk::Finished);
        for (const PlaceNode &domain : places.hosts) {
            told.hosts.push_back(fmt::format("{} {}", domain.term.value, domain.records));
            for (const PlaceNode &host : domain.children)
                told.hosts.push_back(fmt::format("  {} {}", host.term.value, host.records));
        }
        told.hosts.push_back(fmt::format("{} in all", places.records));
        return told;
    }
    static void expectSame(const Told &one, const Told &other) {
        EXPECT_EQ(one.events, other.events);
        EXPECT_EQ(one.parts, other.parts);
        EXPECT_EQ(one.undated, other.undated);
        ASSERT_EQ(one.values.size(), other.values.size());
        for (std::size_t at = 0; at < one.values.size(); ++at) {
            EXPECT_EQ(one.values[at].values, other.values[at].values) << at;
            EXPECT_EQ(one.values[at].isCut, other.values[at].isCut) << at;
        }
        EXPECT_EQ(one.kept, other.kept);
        EXPECT_EQ(one.hosts, other.hosts);
    }
    /// By the indexes, and by the rows alone: in a copy without them.
    void expectSameAsTheRows(const RowIds &ids) {
        const Told quick = told(project.db(), ids);
        project.db().exec("SAVEPOINT without");
        dropIndexes(project.db());
        const Told slow = told(project.db(), ids);
        project.db().exec("ROLLBACK TO without; RELEASE without");
        expectSame(quick, slow);
    }
    NarrowWalk walk(SQLite::Database &db, const Columns &columns, const RowIds &ids) {
        return walkNarrow(db, columns, ids, NarrowIds::told, task, [](const NarrowRow &) {});
    }
    std::vector<int> rootsOfIndexes() {
        SQLite::Statement root(project.db(), "SELECT rootpage FROM sqlite_master WHERE name IN "
                                             "('URLTimeIndex', 'URLHostIndex')");
        std::vector<int> pages;
        while (root.executeStep())
            pages.push_back(root.getColumn(0).getInt());
        return pages;
    }
    std::string planOf(const std::string &query) {
        SQLite::Statement plan(project.db(), "EXPLAIN QUERY PLAN " + query);
        std::string text;
        while (plan.executeStep())
            text += plan.getColumn(3).getString() + "\n";
        return text;
    }

    test::MadeProject project;
    test::MemoryTask task;
};

TEST_F(NarrowIndexTest, tellsWhatTheRowsTellAfterAllKindsOfWrites) {
    addMany(400);
    index();
    EXPECT_EQ(ensureNarrowIndexes(project.db(), task), IndexState::Present);
    EXPECT_EQ(walk(project.db(), {"ActionDateUTC", "CacheType"}, all()), NarrowWalk::Finished);
    expectSameAsTheRows(all());
    std::mt19937 random(11);
    for (int round = 0; round < 6; ++round) {
        for (int i = 0; i < 20; ++i)
            add(random);
        project.db().exec(fmt::format(
            "UPDATE URLs SET Host = 'new.example', ActionDateUTC = 40200 WHERE URL_ID % 11 = {0};"
            "UPDATE URLs SET CacheType = 'Firefox Cookies', Browser = NULL WHERE URL_ID % 13 = {0};"
            "DELETE FROM URLs WHERE URL_ID % 17 = {0};"
            "REPLACE INTO URLs (URL_ID, Host) VALUES ({0} + 30, 'again.example');"
            "UPDATE URLs SET Notes = 'seen' WHERE URL_ID % 5 = {0}",
            round));
        expectSameAsTheRows(all());
    }
}

TEST_F(NarrowIndexTest, tellsOfTheRowsThatAreAskedFor) {
    addMany(300);
    index();
    RowIds some = idsOf("SELECT URL_ID FROM URLs WHERE URL_ID % 3 > 0 ORDER BY Host DESC");
    expectSameAsTheRows(some);
    some.push_back(4000); // of a row that isn't there
    some.push_back(-1);
    expectSameAsTheRows(some);
    project.db().exec("DELETE FROM URLs WHERE URL_ID = 2");
    expectSameAsTheRows(some);
    RowIds twice = all(); // as a query may give them that joins tables
    twice.push_back(twice.front());
    EXPECT_EQ(walk(project.db(), {"Host"}, twice), NarrowWalk::Impossible);
    expectSameAsTheRows(twice);
    expectSameAsTheRows({5, 7});
    EXPECT_EQ(walk(project.db(), {"Host"}, {5, 7}), NarrowWalk::Impossible)
        << "few are quicker looked up";
    EXPECT_EQ(walk(project.db(), {"Host"}, {}), NarrowWalk::Impossible);
    EXPECT_EQ(walk(project.db(), {"Host", "CacheType"}, all()), NarrowWalk::Impossible);
}

TEST_F(NarrowIndexTest, tellsOfAllRowsWithoutTheirIds) {
    addMany(300);
    index();
    const RowIds ids = idsOf("SELECT URL_ID FROM URLs ORDER BY Host DESC");
    std::size_t shown = 0;
    std::size_t named = 0;
    const auto walked = [&] {
        shown = named = 0;
        return walkNarrow(project.db(), {"Host"}, ids, NarrowIds::untold, task,
                          [&](const NarrowRow &row) {
                              ++shown;
                              named += row.id() != 0 ? 1 : 0;
                          });
    };
    EXPECT_EQ(walked(), NarrowWalk::Finished);
    EXPECT_EQ(shown, 300U);
    EXPECT_EQ(named, 0U);
    expectSameAsTheRows(ids);
    // Another program takes a row away that was listed.
    const auto other = connectToProject(project.project.filePath, Access::write);
    other->exec("DELETE FROM URLs WHERE URL_ID = 150");
    EXPECT_EQ(walked(), NarrowWalk::Impossible);
    expectSameAsTheRows(ids);
    // And brings one that wasn't: there are as many as are listed.
    other->exec("INSERT INTO URLs (Host) VALUES ('late.example')");
    EXPECT_EQ(walked(), NarrowWalk::Finished);
    EXPECT_EQ(shown, 299U);
    EXPECT_EQ(named, 299U);
    expectSameAsTheRows(ids);
}

TEST_F(NarrowIndexTest, ordersPartsAndCutsTooManyAsTheRowsDo) {
    for (int i = 0; i < 100; ++i)
        project.add({{"ActionDateUTC", 41000.0 - i}, {"Browser", fmt::format("b{}", i % 60)}});
    index();
    expectSameAsTheRows(all());
    for (int i = 0; i < 100; ++i)
        project.add({{"ActionDateUTC", 41000.0 - i}, {"Browser", fmt::format("c{}", i)}});
    expectSameAsTheRows(all());
}

TEST_F(NarrowIndexTest, seesOwnRowsThatAreNotCommittedAndOthersThatAre) {
    addMany(50);
    index();
    const auto other = connectToProject(project.project.filePath, Access::write);
    const auto reader = connectToProject(project.project.filePath, Access::read);
    const auto hosts = [&](SQLite::Database &db) {
        CountedValues counted;
        EXPECT_EQ(countValues(db, all(), UrlColumn::Host, 100, task, counted), Walk::Finished);
        return std::ranges::count(counted.values, "late.example",
                                  &std::pair<std::string, std::int64_t>::first);
    };
    project.db().exec("BEGIN; UPDATE URLs SET Host = 'late.example' WHERE URL_ID = 3");
    EXPECT_EQ(hosts(project.db()), 1);
    EXPECT_EQ(hosts(*reader), 0);
    project.db().exec("COMMIT");
    EXPECT_EQ(hosts(*reader), 1);
    other->exec("UPDATE URLs SET Host = 'later.example' WHERE URL_ID = 3");
    EXPECT_EQ(hosts(project.db()), 0);
    expectSameAsTheRows(all());
}

TEST_F(NarrowIndexTest, staysTrueWhenAnotherProgramWrites) {
    addMany(60);
    index();
    {
        // As a shell of the database does: none of our functions and settings.
        SQLite::Database shell(project.project.filePath.string(), SQLite::OPEN_READWRITE);
        shell.exec("PRAGMA recursive_triggers=ON; UPDATE URLs SET ActionDateUTC = 41234.5, "
                   "Host = 'shell.example' WHERE URL_ID < 20; DELETE FROM URLs WHERE URL_ID > 50; "
                   "INSERT INTO URLs (Host, CacheType) VALUES ('x', 'y')");
    }
    expectSameAsTheRows(all());
}

TEST_F(NarrowIndexTest, isReadWhereTheProjectIsOpenForReading) {
    addMany(60);
    index();
    const auto reader = connectToProject(project.project.filePath, Access::read);
    EXPECT_EQ(walk(*reader, {"Host"}, all()), NarrowWalk::Finished);
    expectSame(told(*reader, all()), told(project.db(), all()));
}

TEST_F(NarrowIndexTest, isTakenByNoStatementThatDoesNotNameIt) {
    addMany(20);
    index();
    for (const char *query :
         {"SELECT URL_ID FROM URLs", "SELECT count(*) FROM URLs",
          "SELECT URL_ID FROM URLs WHERE Host = 'a'", "SELECT Host FROM URLs GROUP BY Host",
          "SELECT URL_ID FROM URLs ORDER BY ActionDateUTC", "SELECT DISTINCT CacheType FROM URLs",
          "SELECT URL_ID FROM URLs WHERE ActionDateUTC > 40000 AND URL_ID <> 5",
          "SELECT URL_ID FROM URLs WHERE URL_ID <> 0 ORDER BY Host"})
        EXPECT_THAT(planOf(query),
                    AllOf(Not(HasSubstr("URLTimeIndex")), Not(HasSubstr("URLHostIndex"))))
            << query;
}

TEST_F(NarrowIndexTest, leavesItToTheRowsWithoutAnIndexOrWithAnother) {
    addMany(40);
    EXPECT_EQ(walk(project.db(), {"Host"}, all()), NarrowWalk::Impossible);
    const Told before = told(project.db(), all());
    for (const char *other : {"URLs(Host) WHERE Host > '1'", "URLs(Notes)",
                              "URLs(Host COLLATE NOCASE)", "URLs(Host) WHERE Host IS NOT NULL"}) {
        dropIndexes(project.db());
        project.db().exec(fmt::format("CREATE INDEX URLHostIndex ON {}", other));
        expectSame(told(project.db(), all()), before);
    }
    project.db().exec("DROP INDEX URLHostIndex; CREATE INDEX URLTimeIndex ON URLs(ActionDateUTC) "
                      "WHERE ActionDateUTC IS NOT NULL");
    expectSame(told(project.db(), all()), before);
}

TEST_F(NarrowIndexTest, aProjectOfAnEarlierBuildHasNoneOverWhatItLacks) {
    addMany(20);
    project.db().exec("ALTER TABLE URLs DROP COLUMN Browser");
    EXPECT_EQ(ensureNarrowIndexes(project.db(), task), IndexState::Made);
    EXPECT_EQ(walk(project.db(), {"Host"}, all()), NarrowWalk::Finished);
    EXPECT_EQ(walk(project.db(), {"ActionDateUTC"}, all()), NarrowWalk::Impossible);
    TimedEvents events;
    EXPECT_EQ(loadEvents(project.db(), all(), TimeStack::browser, project.zone, true, task, events),
              Walk::Finished);
    EXPECT_EQ(events.seconds.size() + events.undated, 20U);
}

TEST_F(NarrowIndexTest, aDamagedIndexLeavesItToTheRows) {
    addMany(2000);
    index();
    const RowIds ids = all();
    const Told before = told(project.db(), ids);
    const int pageSize = project.db().execAndGet("PRAGMA page_size").getInt();
    const std::vector<int> roots = rootsOfIndexes();
    ASSERT_EQ(roots.size(), 2U);
    project.project.closeDB();
    {
        std::fstream file(project.project.filePath,
                          std::ios::in | std::ios::out | std::ios::binary);
        for (const int page : roots) {
            file.seekp(std::streamoff{page - 1} * pageSize);
            file << std::string(64, '\x7F');
        }
    }
    const auto reader = connectToProject(project.project.filePath, Access::read);
    EXPECT_EQ(walk(*reader, {"Host"}, ids), NarrowWalk::Impossible);
    expectSame(told(*reader, ids), before);
}

TEST_F(NarrowIndexTest, endsWhenItIsCancelled) {
    project.db().exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "
                      "50000) INSERT INTO URLs(Host, ActionDateUTC) SELECT i % 9, i FROM n");
    test::CancelAfter now(0);
    EXPECT_EQ(ensureNarrowIndexes(project.db(), now), IndexState::Cancelled);
    index();
    const RowIds ids = all();
    TimedEvents events;
    test::CancelAfter soon(1);
    EXPECT_EQ(loadEvents(project.db(), ids, TimeStack::kind, project.zone, true, soon, events),
              Walk::Cancelled);
    RowIds kept = ids;
    test::CancelAfter atOnce(0);
    EXPECT_EQ(
        keepByColumn(project.db(), {.column = UrlColumn::Host, .oneOf = {{"1"}}}, atOnce, kept),
        Walk::Cancelled);
    EXPECT_EQ(kept, ids);
}

TEST_F(NarrowIndexTest, endsAtTheFirstRowThatFails) {
    addMany(20);
    index();
    std::size_t shown = 0;
    EXPECT_EQ(walkNarrow(project.db(), {"Host"}, all(), NarrowIds::told, task,
                         [&](const NarrowRow &) {
                             ++shown;
                             throw std::runtime_error("a row that makes no sense");
                         }),
              NarrowWalk::Impossible);
    EXPECT_EQ(shown, 1U);
}

} // namespace
} // namespace nv
