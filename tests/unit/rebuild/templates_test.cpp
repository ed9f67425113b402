#include "rebuild/Templates.h"
#include "support/SmallFiles.h"
#include "unit/rebuild/RebuildFixture.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

using testing::StartsWith;

class TemplatesTest : public test::RebuildFixture {
  protected:
    /// A rebuilt page with a picture; its template.
    std::filesystem::path makeTemplate() {
        add("http://host/a/logo.gif", "GIF89a");
        const UrlId html = add("http://host/page.html", "<img src=\"a/logo.gif\" > ");
        EXPECT_TRUE(rebuild(html));
        page.WebpageTitle = "Caf\xC3\xA9";
        EXPECT_EQ(create(page), TemplateResult::made);
        return templatePathOf(page, templates);
    }
    TemplateResult create(const UrlRecord &of,
                          IfTemplateExists ifExists = IfTemplateExists::refuse) {
        return createTemplate(of, templates, "2.8.1", ifExists, context());
    }
    std::filesystem::path templates = project.folder.path() / "templates";
};

TEST_F(TemplatesTest, haveTheirFormatToTheByte) {
    const Bytes bytes = readWhole(makeTemplate());
    const ByteView file(bytes);
    EXPECT_EQ(file.sub(0, 8).raw(), "NV\xBB\xBB    ");
    EXPECT_THAT(std::string(file.from(8).raw()), StartsWith("Norvelane Template 2.8.1"));
    EXPECT_EQ(file.sub(0x208, 8).raw(), std::string_view("classic\0", 8));
    EXPECT_EQ(file.u32le(0x3FC), 4u);
    EXPECT_EQ(file.sub(0x400, 4).raw(), "Caf\xE9");
    const std::string html = "<img src=\"0000001.gif\" > \r\n";
    EXPECT_EQ(file.sub(0x1000, html.size() + 2).raw(), html + "\r\n");
    const std::uint32_t hash = file.u32le(0x200);
    EXPECT_EQ(hash, 0x1000 + html.size() + 2 + 6 + 2);
    EXPECT_EQ(file.sub(hash, file.u32le(0x204)).raw(),
              "\r\n[HASH]\r\n{0||0000001.htm|4096|27}"
              "\r\n{1|a/logo.gif|0000001.gif|4125|6}\r\n[/HASH]\r\n");
    EXPECT_EQ(file.sub(hash + file.u32le(0x204), 4).raw(), "\xAB\xABNV");
    EXPECT_EQ(file.size(), hash + file.u32le(0x204) + 4);
}

TEST_F(TemplatesTest, thatDontFitTheDiskLeaveWhatWasThere) {
    const auto file = makeTemplate();
    const auto size = std::filesystem::file_size(file);
    {
        const test::SmallFiles full(1000); // bytes
        EXPECT_THROW(create(page, IfTemplateExists::overwrite), StorageFailure);
    }
    EXPECT_EQ(std::filesystem::file_size(file), size);
    std::filesystem::remove(file);
    EXPECT_TRUE(std::filesystem::is_empty(templates));
}

TEST_F(TemplatesTest, areShownFromAFolderOfTheirOwn) {
    const auto folder = loadTemplate(makeTemplate(), context());
    ASSERT_TRUE(folder);
    EXPECT_EQ(ByteView(readWhole(*folder / "0000001.gif")).raw(), "GIF89a");
    EXPECT_EQ(ByteView(readWhole(*folder / "0000001.htm")).raw(),
              "<img src=\"0000001.gif\" > \r\n");
    EXPECT_EQ(ByteView(readWhole(*folder / "_TagIDs.txt")).raw(), "1|a/logo.gif|0000001.gif|\r\n");
}

TEST_F(TemplatesTest, layOverAnotherPage) {
    const auto file = makeTemplate();
    const UrlId other = add("http://host/other.html", "a page that lost its frame");
    UrlRecord record = get(other);
    ASSERT_TRUE(rebuildFromTemplate(record, file, context(), project.clock));
    EXPECT_EQ(fileOf(other, "0000003.htm"), "<img src=\"0000001.gif\" > \r\n");
    EXPECT_EQ(fileOf(other, "0000001.gif"), "GIF89a");
    const UrlRecord stored = get(other);
    EXPECT_EQ(stored.IngredientIDs, "1|a/logo.gif|0000001.gif|\r\n");
    EXPECT_TRUE(stored.CacheFileRebuilt);
    EXPECT_EQ(stored.RebuiltMethod, "Cache");
    EXPECT_EQ(stored.RebuiltDateTime, "15-06-2011 12:00:00");
}

TEST_F(TemplatesTest, neverNameAStrangersRecordAsTheirPart) {
    const auto file = makeTemplate();
    // In this project the id stands for something else.
    project.connection().exec("UPDATE URLs SET CacheFileRelativePath = 'gone' WHERE URL_ID = 1");
    UrlRecord record = get(add("http://host/other.html", "page"));
    ASSERT_TRUE(rebuildFromTemplate(record, file, context(), project.clock));
    EXPECT_EQ(record.IngredientIDs, "0|a/logo.gif|0000001.gif|\r\n");
}

TEST_F(TemplatesTest, keepTheBytesOfAnotherProjectsPart) {
    const auto file = makeTemplate();
    project.connection().exec("UPDATE URLs SET CacheFileRelativePath = 'gone' WHERE URL_ID = 1");
    const UrlId other = add("http://host/other.html", "<img src=\"a/logo.gif\" > ");
    UrlRecord record = get(other);
    ASSERT_TRUE(rebuildFromTemplate(record, file, context(), project.clock));
    std::filesystem::remove(file);
    std::filesystem::remove_all(temp);
    std::filesystem::create_directories(temp);
    UrlRecord later = get(other);
    ASSERT_TRUE(unpackIngredients(later, context()));
    EXPECT_EQ(fileOf(other, "0000001.gif"), "GIF89a");
    EXPECT_EQ(fileOf(other, "0000003.htm"), "<img src=\"0000001.gif\" > \r\n");
    EXPECT_EQ(fileOf(other, "_TagIDs.txt"), "0|a/logo.gif|0000001.gif|\r\n");
    // The page's own rebuild takes their place.
    ASSERT_TRUE(rebuild(other));
    EXPECT_TRUE(get(other).CacheFileRebuiltBLOB.empty());
}

TEST_F(TemplatesTest, ofPartsThatTheProjectHasStoreNoBytes) {
    const auto file = makeTemplate();
    UrlRecord record = get(add("http://host/other.html", "page"));
    ASSERT_TRUE(rebuildFromTemplate(record, file, context(), project.clock));
    EXPECT_TRUE(get(record.URLID).CacheFileRebuiltBLOB.empty());
}

TEST_F(TemplatesTest, giveAPartOfThePagesNameAnother) {
    const UrlId frame = add("http://host/frame.htm", "<b>frame</b>", "Opera Cache");
    project.connection().exec("UPDATE URLs SET URLFileExt = 'htm'");
    const UrlId html = add("http://host/page.html", "<iframe src=\"frame.htm\" > ", "Opera Cache");
    ASSERT_TRUE(rebuild(html));
    ASSERT_EQ(create(page), TemplateResult::made);
    const auto file = templatePathOf(page, templates);
    UrlRecord record = get(frame); // its rebuilt page bears the name that the part has
    ASSERT_TRUE(rebuildFromTemplate(record, file, context(), project.clock));
    EXPECT_EQ(fileOf(frame, "0000001.htm"), "<iframe src=\"_0000001.htm\" > \r\n");
    EXPECT_EQ(fileOf(frame, "_0000001.htm"), "<b>frame</b>");
    EXPECT_EQ(record.IngredientIDs, "0|frame.htm|_0000001.htm|\r\n");
    record = get(frame);
    ASSERT_TRUE(unpackIngredients(record, context()));
    EXPECT_EQ(fileOf(frame, "_0000001.htm"), "<b>frame</b>");
    EXPECT_EQ(fileOf(frame, "0000001.htm"), "<iframe src=\"_0000001.htm\" > \r\n");
    const auto shown = loadTemplate(file, context());
    ASSERT_TRUE(shown);
    EXPECT_EQ(ByteView(readWhole(*shown / "0000001.htm")).raw(),
              "<iframe src=\"_0000001.htm\" > \r\n");
    EXPECT_EQ(ByteView(readWhole(*shown / "_0000001.htm")).raw(), "<b>frame</b>");
}

TEST_F(TemplatesTest, keepTheirPageWhenAPartHasNoRecord) {
    const auto file = makeTemplate();
    project.connection().exec("UPDATE URLs SET CacheFileRelativePath = 'gone' WHERE URL_ID = 1");
    page = get(add("http://host/second.html", "page"));
    ASSERT_TRUE(rebuildFromTemplate(page, file, context(), project.clock)); // the part's id is 0
    page.URLFileName = "second";
    ASSERT_EQ(create(page), TemplateResult::made);
    UrlRecord third = get(add("http://host/third.html", "page"));
    ASSERT_TRUE(
        rebuildFromTemplate(third, templatePathOf(page, templates), context(), project.clock));
    EXPECT_EQ(fileOf(third.URLID, "0000004.htm"), "<img src=\"0000001.gif\" > \r\n");
    EXPECT_EQ(fileOf(third.URLID, "0000001.gif"), "GIF89a");
}

TEST_F(TemplatesTest, areMadeOnlyOfPagesRebuiltInThisSession) {
    const UrlRecord record = get(add("http://host/page.html", "page"));
    EXPECT_EQ(create(record), TemplateResult::noRebuild);
}

TEST_F(TemplatesTest, areNotOverwrittenUnasked) {
    makeTemplate();
    EXPECT_EQ(create(page), TemplateResult::exists);
    EXPECT_EQ(create(page, IfTemplateExists::overwrite), TemplateResult::made);
    EXPECT_EQ(templatesIn(templates).size(), 1u);
}

TEST_F(TemplatesTest, replaceALinkAndNotWhatItLeadsTo) {
    const auto file = makeTemplate();
    const auto other = file.parent_path() / "other.dat";
    writeWhole(other, "evidence");
    std::filesystem::remove(file);
    std::filesystem::create_symlink(other, file);
    EXPECT_EQ(create(page, IfTemplateExists::overwrite), TemplateResult::made);
    EXPECT_EQ(ByteView(readWhole(other)).raw(), "evidence");
    EXPECT_FALSE(std::filesystem::is_symlink(file));
    EXPECT_EQ(templatesIn(templates).size(), 1u);
}

TEST_F(TemplatesTest, leaveOutPartsThatAreGone) {
    makeTemplate();
    std::filesystem::remove(rebuildFolderOf(page.URLID, context()) / "0000001.gif");
    ASSERT_EQ(create(page, IfTemplateExists::overwrite), TemplateResult::made);
    const Bytes bytes = readWhole(templatePathOf(page, templates));
    EXPECT_EQ(readTemplate(ByteView(bytes)).records.count(), 1u);
}

TEST_F(TemplatesTest, withoutAHashSectionChangeNothing) {
    const auto file = makeTemplate();
    Bytes bytes = readWhole(file);
    bytes[0x201] = 0;
    bytes[0x200] = 0;
    writeWhole(file, ByteView(bytes).raw());
    UrlRecord record = get(add("http://host/other.html", "page"));
    EXPECT_FALSE(rebuildFromTemplate(record, file, context(), project.clock));
    EXPECT_FALSE(get(record.URLID).CacheFileRebuilt);
}

TEST_F(TemplatesTest, keepTheirFilesInTheFolder) {
    const auto file = makeTemplate();
    std::string bytes(ByteView(readWhole(file)).raw());
    const std::size_t name = bytes.rfind("0000001.gif");
    bytes.replace(name, 11, "../../a.gif");
    writeWhole(file, bytes);
    UrlRecord record = get(add("http://host/other.html", "page"));
    ASSERT_TRUE(rebuildFromTemplate(record, file, context(), project.clock));
    EXPECT_EQ(fileOf(record.URLID, "a.gif"), "GIF89a");
    EXPECT_FALSE(std::filesystem::exists(project.folder.path() / "a.gif"));
}

TEST_F(TemplatesTest, surviveDamage) {
    const auto file = makeTemplate();
    const std::string sound(ByteView(readWhole(file)).raw());
    UrlRecord record = get(UrlId{2});
    for (std::size_t cut = 0; cut < sound.size(); cut += cut < 0x1000 ? 97 : 1) {
        writeWhole(file, sound.substr(0, cut));
        rebuildFromTemplate(record, file, context(), project.clock);
    }
    for (std::size_t at = 0; at < sound.size(); at += at < 0x1000 && at != 0x200 ? 0x20 : 1)
        for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
            std::string damaged = sound;
            damaged[at] = static_cast<char>(value);
            writeWhole(file, damaged);
            loadTemplate(file, context());
        }
    EXPECT_EQ(project.text("PRAGMA integrity_check"), "ok");
}

TEST(TemplateTitle, isComparedTrimmedAndInEitherCase) {
    PageTemplate made;
    made.webpageTitle = " Inbox ";
    EXPECT_TRUE(templateMatchesTitle(made, "INBOX"));
    EXPECT_FALSE(templateMatchesTitle(made, "Inbox (1)"));
    made.webpageTitle = "";
    EXPECT_FALSE(templateMatchesTitle(made, " "));
}

TEST(TemplatePath, holdsNothingThatLeadsAway) {
    UrlRecord page;
    page.URLID = UrlId{17};
    page.URLFileName = "..\\../ShowFolder?id=1";
    EXPECT_EQ(templatePathOf(page, "/t"), "/t/ShowFolderid=1.NVT");
    page.URLFileName = "..";
    EXPECT_EQ(templatePathOf(page, "/t"), "/t/0000017.NVT");
}

} // namespace
} // namespace nv
