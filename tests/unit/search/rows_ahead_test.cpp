#include "SearchedProject.h"
#include "search/RowsAhead.h"

namespace nv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct RowsAheadTest : testing::Test, SearchedProject {
    void addMany(int rows) {
        connection().exec(fmt::format(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < {}) "
            "INSERT INTO URLs (URL) SELECT 'http://host/page' || i || '.html' FROM n",
            rows));
    }
};

TEST_F(RowsAheadTest, giveEachRowOnceInTheOrderOfTheirIds) {
    addMany(3210);
    connection().exec("DELETE FROM URLs WHERE URL_ID BETWEEN 900 AND 1100");
    SearchedRowReader reader(connection());
    RowsAhead ahead(reader);
    std::vector<std::int32_t> ids;
    double last = 0;
    std::size_t batches = 0;
    for (RowBatch batch = ahead.next(); !batch.rows.empty(); batch = ahead.next()) {
        ++batches;
        EXPECT_GT(batch.fraction, last);
        last = batch.fraction;
        EXPECT_FALSE(batch.unread) << "all could be read";
        for (const PrintedRow &each : batch.rows) {
            ids.push_back(each.row.id);
            EXPECT_EQ(each.print, printOf(each.row));
            EXPECT_EQ(each.row.at(SearchField::address),
                      fmt::format("http://host/page{}.html", each.row.id));
        }
    }
    EXPECT_GT(batches, 2U);
    EXPECT_EQ(ids.size(), 3210U - 201U);
    EXPECT_TRUE(std::ranges::is_sorted(ids));
    EXPECT_EQ(ids.back(), 3210);
    EXPECT_EQ(last, 1);
    EXPECT_THAT(ahead.next().rows, IsEmpty()) << "nothing comes after the end";
}

TEST_F(RowsAheadTest, holdFewRowsThatAreLong) {
    for (int row = 0; row < 12; ++row)
        add({{"HTMLBody", std::string(3 << 20, 'x')}});
    SearchedRowReader reader(connection());
    RowsAhead ahead(reader);
    EXPECT_EQ(ahead.next().rows.size(), 2U);
    EXPECT_EQ(ahead.next().rows.front().row.id, 3);
}

TEST_F(RowsAheadTest, leaveTheIndexWhatTheProjectSaysAcrossTheirEnds) {
    addMany(2500);
    EXPECT_THAT(found("page1000"), ElementsAre(1000));
    connection().exec("UPDATE URLs SET URL = 'http://other/' || URL_ID WHERE URL_ID IN (1, 1000, "
                      "1001, 2001); DELETE FROM URLs WHERE URL_ID IN (999, 1002, 2000, 2500)");
    EXPECT_THAT(found("other"), ElementsAre(1, 1000, 1001, 2001));
    EXPECT_FALSE(news.madeAnew);
    EXPECT_EQ(news.changed, 4);
    EXPECT_EQ(news.gone, 4);
    EXPECT_EQ(found("http").size(), 2496U);
    for (const int calls : {0, 1, 999, 1000, 1001, 2200}) {
        connection().exec(fmt::format("UPDATE URLs SET Notes = 'at {}x'", calls));
        SearchIndex search = index();
        CancelAfter soon(calls);
        IndexNews told;
        EXPECT_EQ(search.bringUpToDate(soon, told), IndexEnd::cancelled) << calls;
        EXPECT_EQ(found(fmt::format("\"at {}x\"", calls)).size(), 2496U);
    }
}

} // namespace
} // namespace nv::test
