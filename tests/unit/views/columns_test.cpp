#include "views/rows/UrlColumns.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace nv {
namespace {

TEST(UrlColumns, standInTheirDocumentedOrder) {
    std::size_t index = 0;
    for (const UrlColumnFacts &facts : kUrlColumns)
        EXPECT_EQ(indexOf(facts.column), index++) << facts.key;
    EXPECT_EQ(index, 51u);
    EXPECT_EQ(kTableColumns.size(), 58u);
    EXPECT_EQ(kTableColumns[51].key, "COL_URL_LOCAL_DATE");
    EXPECT_EQ(kTableColumns[52].key, "COL_URL_NOTE");
    EXPECT_EQ(kTableColumns[53].key, "COL_URL_BROWSER");
    EXPECT_EQ(kTableColumns[54].key, "COL_URL_PROFILE");
    EXPECT_EQ(kTableColumns[55].key, "COL_URL_PERSON");
    EXPECT_EQ(kTableColumns[56].key, "COL_URL_TAG_NAMES");
    EXPECT_EQ(kTableColumns[57].key, "COL_URL_HASH_SETS");
    for (std::size_t at = 0; at < kTableColumns.size(); ++at)
        EXPECT_EQ(indexOf(kTableColumns.at(at).column), at);
    EXPECT_EQ(kUrlColumns[0].key, "COL_URL_TAG");
    EXPECT_EQ(kUrlColumns[14].key, "COL_URL_VALUE");
    EXPECT_EQ(kUrlColumns[50].key, "COL_URL_LAST_VISITED");
}

TEST(UrlColumns, haveKeysOfTheirOwn) {
    std::set<std::string_view> keys;
    for (const UrlColumnFacts &facts : kUrlColumns)
        EXPECT_TRUE(keys.insert(facts.key).second) << facts.key;
    EXPECT_EQ(columnOfKey("col_url_host"), UrlColumn::Host);
    EXPECT_EQ(columnOfKey("COL_URL_NONE"), std::nullopt);
}

TEST(UrlColumns, carryHeadersAndWidths) {
    EXPECT_EQ(factsOf(UrlColumn::Tag).header, "");
    EXPECT_EQ(factsOf(UrlColumn::Id).header, "URL ID");
    EXPECT_EQ(factsOf(UrlColumn::ActionDateUtc).header, "Action Date [UTC]");
    EXPECT_EQ(factsOf(UrlColumn::DateOtherMeaning).header, "Date Other Desc.");
    EXPECT_EQ(factsOf(UrlColumn::Value).widthTwips, 5000);
    EXPECT_EQ(pixelsOf(factsOf(UrlColumn::Value).widthTwips), 333);
    EXPECT_EQ(pixelsOf(factsOf(UrlColumn::Icon).widthTwips), 40);
}

TEST(UrlColumns, hideThreeFromTheStart) {
    std::set<UrlColumn> hidden;
    for (const UrlColumnFacts &facts : kUrlColumns)
        if (facts.shown == Shown::No)
            hidden.insert(facts.column);
    EXPECT_EQ(hidden,
              (std::set{UrlColumn::KeywordFlag, UrlColumn::FileId, UrlColumn::LastVisited}));
}

TEST(UrlColumns, makeTheListOfColumns) {
    URLTableColumns columns = defaultUrlColumns();
    EXPECT_EQ(columns.count(), 51u);
    const ListedColumn &host = columns.item("COL_URL_HOST");
    EXPECT_EQ(host.columnHeader, "Host");
    EXPECT_EQ(host.defaultColWidth, 2800);
    EXPECT_EQ(host.sqlOrdinalIndex, 27);
    EXPECT_FALSE(host.hideColumn);
    EXPECT_TRUE(columns.item("COL_URL_FILEID").hideColumn);
}

TEST(HeaderText, namesTheOffsetOfTheZoneOnASecondLine) {
    TimeZone zone{Date()};
    zone.tzBias = 300;
    EXPECT_EQ(headerText(UrlColumn::ActionDateLocal, zone), "Action Date Local\n[UTC -0500]");
    zone.tzBias = -330;
    EXPECT_EQ(headerText(UrlColumn::ActionDateLocal, zone), "Action Date Local\n[UTC +0530]");
    zone.tzBias = 0;
    EXPECT_EQ(headerText(UrlColumn::ActionDateLocal, zone), "Action Date Local\n[+0000]");
    EXPECT_EQ(headerText(UrlColumn::ActionDateUtc, zone), "Action Date [UTC]");
    EXPECT_EQ(headerText(UrlColumn::LocalDate, zone), "Local Date\n[+0000]");
    EXPECT_EQ(headerText(UrlColumn::FileId, zone), "");
}

} // namespace
} // namespace nv
