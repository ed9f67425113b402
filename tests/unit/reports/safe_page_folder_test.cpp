#include "base/Files.h"
#include "reports/pages/SafePage.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string bytesOf(const std::filesystem::path &file) {
    const Bytes bytes = readWhole(file);
    return std::string(ByteView(bytes).raw());
}

TEST(SafePageFolder, pagesOfEachEncodingBecomeUtf8) {
    const test::TempFolder folder;
    const auto page = folder.write("0000001.htm", std::string("\xFF\xFE<\0b\0>\0\xE9\0", 10));
    folder.write("0000002.htm", "<meta charset=iso-8859-1>\xE9");
    folder.write("0000003.htm", "<meta charset=utf-7>+ADw-script+AD4-1");
    folder.write("0000004.htm", "\xC3\xA9");
    guardFolder(page);
    EXPECT_THAT(bytesOf(folder.path() / "0000004.htm"), HasSubstr("<body>\xC3\xA9</body>"));
    EXPECT_THAT(bytesOf(page),
                AllOf(StartsWith("\xEF\xBB\xBF<html>"), HasSubstr("<b>\xC3\xA9</b>")));
    EXPECT_THAT(bytesOf(folder.path() / "0000002.htm"), HasSubstr("<body>\xC3\xA9</body>"));
    EXPECT_THAT(bytesOf(folder.path() / "0000003.htm"), Not(HasSubstr("<script")));
    const std::string once = bytesOf(page);
    guardFolder(page);
    EXPECT_EQ(bytesOf(page), once);
}

TEST(SafePageFolder, stylesOfEachEncodingFetchNothingFromElsewhere) {
    const test::TempFolder folder;
    const auto page =
        folder.write("0000001.htm", "<link rel=stylesheet href=0000004.php><img src=0000003.gif>");
    const std::string css =
        "a{background:u\\72l(//host/a)} b{content:'c'} d{background:url(0000003.gif)}";
    const std::string safe = "a {\nbackground:url(\"data:,\");\n}\nb {\ncontent:\"c\";\n}\nd "
                             "{\nbackground:url(\"0000003.gif\");\n}\n";
    std::string wide = "\xFF\xFE";
    for (const char c : css)
        wide += {c, '\0'};
    folder.write("0000002.CSS", css);
    folder.write("0000003.gif", "GIF89a");
    folder.write("0000004.php", css);
    folder.write("0000005.css", wide);
    folder.write("0000006.css", "@charset \"utf-7\";a{background:+AHUAcgBs-(//host/a)}");
    guardFolder(page);
    for (const char *name : {"0000002.CSS", "0000004.php", "0000005.css"})
        EXPECT_EQ(bytesOf(folder.path() / name), safe) << name;
    EXPECT_THAT(bytesOf(folder.path() / "0000006.css"), Not(HasSubstr("url")));
    EXPECT_THAT(bytesOf(page), AllOf(HasSubstr("href=\"0000004.php\""), HasSubstr("0000003.gif")));
}

TEST(SafePageFolder, picturesOfSvgStayPictures) {
    const test::TempFolder folder;
    const auto page = folder.write("0000001.htm", "<img src=0000002.svg>");
    const auto svg = folder.write(
        "0000002.svg", "<?xml version='1.0'?><?xml-stylesheet href='http://host/a.css'?>\n"
                       "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 9 9' onload='1'>"
                       "<script>1</script><a xlink:href='http://host/'><text>a</text></a>"
                       "<linearGradient id='b'/><rect fill='url(#b)' width='9'/></svg>");
    guardFolder(page);
    EXPECT_EQ(bytesOf(svg),
              "\xEF\xBB\xBF<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 9 9\">"
              "<text>a</text><linearGradient id=\"b\"></linearGradient>"
              "<rect fill=\"url(&quot;#b&quot;)\" width=\"9\"></rect></svg>");
}

TEST(SafePageFolder, allThatBrowsersTakeForPagesIsGuarded) {
    const test::TempFolder folder;
    const auto page = folder.write("0000001.htm", "<script>a</script>");
    for (const char *name : {"0000002.gif", "0000003.js", "_TagIDs.txt"})
        folder.write(name, "<script>");
    for (const char *name : {"0000005", "0000006.php", "0000008.xml", "0000011.xht"})
        folder.write(name, "<script>");
    folder.write("0000009.php", "GIF89a");
    folder.write("0000010.htm", "GIF89a<script>");
    folder.write("0000013.swf", std::string_view("FWS\0<script>", 12));
    std::filesystem::create_symlink("/etc/hostname", folder.path() / "0000014.txt");
    guardFolder(page);
    const auto text = [&](const char *name) { return bytesOf(folder.path() / name); };
    for (const char *name : {"0000002.gif", "0000003.js", "_TagIDs.txt"})
        EXPECT_EQ(text(name), "<script>") << name;
    for (const char *name :
         {"0000001.htm", "0000005", "0000006.php", "0000008.xml", "0000010.htm", "0000011.xht"})
        EXPECT_THAT(text(name), AllOf(HasSubstr("default-src 'none'"), Not(HasSubstr("<script"))))
            << name;
    EXPECT_THAT(text("0000008.xml"), HasSubstr("<pre>&lt;script&gt;</pre>"));
    EXPECT_THAT(text("0000011.xht"), HasSubstr("<html xmlns=\"http://www.w3.org/1999/xhtml\">"));
    EXPECT_EQ(text("0000009.php"), "GIF89a");
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "0000013.swf"));
    EXPECT_FALSE(std::filesystem::is_symlink(folder.path() / "0000014.txt"));
}

TEST(SafePageFolder, listsProgramsAndMailAreTakenOut) {
    const test::TempFolder folder;
    const std::string film("\0\0\0\x18"
                           "ftypmp42",
                           12);
    const auto page = folder.write("0000001.htm", "<video src=0000002.mp4></video>"
                                                  "<video src=0000003.mp4></video>"
                                                  "<iframe src=0000004.gif></iframe>"
                                                  "<iframe src=0000005.gif></iframe>");
    folder.write("0000002.mp4", film);
    folder.write("0000003.mp4", "#EXTM3U\nhttp://host/a.ts");
    folder.write("0000004.gif", "GIF89a");
    folder.write("0000005.gif", "<script>");
    folder.write("0000006.wmv", "<asx version=3><entry><ref href='http://host/a'/></entry></asx>");
    folder.write("0000007.wmv", "[playlist]\nFile1=http://host/a");
    folder.write("0000008.MP3", std::string("\xFF\xFE#\0E\0X\0", 8));
    folder.write("0000009.mp3", "");
    for (const char *extension :
         {"mht", "mhtml", "eml", "hta", "htc", "url", "m3u", "m3u8", "ASX", "wsf", "sct", "pls"})
        folder.write(std::string("0000010.") + extension, "a");
    guardFolder(page);
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder.path()))
        names.push_back(entry.path().filename().string());
    EXPECT_THAT(names, testing::UnorderedElementsAre("0000001.htm", "0000002.mp4", "0000004.gif",
                                                     "0000005.gif", "0000009.mp3"));
    EXPECT_EQ(bytesOf(folder.path() / "0000002.mp4"), film);
    EXPECT_THAT(bytesOf(page),
                HasSubstr("<body><video src=\"0000002.mp4\"></video><video></video>"
                          "<iframe src=\"0000004.gif\"></iframe><iframe></iframe></body>"));
}

} // namespace
} // namespace nv
