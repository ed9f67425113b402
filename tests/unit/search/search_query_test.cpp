#include "search/SearchFailure.h"
#include "search/SearchQuery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace nv {
namespace {

using testing::HasSubstr;

/// The conditions as a line: "-" for excluded ones, "*" for parts, "/" for expressions.
std::string lineOf(std::string_view text) {
    std::string line;
    for (const SearchClause &clause : parseSearch(text).clauses) {
        line += line.empty() ? "" : "|";
        line += clause.isExcluded ? "-" : "";
        line += clause.anyPart ? "*" : "";
        switch (clause.kind) {
        case ClauseKind::text:
            line += clause.text;
            break;
        case ClauseKind::expression:
            line += "/" + clause.text + "/";
            break;
        case ClauseKind::host:
            line += "host=" + clause.text;
            break;
        case ClauseKind::browser:
            line += "browser=" + clause.text;
            break;
        case ClauseKind::kind:
            line += "kind=" + clause.text;
            break;
        case ClauseKind::tag:
            line += "tag=" + clause.text;
            break;
        case ClauseKind::hashSet:
            line += "hashset=" + clause.text;
            break;
        case ClauseKind::before:
        case ClauseKind::after:
            line += (clause.kind == ClauseKind::before ? "before=" : "after=") +
                    std::to_string(clause.date.unixSeconds());
            break;
        }
        line += clause.anyEnd ? "*" : "";
    }
    return line;
}

std::string failureOf(std::string_view text) {
    try {
        parseSearch(text);
    } catch (const SearchFailure &failure) {
        return failure.what();
    }
    return "";
}

TEST(SearchQuery, readsWordsPhrasesAndWhatIsLeftOut) {
    EXPECT_EQ(lineOf("tide"), "tide");
    EXPECT_EQ(lineOf("  tide\t tables "), "tide|tables");
    EXPECT_EQ(lineOf("\"tide tables\" -\"low water\" -moon"), "tide tables|-low water|-moon");
    EXPECT_EQ(lineOf("\"say \"\"so\"\" now\""), "say \"so\" now");
    EXPECT_EQ(lineOf("\"typed so far"), "typed so far");
    EXPECT_EQ(lineOf("- tide"), "*-|tide") << "a minus that stands alone is looked for";
    EXPECT_EQ(lineOf("a-b"), "a-b");
}

TEST(SearchQuery, readsStarsAsParts) {
    EXPECT_EQ(lineOf("tide*"), "tide*");
    EXPECT_EQ(lineOf("*tide"), "*tide");
    EXPECT_EQ(lineOf("*tide*"), "*tide");
    EXPECT_EQ(lineOf("ti*de"), "ti*de") << "within a word it is a sign like others";
    EXPECT_EQ(lineOf("\"tide*\""), "tide*");
    EXPECT_EQ(lineOf("**"), "***") << "signs alone are parts, as they are no words";
    EXPECT_EQ(lineOf("\u5929\u6C14*"), "*\u5929\u6C14") << "without spaces there are no beginnings";
}

TEST(SearchQuery, readsOperatorsInEitherCase) {
    EXPECT_EQ(lineOf("HOST:news.example -kind:cache browser:\"Edge Beta\""),
              "host=news.example|-kind=cache|browser=Edge Beta");
    EXPECT_EQ(lineOf("after:1970-01-02 before:1970-01-01T00:01"), "after=86400|before=60");
    EXPECT_EQ(lineOf("after:1971 before:1970-02"), "after=31536000|before=2678400");
    EXPECT_EQ(lineOf("http://host:80/"), "http://host:80/") << "no operator within a word";
}

TEST(SearchQuery, takesAnExpressionForOneAndAPathForText) {
    EXPECT_EQ(lineOf("/ti[dk]e/"), "/ti[dk]e/");
    EXPECT_EQ(lineOf("/a b/ -/c\\/d/ e"), "/a b/|-/c\\/d/|e");
    EXPECT_EQ(lineOf("/folder/page.html"), "/folder/page.html");
    EXPECT_EQ(lineOf("//"), "*//");
    EXPECT_EQ(lineOf("/a/b/ c"), "/a/b/|c");
}

TEST(SearchQuery, saysWhatItCannotRead) {
    EXPECT_THAT(failureOf(""), HasSubstr("nothing to look for"));
    EXPECT_THAT(failureOf("  \"\" "), HasSubstr("nothing to look for"));
    EXPECT_THAT(failureOf("tide host:"), HasSubstr("\"host:\" needs a value"));
    EXPECT_THAT(failureOf("host:\"\""), HasSubstr("\"host:\" needs a value"));
    EXPECT_THAT(failureOf("after:yesterday"), HasSubstr("\"after:yesterday\": a date such as"));
    EXPECT_THAT(failureOf("/a(b/"), HasSubstr("the expression /a(b/ can't be read: missing"));
    EXPECT_THAT(failureOf("/(a)\\1/"), HasSubstr("can't be read"));
}

TEST(SearchQuery, saysAtWhichLetterItCannotBeRead) {
    EXPECT_THAT(failureOf("\u00FCber before:2011-13"),
                HasSubstr("letter 13: \"before:2011-13\": a date such as 2011, 2011-03"));
    EXPECT_THAT(failureOf("tide -/a(b/"), HasSubstr("letter 7: the expression /a(b/"));
    EXPECT_THAT(failureOf("after:"), HasSubstr("needs a value behind it: a date such as"));
}

TEST(SearchQuery, tellsInWhichOperatorSomebodyWrites) {
    const std::string text = "tide -host:\"low water\" kind:ca";
    const auto host = operatorAt(text, 14);
    ASSERT_TRUE(host);
    EXPECT_EQ(host->kind, ClauseKind::host);
    EXPECT_EQ(host->value, "low water");
    EXPECT_EQ(text.substr(host->at, host->length), "\"low water\"");
    const auto kind = operatorAt(text, text.size());
    ASSERT_TRUE(kind);
    EXPECT_EQ(kind->kind, ClauseKind::kind);
    EXPECT_EQ(kind->value, "ca");
    EXPECT_EQ(operatorAt("kind:", 5)->value, "");
    EXPECT_EQ(operatorAt("host:\"a b", 9)->value, "a b");
    for (const std::size_t place : {0, 4, 7})
        EXPECT_FALSE(operatorAt(text, place)) << place;
    EXPECT_FALSE(operatorAt("\"host:a\"", 7));
    EXPECT_FALSE(operatorAt("", 0));
    EXPECT_FALSE(operatorAt("kind:a b", 8));
}

TEST(SearchQuery, aValueIsWrittenSoThatItIsReadAgain) {
    for (const char *value : {"a.example", "Chrome Cache", "say \"a\"", "\"", "caf\u00E9"}) {
        const SearchQuery query = parseSearch("host:" + operatorValue(value));
        ASSERT_EQ(query.clauses.size(), 1u) << value;
        EXPECT_EQ(query.clauses.front().text, value);
    }
    EXPECT_EQ(operatorWord(ClauseKind::kind), "kind:");
    EXPECT_EQ(operatorWord(ClauseKind::text), "");
}

TEST(SearchQuery, refusesDatesThatAreNone) {
    for (const char *text : {"2011-13", "2011-02-30", "11-03-01", "2011-03-01T25:00", "2011-03-01T",
                             "2011T10:00", "2011-", "-2011", "20111-1-1-1", "2011-03-01T10"})
        EXPECT_FALSE(searchDate(text).has()) << text;
    EXPECT_EQ(searchDate("2011-03-01T15:30:05").unixSeconds(), 1298993405);
}

TEST(SearchQuery, hasAnEndWhateverIsTyped) {
    EXPECT_THAT(failureOf(std::string(20'000, 'a')), HasSubstr("at most 10000"));
    std::string many;
    for (int i = 0; i < 100; ++i)
        many += "w ";
    EXPECT_THAT(failureOf(many), HasSubstr("more than 64 words"));
    EXPECT_NE(failureOf("/" + std::string(9'000, '(') + "/"), "");
    EXPECT_NE(failureOf("/((a{1000}){1000}){1000}/"), "");
    EXPECT_EQ(lineOf("\"" + std::string(5, '"')), "*\"\"");
    EXPECT_EQ(lineOf(std::string_view("a\0b", 3)), "a|b");
    EXPECT_EQ(lineOf("Z\xFCrich"), "Z\xC3\xBCrich") << "bytes of Windows-1252 are text too";
}

} // namespace
} // namespace nv
