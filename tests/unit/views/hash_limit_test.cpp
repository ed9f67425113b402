#include "db/marks/NamedTags.h"
#include "db/marks/RecordTags.h"
#include "unit/views/MadeProject.h"
#include "views/limits/ColumnLimit.h"
#include "views/limits/HashLimit.h"
#include "views/rows/DateIndex.h"
#include "views/table/UrlTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

/// Six rows: 1 and 2 are known, 2 and 3 notable, 4 is in two known sets.
struct HashLimitTest : testing::Test {
    HashLimitTest() {
        for (int row = 0; row < 6; ++row)
            project.add({{"URL", std::string("http://host/")},
                         {"ActionDateLocal", 40000.0 + row},
                         {"ActionDateUTC", 40000.0 + row}});
    }
    void match() {
        project.db().exec("PRAGMA foreign_keys = OFF"); // as other programs write
        project.db().exec(
            "INSERT INTO RecordFacts VALUES (1, 'hashset_known', 'library', 'MD5'), "
            "(2, 'hashset_known', 'library', 'MD5'), (2, 'hashset_notable', 'cases', 'MD5'), "
            "(3, 'hashset_notable', 'it''s \"more\"', 'MD5'), (4, 'hashset_known', 'system', 'x'), "
            "(4, 'hashset_known', 'library', 'x'), (5, 'etag', 'library', NULL), "
            "('x', 'hashset_known', 'library', 'MD5'), (9999999999, 'hashset_known', 'a', 'MD5')");
    }
    RowIds kept(const HashLimit &limit) {
        RowIds ids{6, 5, 4, 3, 2, 1};
        EXPECT_EQ(keepByHashSets(project.db(), limit, task, ids), Walk::Finished);
        return ids;
    }
    RowIds loaded() {
        EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded) << table.failure();
        return table.ids();
    }

    test::MadeProject project;
    test::MemoryTask task;
    UrlTable table{project.db(), project.log, project.zone};
};

TEST_F(HashLimitTest, leavesRowsOfSetsInTheirOrder) {
    EXPECT_THAT(kept({{"library"}, false, false, false}), IsEmpty());
    EXPECT_THAT(kept({{}, false, false, true}), ElementsAre(6, 5, 4, 3, 2, 1));
    match();
    EXPECT_THAT(kept({{"library"}, false, false, false}), ElementsAre(4, 2, 1));
    EXPECT_THAT(kept({{"it's \"more\"", "system"}, false, false, false}), ElementsAre(4, 3));
    EXPECT_THAT(kept({{}, true, false, false}), ElementsAre(3, 2));
    EXPECT_THAT(kept({{"system"}, true, false, false}), ElementsAre(4, 3, 2));
    EXPECT_THAT(kept({{"gone"}, false, false, false}), IsEmpty());
    EXPECT_THAT(kept({{}, false, true, false}), ElementsAre(4, 2, 1));
    EXPECT_THAT(kept({{"cases"}, false, true, false}), ElementsAre(4, 2, 1));
}

TEST_F(HashLimitTest, hidesKnownFilesButNoNotableOnes) {
    match();
    EXPECT_THAT(kept({{}, false, false, true}), ElementsAre(6, 5, 3, 2));
    EXPECT_THAT(kept({{"library"}, false, false, true}), ElementsAre(2));
    EXPECT_THAT(kept({{}, true, false, true}), ElementsAre(3, 2));
}

TEST_F(HashLimitTest, aCancelLeavesAll) {
    match();
    RowIds ids{1, 2};
    test::CancelAfter stopped(0);
    EXPECT_EQ(keepByHashSets(project.db(), {{}, true, false, false}, stopped, ids),
              Walk::Cancelled);
    EXPECT_THAT(ids, ElementsAre(1, 2));
}

TEST_F(HashLimitTest, aProjectWithoutFactsHasNothingInSets) {
    project.db().exec("PRAGMA legacy_alter_table = ON; DROP TABLE RecordFacts");
    EXPECT_THAT(kept({{}, true, false, false}), IsEmpty());
    EXPECT_THAT(kept({{}, false, false, true}), ElementsAre(6, 5, 4, 3, 2, 1));
    EXPECT_THAT(loaded(), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_EQ(table.cell(0, UrlColumn::HashSets), "");
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(HashLimitTest, theTableHidesThemAndTheColumnNamesThem) {
    match();
    table.hashSets.withoutKnown = true;
    EXPECT_THAT(loaded(), ElementsAre(2, 3, 5, 6));
    EXPECT_EQ(table.hiddenCount(), 2u);
    EXPECT_EQ(table.cell(0, UrlColumn::HashSets), "notable: cases; known: library");
    EXPECT_EQ(table.machineCell(1, UrlColumn::HashSets), Cell("notable: it's \"more\""));
    EXPECT_TRUE(table.machineCell(2, UrlColumn::HashSets).isNothing());
    table.hashSets = {};
    EXPECT_THAT(loaded(), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_EQ(table.cell(3, UrlColumn::HashSets), "known: library, system");
    const FindResult found = table.find({"CASES", {UrlColumn::HashSets}}, 0, task);
    EXPECT_EQ(found.end, FindEnd::found);
    EXPECT_EQ(found.place, 1u);
}

TEST_F(HashLimitTest, theColumnIsSortedAndRowsInNoSetAreLast) {
    match();
    loaded();
    const auto sorted = [this](SortDirection direction) {
        EXPECT_EQ(table.sortBy(UrlColumn::HashSets, direction, task), LoadResult::Loaded);
        return table.ids();
    };
    EXPECT_THAT(sorted(SortDirection::Ascending), ElementsAre(1, 4, 2, 3, 5, 6));
    EXPECT_THAT(sorted(SortDirection::Descending), ElementsAre(3, 2, 4, 1, 5, 6));
    EXPECT_EQ(sortText(*table.columnSort()), "COL_URL_HASH_SETS DESC");
    EXPECT_THAT(loaded(), ElementsAre(3, 2, 4, 1, 5, 6)) << "a load keeps the order";
    table.hashSets.notable = true;
    EXPECT_THAT(loaded(), ElementsAre(3, 2));
    test::CancelAfter stopped(0);
    EXPECT_EQ(table.sortBy(UrlColumn::HashSets, SortDirection::Ascending, stopped),
              LoadResult::Cancelled);
    EXPECT_THAT(table.ids(), ElementsAre(3, 2));
}

TEST_F(HashLimitTest, namesOfTagsAreSortedTheSameWay) {
    const auto tag = [this](const std::string &name, const RowIds &ids) {
        const NamedTag made =
            NamedTags(project.db())
                .add({.tagID = 0, .name = name, .color = {}, .position = 0, .note = {}});
        EXPECT_TRUE(RecordTags(project.db()).set(made.tagID, ids, {}, task));
    };
    loaded();
    EXPECT_EQ(table.sortBy(UrlColumn::TagNames, SortDirection::Ascending, task),
              LoadResult::Loaded);
    EXPECT_THAT(table.ids(), ElementsAre(1, 2, 3, 4, 5, 6)) << "a project without tags";
    tag("later", {2, 5});
    tag("Important", {5, 3});
    EXPECT_EQ(table.sortBy(UrlColumn::TagNames, SortDirection::Ascending, task),
              LoadResult::Loaded);
    EXPECT_THAT(table.ids(), ElementsAre(3, 2, 5, 1, 4, 6));
    EXPECT_EQ(table.cell(2, UrlColumn::TagNames), "later, Important");
    EXPECT_EQ(table.sortBy(UrlColumn::TagNames, SortDirection::Descending, task),
              LoadResult::Loaded);
    EXPECT_THAT(table.ids(), ElementsAre(5, 2, 3, 1, 4, 6));
}

TEST_F(HashLimitTest, theHeadingLimitsByWhatTheColumnShows) {
    match();
    RowIds ids{1, 2, 3, 4, 5, 6};
    EXPECT_EQ(valuesOf(UrlColumn::HashSets), ColumnValues::texts);
    EXPECT_EQ(valuesOf(UrlColumn::TagNames), ColumnValues::texts);
    CountedValues counted;
    EXPECT_EQ(countValues(project.db(), ids, UrlColumn::HashSets, 10, task, counted),
              Walk::Finished);
    EXPECT_THAT(counted.values, ElementsAre(Pair("", 2), Pair("known: library", 1),
                                            Pair("known: library, system", 1),
                                            Pair("notable: cases; known: library", 1),
                                            Pair("notable: it's \"more\"", 1)));
    ColumnLimit limit{.column = UrlColumn::HashSets};
    limit.part = "CASES";
    EXPECT_EQ(keepByColumn(project.db(), limit, task, ids), Walk::Finished);
    EXPECT_THAT(ids, ElementsAre(2));
}

TEST_F(HashLimitTest, anIndexSparesTheOtherFacts) {
    match();
    EXPECT_EQ(ensureHashSetIndex(project.db(), task), IndexState::Made);
    EXPECT_EQ(ensureHashSetIndex(project.db(), task), IndexState::Present);
    const auto plan = [this](const std::string &query) {
        SQLite::Statement steps(project.db(), "EXPLAIN QUERY PLAN " + query);
        std::string text;
        while (steps.executeStep())
            text += steps.getColumn(3).getString() + "\n";
        return text;
    };
    EXPECT_THAT(plan(rowsInHashSets(HashMeaning::known)), HasSubstr("FoundHashSetsIndex"));
    EXPECT_THAT(plan("SELECT Name, Value, RawValue FROM RecordFacts WHERE URL_ID = 1"),
                HasSubstr("RecordFacts_Relationship"));
    EXPECT_THAT(kept({{"library"}, false, false, false}), ElementsAre(4, 2, 1));
}

} // namespace
} // namespace nv
