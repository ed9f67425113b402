#include "rebuild/StyleSheet.h"
#include "unit/rebuild/RebuildFixture.h"

#include <chrono>

namespace nv {
namespace {

namespace fs = std::filesystem;

class StyleSheetTest : public test::RebuildFixture {
  protected:
    /// A picture as Internet Explorer keeps it, with a number after its name.
    UrlId picture(const std::string &url, const std::string &content = "GIF89a") {
        const UrlId id = add(url, content);
        const std::string name(getFilenameFromPath(url));
        SQLite::Statement update(project.connection(),
                                 "UPDATE URLs SET CacheFileName = ? WHERE URL_ID = ?");
        update.bind(1, name.substr(0, name.size() - 4) + "[1]" + name.substr(name.size() - 4));
        update.bind(2, number(id));
        update.exec();
        return id;
    }
    std::string rewritten(const std::string &css, const std::string &host = "host") {
        fs::create_directories(sheetFile.parent_path());
        writeWhole(sheetFile, css);
        UrlRecord sheet;
        sheet.host = host;
        findReplaceCSSTags(sheetFile, sheet, context());
        return std::string(ByteView(readWhole(sheetFile)).raw());
    }
    bool hasPicture(const std::string &name) { return fs::exists(sheetFile.parent_path() / name); }

    fs::path sheetFile = project.folder.path() / "rebuilt" / "0000001.css";
};

TEST_F(StyleSheetTest, withoutParenthesesStaysAsItIs) {
    EXPECT_EQ(rewritten("a { color: red }\nb { }"), "a { color: red }\nb { }");
    EXPECT_EQ(rewritten(""), "");
}

TEST_F(StyleSheetTest, isWrittenALineForEachPairAndOnceMore) {
    picture("http://host/one_pic.gif");
    picture("http://host/two_pic.gif");
    EXPECT_EQ(rewritten("a{b:url(one_pic.gif) url( \"x/two_pic.gif\" );}\nb{}\n"),
              "a{b:url(_css0000001.gif) url( \"x/two_pic.gif\" );}\r\n"
              "a{b:url(_css0000001.gif) url( \"_css0000002.gif\" );}\r\n"
              "a{b:url(_css0000001.gif) url( \"_css0000002.gif\" );}\r\nb{}\r\n");
    EXPECT_TRUE(hasPicture("_css0000001.gif"));
    EXPECT_TRUE(hasPicture("_css0000002.gif"));
}

TEST_F(StyleSheetTest, getsASemicolonWhereALineHasNone) {
    picture("http://host/one_pic.gif");
    EXPECT_EQ(rewritten("a{b:url(one_pic.gif)}\n"),
              "a{b:url(_css0000001.gif)};\r\na{b:url(_css0000001.gif)};\r\n");
}

TEST_F(StyleSheetTest, carriesTheLastParenthesisIntoTheNextLine) {
    picture("http://host/one_pic.gif");
    // The ")" of the first line stands in its 20th place: the next line is searched from there.
    EXPECT_EQ(rewritten("/* a line of text ) */\nb:url(one_pic.gif);\n"),
              "/* a line of text ) */\nb:url(one_pic.gif);\n");
    EXPECT_EQ(rewritten("url(one_pic.gif);\nurl(one_pic.gif);\n\nurl(one_pic.gif);\n"),
              "url(_css0000001.gif);\r\nurl(_css0000001.gif);\r\nurl(one_pic.gif);\r\n\r\n"
              "url(_css0000002.gif);\r\nurl(_css0000002.gif);\r\n");
}

TEST_F(StyleSheetTest, isSearchedForTheNameWithoutBlanksAndReplacedOnlyAsItStands) {
    picture("http://host/one_pic.gif");
    const std::string twice = "url( 'one_ pic.gif' );\r\n";
    EXPECT_EQ(rewritten("url( 'one_ pic.gif' );\n"), twice + twice);
    EXPECT_TRUE(hasPicture("_css0000001.gif"));
}

TEST_F(StyleSheetTest, ofTwoInAPageNeitherLosesAPicture) {
    picture("http://host/one_pic.gif", "GIF89a one");
    picture("http://host/two_pic.gif", "GIF89a two");
    picture("http://host/gone_pic.gif", ""); // keeps its number
    add("http://host/style/main.css", "url(gone_pic.gif);\r\n\r\nurl(one_pic.gif);\r\n");
    add("http://host/style/extra.css", "url(two_pic.gif);\r\n");
    const UrlId pageId =
        add("http://host/page.html", "<html><link href=\"/style/main.css\" >\r\n<link "
                                     "href=\"/style/extra.css\" >\r\n<body>text</body></html> ");
    ASSERT_TRUE(rebuild(pageId));
    EXPECT_NE(fileOf(pageId, "0000004.css").find("url(_css0000001.gif);"), std::string::npos);
    EXPECT_NE(fileOf(pageId, "0000004.css").find("url(_css0000002.gif);"), std::string::npos);
    EXPECT_NE(fileOf(pageId, "0000005.css").find("url(_css0000003.gif);"), std::string::npos);
    EXPECT_EQ(fileOf(pageId, "_css0000002.gif"), "GIF89a one");
    EXPECT_EQ(fileOf(pageId, "_css0000003.gif"), "GIF89a two");
    EXPECT_FALSE(fs::exists(rebuildFolderOf(pageId, context()) / "_css0000001.gif"));
    // Another harvest gives the same names.
    ASSERT_TRUE(unpackIngredients(page, context()));
    EXPECT_EQ(fileOf(pageId, "_css0000003.gif"), "GIF89a two");
}

TEST_F(StyleSheetTest, isRenamedThoughItsPictureIsMissing) {
    picture("http://host/one_pic.gif", "");
    EXPECT_EQ(rewritten("url(one_pic.gif);\n"),
              "url(_css0000001.gif);\r\nurl(_css0000001.gif);\r\n");
    EXPECT_FALSE(hasPicture("_css0000001.gif"));
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(StyleSheetTest, takesPicturesOfItsOwnHostOnly) {
    picture("http://other/one_pic.gif");
    EXPECT_EQ(rewritten("url(one_pic.gif);\n"), "url(one_pic.gif);\n");
    EXPECT_EQ(rewritten("url(one_pic.gif);\n", "other"),
              "url(_css0000001.gif);\r\nurl(_css0000001.gif);\r\n");
}

TEST_F(StyleSheetTest, knowsTheSecondHostOfOneWebMail) {
    picture("http://mail.yimg.com/one_pic.gif");
    EXPECT_NE(rewritten("url(one_pic.gif);\n", "us.mail.yahoo.com").find("_css0000001.gif"),
              std::string::npos);
    EXPECT_EQ(rewritten("url(one_pic.gif);\n", "us.mail.example"), "url(one_pic.gif);\n");
}

TEST_F(StyleSheetTest, needsTheUrlToEndInTheName) {
    picture("http://host/one_pic.gif?x=1");
    EXPECT_EQ(rewritten("url(one_pic.gif);\n"), "url(one_pic.gif);\n");
    EXPECT_EQ(rewritten("url(one_pic.tiff);\n"), "url(one_pic.tiff);\n");
}

TEST_F(StyleSheetTest, thatIsNotThereIsPassedOver) {
    findReplaceCSSTags(sheetFile, {}, context());
    EXPECT_FALSE(fs::exists(sheetFile));
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(StyleSheetTest, thatNamesNoValidPatternIsLoggedAndStays) {
    picture("http://host/one_pic.gif");
    EXPECT_EQ(rewritten("url(one_pic[.gif);\n"), "url(one_pic[.gif);\n");
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_EQ(project.log.entries[0].procedure, "MainBAS.FindReplaceCSSTags()");
    EXPECT_EQ(project.log.entries[0].severity, Severity::Warning);
}

TEST_F(StyleSheetTest, ofAMillionParenthesesEndsInAMoment) {
    picture("http://host/one_pic.gif");
    std::string pairs = "url(one_pic.gif);";
    for (int i = 0; i < 1'000'000; ++i)
        pairs += i % 2 ? "()" : "(x.gif)";
    const auto begin = std::chrono::steady_clock::now();
    const std::string css = rewritten(pairs + "\n" + std::string(1'000'000, '(') + "\n" +
                                      std::string(1'000'000, ')') + "\n");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
    EXPECT_NE(css.find("url(_css0000001.gif);"), std::string::npos);
    EXPECT_LT(css.size(), 40U << 20);
}

TEST_F(StyleSheetTest, bringsNoMorePicturesThanAnyoneNeeds) {
    picture("http://host/one_pic.gif");
    std::string lines;
    for (int i = 0; i < 10'010; ++i)
        lines += "url(one_pic.gif);\n\n"; // the empty one ends the carry
    EXPECT_NE(rewritten(lines).find("url(one_pic.gif)"), std::string::npos);
    EXPECT_TRUE(hasPicture("_css0010000.gif"));
    EXPECT_FALSE(hasPicture("_css0010001.gif"));
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_EQ(project.log.entries[0].severity, Severity::Low);
}

} // namespace
} // namespace nv
