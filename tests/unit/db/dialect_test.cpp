#include "db/Dialect.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(Dialect, replacesWordsButNothingInsideOfTextsAndNames) {
    EXPECT_EQ(translate("SELECT Len(URL) FROM URLs WHERE Hidden = True"),
              "SELECT length(URL) FROM URLs WHERE Hidden = 1");
    EXPECT_EQ(translate("SELECT 'True Len(x) [a] #1/1/2009#', [True] FROM t"),
              "SELECT 'True Len(x) [a] #1/1/2009#', \"True\" FROM t");
    EXPECT_EQ(translate("SELECT UCASE(a), lcase (b), t.True FROM t"),
              "SELECT upper(a), lower (b), t.True FROM t");
    EXPECT_EQ(translate("SELECT Length FROM t -- True"), "SELECT Length FROM t  ");
}

TEST(Dialect, readsTextsInEitherQuote) {
    EXPECT_EQ(translate("SELECT \"it's \"\"so\"\"\""), "SELECT 'it''s \"so\"'");
    EXPECT_EQ(translate("SELECT 'it''s'"), "SELECT 'it''s'");
    EXPECT_EQ(translate("SELECT a & b"), "SELECT a || b");
}

TEST(Dialect, putsTheRowsOfTopAtTheEndOfTheirSelect) {
    EXPECT_EQ(translate("SELECT TOP 25 URLs.* FROM URLs ORDER BY Visits"),
              "SELECT  URLs.* FROM URLs ORDER BY Visits LIMIT 25");
    EXPECT_EQ(translate("SELECT * FROM (SELECT DISTINCT TOP 3 a FROM t ORDER BY a) WHERE b IN "
                        "(SELECT TOP 1 c FROM u)"),
              "SELECT * FROM (SELECT DISTINCT  a FROM t ORDER BY a LIMIT 3) WHERE b IN "
              "(SELECT  c FROM u LIMIT 1)");
    EXPECT_EQ(translate("SELECT top FROM t"), "SELECT top FROM t");
}

TEST(Dialect, readsDates) {
    EXPECT_EQ(translate("SELECT #1/15/2009#"), "SELECT (39828)");
    EXPECT_EQ(translate("SELECT #2009-01-15 12:00:00#"), "SELECT (39828.5)");
    EXPECT_EQ(parseDateLiteral("1/15/2009 12:30:00 AM")->days(), 39828 + 0.5 / 24);
    EXPECT_EQ(parseDateLiteral("1/15/2009 6 PM")->days(), 39828.75);
    EXPECT_EQ(parseDateLiteral("1/15/09")->days(), 39828);
    EXPECT_EQ(parseDateLiteral("1/15/30")->civil().year, 1930);
    EXPECT_EQ(translate("SELECT 1-#1/1/1899#"), "SELECT 1-(-363)");
    for (const char *bad :
         {"", "1/2", "15/1/2009", "13/13/2009", "2009-02-30", "x", "1/15/2009 25:00",
          "1/15/2009 13 PM", "1/15/2009 7", "1//2009", "99999999999/1/1"})
        EXPECT_EQ(parseDateLiteral(bad), std::nullopt) << bad;
}

TEST(Dialect, aDateKeepsItsSecond) {
    const CivilTime civil{2011, 6, 15, 3, 4, 5};
    const std::string sql = translate("#6/15/2011 3:04:05 AM#");
    EXPECT_EQ(std::stod(sql.substr(1)), Date::fromCivil(civil).days());
}

TEST(Dialect, knowsMoreOfTheBuiltInsAndBothKindsOfQuotedNames) {
    EXPECT_EQ(translate("SELECT Mid(a, 1, 2), Nz(b, 0) FROM t"),
              "SELECT substr(a, 1, 2), ifnull(b, 0) FROM t");
    EXPECT_EQ(translate("SELECT `a True` FROM [b \"c\"]"),
              "SELECT \"a True\" FROM \"b \"\"c\"\"\"");
}

TEST(Dialect, topBesideUnionIsRefusedOnItsOwnLevelOnly) {
    EXPECT_THROW(translate("SELECT TOP 2 a FROM t UNION SELECT a FROM u"), DialectError);
    EXPECT_EQ(translate("SELECT a FROM t UNION SELECT * FROM (SELECT TOP 2 a FROM u)"),
              "SELECT a FROM t UNION SELECT * FROM (SELECT  a FROM u LIMIT 2)");
}

TEST(Dialect, saysWhatItCantRead) {
    for (const char *bad :
         {"SELECT 'open", "SELECT [open", "SELECT #1/1/2009", "SELECT #nonsense#", "SELECT \"open",
          "SELECT TOP x a FROM t", "SELECT TOP 5 PERCENT a FROM t", "SELECT 1; DROP TABLE URLs",
          "SELECT * FROM URLs WHERE URL LIKE '%[a'"})
        EXPECT_THROW(translate(bad), DialectError) << bad;
    EXPECT_EQ(translate("SELECT 1; -- done"), "SELECT 1  ");
    EXPECT_THROW(translate(std::string_view("SELECT 1\0DROP", 13)), DialectError);
}

TEST(Dialect, survivesAnythingThatIsTyped) {
    EXPECT_EQ(translate(""), "");
    EXPECT_EQ(translate("))))(((("), "))))((((");
    const std::string deep(100'000, '(');
    EXPECT_EQ(translate(deep).size(), deep.size());
}

} // namespace
} // namespace nv
