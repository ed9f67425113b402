#include "readers/Limits.h"
#include "readers/firefox/mork/MorkFile.h"
#include "support/builders/Mork.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>

namespace nv {
namespace {

using test::MorkHistory;
using Strings = std::vector<std::string>;

class MorkFile : public testing::Test {
  protected:
    void parse(const std::string &bytes) {
        file = {};
        result = {};
        Unwatched task;
        file.parseBytes(viewOf(bytes), task, result);
    }
    void parse(const MorkHistory &history) { parse(history.bytes()); }
    Strings urls() const {
        Strings all;
        for (const MorkEntry &entry : file.entries)
            all.push_back(entry.url);
        return all;
    }
    Strings rowIds() const {
        Strings all;
        for (const MorkRow &row : file.tableRows)
            all.push_back(row.rowID);
        return all;
    }
    std::string valueOf(const char *id) const { return file.values.item(id).rowValue; }
    /// The value that a dictionary's raw text becomes.
    std::string storedValue(const char *raw) {
        parse(MorkHistory().rawValue("A0", raw).rawValue("A1", "next"));
        EXPECT_EQ(valueOf("A1"), "next") << raw;
        return valueOf("A0");
    }

    MorkFileParser file;
    ReadResult result;
};

TEST_F(MorkFile, readsTheVersionOfTheFirstLine) {
    parse(MorkHistory());
    EXPECT_EQ(file.version, "1.4");
    EXPECT_EQ(file.header(), "// <!-- <mdb:mork:z v=\"1.4\"/> -->");
    parse(MorkHistory().firstLine("mdb:mork:z v=\"1.4"));
    EXPECT_EQ(file.version, "");
    parse(MorkHistory().firstLine("mdb:mork:z \"/> -->"));
    EXPECT_EQ(file.version, "");
    parse("an other line\n" + MorkHistory("\n").bytes());
    EXPECT_EQ(file.version, "1.4");
}

TEST_F(MorkFile, cleansTheHeader) {
    file.header("a\r\nb\tc  d   e");
    EXPECT_EQ(file.header(), "abcd e");
}

TEST_F(MorkFile, keepsTheColumnsInTheirOrder) {
    parse(MorkHistory());
    ASSERT_EQ(file.colHeaders.count(), 13U);
    EXPECT_EQ(file.colHeaders.item(1).id, "8A");
    EXPECT_EQ(file.colHeaders.item(1).colName, "Typed");
    EXPECT_EQ(file.colHeaders.item(4).colName, "ns:history:db:row:scope:history:all");
    EXPECT_EQ(file.colHeaders.item(13).colName, "Hidden");
}

TEST_F(MorkFile, knowsTheColumnsMarkInBothPlaces) {
    for (const char *mark :
         {"<(a=c)>", "< <(a=c)>", "< <(a=c)> // (f=iso-8859-1)", "<(a=c)> // x"}) {
        parse(MorkHistory().columnMark(mark).add({.url = "http://x/"}));
        EXPECT_EQ(urls(), (Strings{"", "http://x/"})) << mark;
        EXPECT_EQ(file.colHeaders.count(), 13U) << mark;
    }
    for (const char *mark : {"<  <(a=c)>", "x<(a=c)>", "<(a=d)>"}) {
        parse(MorkHistory().columnMark(mark).add({.url = "http://x/"}));
        EXPECT_EQ(result.state, ReadState::failed) << mark;
    }
}

TEST_F(MorkFile, readsLinesOfEveryKind) {
    for (const char *end : {"\r\n", "\n", "\r"}) {
        MorkHistory history(end);
        test::addExamplePages(history);
        parse(history);
        EXPECT_EQ(file.entries.count(), 4U);
        EXPECT_EQ(file.entries.item(3).url, "http://mail.example.org/inbox?page=2");
        EXPECT_EQ(result.state, ReadState::complete);
    }
}

TEST_F(MorkFile, fillsAnEntryFromValuesNamedAndHeld) {
    MorkHistory history;
    history.add({.url = "http://x/",
                 .lastVisit = "1",
                 .firstVisit = "2",
                 .host = "x",
                 .title = "Title",
                 .referrer = "http://y/",
                 .visitCount = "3",
                 .typed = true,
                 .hidden = true});
    history.rawRow("[3(^82=http://held/)(^8B=a)(^8C=b)(^87=x$00y)(^99=unknown)]");
    parse(history);
    const MorkEntry &entry = file.entries.item(2);
    EXPECT_EQ(entry.rawData(),
              std::string(41, '-') + "\r\nROW ID: 2\r\n" + std::string(41, '-') +
                  "\r\nTyped = 1\r\nLastPageVisited = \r\nByteOrder = \r\nURL = http://x/\r\n"
                  "Referrer = http://y/\r\nLastVisitDate = 1\r\nFirstVisitDate = 2\r\n"
                  "VisitCount = 3\r\nURLName = Title\r\nHostname = x\r\nHidden = 1");
    const MorkEntry &held = file.entries.item(3);
    EXPECT_EQ(held.url, "http://held/");
    EXPECT_EQ(held.lastPageVisited, "a");
    EXPECT_EQ(held.byteOrder, "b");
    EXPECT_EQ(held.urlName, "xy");
    EXPECT_EQ(file.entries.item(1).byteOrder, "LE");
}

TEST_F(MorkFile, givesAnEmptyTextForAnIdThatNoDictionaryHas) {
    parse(MorkHistory().rawRow("[2(^82^FFFF)(^88^)(^84)(^)()]"));
    EXPECT_EQ(urls(), (Strings{"", ""}));
    EXPECT_EQ(file.entries.item(2).hostname, "");
}

TEST_F(MorkFile, takesTheFirstOfTwoValuesWithOneId) {
    parse(MorkHistory()
              .rawValue("A0", "http://first/")
              .rawValue("A0", "http://second/")
              .rawRow("[2(^82^A0)]"));
    EXPECT_EQ(urls(), (Strings{"", "http://first/"}));
    EXPECT_EQ(file.values.count(), 2U);
}

TEST_F(MorkFile, takesTheCharactersOfTheFormatOutOfValues) {
    EXPECT_EQ(storedValue("a$00b$AEc"), "abc");
    EXPECT_EQ(storedValue("http://x/a_(b\\)"), "http://x/a_(b");
    EXPECT_EQ(result.noted.size(), 1U);
    EXPECT_EQ(storedValue("a<b>c"), "abc");
    EXPECT_EQ(storedValue("a<(b"), "ab");
    EXPECT_EQ(storedValue("a\\\\b"), "ab");
    EXPECT_EQ(storedValue("a  b\tc d"), "abc d");
    EXPECT_EQ(result.noted.size(), 0U);
    EXPECT_EQ(storedValue("a\\$b"), "a$b");
    EXPECT_EQ(storedValue("caf$C3$A9"), "caf$C3$A9"); // such pairs are not decoded
    EXPECT_EQ(storedValue("a=b=c"), "a=b=c");
    EXPECT_EQ(storedValue(""), "");
}

TEST_F(MorkFile, cutsValuesWhereTheirTextPartsThemAndCountsThem) {
    EXPECT_EQ(storedValue("http://x/a|b=c"), "http://x/a");
    EXPECT_EQ(storedValue("http://x/a\\)(b"), "http://x/a");
    EXPECT_EQ(result.noted.at("value that is cut at a \"|\" or a pair of parentheses"), 1U);
}

TEST_F(MorkFile, goesOnWithAValueOnTheNextLine) {
    EXPECT_EQ(storedValue("http://x/\\\r\nlong"), "http://x/long");
    EXPECT_EQ(storedValue("http://x/\\\r\n[2]{1:^80"), "http://x/[2]{1:^80");
    parse(MorkHistory().rawValue("A0\r\n    ", "wide").rawRow("[2(^82^A0)]"));
    EXPECT_EQ(urls(), (Strings{"", "wide"}));
}

TEST_F(MorkFile, takesAllDictionariesOfTheFile) {
    MorkHistory history;
    history.add({.url = "http://one/"});
    history.beginGroup().add({.url = "http://two/"});
    history.beginGroup().add({.url = "http://three/"});
    parse(history);
    EXPECT_EQ(urls(), (Strings{"", "http://one/", "http://two/", "http://three/"}));
    EXPECT_EQ(result.state, ReadState::complete);
    EXPECT_TRUE(result.passedOver.empty());
}

TEST_F(MorkFile, takesDictionariesAndRowsOfOneLine) {
    parse("<mdb:mork:z v=\"1.4\"/> -->\n<(a=c)>(82=URL)><(A0=http://x/)><(A1=http://y/)>"
          "{1:^80 {(k^81:c)(s=9)[1(^8C=LE)]}[2(^82^A0)][3(^82^A1)]}");
    EXPECT_EQ(urls(), (Strings{"", "http://x/", "http://y/"}));
    EXPECT_EQ(result.state, ReadState::complete);
}

TEST_F(MorkFile, keepsALaterDictionaryOfColumnsApartFromTheValues) {
    parse(MorkHistory().behindTable("< <(a=c)> // (f=iso-8859-1)\r\n  (90=New)>\r\n"
                                    "<(a=c)>(91=Other)>\r\n"));
    EXPECT_EQ(file.colHeaders.count(), 15U);
    EXPECT_EQ(file.values.count(), 0U);
}

TEST_F(MorkFile, makesNoRowOfTheBlankAfterARow) {
    parse(MorkHistory().rawRow("[2(^8A=1)] ").rawRow("[] ").rawRow("[  ]"));
    EXPECT_EQ(rowIds(), (Strings{"1", "2"}));
}

TEST_F(MorkFile, goesOnWithARowOnTheNextLine) {
    parse(MorkHistory()
              .rawRow("[2(^82=http://two/)(^8A=1)")
              .rawRow("    (^86=5)]")
              .rawRow("[3(^82=http://three/)]"));
    EXPECT_EQ(urls(), (Strings{"", "http://two/", "http://three/"}));
    EXPECT_EQ(file.entries.item(2).visitCount, "5");
    EXPECT_EQ(file.entries.item(3).visitCount, "");
    EXPECT_EQ(result.state, ReadState::complete);
}

TEST_F(MorkFile, readsBracketsWithinACell) {
    parse(MorkHistory().rawRow("[2(^82=http://x/a[1].htm?(b\\)\\\r\nc)(^88=x)]"));
    EXPECT_EQ(urls(), (Strings{"", "http://x/a[1].htm?(b\\)c"}));
    EXPECT_EQ(file.entries.item(2).hostname, "x");
}

TEST_F(MorkFile, countsRowsOutsideOfTheTable) {
    const std::string bytes = MorkHistory("\n").add({.url = "http://x/"}).bytes();
    const std::size_t table = bytes.find("{1:^80");
    parse(bytes.substr(0, table) + "[9(^8A=1)]\n" + bytes.substr(table) +
          "[8(^8A=1)]@$$}\n[7(^8A=1)]\n@$${2{@\n[6(^8A=1)]\n@$$}2}@\n[5(^8A=1)]\n");
    EXPECT_EQ(rowIds(), (Strings{"1", "2", "6", "5"}));
    EXPECT_EQ(result.passedOver.at("row outside of the table of pages"), 3U);
}

TEST_F(MorkFile, startsATableWithoutAMetaRow) {
    std::string bytes = MorkHistory().add({.url = "http://x/"}).bytes();
    bytes.erase(bytes.find("[1(^8C=LE)]"), 11);
    parse(bytes);
    EXPECT_EQ(urls(), Strings{"http://x/"});
}

TEST_F(MorkFile, marksRowsForDeletion) {
    parse(MorkHistory().rawRow("[-2(^8A=1)]").rawRow("[-3]").rawRow("[4-(^8A=1)]"));
    EXPECT_EQ(rowIds(), (Strings{"1", "-2", "-3", "4-"}));
    EXPECT_FALSE(file.tableRows.item(1).markedForDeletion);
    EXPECT_TRUE(file.tableRows.item(2).markedForDeletion);
    EXPECT_TRUE(file.tableRows.item(3).markedForDeletion);
    EXPECT_FALSE(file.tableRows.item(4).markedForDeletion);
}

TEST_F(MorkFile, placesARowAtItsFirstBeginningInTheFile) {
    const std::string bytes = MorkHistory()
                                  .rawValue("A0", "http://x/[3(y")
                                  .rawRow("[2(^8A=1)]")
                                  .rawRow("[3(^8A=1)]")
                                  .rawRow("[2(^86=5)]")
                                  .rawRow("[4\t(^86=5)]")
                                  .bytes();
    parse(bytes);
    const auto placeOf = [&](std::size_t position) {
        return file.entries.item(position).fileOffset;
    };
    const auto found = [&](const char *text) {
        return static_cast<std::int64_t>(bytes.find(text)) + 1; // 1-based
    };
    EXPECT_EQ(placeOf(2), found("[2("));
    EXPECT_EQ(placeOf(3), found("[3(y"));
    EXPECT_EQ(placeOf(4), found("[2("));
    EXPECT_EQ(placeOf(5), 0); // the row's id, cleaned of the tab, isn't in the file
}

TEST_F(MorkFile, convertsSecondsInDigits) {
    const auto convert = MorkFileParser::convertSecondsToUTCDate;
    EXPECT_EQ(convert("0"), Date::fromUnixSeconds(0));
    EXPECT_EQ(convert(" 1205364946 "), Date::fromUnixSeconds(1205364946));
    EXPECT_EQ(convert("-1"), Date::fromUnixSeconds(-1));
    for (const char *text : {"", "x", "12x", "1e300", "nan", "inf", "1205364946314923"})
        EXPECT_FALSE(convert(text).has()) << text;
}

} // namespace
} // namespace nv
