#include "MadeProject.h"
#include "db/schema/Schema.h"
#include "db/sql/Dialect.h"
#include "db/sql/ReadOnlyConnection.h"
#include "views/queries/QueryGrid.h"
#include "views/queries/TestQuery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string of(std::vector<QueryRow> rows, std::vector<QuerySortRow> sorts = {}) {
    return formatQuerySQL(rows, sorts).value_or("(nothing)");
}

/// What one condition becomes, without the frame around it.
std::string condition(std::string field, std::string what, std::string value) {
    const std::string sql = of({{std::move(field), std::move(what), std::move(value), ""}});
    constexpr std::string_view kFrame = "SELECT * FROM URLs WHERE (";
    EXPECT_TRUE(sql.starts_with(kFrame)) << sql;
    return sql.substr(kFrame.size(), sql.rfind(')') - kFrame.size());
}

TEST(QueryGrid, anEmptyGridGivesNothing) {
    EXPECT_EQ(of({}), "(nothing)");
    EXPECT_EQ(of({}, {{"URL", "ASCENDING"}}), "(nothing)");
    EXPECT_EQ(of({{"", " ", "", " "}}), "(nothing)"); // the row that waits for the next condition
}

TEST(QueryGrid, operatorsBecomeSql) {
    EXPECT_EQ(condition("Host", "equals", "a"), "Host = 'a'");
    EXPECT_EQ(condition("Host", "does not equal", "a"), "Host <> 'a'");
    EXPECT_EQ(condition("Host", "contains", "a"), "Host LIKE '%a%'");
    EXPECT_EQ(condition("Host", "DOES NOT CONTAIN", "a"), "Host NOT LIKE '%a%'");
    EXPECT_EQ(condition("Host", "begins with", "a"), "Host LIKE 'a%'");
    EXPECT_EQ(condition("Host", "ends with", "a"), "Host LIKE '%a'");
    EXPECT_EQ(condition("Visits", "is greater than", "3"), "Visits > 3");
    EXPECT_EQ(condition("Visits", "is less than", "3"), "Visits < 3");
    EXPECT_EQ(condition("Visits", "is greater than or equal to", "3"), "Visits >= 3");
    EXPECT_EQ(condition("Visits", "is less than or equal to", "3"), "Visits <= 3");
    EXPECT_EQ(condition("Host", " ", "a"), "Host = 'a'");
    EXPECT_EQ(condition("Host", "resembles", "a"), "Host = 'a'");
    EXPECT_EQ(condition(" Host ", " CONTAINS ", " a b "), "Host LIKE '%a b%'");
}

TEST(QueryGrid, aNumberAfterLikeStaysBare) {
    EXPECT_EQ(condition("URL", "contains", "15"), "URL LIKE 15");
    EXPECT_EQ(condition("URL", "contains", "-3.5"), "URL LIKE -3.5");
    EXPECT_EQ(condition("URL", "contains", "15a"), "URL LIKE '%15a%'");
}

TEST(QueryGrid, datesAreMarkedOnceAndOnly) {
    EXPECT_EQ(condition("ActionDateUTC", "equals", "1/15/2009"), "ActionDateUTC = #1/15/2009#");
    EXPECT_EQ(condition("ActionDateUTC", "equals", "2009-01-15"), "ActionDateUTC = #2009-01-15#");
    EXPECT_EQ(condition("ActionDateUTC", "is less than", "1/15/2009 3:05 PM"),
              "ActionDateUTC < #1/15/2009 3:05 PM#");
    EXPECT_EQ(condition("ActionDateUTC", "is less than", "2009-01-15 15:05:59"),
              "ActionDateUTC < #2009-01-15 15:05:59#");
    EXPECT_EQ(condition("ActionDateUTC", "equals", "#1/15/2009#"), "ActionDateUTC = #1/15/2009#");
    EXPECT_EQ(condition("ActionDateUTC", "between", "#1/1/2009# AND #2/1/2009#"),
              "ActionDateUTC BETWEEN #1/1/2009# AND #2/1/2009#");
    EXPECT_EQ(condition("URL", "equals", "13/45/2009"), "URL = '13/45/2009'");
    EXPECT_EQ(condition("URL", "equals", "#1/1/09#"), "URL = '#1/1/09#'"); // too short to be one
    EXPECT_EQ(condition("URL", "contains", "2009-01-15"), "URL LIKE #2009-01-15#");
}

TEST(QueryGrid, otherValues) {
    EXPECT_EQ(condition("Tagged", "equals", "TRUE"), "Tagged = True");
    EXPECT_EQ(condition("Tagged", "equals", "false"), "Tagged = False");
    EXPECT_EQ(condition("Visits", "between", "1 AND 5"), "Visits BETWEEN '1 AND 5'");
    EXPECT_EQ(condition("Host", "equals", ""), "Host = ''");
    EXPECT_EQ(condition("Host", "equals", "inf"), "Host = 'inf'");
    EXPECT_EQ(condition("Host", "contains", "\xC3\xBC"), "Host LIKE '%\xC3\xBC%'");
}

TEST(QueryGrid, numbersAreThoseOfSql) {
    for (const char *number : {"15", "-3.5", "+7", "2e6", "0"})
        EXPECT_TRUE(isNumber(number)) << number;
    for (const char *text : {"", "+", "1,5", "0x1F", "nan", "inf", "15 ", "1 AND 5", "1e999"})
        EXPECT_FALSE(isNumber(text)) << text;
}

TEST(QueryGrid, rowsAreJoinedAndSorted) {
    EXPECT_EQ(of({{"Host", "equals", "a", "AND"}, {"Visits", "is greater than", "3", " "}}),
              "SELECT * FROM URLs WHERE (Host = 'a') AND (Visits > 3)  ");
    EXPECT_EQ(
        of({{"Host", "equals", "a", ""}},
           {{"Host", "ASCENDING"}, {"", "DESCENDING"}, {"URL", ""}, {"Visits", "DESCENDING"}}),
        "SELECT * FROM URLs WHERE (Host = 'a')   ORDER BY Host ASC, Visits DESC");
}

struct GridStatements : testing::Test {
    QueryCheck check(const std::string &sql) { return testTyped(sql, *reader, made.log); }
    test::MadeProject made;
    std::unique_ptr<SQLite::Database> reader = openReadOnly(made.project.filePath);
};

bool holdsDates(const std::string &field) {
    const auto *table = schema::findTable("URLs");
    return schema::findColumn(*table, field)->type == schema::ColumnType::Date;
}

TEST_F(GridStatements, aDateIsSoughtByItsText) {
    for (const double day : {39828.5, 39860.0}) // noon of 2009-01-15, 2009-02-16
        made.add({{"ActionDateUTC", day}});
    const auto found = [this](std::string_view what, std::string value) {
        return made.db()
            .execAndGet("SELECT group_concat(URL_ID) FROM (" +
                        translate(of({{"ActionDateUTC", std::string(what), value, ""}})) + ")")
            .getString();
    };
    EXPECT_EQ(found("contains", "09-01"), "1");
    EXPECT_EQ(found("begins with", "2009-"), "1,2");
    EXPECT_EQ(found("ends with", "00:00:00"), "2");
    EXPECT_EQ(found("does not contain", "09-01"), "2");
}

TEST_F(GridStatements, whatTheGridOffersIsValid) {
    for (const QueryField &field : queryFields(made.db()))
        for (const std::string_view what : kConditions)
            for (const char *value : {"x", "15", "#1/1/2009#"}) {
                const std::string sql =
                    of({{field.name, std::string(what),
                         what == "between" ? "#1/1/2009# AND #2/1/2009#" : value, ""}},
                       {{field.name, "DESCENDING"}});
                // Which would find all rows or none; '%x%' of LIKE and the like are fine.
                const bool isRefused =
                    holdsDates(field.name) && sql.find(" 'x')") != std::string::npos;
                const QueryCheck checked = check(sql);
                EXPECT_EQ(checked.errCode != 0, isRefused) << sql;
                EXPECT_THAT(checked.errDescription,
                            isRefused ? HasSubstr("such as #2011-03-01#") : HasSubstr(""));
            }
}

TEST_F(GridStatements, apostrophesAndTrailingJoiningWordsFail) {
    const QueryCheck apostrophe = check(of({{"Host", "equals", "o'brien", ""}}));
    EXPECT_NE(apostrophe.errCode, 0);
    EXPECT_THAT(apostrophe.errDescription, HasSubstr("is never closed"));
    const QueryCheck trailing = check(of({{"Host", "equals", "a", "AND"}}));
    EXPECT_NE(trailing.errCode, 0);
    EXPECT_THAT(trailing.errDescription, HasSubstr("incomplete input"));
    EXPECT_NE(check(of({{"Host", "equals", "a", "AND"}}, {{"Host", "ASCENDING"}})).errCode, 0);
    EXPECT_NE(check(of({{"Visits", "between", "1 AND 5", ""}})).errCode, 0);
}

TEST_F(GridStatements, likeANumberIsTakenByThisDatabase) {
    EXPECT_EQ(check(of({{"URL", "contains", "15", ""}})).errCode, 0);
    made.add({{"URL", std::string("15")}});
    made.add({{"URL", std::string("http://a/15")}});
    EXPECT_EQ(made.db().execAndGet("SELECT Count(*) FROM URLs WHERE (URL LIKE 15)").getInt(), 1);
}

TEST_F(GridStatements, fieldsAreTheColumnsWithoutSystemOnes) {
    made.db().exec("ALTER TABLE URLs ADD COLUMN FileSysStamp TEXT");
    const auto fields = queryFields(made.db());
    ASSERT_FALSE(fields.empty());
    EXPECT_EQ(fields.front().name, "URL_ID");
    for (const QueryField &field : fields) {
        EXPECT_THAT(field.name, Not(HasSubstr("Sys")));
        const bool isFlag = field.name == "Tagged" || field.name == "IsHistory";
        const bool isOther = field.name == "Host" || field.name == "Visits";
        EXPECT_TRUE(field.isBoolean || !isFlag) << field.name;
        EXPECT_FALSE(field.isBoolean && isOther) << field.name;
    }
}

} // namespace
} // namespace nv
