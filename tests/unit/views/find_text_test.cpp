#include "MadeProject.h"
#include "db/project/StoredQueries.h"
#include "time/ExactZone.h"
#include "views/table/UrlTable.h"

#include <gmock/gmock.h>

#include <fstream>

namespace nv {
namespace {

struct FindTextTest : testing::Test, test::MadeProject {
    FindTextTest() { table.dates().currentYear = 2012; }

    std::int64_t page(const std::string &url, const std::string &title = {}) {
        m_day += 1;
        return add({{"ActionDateUTC", m_day},
                    {"ActionDateLocal", m_day},
                    {"URL", url},
                    {"WebPageTitle", title},
                    {"CacheType", "Chrome History"},
                    {"Status", "URL"},
                    {"Visits", std::int64_t{7}},
                    {"IsHistory", std::int64_t{1}}});
    }
    /// "place column" of the next cell, and a word when there is none.
    std::string found(const std::string &text, std::size_t from = 0,
                      std::vector<UrlColumn> columns = shownColumns()) {
        const FindResult result = table.find({text, std::move(columns)}, from, task);
        if (result.end == FindEnd::found)
            return fmt::format("{} {}", result.place, factsOf(result.column).header);
        return result.end == FindEnd::cancelled ? "cancelled" : "not there";
    }
    static std::vector<UrlColumn> shownColumns() {
        std::vector<UrlColumn> columns;
        for (const UrlColumnFacts &facts : kUrlColumns)
            if (facts.shown == Shown::Yes)
                columns.push_back(facts.column);
        return columns;
    }

    double m_day = 40708;
    Unwatched task;
    UrlTable table{db(), log, zone};
};

TEST_F(FindTextTest, looksIntoWholeValues) {
    page("http://a.example/" + std::string(2000, 'x') + "needle");
    page("http://b.example/", std::string(400, ' ') + "M\u00DCLLER");
    table.loadURLs(task);
    EXPECT_EQ(found("NEEDLE"), "0 URL");
    EXPECT_EQ(found("m\u00FCller"), "1 Web Page Title");
    EXPECT_EQ(found("needles"), "not there");
    EXPECT_EQ(found("100%"), "not there") << "no pattern";
    EXPECT_EQ(found("a_example"), "not there");
}

TEST_F(FindTextTest, looksIntoWhatCellsShow) {
    page("http://a.example/");
    table.loadURLs(task);
    EXPECT_EQ(found("2011-06-15"), "0 Action Date [UTC]");
    EXPECT_EQ(found(" dst"), "0 Action Date [Local]");
    EXPECT_EQ(found("CHROME H"), "0 Type");
    EXPECT_EQ(found("No"), "0 Rebuilt");
    EXPECT_EQ(found("7"), "0 Visits");
    EXPECT_EQ(found("false"), "0 GZipped");
    EXPECT_EQ(found("url"), "0 Status");
    EXPECT_EQ(found("40709"), "not there") << "the stored number of a date";
    EXPECT_EQ(found("Unreadable"), "not there");
}

TEST_F(FindTextTest, findsTheAbbreviationsOfAnExactZone) {
    setExactZone(zone, ExactZones("/usr/share/zoneinfo").find("Europe/Berlin"),
                 Date::fromCivil({2011, 6, 15}));
    page("http://a.example/");
    table.loadURLs(task);
    EXPECT_EQ(found("00 cest"), "0 Action Date [Local]");
    EXPECT_EQ(found("00 dst"), "not there");
}

TEST_F(FindTextTest, looksIntoTheColumnsThatAreShownAlone) {
    page("http://a.example/", "title");
    table.loadURLs(task);
    EXPECT_EQ(found("title", 0, {UrlColumn::Value, UrlColumn::Visits}), "not there");
    EXPECT_EQ(found("title", 0, {UrlColumn::Value, UrlColumn::WebpageTitle}), "0 Web Page Title");
}

TEST_F(FindTextTest, findsStandInsOfCharactersThatWouldDeceive) {
    page("http://a.example/photo\u202Egnp.exe");
    table.loadURLs(task);
    EXPECT_EQ(found("<U+202E>"), "0 URL");
    EXPECT_EQ(found("photo\u202Egnp"), "0 URL");
}

TEST_F(FindTextTest, goesRoundAndKnowsWhatItHasFound) {
    for (int i = 0; i < 3000; ++i)
        page(i % 1499 == 0 ? "http://mark.example/" : "http://other.example/");
    table.loadURLs(task);
    EXPECT_EQ(found("mark"), "0 URL");
    EXPECT_EQ(found("mark", 1), "1499 URL");
    EXPECT_EQ(found("mark", 1500), "2998 URL");
    EXPECT_EQ(found("mark", 2999), "0 URL");
    db().exec("UPDATE URLs SET URL = 'x' WHERE URL_ID = 1500");
    table.refreshRows();
    EXPECT_EQ(found("mark", 1), "2998 URL");
}

TEST_F(FindTextTest, looksIntoTheRowsOfTheListAlone) {
    page("http://one.example/");
    page("http://two.example/");
    StoredQueries(db()).save({"Two", "SELECT * FROM URLs WHERE URL LIKE '%two%'"});
    table.choice.activeQueryName = "Two";
    table.loadURLs(task);
    EXPECT_EQ(found("http://one"), "not there");
    EXPECT_EQ(found("http://two"), "0 URL");
}

TEST_F(FindTextTest, canBeCancelled) {
    for (int i = 0; i < 50; ++i)
        page("http://other.example/");
    table.loadURLs(task);
    test::CancelAfter cancel(10);
    EXPECT_EQ(table.find({"needle", shownColumns()}, 0, cancel).end, FindEnd::cancelled);
    EXPECT_EQ(found("needle"), "not there") << "what was not looked at isn't known";
}

/// Looks for a text while the table is at work, as a window does that stays alive meanwhile.
struct LookingTask final : TaskMonitor {
    LookingTask(UrlTable &theTable, FindText theText) : table(theTable), text(std::move(theText)) {}
    void describe(const TaskHeading &) override {}
    bool advance(double) override {
        ends.push_back(table.find(text, 0, none).end);
        return true;
    }
    bool wantsStep() const override { return false; }
    void show(const TaskStep &) override {}

    UrlTable &table;
    FindText text;
    Unwatched none;
    std::vector<FindEnd> ends;
};

TEST_F(FindTextTest, whileALoadRunsNothingIsKnownOfItsRows) {
    for (int i = 0; i < 50; ++i)
        page("http://needle.example/");
    LookingTask looking(table, {"needle", shownColumns()});
    EXPECT_EQ(table.loadURLs(looking), LoadResult::Loaded);
    ASSERT_FALSE(looking.ends.empty());
    EXPECT_THAT(looking.ends, testing::Each(FindEnd::cancelled));
    EXPECT_EQ(found("needle"), "0 URL");
}

TEST_F(FindTextTest, inAnEmptyListThereIsNothing) {
    table.loadURLs(task);
    EXPECT_EQ(found("x"), "not there");
}

/// On a second connection: the first must be gone before the file is damaged.
struct FindInDamageTest : testing::Test, test::MadeProject {};

TEST_F(FindInDamageTest, aBrokenPageCostsItsRowsAlone) {
    for (int i = 1; i <= 2000; ++i)
        add({{"ActionDateLocal", 40000.0 + i}, {"URL", fmt::format("http://host/{}-", i)}});
    db().exec("CREATE INDEX ByDate ON URLs (ActionDateLocal)");
    const auto page = db().execAndGet("SELECT pageno FROM dbstat WHERE name = 'URLs' AND "
                                      "pagetype = 'leaf' ORDER BY path LIMIT 1 OFFSET 10")
                          .getInt64();
    const auto pageSize = db().execAndGet("PRAGMA page_size").getInt64();
    project.closeDB();
    {
        std::fstream file(project.filePath, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp((page - 1) * pageSize);
        file << std::string(16, '\xFF');
    }
    project.open(Access::read);
    Unwatched task;
    UrlTable table(db(), log, zone);
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded) << table.failure();
    const FindText last{"host/2000-", {UrlColumn::Value}};
    const FindResult result = table.find(last, 0, task);
    EXPECT_EQ(result.end, FindEnd::found);
    EXPECT_EQ(result.place, 1999u);
    const FindResult none = table.find({"no such text", {UrlColumn::Value}}, 0, task);
    EXPECT_EQ(none.end, FindEnd::notThere);
    EXPECT_GT(none.unread.size(), 3u);
    EXPECT_LT(none.unread.size(), 200u);
}

} // namespace
} // namespace nv
