#include "db/sql/Dialect.h"

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

TEST(Dialect, comparesTextsBeyondAsciiAsLikeDoes) {
    EXPECT_EQ(translate("SELECT * FROM t WHERE a = 'M\u00DCLLER' AND b = 'plain'"),
              "SELECT * FROM t WHERE a  LIKE  'M\u00DCLLER' AND b = 'plain'");
    EXPECT_EQ(translate("a <> \"\u00E4_%\""), "a  NOT LIKE  '\u00E4[_][%]'");
    EXPECT_EQ(translate("a == '\u00E4''s'"), "a  LIKE  '\u00E4''s'");
    EXPECT_EQ(translate("'\u00E4' = t.a AND b"), "   t.a LIKE '\u00E4' AND b");
    EXPECT_EQ(translate("('\u00E4' != (b))"), "(   (b) NOT LIKE '\u00E4')");
    for (const char *other : {"a < '\u00E4'", "a = '\u00E4' COLLATE BINARY", "a = '\u00E4' || b",
                              "a IN ('\u00E4')", "SELECT '\u00E4'"})
        EXPECT_EQ(translate(other), other);
}

TEST(Dialect, leavesATextOnTheLeftOfMoreThanAColumn) {
    EXPECT_EQ(translate("SELECT '\u00E4' = [a b] AS x, '\u00E4' <> b FROM t"),
              "SELECT    \"a b\" LIKE '\u00E4' AS x,    b NOT LIKE '\u00E4' FROM t");
    EXPECT_EQ(translate("'\u00E4' = main.t.a OR b"), "   main.t.a LIKE '\u00E4' OR b");
    for (const char *other :
         {"SELECT '\u00E4' = a x FROM t", "'\u00E4' = CASE WHEN a THEN b END",
          "'\u00E4' = a ISNULL", "'\u00E4' = a NOTNULL", "'\u00E4' = a || b", "'\u00E4' = (a) || b",
          "'\u00E4' = f(a)", "'\u00E4' = a + 1", "'\u00E4' = a COLLATE BINARY",
          "'\u00E4' = a IS NULL", "'\u00E4' = NOT a", "'\u00E4' = -a", "'\u00E4' = a.",
          "'\u00E4' = (a", "'\u00E4' =", "b LIKE '\u00E4' = a", "b IS NOT '\u00E4' = a",
          "b BETWEEN '\u00E4' = a AND c"})
        EXPECT_EQ(translate(other), other);
}

TEST(Dialect, refusesADateThatIsComparedWithAText) {
    for (const char *wrong :
         {"ActionDateUTC = '2011-03-01'", "ActionDateUTC > '1/1/2011'", "[actiondateutc] <> ''",
          "URLs.ExpiryDate <= \"2011\"", "'2011' < LastVisited", "'2011' = URLs.LastVisited",
          "(OtherDate) > ('2011')", "ActionDateUTC > Date()", "ActionDateUTC >= DATE('now')",
          "strftime('%Y', 'now') = ActionDateLocal", "TimeAdded = strftime('%Y', 'now')",
          "ActionDateUTC LIKE date('now')", "ActionDateUTC NOT LIKE strftime('%Y', 'now')",
          "ActionDateUTC IN (#2011-01-01#, '2011')", "ActionDateUTC BETWEEN '1' AND '2'",
          "ActionDateUTC BETWEEN #2011-01-01# AND '2012'", "ActionDateUTC IS NOT '2011'"})
        try {
            translate(wrong);
            ADD_FAILURE() << wrong;
        } catch (const DialectError &refused) {
            EXPECT_NE(std::string_view(refused.what()).find("#2011-03-01#"), std::string::npos)
                << wrong;
        }
    for (const char *right :
         {"ActionDateUTC > #2011-01-01#", "ActionDateUTC IS NULL", "ActionDateUTC > 40000",
          "ActionDateUTC = OtherDate", "RebuiltDateTime = '2011'", "URL = 'ActionDateUTC'",
          "ActionDateUTC IN (SELECT OtherDate FROM URLs WHERE URL = 'x')",
          "SELECT ActionDateUTC AS 'when' FROM URLs WHERE URL = 'x'",
          "ActionDateUTC > julianday('now') - 2415018.5", "IIf(Tagged, 'x', ActionDateUTC) = 'x'",
          "Nz(URL, (URLs.ActionDateUTC)) = 'x'",
          "'2011' BETWEEN URL AND Host AND ActionDateUTC > 1", "ActionDateUTC) = '2011'",
          "strftime('%Y', ActionDateUTC + 2415018.5) = '2011'",
          "ActionDateUTC BETWEEN #2011-01-01# AND #2012-01-01# AND URL = 'x'"})
        EXPECT_NO_THROW(translate(right)) << right;
}

TEST(Dialect, refusesTheTimeOfTheQueryAndOtherFormsOfTexts) {
    for (const char *wrong :
         {"ActionDateUTC > CURRENT_TIMESTAMP", "CURRENT_DATE = ActionDateUTC",
          "ActionDateUTC IS current_date", "ActionDateUTC IS NOT date('now')",
          "ActionDateUTC NOT BETWEEN CURRENT_DATE AND CURRENT_TIMESTAMP",
          "ActionDateUTC GLOB '2011*'", "URLs.ActionDateUTC NOT GLOB ('2011*')",
          "'2011' BETWEEN ActionDateUTC AND 1", "'2011' NOT BETWEEN 1 AND URLs.OtherDate",
          "date('now') BETWEEN (ActionDateUTC) AND 1", "max(ActionDateUTC) = '2011'",
          "(date(URLs.ActionDateUTC)) = '2011'", "strftime('%Y', ActionDateUTC) = '2011'"})
        EXPECT_THROW(translate(wrong), DialectError) << wrong;
}

TEST(Dialect, matchesDatesAsTextsWithLike) {
    EXPECT_EQ(translate("ActionDateUTC LIKE '2011%'"),
              "datetime(ActionDateUTC + 2415018.5) LIKE '2011%'");
    EXPECT_EQ(translate("NOT ((URLs.[ExpiryDate]) NOT LIKE ('2011-03-01%'))"),
              "NOT ((datetime(URLs.\"ExpiryDate\" + 2415018.5)) NOT LIKE ('2011-03-01%'))");
    for (const char *other : {"URL LIKE '2011%'", "(Visits + ActionDateUTC) LIKE '4%'",
                              "ActionDateUTC LIKE URL", "LIKE '2011%'", ") LIKE '2011%'"})
        EXPECT_EQ(translate(other), other);
    EXPECT_EQ(translate("ActionDateUTC LIKE #2011-03-01#"), "ActionDateUTC LIKE (40603)");
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

std::string lookUp(const std::string &value, const std::string &record, const std::string &name) {
    return "(SELECT F.Found FROM (SELECT rowid AS Place, URL_ID AS Record, Name, " + value +
           " AS Found FROM RecordFacts) AS F WHERE F.Record = " + record + " AND F.Name = '" +
           name + "' ORDER BY F.Place LIMIT 1) COLLATE NOCASE";
}

TEST(Dialect, looksFactsUpByTheRecordInHand) {
    const std::string transition = lookUp("Value", "URL_ID", "transition");
    EXPECT_EQ(translate("SELECT * FROM URLs WHERE Fact('transition') = 'typed'"),
              "SELECT * FROM URLs WHERE " + transition + " = 'typed'");
    EXPECT_EQ(translate("fact ( \"TRANSITION\" ) LIKE 'a%'"), transition + " LIKE 'a%'");
    EXPECT_EQ(translate("RawFact('count') > 3"),
              lookUp("ifnull(RawValue, Value)", "URL_ID", "count") + " > 3");
    EXPECT_EQ(translate("[URLs].Fact('count') = 1"),
              lookUp("Value", "\"URLs\".URL_ID", "count") + " = 1");
    EXPECT_EQ(translate("main . URLs . Fact('count')"),
              lookUp("Value", "main.URLs.URL_ID", "count"));
    EXPECT_EQ(translate("SELECT 'Fact(x)', [Fact] FROM t -- Fact()"),
              "SELECT 'Fact(x)', \"Fact\" FROM t  ");
}

TEST(Dialect, aResultColumnHasTheNameOfItsFact) {
    const std::string count = lookUp("Value", "URL_ID", "count");
    EXPECT_EQ(translate("SELECT URL, Fact('count') FROM URLs ORDER BY Fact('count'), URL"),
              "SELECT URL, " + count + " AS 'count' FROM URLs ORDER BY " + count + ", URL");
    EXPECT_EQ(translate("SELECT DISTINCT Fact('count'), Nz(Fact('count'), 0) FROM URLs"),
              "SELECT DISTINCT " + count + " AS 'count', ifnull(" + count + ", 0) FROM URLs");
    EXPECT_EQ(translate("SELECT Fact('count') AS c FROM URLs"),
              "SELECT " + count + " AS c FROM URLs");
    EXPECT_EQ(translate("SELECT Fact('count') + 1 FROM URLs"),
              "SELECT " + count + " + 1 FROM URLs");
}

TEST(Dialect, refusesAFactThatNobodyKnows) {
    try {
        translate("SELECT * FROM URLs WHERE Fact('transitoin') = 'typed'");
        ADD_FAILURE() << "it would find nothing";
    } catch (const DialectError &error) {
        EXPECT_NE(std::string(error.what()).find("'transition'"), std::string::npos);
    }
    for (const char *wrong : {"Fact(transition)", "Fact()", "Fact('transition', 1)", "Fact(",
                              "Fact('transition'", "Fact('')", "RawFact(1)"})
        EXPECT_THROW(translate(wrong), DialectError) << wrong;
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
