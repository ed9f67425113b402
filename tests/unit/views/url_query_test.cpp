#include "views/rows/UrlQuery.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

RowChoice hostFiltered(std::string query, std::string host) {
    return {std::move(query), true, std::move(host)};
}

TEST(QueryText, runsTheActiveQueryOrTheDefaultOne) {
    EXPECT_EQ(queryText({}), "SELECT [_DEFAULT].* FROM [_DEFAULT]");
    EXPECT_EQ(queryText({"Facebook", false, "ignored"}), "SELECT [Facebook].* FROM [Facebook]");
    EXPECT_EQ(queryText(hostFiltered("", "")), "SELECT [_DEFAULT].* FROM [_DEFAULT]");
}

TEST(QueryText, wrapsTheQueryByTheHostFilter) {
    EXPECT_EQ(queryText(hostFiltered("", "a.example")),
              "SELECT [_DEFAULT].* FROM [_DEFAULT] WHERE [_DEFAULT].Host LIKE ? "
              "ORDER BY [_DEFAULT].ActionDateLocal ASC");
    EXPECT_EQ(queryText(hostFiltered("Google/Gmail", "x")),
              "SELECT [Google/Gmail].* FROM [Google/Gmail] WHERE [Google/Gmail].Host LIKE ? "
              "ORDER BY [Google/Gmail].ActionDateLocal ASC");
}

TEST(QueryText, quotesANameThatHoldsBrackets) {
    EXPECT_EQ(queryText({"a]b\"c", false, ""}), "SELECT \"a]b\"\"c\".* FROM \"a]b\"\"c\"");
}

TEST(LoadQuery, neverTakesTheHostIntoItsText) {
    const IdQuery query = loadQuery(hostFiltered("", "x' OR 1=1 --"));
    EXPECT_EQ(query.sql.find("1=1"), std::string::npos);
    EXPECT_EQ(query.bound, "%x' OR 1=1 --%");
}

TEST(HostPattern, quotesTheCharactersOfLike) {
    EXPECT_EQ(hostPattern("a_b%c[d]"), "%a[_]b[%]c[[]d]%");
    EXPECT_EQ(hostPattern("plain"), "%plain%");
}

TEST(SortQuery, ordersTheActiveRowsByOneColumn) {
    EXPECT_EQ(sortQuery({}, {UrlColumn::Visits, SortDirection::Descending}, Undated::Last).sql,
              "SELECT URL_ID FROM [_DEFAULT] ORDER BY [Visits] DESC, URL_ID ASC");
    const IdQuery filtered =
        sortQuery(hostFiltered("Hotmail", "h"), {UrlColumn::Type, SortDirection::Ascending},
                  Undated::AsTheQueryHasThem);
    EXPECT_EQ(
        filtered.sql,
        "SELECT URL_ID FROM [Hotmail] WHERE Host LIKE ? ORDER BY [CacheType] ASC, URL_ID ASC");
    EXPECT_EQ(filtered.bound, "%h%");
}

TEST(SortQuery, putsRowsWithoutADateLastInEitherOrder) {
    EXPECT_EQ(
        sortQuery({}, {UrlColumn::LocalDate, SortDirection::Ascending}, Undated::Last).sql,
        "SELECT URL_ID FROM [_DEFAULT] ORDER BY [ActionDateLocal] ASC NULLS LAST, URL_ID ASC");
    EXPECT_EQ(sortQuery({}, {UrlColumn::ExpiryDate, SortDirection::Descending}, Undated::Last).sql,
              "SELECT URL_ID FROM [_DEFAULT] ORDER BY nullif([ExpiryDate], 0) DESC NULLS LAST, "
              "URL_ID ASC");
}

TEST(UndatedLastQueries, areForOrdersThatBeginWithADate) {
    for (const char *text : {"SELECT * FROM URLs ORDER BY ActionDateLocal ASC",
                             "select * from urls order by actiondatelocal",
                             "SELECT * FROM URLs\r\nORDER BY [URLs].[ActionDateLocal], Host"}) {
        const auto queries = undatedLastQueries({}, text);
        ASSERT_EQ(queries.size(), 2u) << text;
        EXPECT_EQ(queries[0].sql, "SELECT URL_ID FROM (SELECT [_DEFAULT].* FROM [_DEFAULT]) "
                                  "WHERE [ActionDateLocal] IS NOT NULL");
        EXPECT_TRUE(queries[1].sql.ends_with("WHERE [ActionDateLocal] IS NULL"));
    }
    EXPECT_TRUE(
        undatedLastQueries({}, "SELECT * FROM URLs ORDER BY Visits DESC, ActionDateLocal").empty());
    EXPECT_TRUE(undatedLastQueries({}, "SELECT * FROM URLs").empty());
    const auto filtered = undatedLastQueries(hostFiltered("", "h"), "SELECT * FROM URLs");
    ASSERT_EQ(filtered.size(), 2u); // the host filter sorts by date
    EXPECT_EQ(filtered[1].bound, "%h%");
}

TEST(SortText, comesBackAsItWasKept) {
    const ColumnSort sort{UrlColumn::Host, SortDirection::Descending};
    EXPECT_EQ(sortText(sort), "COL_URL_HOST DESC");
    EXPECT_EQ(sortIn("COL_URL_HOST DESC"), sort);
    for (const char *text : {"", "COL_URL_HOST", "COL_URL_NONE ASC", "COL_URL_ICON ASC",
                             "COL_URL_HOST UP", "COL_URL_HOST ASC x"})
        EXPECT_EQ(sortIn(text), std::nullopt) << text;
}

TEST(SortQuery, knowsColumnsWithoutAnOrder) {
    EXPECT_FALSE(isSortable(UrlColumn::Icon));
    EXPECT_FALSE(isSortable(UrlColumn::Linked));
    EXPECT_FALSE(isSortable(UrlColumn::KeywordFlag));
    EXPECT_TRUE(isSortable(UrlColumn::Rebuilt));
    EXPECT_TRUE(isSortable(UrlColumn::Tag));
    EXPECT_TRUE(isSortable(UrlColumn::Id));
}

TEST(SortChoices, keepTheirTexts) {
    EXPECT_EQ(kSortChoices[0].query, "SELECT * FROM URLs ORDER BY FileName ASC, ActionDateUTC ASC");
    EXPECT_EQ(kSortChoices[5].query, "SELECT * FROM URLs ORDER BY Host ASC, Visits DESC");
    for (std::size_t at = 0; at < kSortChoices.size(); ++at)
        EXPECT_EQ(static_cast<std::size_t>(kSortChoices[at].choice), at);
    EXPECT_EQ(sortQuery(hostFiltered("", "h"), SortChoice::Visits).sql,
              "SELECT URL_ID FROM URLs WHERE Host LIKE ? ORDER BY Visits DESC, ActionDateUTC ASC");
}

} // namespace
} // namespace nv
