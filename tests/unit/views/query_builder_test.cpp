#include "MadeProject.h"
#include "views/queries/QueryBuilder.h"
#include "views/queries/QueryMessages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

std::string added(std::string_view field, std::string_view condition, std::string_view value) {
    QueryBuilder builder;
    builder.add(field, condition, value);
    return builder.sqlText.substr(std::string_view("SELECT * FROM URLs").size());
}

TEST(QueryBuilder, theFirstConditionBringsWhereAndOthersAnd) {
    QueryBuilder builder;
    EXPECT_EQ(builder.sqlText, "SELECT * FROM URLs");
    builder.add("URL", "contains", "hotmail");
    builder.add("Visits", ">", "3");
    EXPECT_EQ(builder.sqlText, "SELECT * FROM URLs WHERE URL LIKE  '%hotmail%' AND Visits > 3");
    builder.clear();
    EXPECT_EQ(builder.sqlText, "SELECT * FROM URLs");
    builder.sqlText = "SELECT * FROM URLs where Visits > 3";
    builder.add("Host", "=", "a");
    EXPECT_EQ(builder.sqlText, "SELECT * FROM URLs where Visits > 3 AND Host =  'a'");
}

TEST(QueryBuilder, valuesAfterLikeAreWrappedUnlessTheyAreAPattern) {
    EXPECT_EQ(added("URL", "contains", " a "), " WHERE URL LIKE  '%a%'");
    EXPECT_EQ(added("URL", "contains", "a%"), " WHERE URL LIKE  'a%'");
    EXPECT_EQ(added("URL", "LIKE", "a"), " WHERE URL LIKE  '%a%'");
    EXPECT_EQ(added("URL", "contains", "15"), " WHERE URL LIKE  '%15%'");
}

TEST(QueryBuilder, datesAreMarkedByTheNameOfTheField) {
    EXPECT_EQ(added("ActionDateUTC", ">", "1/15/2009"), " WHERE ActionDateUTC > #1/15/2009#");
    EXPECT_EQ(added("actiondateutc", "=", "#1/15/2009#"), " WHERE actiondateutc = #1/15/2009#");
    EXPECT_EQ(added("ActionDateUTC", "is between", "#12/31/2008# AND #7/15/2009#"),
              " WHERE ActionDateUTC BETWEEN #12/31/2008# AND #7/15/2009#");
    EXPECT_EQ(added("ActionDateUTC", "contains", "2009"), " WHERE ActionDateUTC LIKE #%2009%#");
    EXPECT_EQ(added("URL", "=", "a/b#c"), " WHERE URL = a/b#c"); // taken for a date
    EXPECT_EQ(added("URL", "=", "1/15/2009"), " WHERE URL =  '1/15/2009'");
}

TEST(QueryBuilder, truthValuesAndNumbersStayBare) {
    EXPECT_EQ(added("Tagged", "=", "TRUE"), " WHERE Tagged = TRUE");
    EXPECT_EQ(added("Tagged", "=", "false"), " WHERE Tagged = false");
    EXPECT_EQ(added("Visits", "<>", "-1.5"), " WHERE Visits <> -1.5");
    EXPECT_EQ(added("Visits", "is between", "1 AND 5"), " WHERE Visits BETWEEN  '1 AND 5'");
}

TEST(QueryBuilder, anEmptyPartChangesNothing) {
    EXPECT_EQ(added("", "=", "a"), "");
    EXPECT_EQ(added("URL", " ", "a"), "");
    EXPECT_EQ(added("URL", "contains", "  "), "");
    EXPECT_EQ(added("ActionDateUTC", "=", ""), "");
}

TEST(FavoriteNames, holdLettersBlanksDashesAndUnderscores) {
    for (const char *name : {"", "My own_list-B", "_x", "a\\b]c^d`e"})
        EXPECT_TRUE(isFavoriteName(name)) << name;
    for (const char *name : {"a1", "a[b", "a~b", "a{b", "a@b", "a/b", "\xC3\xA4", "a\tb"})
        EXPECT_FALSE(isFavoriteName(name)) << name;
    EXPECT_EQ(messages::invalidFavoriteName().title, "Invalid Favorite Name");
    EXPECT_EQ(messages::invalidFavoriteName().text,
              "The value entered contains one or more invalid characters.\n"
              "Only letters, dashes and underscores are permitted.");
}

TEST(FieldNames, areThoseOfTheTable) {
    test::MadeProject made;
    EXPECT_EQ(builderTables().front(), "URLs");
    for (const std::string &table : builderTables())
        EXPECT_FALSE(loadFieldNames(made.db(), table).empty()) << table;
    EXPECT_THAT(loadFieldNames(made.db(), "Links"), testing::Contains("Link_ID"));
    EXPECT_ANY_THROW(loadFieldNames(made.db(), "no\" such"));
}

} // namespace
} // namespace nv
