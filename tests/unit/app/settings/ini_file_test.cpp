#include "app/settings/IniFile.h"
#include "base/Files.h"
#include "base/Text.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

struct IniFileTest : testing::Test {
    IniFile open(std::string_view text) { return {folder.write("Norvelane.ini", text), log}; }
    std::string onDisk() const {
        const Bytes bytes = readWhole(folder.path() / "Norvelane.ini");
        return std::string(ByteView(bytes).raw());
    }
    test::TempFolder folder;
    test::MemoryLog log;
};

TEST_F(IniFileTest, missingFileGivesEveryDefault) {
    const IniFile ini(folder.path() / "none.ini", log);
    EXPECT_TRUE(ini.readIniValue("OPTIONS", "ShowTipsAtStartup", true));
    EXPECT_EQ(ini.readIniValue("OPTIONS", "DateFormat", "yyyy-mm-dd"), "yyyy-mm-dd");
    EXPECT_EQ(ini.readIniValue("THUMBNAILS", "ViewerThumbnailWidth", 120), 120);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(IniFileTest, onlyTheExactWordTrueIsTrue) {
    const IniFile ini = open("[OPTIONS]\r\nA=true\r\nB=True\r\nC=1\r\nD=\r\nE=False\r\n");
    EXPECT_FALSE(ini.readIniValue("OPTIONS", "A", true));
    EXPECT_TRUE(ini.readIniValue("OPTIONS", "B", false));
    EXPECT_FALSE(ini.readIniValue("OPTIONS", "C", true));
    EXPECT_TRUE(ini.readIniValue("OPTIONS", "D", true)); // empty: the default
    EXPECT_FALSE(ini.readIniValue("OPTIONS", "E", true));
}

TEST_F(IniFileTest, namesAreFoundWithoutRegardToCaseAndBlanks) {
    const IniFile ini = open("\xEF\xBB\xBF; a comment\n[Options]\n  dateformat =  dd.mm.yyyy \n"
                             "quoted=\" kept \"\n");
    EXPECT_EQ(ini.readIniValue("OPTIONS", "DateFormat", "x"), "dd.mm.yyyy");
    EXPECT_EQ(ini.readIniValue("OPTIONS", "Quoted", "x"), " kept ");
    EXPECT_EQ(ini.readIniValue("OTHER", "DateFormat", "x"), "x");
}

TEST_F(IniFileTest, anEmptyTextGivesTheDefaultButAnEmptyNumberIsZero) {
    const IniFile ini =
        open("[S]\nText=\nNumber=\nMixed=12px\nWord=abc\nMinus=-3\nHuge=99999999999\n");
    EXPECT_EQ(ini.readIniValue("S", "Text", "default"), "default");
    EXPECT_EQ(ini.readIniValue("S", "Number", 7), 0);
    EXPECT_EQ(ini.readIniValue("S", "Mixed", 7), 12);
    EXPECT_EQ(ini.readIniValue("S", "Word", 7), 0);
    EXPECT_EQ(ini.readIniValue("S", "Minus", 7), -3);
    EXPECT_EQ(ini.readIniValue("S", "Huge", 7), 0);
}

TEST_F(IniFileTest, aValueWithALineBreakIsWrittenOnOneLine) {
    IniFile ini = open("");
    EXPECT_TRUE(ini.writeIniValue("REPORT", "ReportTitle", " one\r\ntwo\nthree\rfour "));
    EXPECT_EQ(ini.readIniValue("REPORT", "ReportTitle", ""), "one two three four");
    EXPECT_EQ(onDisk(), "[REPORT]\r\nReportTitle=one two three four\r\n");
}

TEST_F(IniFileTest, writingLeavesAllOtherLinesAlone) {
    IniFile ini = open("; kept\r\n[A]\r\nx=1\r\n\r\n[B]\r\ny=2\r\n");
    EXPECT_TRUE(ini.writeIniValue("a", "X", "9"));
    EXPECT_TRUE(ini.writeIniValue("A", "new", true));
    EXPECT_TRUE(ini.writeIniValue("C", "z", "3"));
    EXPECT_EQ(onDisk(), "; kept\r\n[A]\r\nX=9\r\n\r\nnew=True\r\n[B]\r\ny=2\r\n[C]\r\nz=3\r\n");
}

TEST_F(IniFileTest, aFileThatCantBeWrittenIsLoggedAndGivesFalse) {
    IniFile ini(folder.path() / "no-such-folder" / "x.ini", log);
    EXPECT_FALSE(ini.writeIniValue("A", "b", "c"));
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_EQ(log.entries[0].procedure, "File Write Error");
    EXPECT_EQ(log.entries[0].severity, Severity::Warning);
}

TEST_F(IniFileTest, twoProgramsAtOnceLoseNoSetting) {
    IniFile one = open("[A]\r\nx=1\r\n");
    IniFile other(folder.path() / "Norvelane.ini", log);
    EXPECT_TRUE(one.writeIniValue("A", "x", "2"));
    EXPECT_TRUE(other.writeIniValue("A", "y", "3"));
    EXPECT_TRUE(one.writeIniValue("B", "z", "4"));
    EXPECT_EQ(onDisk(), "[A]\r\nx=2\r\ny=3\r\n[B]\r\nz=4\r\n");
    EXPECT_EQ(one.readIniValue("A", "y", 0), 3) << "a write shows what the other one wrote";
}

TEST_F(IniFileTest, whatCouldNotBeWrittenHoldsAndIsTriedAgain) {
    IniFile ini(folder.path() / "later" / "x.ini", log);
    EXPECT_FALSE(ini.writeIniValue("A", "b", "c"));
    EXPECT_FALSE(ini.writeIniValue("A", "d", "e"));
    EXPECT_TRUE(ini.hasUnwritten());
    ini.remember("A", "h", "i");
    EXPECT_EQ(ini.readIniValue("A", "b", ""), "c");
    std::filesystem::create_directories(folder.path() / "later");
    EXPECT_TRUE(ini.writeIniValue("A", "f", "g"));
    EXPECT_FALSE(ini.hasUnwritten());
    const IniFile again(folder.path() / "later" / "x.ini", log);
    for (const auto &[key, value] : {std::pair("b", "c"), {"d", "e"}, {"f", "g"}, {"h", "i"}})
        EXPECT_EQ(again.readIniValue("A", key, ""), value);
}

} // namespace
} // namespace nv
