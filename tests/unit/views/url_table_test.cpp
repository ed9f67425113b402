#include "MadeProject.h"
#include "db/project/ProjectFields.h"
#include "db/project/StoredQueries.h"
#include "views/table/UrlTable.h"

namespace nv {
namespace {

struct UrlTableTest : testing::Test, test::MadeProject {
    UrlTableTest() { table.dates().currentYear = 2012; }
    std::int64_t page(double day, const std::string &url, const std::string &host = "h") {
        return add({{"ActionDateUTC", day},
                    {"ActionDateLocal", day},
                    {"URL", url},
                    {"Host", host},
                    {"CacheType", "Chrome History"},
                    {"IsHistory", std::int64_t{1}}});
    }
    std::vector<std::string> urls() {
        std::vector<std::string> texts;
        for (std::size_t place = 0; place < table.rowCount(); ++place)
            texts.push_back(table.cell(place, UrlColumn::Value));
        return texts;
    }
    using Texts = std::vector<std::string>;
    Unwatched task;
    UrlTable table{db(), log, zone};
};

TEST_F(UrlTableTest, loadsTheActiveQueryInDateOrder) {
    EXPECT_EQ(table.emptyState(), EmptyState::NotLoaded);
    page(40002, "second");
    page(40001, "first");
    add({{"URL", "without a date"}});
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(urls(), (Texts{"without a date", "first", "second"}));
    StoredQueries(db()).save({"Mine", "SELECT * FROM URLs WHERE URL = 'SECOND'"});
    table.choice.activeQueryName = "Mine";
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(urls(), Texts{"second"});
}

TEST_F(UrlTableTest, aKeywordQueryWithoutItsTermsSaysWhyItFindsNothing) {
    page(1, "a");
    for (const char *name : {"Child Exploitation", "XXX Content (in URLs)"}) {
        table.choice.activeQueryName = name;
        EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
        EXPECT_EQ(table.emptyState(), EmptyState::NoTerms) << name;
    }
    table.choice.activeQueryName = "Phishing";
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.emptyState(), EmptyState::NoMatches);
}

TEST_F(UrlTableTest, theHostFilterTakesItsTextLiterally) {
    page(1, "a", "www.example.com");
    page(2, "b", "it's_100%.example");
    table.choice.filterByHostEnabled = true;
    for (const auto &[host, expected] :
         std::vector<std::pair<std::string, Texts>>{{"EXAMPLE", {"a", "b"}},
                                                    {"it's", {"b"}},
                                                    {"_", {"b"}},
                                                    {"%", {"b"}},
                                                    {"' OR '1'='1", {}},
                                                    {"[", {}}}) {
        table.choice.filterByHostValue = host;
        EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded) << host;
        EXPECT_EQ(urls(), expected) << host;
    }
    EXPECT_EQ(table.emptyState(), EmptyState::NoMatches);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(UrlTableTest, aQueryThatFailsIsLoggedAndShowsNothing) {
    page(1, "a");
    table.choice.activeQueryName = "no such query";
    EXPECT_EQ(table.loadURLs(task), LoadResult::Failed);
    EXPECT_EQ(table.emptyState(), EmptyState::Failed);
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_EQ(log.entries[0].procedure, "MainForm.LoadURLs()");
    EXPECT_EQ(table.failure(), "no such table: no such query");
    const Message told = loadFailure(table.failure());
    EXPECT_EQ(told.title, "Error Loading Cache");
    EXPECT_EQ(told.text, table.failure());
    table.choice.activeQueryName.clear();
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.failure(), "");
}

TEST_F(UrlTableTest, aCancelledLoadLeavesTheRowsUpToThatMoment) {
    for (int i = 0; i < 20'000; ++i)
        page(i, "x");
    test::CancelAfter soon(3);
    EXPECT_EQ(table.loadURLs(soon), LoadResult::Cancelled);
    EXPECT_LT(table.rowCount(), 20'000u);
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.rowCount(), 20'000u);
}

TEST_F(UrlTableTest, sortsByAColumnWithTiesByKey) {
    const auto b = page(1, "b");
    const auto a = page(2, "A");
    const auto second = page(3, "b");
    table.loadURLs(task);
    EXPECT_EQ(table.sortBy(UrlColumn::Value, SortDirection::Ascending, task), LoadResult::Loaded);
    EXPECT_EQ(table.ids(), (RowIds{static_cast<std::int32_t>(a), static_cast<std::int32_t>(b),
                                   static_cast<std::int32_t>(second)}));
    EXPECT_EQ(table.sortBy(UrlColumn::Value, SortDirection::Descending, task), LoadResult::Loaded);
    EXPECT_EQ(table.cell(0, UrlColumn::Value), "b");
    EXPECT_EQ(table.columnSort()->direction, SortDirection::Descending);
}

TEST_F(UrlTableTest, menuSortsThatNameOtherTablesColumnsFailAndKeepTheRows) {
    page(1, "b");
    page(2, "a");
    table.loadURLs(task);
    for (const SortChoice choice :
         {SortChoice::UrlFileName, SortChoice::FileSize, SortChoice::Extension}) {
        log.entries.clear();
        EXPECT_EQ(table.sortBy(choice, task), LoadResult::Failed);
        EXPECT_EQ(urls(), (Texts{"b", "a"}));
        ASSERT_EQ(log.entries.size(), 1u);
        EXPECT_EQ(log.entries[0].severity, Severity::Warning);
    }
    EXPECT_EQ(table.sortBy(SortChoice::Url, task), LoadResult::Loaded);
    EXPECT_EQ(urls(), (Texts{"a", "b"}));
}

TEST_F(UrlTableTest, aTickIsInTheDatabaseAtOnce) {
    const auto id = page(1, "a");
    page(2, "b");
    table.loadURLs(task);
    EXPECT_TRUE(table.setTagged(0, true));
    EXPECT_TRUE(table.isTagged(0));
    EXPECT_EQ(fieldOf(id, "Tagged"), "1");
    EXPECT_TRUE(table.setTagged(0, 2, false, task));
    EXPECT_EQ(fieldOf(id, "Tagged"), "0");
    EXPECT_FALSE(table.isTagged(0));
    EXPECT_FALSE(table.setTagged(7, true));
}

TEST_F(UrlTableTest, aTickThatCantBeWrittenIsNothingSerious) {
    page(1, "a");
    table.loadURLs(task);
    db().exec("DELETE FROM URLs");
    EXPECT_FALSE(table.setTagged(0, true));
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_EQ(log.entries[0].severity, Severity::Low);
    EXPECT_EQ(log.entries[0].recommendation, "This is not a serious error.");
}

TEST_F(UrlTableTest, cellsFollowTheirRules) {
    const auto id = add({{"ActionDateUTC", test::daysOf({2011, 6, 15, 16, 0, 5})},
                         {"CacheFileCreated", test::daysOf({2011, 6, 15, 16, 0, 5})},
                         {"URL", "http://h/"},
                         {"CacheType", "IE Daily"},
                         {"IsHistory", std::int64_t{1}},
                         {"IngredientIDs", "1|2"},
                         {"CacheFileExists", std::int64_t{1}},
                         {"RebuiltDateTime", nullptr}});
    insert("LinkAnalysis", {{"Parent_ID", id}, {"Child_ID", id}});
    table.loadURLs(task);
    EXPECT_EQ(table.cell(0, UrlColumn::ActionDateUtc), "2011-06-15 16:00:05");
    EXPECT_EQ(table.cell(0, UrlColumn::ActionDateLocal), "2011-06-15 12:00:05 DST");
    EXPECT_EQ(table.cell(0, UrlColumn::FileCreated), "15-Jun-2011 16:00:05");
    EXPECT_EQ(table.cell(0, UrlColumn::Rebuilt), "Yes");
    EXPECT_EQ(table.cell(0, UrlColumn::FileExists), "Yes");
    EXPECT_EQ(table.cell(0, UrlColumn::Linked), "1");
    EXPECT_EQ(table.cell(0, UrlColumn::Type), "IE DAILY");
    EXPECT_EQ(table.cell(0, UrlColumn::TimeRebuilt), "");
    EXPECT_EQ(table.cell(0, UrlColumn::ExpiryDate), "");
    EXPECT_EQ(table.iconKey(0), "history");
    EXPECT_EQ(std::get<std::string>(table.machineCell(0, UrlColumn::ActionDateUtc)),
              "2011-06-15T16:00:05Z");
    EXPECT_EQ(std::get<std::string>(table.machineCell(0, UrlColumn::ActionDateLocal)),
              "2011-06-15T12:00:05-04:00");
}

TEST_F(UrlTableTest, aDateOfMoreThanTenYearsAgoShowsNoZoneText) {
    add({{"ActionDateUTC", test::daysOf({2001, 12, 31, 4, 0, 0})}});
    table.loadURLs(task);
    EXPECT_EQ(table.cell(0, UrlColumn::ActionDateLocal), "");
    EXPECT_EQ(table.cell(0, UrlColumn::ActionDateUtc), "2001-12-31 04:00:00");
}

TEST_F(UrlTableTest, aCacheRowWhoseFileIsGoneHasABadPath) {
    const auto file = folder.write("cache/index.dat", "x");
    const std::string root = folder.path().string() + "/";
    add({{"CacheType", "Firefox Cache"},
         {"RootPath", root},
         {"HistoryFilePath", file.string()},
         {"Status", "URL"}});
    add({{"CacheType", "IE Cache"},
         {"RootPath", root},
         {"CacheFileRelativePath", "cache/gone.htm"},
         {"CacheFolderName", "AB"},
         {"Status", "URL "}});
    table.loadURLs(task);
    EXPECT_EQ(table.cell(0, UrlColumn::Status), "URL");
    EXPECT_EQ(table.cell(1, UrlColumn::Status), "Bad Path");
}

TEST_F(UrlTableTest, hostileTextsStayOneLineAndWhole) {
    const std::string huge(10'000'000, 'x');
    const std::string hostile = std::string("a\0b\n<b>\x1B[31m\u202Ec", 17);
    add({{"URL", huge}});
    add({{"URL", hostile}});
    table.loadURLs(task);
    EXPECT_LT(table.cell(0, UrlColumn::Value).size(), 10'000u);
    EXPECT_EQ(table.fullText(0, UrlColumn::Value).size(), huge.size());
    const std::string shown = table.cell(1, UrlColumn::Value);
    EXPECT_EQ(shown.find_first_of(std::string("\0\n\x1B", 3)), std::string::npos);
    EXPECT_NE(shown.find("<b>"), std::string::npos);
}

TEST_F(UrlTableTest, movedEvidenceIsMendedAtLoad) {
    const auto id = add({{"RootPath", "/old/"}, {"URL", "a"}});
    table.rootPath = "/new";
    table.loadURLs(task);
    EXPECT_EQ(fieldOf(id, "RootPath"), "/new/");
}

TEST_F(UrlTableTest, aLoadShowsWhatItIsAt) {
    page(1, "a");
    test::MemoryTask shown;
    table.recordsetDirty = true;
    EXPECT_EQ(table.loadURLs(shown), LoadResult::Loaded);
    EXPECT_FALSE(table.recordsetDirty);
    ASSERT_EQ(shown.headings.size(), 1u);
    EXPECT_EQ(shown.headings[0].title, "LOADING URLS");
    EXPECT_TRUE(shown.headings[0].detail.starts_with("TIP: If you are using Filters"));
    ASSERT_FALSE(shown.steps.empty());
    EXPECT_EQ(shown.steps.back().topMessage, "Validating and Loading Records ");
    EXPECT_EQ(shown.steps.back().bottomMessage, "URL 1 of 1");
}

TEST_F(UrlTableTest, theRecordFiltersComeAfterTheQueryAndStayThroughASort) {
    page(1, "b blog");
    page(2, "drop");
    page(3, "a blog");
    table.filters.enableFilters = true;
    table.filters.showHistoryURLs = true;
    table.filters.showBlogs = true;
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(urls(), (Texts{"b blog", "a blog"}));
    EXPECT_EQ(table.hiddenCount(), 1u);
    EXPECT_EQ(table.sortBy(UrlColumn::Value, SortDirection::Ascending, task), LoadResult::Loaded);
    EXPECT_EQ(urls(), (Texts{"a blog", "b blog"}));
    EXPECT_EQ(table.hiddenCount(), 1u);
    table.filters.enableFilters = false;
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.rowCount(), 3u);
    EXPECT_EQ(table.hiddenCount(), 0u);
}

TEST_F(UrlTableTest, tellsFiltersThatHideEverythingFromAQueryThatFindsNothing) {
    page(1, "a");
    table.filters.enableFilters = true;
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.emptyState(), EmptyState::AllHidden);
    EXPECT_EQ(table.hiddenCount(), 1u);
    table.choice.filterByHostEnabled = true;
    table.choice.filterByHostValue = "elsewhere";
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.emptyState(), EmptyState::NoMatches);
    EXPECT_EQ(table.hiddenCount(), 0u);
}

TEST_F(UrlTableTest, saysWhyItIsEmpty) {
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.emptyState(), EmptyState::NoRecords);
    page(1, "a");
    test::CancelAfter now(0);
    EXPECT_EQ(table.loadURLs(now), LoadResult::Cancelled);
    EXPECT_EQ(table.emptyState(), EmptyState::Cancelled);
    table.loadURLs(task);
    EXPECT_EQ(table.emptyState(), EmptyState::HasRows);
}

TEST_F(UrlTableTest, aCancelledSortLeavesTheOrder) {
    page(1, "b");
    page(2, "a");
    table.loadURLs(task);
    test::CancelAfter now(0);
    EXPECT_EQ(table.sortBy(UrlColumn::Value, SortDirection::Ascending, now), LoadResult::Cancelled);
    EXPECT_EQ(urls(), (Texts{"b", "a"}));
    EXPECT_EQ(table.columnSort(), std::nullopt);
}

TEST_F(UrlTableTest, everySortableColumnSorts) {
    page(1, "b");
    page(2, "a");
    table.loadURLs(task);
    for (const UrlColumnFacts &facts : kTableColumns) {
        EXPECT_EQ(table.sortBy(facts.column, SortDirection::Descending, task), LoadResult::Loaded)
            << facts.key;
        EXPECT_EQ(table.rowCount(), 2u);
    }
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(UrlTableTest, aSortStaysWithinTheRowsOfTheQuery) {
    for (int i = 0; i < 30; ++i)
        add({{"Visits", std::int64_t{i}}, {"URL", fmt::format("{:02}", i)}});
    table.choice.activeQueryName = "TOP 25 URLs";
    table.loadURLs(task);
    EXPECT_EQ(table.rowCount(), 25u);
    EXPECT_EQ(table.sortBy(UrlColumn::Value, SortDirection::Ascending, task), LoadResult::Loaded);
    ASSERT_EQ(table.rowCount(), 25u);
    EXPECT_EQ(table.cell(0, UrlColumn::Value), "05");
}

TEST_F(UrlTableTest, everyStoredQueryOfANewProjectLoads) {
    page(1, "a");
    for (const StoredQuery &query : StoredQueries(db()).list()) {
        table.choice = {query.name, false, ""};
        EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded) << query.name;
    }
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(UrlTableTest, aCancelledTaggingTagsNone) {
    const auto first = page(1, "a");
    page(2, "b");
    table.loadURLs(task);
    test::CancelAfter soon(1);
    EXPECT_FALSE(table.setTagged(0, 2, true, soon));
    EXPECT_EQ(fieldOf(first, "Tagged"), "0");
    EXPECT_FALSE(table.isTagged(0));
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(UrlTableTest, aProjectThatCantBeWrittenIsShownAllTheSame) {
    page(1, "a");
    db().exec("PRAGMA query_only = 1");
    table.rootPath = "/new";
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(urls(), Texts{"a"});
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_FALSE(table.setTagged(0, true));
    EXPECT_FALSE(table.setTagged(0, 1, true, task));
    EXPECT_FALSE(table.isTagged(0));
    ASSERT_EQ(log.entries.size(), 3u);
    EXPECT_EQ(log.entries[1].severity, Severity::Low);
    EXPECT_EQ(log.entries[2].recommendation, "This is not a serious error.");
}

/// A window that paints itself whenever the task lets it.
struct PaintingTask final : TaskMonitor {
    explicit PaintingTask(UrlTable &painted) : table(painted) {}
    void describe(const TaskHeading &) override {}
    bool advance(double) override {
        cells.push_back(table.cell(0, UrlColumn::Value));
        table.setTagged(0, true);
        return true;
    }
    bool wantsStep() const override { return false; }
    void show(const TaskStep &) override {}
    UrlTable &table;
    std::vector<std::string> cells;
};

TEST_F(UrlTableTest, cellsThatAreAskedForDuringASortAreThoseAtHand) {
    const auto id = page(1, "a");
    table.loadURLs(task);
    urls();
    PaintingTask painting(table);
    const std::size_t read = table.pagesRead();
    EXPECT_EQ(table.sortBy(UrlColumn::Value, SortDirection::Ascending, painting),
              LoadResult::Loaded);
    EXPECT_EQ(painting.cells, Texts{"a"});
    EXPECT_EQ(table.pagesRead(), read);
    EXPECT_EQ(fieldOf(id, "Tagged"), "0") << "and nothing is written meanwhile";
}

TEST_F(UrlTableTest, findsARowByItsKey) {
    const auto b = page(2, "b");
    page(1, "a");
    table.loadURLs(task);
    EXPECT_EQ(table.placeOf(UrlId{b}), 1u);
    EXPECT_EQ(table.placeOf(UrlId{99}), std::nullopt);
    EXPECT_EQ(table.idAt(1), UrlId{b});
    EXPECT_EQ(table.idAt(2), UrlId::none);
    EXPECT_EQ(table.cell(2, UrlColumn::Value), "");
    EXPECT_TRUE(std::holds_alternative<std::monostate>(table.machineCell(2, UrlColumn::Value)));
}

} // namespace
} // namespace nv
