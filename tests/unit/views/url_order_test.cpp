#include "MadeProject.h"
#include "db/project/StoredQueries.h"
#include "views/table/UrlTable.h"

// In which order the table has its rows, and the columns that came later.
namespace nv {
namespace {

struct UrlOrderTest : testing::Test, test::MadeProject {
    UrlOrderTest() { table.dates().currentYear = 2012; }
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

TEST_F(UrlOrderTest, rowsWithoutADateComeLastWhenAskedFor) {
    add({{"URL", "none"}, {"Host", "h"}});
    page(40002, "second");
    page(40001, "first");
    table.undated = Undated::Last;
    const Texts rising{"first", "second", "none"};
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(urls(), rising);
    for (const UrlColumn column : {UrlColumn::LocalDate, UrlColumn::ActionDateUtc}) {
        table.sortBy(column, SortDirection::Descending, task);
        EXPECT_EQ(urls(), (Texts{"second", "first", "none"}));
        table.sortBy(column, SortDirection::Ascending, task);
        EXPECT_EQ(urls(), rising);
    }
    table.sort.reset();
    table.choice = {"", true, "h"};
    table.filters = firstFilters();
    table.filters.enableFilters = true;
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(urls(), rising);
    table.filters.showHistoryURLs = false;
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(urls(), Texts{"none"});
    EXPECT_EQ(table.hiddenCount(), 2u);
}

TEST_F(UrlOrderTest, anOrderOfTheQuerysOwnIsLeftAlone) {
    add({{"URL", "none"}, {"Host", "a"}});
    page(40001, "dated", "b");
    StoredQueries(db()).save({"By host", "SELECT * FROM URLs ORDER BY Host ASC"});
    StoredQueries(db()).save({"No date", "SELECT URL_ID, URL FROM URLs ORDER BY ActionDateLocal"});
    table.undated = Undated::Last;
    for (const char *name : {"By host", "No date"}) {
        table.choice.activeQueryName = name;
        EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
        EXPECT_EQ(urls(), (Texts{"none", "dated"})) << name;
    }
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(UrlOrderTest, aSortByAColumnOutlivesLoadsAndQueries) {
    page(1, "a", "x");
    page(2, "b", "y");
    page(3, "c", "z");
    table.loadURLs(task);
    table.sortBy(UrlColumn::Host, SortDirection::Descending, task);
    const ColumnSort sort{UrlColumn::Host, SortDirection::Descending};
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(urls(), (Texts{"c", "b", "a"}));
    EXPECT_EQ(table.columnSort(), sort);
    StoredQueries(db()).save({"Two", "SELECT * FROM URLs WHERE URL <> 'b' ORDER BY URL"});
    table.choice.activeQueryName = "Two";
    table.loadURLs(task);
    EXPECT_EQ(urls(), (Texts{"c", "a"}));
    StoredQueries(db()).save({"No host", "SELECT URL_ID, URL FROM URLs ORDER BY URL"});
    table.choice.activeQueryName = "No host";
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(urls(), (Texts{"a", "b", "c"})); // by its own order
    EXPECT_EQ(table.columnSort(), std::nullopt);
    EXPECT_EQ(table.sort, sort);
    table.choice.activeQueryName.clear();
    table.loadURLs(task);
    EXPECT_EQ(table.columnSort(), sort);
    table.sortBy(SortChoice::Url, task);
    table.loadURLs(task);
    EXPECT_EQ(urls(), (Texts{"a", "b", "c"}));
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(UrlOrderTest, aNoteHasAMarkAndNotedRowsComeFirst) {
    page(1, "a");
    const auto noted = page(2, "b");
    db().exec(fmt::format("UPDATE URLs SET Notes = 'Seen' WHERE URL_ID = {}", noted));
    table.loadURLs(task);
    EXPECT_EQ(table.cell(0, UrlColumn::Note), "");
    EXPECT_EQ(table.cell(1, UrlColumn::Note), "Yes");
    EXPECT_EQ(std::get<bool>(table.machineCell(1, UrlColumn::Note)), true);
    table.sortBy(UrlColumn::Note, SortDirection::Ascending, task);
    EXPECT_EQ(urls(), (Texts{"b", "a"}));
}

TEST_F(UrlOrderTest, theLocalDateIsShownWhateverItsAge) {
    page(36526, "old"); // 2000-01-01
    table.loadURLs(task);
    EXPECT_EQ(table.cell(0, UrlColumn::ActionDateLocal), "");
    EXPECT_EQ(table.cell(0, UrlColumn::LocalDate), "1999-12-31 19:00:00 STD");
}

TEST_F(UrlOrderTest, whoseARecordIsCanBeShownAndSortedBy) {
    const auto first = add({{"URL", "1"}, {"Browser", "Vivaldi"}, {"Profile", "Default"}});
    const auto second = add({{"URL", "2"}, {"Browser", "brave"}, {"Person", "alice"}});
    table.loadURLs(task);
    EXPECT_EQ(table.sortBy(UrlColumn::Browser, SortDirection::Ascending, task), LoadResult::Loaded);
    EXPECT_EQ(table.ids(),
              (RowIds{static_cast<std::int32_t>(second), static_cast<std::int32_t>(first)}));
    EXPECT_EQ(table.cell(0, UrlColumn::Browser), "brave");
    EXPECT_EQ(table.cell(0, UrlColumn::Person), "alice");
    EXPECT_EQ(table.cell(1, UrlColumn::Profile), "Default");
    EXPECT_EQ(table.cell(1, UrlColumn::Person), "");
    EXPECT_EQ(sortIn("COL_URL_PERSON DESC"),
              (ColumnSort{UrlColumn::Person, SortDirection::Descending}));
}

TEST_F(UrlOrderTest, factsOfARowAreReadByItsPlace) {
    page(40002, "second");
    page(40001, "first");
    FactList facts;
    facts.add("count", 3);
    RecordFacts(db()).store(UrlId{1}, facts);
    table.loadURLs(task);
    RecordFacts reader = table.factReader();
    EXPECT_TRUE(table.facts(0, reader).empty());
    EXPECT_EQ(table.facts(1, reader), facts);
    EXPECT_TRUE(table.facts(7, reader).empty());
}

} // namespace
} // namespace nv
