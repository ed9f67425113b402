#include "db/marks/PartChoices.h"
#include "rebuild/LocalNames.h"
#include "rebuild/RebuildMethod.h"
#include "rebuild/TemplateList.h"
#include "rebuild/Templates.h"
#include "unit/rebuild/exact/ExactFixture.h"

#include <gmock/gmock.h>

#include <map>

namespace nv {
namespace {

using test::kPng;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class ExactRebuildTest : public test::ExactFixture {
  protected:
    std::map<std::string, std::string> folderOf(UrlId id) {
        std::map<std::string, std::string> files;
        for (const auto &entry :
             std::filesystem::directory_iterator(rebuildFolderOf(id, context())))
            files[entry.path().filename().string()] = fileOf(id, entry.path().filename().string());
        return files;
    }
};

TEST_F(ExactRebuildTest, partsAreFoundByTheirWholeAddress) {
    put({.url = "https://host/dir/bigger-logo.png", .body = kPng});
    put({.url = "https://host/dir/LOGO.png", .body = kPng});
    put({.url = "https://other/dir/logo.png", .body = kPng});
    const UrlId html = putPage("<img src=logo.png><img src='/dir/../dir/logo.png'>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html), ElementsAre("https://host/dir/logo.png: not in any cache -> 0",
                                         "https://host/dir/logo.png: not in any cache -> 0"));
    const UrlId logo = put({.url = "https://host/dir/logo.png", .body = kPng});
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html), ElementsAre("https://host/dir/logo.png: exact address -> 5",
                                         "https://host/dir/logo.png: exact address -> 5"));
    EXPECT_EQ(fileOf(html, localNameOf(logo, "png")), kPng);
    EXPECT_THAT(pageText(html), HasSubstr("<img src=0000005.png><img src='0000005.png'>"));
    EXPECT_EQ(get(html).RebuiltMethod, "Cache, exact");
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(ExactRebuildTest, aPageWithoutAnyPartIsRebuilt) {
    const UrlId html = putPage("<p>text</p><img src=gone.gif>");
    ASSERT_TRUE(rebuild(html));
    const std::string text = pageText(html);
    EXPECT_THAT(text, HasSubstr("<p>text</p>"));
    EXPECT_THAT(text, Not(HasSubstr("src=gone.gif")));
    EXPECT_THAT(text, HasSubstr("data:image/svg+xml"));
    EXPECT_TRUE(get(html).CacheFileRebuilt);
    const UrlId empty = putPage("<p>nothing is named</p>", "https://host/other.html");
    EXPECT_TRUE(rebuild(empty));
    EXPECT_TRUE(notes(empty).empty());
}

TEST_F(ExactRebuildTest, whatIsNoPageIsNotRebuilt) {
    const UrlId picture = put({.url = "https://host/a.png", .body = kPng, .type = "image/png"});
    EXPECT_FALSE(rebuild(picture));
    EXPECT_FALSE(rebuild(putPage("", "https://host/gone.html")));
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(ExactRebuildTest, aFragmentAndAnotherQueryAreTold) {
    put({.url = "https://host/icons.svg",
         .body = "<svg xmlns='http://www.w3.org/2000/svg'></svg>",
         .type = "image/svg+xml"});
    put({.url = "https://host/style.css?v=1", .body = "p{color:red}", .type = "text/css"});
    const UrlId html = putPage("<link rel=stylesheet href=/style.css?v=2>"
                               "<img src='/icons.svg#a'><img src=/style.png?v=2>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html), ElementsAre("https://host/style.css?v=2: same path, other query -> 2",
                                         "https://host/icons.svg#a: without fragment -> 1",
                                         "https://host/style.png?v=2: not in any cache -> 0"));
    EXPECT_THAT(pageText(html), HasSubstr("'0000001.svg#a'"));
}

TEST_F(ExactRebuildTest, ofSeveralTheOwnProfileCountsThenTheTime) {
    const std::int64_t own = source("Default");
    const std::int64_t other = source("Profile 1");
    const std::int64_t ownToo = source("Default");
    const std::string url = "https://host/a.png";
    put({.url = url, .body = kPng, .day = 40000, .source = other});
    put({.url = url, .body = kPng, .day = 40009, .source = own});
    put({.url = url, .body = kPng, .day = 39998, .source = ownToo});
    put({.url = url, .body = "", .day = 40000, .source = own});
    put({.url = url,
         .body = kPng,
         .day = 40000,
         .source = own,
         .cacheType = "Firefox Cache Remnant"});
    const UrlId html = put({.url = "https://host/page",
                            .body = "<html><img src=a.png>",
                            .type = "text/html",
                            .source = own});
    ASSERT_TRUE(rebuild(html));
    const auto all = notes(html);
    ASSERT_EQ(all.size(), 1u);
    EXPECT_THAT(all[0].candidates, ElementsAre(3, 2, 1, 5));
    EXPECT_EQ(all[0].candidateCount, 4);
    EXPECT_EQ(all[0].part, UrlId{3});
    EXPECT_EQ(all[0].seconds, -2 * 86400);
    EXPECT_EQ(all[0].element, "img");
    EXPECT_EQ(all[0].attribute, "src");
    EXPECT_EQ(all[0].sha256, "4c4b6a3be1314ab86138bef4314dde022e600960d8689a2c8f8631802d20dab6");
}

TEST_F(ExactRebuildTest, aCandidateWithoutBytesGivesWayToTheNext) {
    const std::string url = "https://host/a.png";
    put({.url = url, .body = kPng, .day = 40000});
    put({.url = url, .body = kPng, .day = 40005});
    std::filesystem::remove(evidenceFolder / "part1");
    const UrlId html = putPage("<img src=/a.png>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html), ElementsAre("https://host/a.png: exact address -> 2"));
}

TEST_F(ExactRebuildTest, sheetsBringWhatTheyName) {
    put({.url = "https://cdn/css/main.css?x",
         .body = "@import 'sub/other.css';body{background:url(../i/back.png)}",
         .type = "text/css"});
    put({.url = "https://cdn/css/sub/other.css",
         .body = "@import url(gone.css);@font-face{src:url(\"f.woff2\")}",
         .type = "text/css"});
    put({.url = "https://cdn/i/back.png", .body = kPng});
    put({.url = "https://cdn/css/sub/f.woff2", .body = "wOF2..."});
    const UrlId html = putPage("<head><link rel=stylesheet href=//cdn/css/main.css?x></head>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(fileOf(html, "0000001.css"),
                testing::AllOf(HasSubstr("@import '0000002.css'"), HasSubstr("url(0000003.png)")));
    EXPECT_THAT(fileOf(html, "0000002.css"),
                testing::AllOf(HasSubstr("url(\"0000004.woff\")"), Not(HasSubstr("gone.css)"))));
    const auto all = notes(html);
    ASSERT_EQ(all.size(), 5u);
    EXPECT_EQ(all[0].document, html);
    EXPECT_EQ(all[1].document, UrlId{1});
    EXPECT_EQ(all[3].document, UrlId{2});
}

TEST_F(ExactRebuildTest, framesAreRebuiltInTurnAndLoopsEnd) {
    const UrlId frame = put({.url = "https://host/frame",
                             .body = "<html><img src=in.gif><iframe src=dir/page.html></iframe>",
                             .type = "text/html"});
    put({.url = "https://host/in.gif", .body = "GIF89a"});
    const UrlId html = putPage("<iframe src=/frame></iframe><script>x()</script>");
    ASSERT_TRUE(rebuild(html));
    const std::string inner = fileOf(html, localNameOf(frame, "htm"));
    EXPECT_THAT(inner, HasSubstr("src=0000002.gif"));
    EXPECT_THAT(inner, HasSubstr("src=" + pageNameOf(html)));
    EXPECT_THAT(pageText(html), HasSubstr("src=0000001.htm"));
    EXPECT_THAT(pageText(html), Not(HasSubstr("x()")));
}

TEST_F(ExactRebuildTest, framesWithinFramesEndAtADepth) {
    for (int i = 0; i < 12; ++i)
        put({.url = fmt::format("https://host/f{}", i),
             .body = fmt::format("<html><iframe src=f{}></iframe>", i + 1),
             .type = "text/html"});
    const UrlId html = putPage("<iframe src=/f0></iframe>");
    ASSERT_TRUE(rebuild(html));
    const auto lines = found(html);
    ASSERT_EQ(lines.size(), 9u);
    EXPECT_EQ(lines.back(), "https://host/f8: nested too deep -> 0");
}

TEST_F(ExactRebuildTest, aPageThatAPictureNamesIsNoFrame) {
    const UrlId answer = put({.url = "https://host/x",
                              .body = "<html><script src=http://live/x.js></script>",
                              .type = "text/html"});
    const UrlId html = putPage("<img src=/x><iframe src=/x></iframe>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(fileOf(html, sidOf(answer)), HasSubstr("http://live"));
    EXPECT_THAT(fileOf(html, localNameOf(answer, "htm")), Not(HasSubstr("http://live")));
    EXPECT_THAT(pageText(html), HasSubstr(fmt::format("<img src={}>", sidOf(answer))));
}

TEST_F(ExactRebuildTest, redirectsAreFollowedAndTold) {
    put({.url = "https://host/a.png",
         .body = "<html>Moved</html>",
         .type = "text/html",
         .status = "301 Moved",
         .location = "//cdn/b.png"});
    put({.url = "https://cdn/b.png", .body = "", .status = "302 Found", .location = "c.png"});
    put({.url = "https://cdn/c.png", .body = kPng});
    put({.url = "https://host/loop", .body = "", .status = "302 Found", .location = "/loop"});
    const UrlId html = putPage("<img src=/a.png><img src=/loop>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html), ElementsAre("https://host/a.png: redirect, then exact address -> 3",
                                         "https://host/loop: not in any cache -> 0"));
}

TEST_F(ExactRebuildTest, errorsAreNoStyles) {
    const std::string styled = "<html><style>p{color:red}</style>";
    put({.url = "https://host/a.css", .body = styled, .type = "text/html", .status = "404 Gone"});
    put({.url = "https://host/b.css", .body = styled, .type = "text/html"});
    put({.url = "https://host/c.gif", .body = "GIF89a", .type = "image/gif", .status = "404 Gone"});
    const UrlId html = putPage("<!DOCTYPE html><link rel=stylesheet href=/a.css>"
                               "<link rel=stylesheet href=/b.css><img src=/c.gif>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html), ElementsAre("https://host/a.css: answered with an error -> 0",
                                         "https://host/b.css: answered with another type -> 0",
                                         "https://host/c.gif: exact address -> 3"));
}

TEST_F(ExactRebuildTest, ofTheSizesOfAPictureTheCachedOneShows) {
    put({.url = "https://host/b.jpg", .body = "\xFF\xD8\xFF\xE0"});
    const UrlId html = putPage("<picture><source srcset='/a.webp 1x, /b.jpg 2x'><img src=/c.jpg>"
                               "</picture><img src=/c.jpg>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html), ElementsAre("https://host/a.webp: another size of the set -> 1",
                                         "https://host/b.jpg: exact address -> 1",
                                         "https://host/c.jpg: another size of the set -> 1",
                                         "https://host/c.jpg: not in any cache -> 0"));
}

TEST_F(ExactRebuildTest, whatTheExaminerChoosesCountsForEachRebuild) {
    put({.url = "https://host/a.png", .body = "\x89PNG 1"});
    const UrlId other = put({.url = "https://else/b.png", .body = "\x89PNG 2"});
    const UrlId html = putPage("<img src=/a.png><img src=/a.png#x>");
    PartChoices choices(project.connection());
    choices.choose(html, "https://host/a.png", other);
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(rebuild(html));
        EXPECT_THAT(found(html), ElementsAre("https://host/a.png: chosen by the examiner -> 2",
                                             "https://host/a.png#x: chosen by the examiner -> 2"));
        EXPECT_THAT(notes(html)[0].candidates, ElementsAre(2, 1));
    }
    choices.choose(html, "https://host/a.png", UrlId::none);
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(notes(html)[0].rule, "left out by the examiner");
    choices.forget(html, "https://host/A.png"); // another address
    EXPECT_EQ(choices.of(html).size(), 1u);
    choices.forget(html, "https://host/a.png");
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(notes(html)[0].rule, "exact address");
}

TEST_F(ExactRebuildTest, theFolderComesBackByteByByte) {
    put({.url = "https://host/s.css",
         .body = "p{background:url(b.png)}q{background:url(gone.png)} /* \xE4 */",
         .type = "text/css",
         .charset = "iso-8859-1"});
    const UrlId back = put({.url = "https://host/b.png", .body = kPng});
    put({.url = "https://host/f",
         .body = "<html><picture><source srcset=/x.png><img src=/b.png></picture><img src=/x.png>",
         .type = "text/html"});
    const UrlId html = putPage("<p>\xC3\xA4</p><link rel=stylesheet href=/s.css>"
                               "<iframe src=/f></iframe><img src=/gone.png>");
    ASSERT_TRUE(rebuild(html));
    const auto first = folderOf(html);
    EXPECT_GE(first.size(), 5u);
    std::filesystem::remove_all(rebuildFolderOf(html, context()));
    // Later rows, and later choices, change nothing of what was rebuilt.
    put({.url = "https://host/gone.png", .body = kPng});
    PartChoices(project.connection()).choose(html, "https://host/b.png", UrlId::none);
    UrlRecord stored = get(html);
    ASSERT_TRUE(unpackIngredients(stored, context()));
    EXPECT_EQ(folderOf(html), first);
    EXPECT_EQ(fileOf(html, localNameOf(back, "png")), kPng);
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(ExactRebuildTest, aPartThatIsGoneLaterLeavesNoFile) {
    const UrlId part = put({.url = "https://host/b.png", .body = kPng});
    const UrlId html = putPage("<img src=/b.png>");
    ASSERT_TRUE(rebuild(html));
    std::filesystem::remove(evidenceFolder / "part1");
    UrlRecord stored = get(html);
    ASSERT_TRUE(unpackIngredients(stored, context()));
    EXPECT_EQ(fileOf(html, localNameOf(part, "png")), "");
    EXPECT_THAT(pageText(html), HasSubstr("<img src=0000001.png>"));
}

TEST_F(ExactRebuildTest, keysOfMoreThanSevenDigitsKeepTheirPartsApart) {
    const UrlId html = putPage("<img src=/a.png><img src=/b.png>");
    put({.url = "https://host/a.png", .body = "\x89PNG a"});
    project.connection().exec("INSERT INTO sqlite_sequence (name, seq) SELECT 'x', 0;"
                              "UPDATE sqlite_sequence SET seq = 10000001 WHERE name = 'URLs'");
    put({.url = "https://host/b.png", .body = "\x89PNG b"});
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(fileOf(html, "0000002.png"), "\x89PNG a");
    EXPECT_EQ(fileOf(html, "10000002.png"), "\x89PNG b");
    EXPECT_THAT(pageText(html), HasSubstr("<img src=0000002.png><img src=10000002.png>"));
}

TEST_F(ExactRebuildTest, aClassicRebuildTakesItsPlace) {
    put({.url = "https://host/dir/a.png", .body = kPng});
    const UrlId html = putPage("<html><img src=\"a.png\" ></html> ");
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(notes(html).size(), 1u);
    settings.method = MethodChoice::automatic; // its cache isn't one of today's
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(get(html).RebuiltMethod, "Cache");
    EXPECT_TRUE(notes(html).empty());
    project.connection().exec(fmt::format("INSERT INTO RecordFacts (URL_ID, Name, Value) VALUES "
                                          "({}, 'cache_layout', 'Simple cache')",
                                          number(html)));
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(get(html).RebuiltMethod, "Cache, exact");
}

TEST_F(ExactRebuildTest, aTemplateOfThePageSaysSo) {
    put({.url = "https://host/dir/a.png", .body = kPng});
    const UrlId html = putPage("<img src=a.png>");
    ASSERT_TRUE(rebuild(html));
    const auto folder = evidenceFolder.parent_path() / "templates";
    const UrlRecord made = get(html);
    ASSERT_EQ(createTemplate(made, folder, "2.8.1", IfTemplateExists::refuse, context()),
              TemplateResult::made);
    EXPECT_EQ(listTemplates(folder, project.log).at(0).method, "exact");
    UrlRecord other = get(putPage("<p>text</p>", "https://host/other.html"));
    ASSERT_TRUE(rebuildFromTemplate(other, templatePathOf(made, folder), context(), project.clock));
    const UrlRecord stored = get(other.URLID);
    EXPECT_EQ(stored.RebuiltMethod, "Exact template");
    EXPECT_FALSE(isRebuiltExactly(stored)); // its folder isn't made from notes
    EXPECT_EQ(shownMethod(stored), RebuildMethod::exact);
    EXPECT_THAT(pageText(other.URLID), HasSubstr("<img src=0000001.png>"));
    UrlRecord again = stored;
    ASSERT_TRUE(unpackIngredients(again, context()));
    EXPECT_THAT(pageText(other.URLID), HasSubstr("<img src=0000001.png>"));
    EXPECT_EQ(fileOf(other.URLID, "0000001.png"), kPng);
}

TEST_F(ExactRebuildTest, aCancelledRebuildKeepsTheEarlierOne) {
    put({.url = "https://host/dir/a.png", .body = kPng});
    const UrlId html = putPage("<img src=a.png><img src=b.png>");
    ASSERT_TRUE(rebuild(html));
    const std::string before = get(html).RebuiltSourceCode;
    const UrlId later = put({.url = "https://host/dir/b.png", .body = kPng});
    for (int calls = 0; calls < 2; ++calls) {
        test::CancelAfter cancelling(calls);
        UrlRecord record = get(html);
        const RebuildContext ctx{project.connection(), store,      evidence, temp,
                                 project.log,          cancelling, settings};
        EXPECT_FALSE(rebuildWebPage(record, Batch::no, ctx, project.clock));
        EXPECT_EQ(get(html).RebuiltSourceCode, before);
        EXPECT_EQ(notes(html)[1].part, UrlId::none);
    }
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(notes(html)[1].part, later);
}

TEST_F(ExactRebuildTest, addressesThatCachesDoNotKeepAreTold) {
    const UrlId html = putPage("<img src='chrome://icons/1'><img src='http://[x'>"
                               "<img src='data:image/gif;base64,R0lGODlhAQABAAAAACw='>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html), ElementsAre("chrome://icons/1: never kept in caches -> 0",
                                         ": no valid address -> 0"));
    EXPECT_THAT(pageText(html), HasSubstr("src='data:image/gif;base64,R0lGODlhAQABAAAAACw='"));
}

TEST_F(ExactRebuildTest, manyEqualRowsCostLittle) {
    for (int i = 0; i < 300; ++i)
        put({.url = fmt::format("https://host/pixel.gif?{}", i), .body = "GIF89a"});
    std::string text;
    for (int i = 300; i < 600; ++i)
        text += fmt::format("<img src=/pixel.gif?{}>", i);
    const UrlId html = putPage(text);
    ASSERT_TRUE(rebuild(html));
    const auto all = notes(html);
    ASSERT_EQ(all.size(), 300u);
    EXPECT_EQ(all[0].candidateCount, 300);
    EXPECT_EQ(all[0].candidates.size(), 11u);
}

} // namespace
} // namespace nv
