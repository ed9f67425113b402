#include "views/rows/FieldNames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace nv {
namespace {

TEST(FieldNames, areWhatPeopleWrite) {
    EXPECT_EQ(fieldName(UrlColumn::Value), "url");
    EXPECT_EQ(fieldName(UrlColumn::Host), "host");
    EXPECT_EQ(fieldName(UrlColumn::WebpageTitle), "title");
    EXPECT_EQ(fieldName(UrlColumn::Visits), "visit_count");
    EXPECT_EQ(fieldName(UrlColumn::ActionDateUtc), "action_date_utc");
    EXPECT_EQ(fieldName(UrlColumn::Value, FieldNames::classic), "COL_URL_VALUE");
}

TEST(FieldNames, areOneWordOfSmallLettersEachAndNoOthers) {
    std::set<std::string> names;
    for (const std::string &name : fieldNames()) {
        EXPECT_TRUE(names.insert(name).second) << name;
        EXPECT_FALSE(name.empty());
        EXPECT_TRUE(std::ranges::all_of(name, [](char letter) {
            return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9') ||
                   letter == '_';
        })) << name;
    }
    EXPECT_EQ(names.size(), kTableColumnCount);
    for (const char *taken :
         {"message", "datetime", "timestamp", "timestamp_desc", "facts", "index"})
        EXPECT_FALSE(names.contains(taken)) << taken;
}

TEST(FieldNames, leadToTheirColumnsAndSoDoTheKeys) {
    for (const UrlColumnFacts &facts : kTableColumns) {
        EXPECT_EQ(columnOfName(fieldName(facts.column)), facts.column);
        EXPECT_EQ(columnOfName(facts.key), facts.column);
    }
    EXPECT_EQ(columnOfName("URL"), UrlColumn::Value);
    EXPECT_EQ(columnOfName("col_url_value"), UrlColumn::Value);
    EXPECT_EQ(columnOfName("value"), std::nullopt);
    EXPECT_EQ(columnOfName(""), std::nullopt);
}

} // namespace
} // namespace nv
