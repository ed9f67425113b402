#include "base/Files.h"
#include "base/Md5.h"
#include "db/records/RecordNames.h"
#include "import/ImportSink.h"
#include "support/TestProject.h"
#include "support/WideText.h"
#include "unit/import/ImportFixture.h"

#include <SQLiteCpp/Statement.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using namespace std::string_literals;

constexpr std::string_view kPage =
    "<html><head><title> Harbour &amp; News </title></head><body>Tide <b>tables</b>"
    "<a href='http://a/'>a</a><a href='/b'>b</a><a href='#c'>c</a></body></html>";

class AdvancedMetadataTest : public testing::Test {
  protected:
    /// A record whose content lies in the test's folder.
    UrlRecord cached(const std::string &name, std::string_view bytes) {
        const auto file = project.folder.write(name, bytes);
        UrlRecord record;
        record.cacheType = "IE Cache";
        record.URL = "http://host/" + name;
        record.CacheFileExists = true;
        record.RootPath = evidence.rootOf(file);
        record.CacheFileRelativePath = evidence.relativeOf(file);
        return record;
    }

    /// The record on its way into the project.
    UrlRecord saved(UrlRecord record) {
        const Extraction extraction{evidence, project.folder.path(), project.log};
        WriteBatch batch(project.connection());
        ImportSink sink(store, ContentLooks(), extraction, content, batch, project.file, result);
        sink.save(record);
        return record;
    }

    /// Its row afterwards.
    UrlRecord row(const UrlRecord &record) {
        return store.getURL(saved(record).URLID).value_or(UrlRecord());
    }
    UrlRecord rowOf(const std::string &name, std::string_view bytes) {
        return row(cached(name, bytes));
    }
    /// What of its text was taken: "-" where there is nothing to say.
    std::string pageText() {
        SQLite::Statement fact(project.connection(),
                               "SELECT Value FROM RecordFacts WHERE Name = 'page_text'");
        return fact.executeStep() ? fact.getColumn(0).getString() : "-";
    }
    std::int64_t links() { return project.number("SELECT Count(*) FROM Links"); }

    test::TestProject project;
    RecordStore store = project.store();
    Evidence evidence{project.folder.path()};
    ContentProbe content;
    ArtefactResult result;
};

TEST_F(AdvancedMetadataTest, putsWhatAPageSaysIntoItsRow) {
    const UrlRecord page = rowOf("page.htm", kPage);
    EXPECT_EQ(pageText(), "-");
    EXPECT_EQ(page.WebpageTitle, "Harbour &amp; News"); // as it stands between the tags
    EXPECT_EQ(page.HTMLBody, "Tide tablesabc");
    EXPECT_TRUE(page.IsWebPage);
    EXPECT_EQ(page.Links, "");
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(AdvancedMetadataTest, addsARowForEachLinkThatNamesThePageItself) {
    const UrlRecord page = rowOf("page.htm", kPage);
    EXPECT_EQ(links(), 3);
    EXPECT_EQ(project.text("SELECT group_concat(DISTINCT URL_ID || URL || HashedURL) FROM Links"),
              "1http://host/page.htm" + hashOfUrl(page.URL));
}

TEST_F(AdvancedMetadataTest, leavesTheLinksThatTheReaderFoundAsTheyAre) {
    UrlRecord record = cached("page.htm", "<html><a href=x>");
    record.Links = "http://one/|two";
    record.IsWebPage = true;
    EXPECT_EQ(row(record).Links, "http://one/|two");
    EXPECT_EQ(project.text("SELECT group_concat(URL) FROM Links"),
              "http://one/,http://host/page.htm");
}

TEST_F(AdvancedMetadataTest, takesAScriptForNoPageWhateverItHolds) {
    for (const std::string name : {"script.js", "SCRIPT.JS"}) {
        UrlRecord record = cached(name, kPage);
        record.IsWebPage = true;
        const UrlRecord script = row(record);
        EXPECT_EQ(script.HTMLBody, "") << name;
        EXPECT_EQ(script.WebpageTitle, "") << name;
        EXPECT_FALSE(script.IsWebPage) << name;
    }
    EXPECT_EQ(links(), 0);
}

TEST_F(AdvancedMetadataTest, passesOverContentThatIsNoPage) {
    const UrlRecord row = rowOf("text.htm", "<title>Title</title><p>text<a href=x>");
    EXPECT_EQ(row.HTMLBody, "");
    EXPECT_EQ(row.WebpageTitle, "");
    EXPECT_EQ(links(), 0);
}

TEST_F(AdvancedMetadataTest, marksAPageWhateverItsNameSays) {
    for (const std::string name : {"page.gif", "page.txt", "page.bin", "noname", "page.asp"}) {
        const UrlRecord row = rowOf(name, "..<BODY>text");
        EXPECT_TRUE(row.IsWebPage) << name;
        EXPECT_EQ(row.HTMLBody, "..text") << name;
    }
}

TEST_F(AdvancedMetadataTest, keepsTheTitleOfARecordWhosePageHasNone) {
    UrlRecord record = cached("page.htm", "<html><body>text");
    record.WebpageTitle = "from the index";
    EXPECT_EQ(row(record).WebpageTitle, "from the index");
    record = cached("open.htm", "<html><title>never ended <body>text");
    record.WebpageTitle = "from the index";
    EXPECT_EQ(row(record).WebpageTitle, "from the index");
    record = cached("empty.htm", "<html><title> </title><body>text");
    record.WebpageTitle = "from the index";
    EXPECT_EQ(row(record).WebpageTitle, "from the index");
}

TEST_F(AdvancedMetadataTest, readsTitleAndBodyInThePagesOwnEncoding) {
    const std::string bytes = "<html><title>\xCF\xF0</title><body>\xCF\xF0";
    const UrlRecord page = rowOf("page.htm", bytes + "<meta charset=windows-1251>");
    EXPECT_EQ(page.WebpageTitle, "\xD0\x9F\xD1\x80");
    EXPECT_EQ(page.HTMLBody, "\xD0\x9F\xD1\x80");
    UrlRecord record = cached("other.htm", bytes);
    record.MetaData = "HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=windows-1251\r\n";
    EXPECT_EQ(row(record).WebpageTitle, "\xD0\x9F\xD1\x80");
}

TEST_F(AdvancedMetadataTest, readsAPageInUtf16OfAnyCache) {
    const auto expectPage = [this](UrlRecord record) {
        const UrlRecord page = row(std::move(record));
        EXPECT_TRUE(page.IsWebPage);
        EXPECT_EQ(page.Category, "HTML");
        EXPECT_EQ(page.WebpageTitle, "Harbour &amp; News");
        EXPECT_EQ(page.HTMLBody, "Tide tablesabc");
    };
    for (const bool isBigEndian : {false, true}) {
        expectPage(cached("marked", test::markedWideText(kPage, isBigEndian)));
        UrlRecord served = cached("served", test::wideText(kPage, isBigEndian));
        served.MetaData = "HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=utf-16";
        served.MetaData += isBigEndian ? "be\r\n" : "le\r\n";
        expectPage(served);
    }
    EXPECT_EQ(links(), 12);
    EXPECT_FALSE(rowOf("bare", test::wideText(kPage, false)).IsWebPage);
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(AdvancedMetadataTest, endsWithoutAFile) {
    UrlRecord record = cached("page.htm", kPage);
    std::filesystem::remove(project.folder.path() / "page.htm");
    EXPECT_FALSE(row(record).IsWebPage);
    record = cached("page.htm", kPage);
    record.CacheFileExists = false;
    EXPECT_EQ(row(record).HTMLBody, "");
    EXPECT_TRUE(project.log.entries.empty());
    EXPECT_EQ(result.rowsSaved, 2U);
}

TEST_F(AdvancedMetadataTest, savesAPageBeyondALimitWithItsTitleAndSaysSo) {
    std::string deep = "<html><title>Deep</title><body><a href='http://a/'>Tide</a> &amp; tables";
    for (int i = 0; i < 100'000; ++i)
        deep += "<b>";
    deep += "harbour";
    const UrlRecord page = rowOf("deep.htm", deep);
    EXPECT_TRUE(page.IsWebPage);
    EXPECT_EQ(page.WebpageTitle, "Deep");
    EXPECT_EQ(page.HTMLBody, "Tide & tablesharbour");
    EXPECT_EQ(pageText(), "its words without its links: too large or too deep to be parsed");
    EXPECT_EQ(links(), 0);
    ASSERT_EQ(project.log.entries.size(), 1U);
    const Failure &failure = project.log.entries[0];
    EXPECT_EQ(failure.procedure, "MainBAS.ParseAdvancedMetaData()");
    EXPECT_EQ(failure.severity, Severity::Warning);
    EXPECT_NE(failure.message.find("deep.htm"), std::string::npos);
    EXPECT_NE(failure.message.find("4000"), std::string::npos);
}

TEST_F(AdvancedMetadataTest, takesTheWordsOfAPageOfNineMegabytes) {
    const UrlRecord page =
        rowOf("large.htm", "<html><title>Large</title>" + std::string(9 << 20, ' ') + "harbour");
    EXPECT_EQ(page.WebpageTitle, "Large");
    EXPECT_TRUE(page.IsWebPage);
    EXPECT_EQ(page.HTMLBody, "harbour");
    ASSERT_EQ(project.log.entries.size(), 1U);
    EXPECT_NE(project.log.entries[0].message.find("8388608"), std::string::npos);
}

TEST_F(AdvancedMetadataTest, saysThatNoWordIsTakenOfAPageThatIsLargerStill) {
    const UrlRecord page = rowOf("large.htm", "<html><title>Large</title>" +
                                                  std::string(kPageTextBytes, ' ') + "harbour");
    EXPECT_EQ(page.WebpageTitle, "Large");
    EXPECT_EQ(page.HTMLBody, "");
    EXPECT_EQ(pageText(), "none: the page can't be read");
    ASSERT_EQ(project.log.entries.size(), 1U);
    EXPECT_NE(project.log.entries[0].message.find("67108864"), std::string::npos);
}

TEST_F(AdvancedMetadataTest, keepsTheRowWhenItsLinksCantBeStored) {
    project.connection().exec("CREATE TRIGGER NoLinks BEFORE INSERT ON Links "
                              "BEGIN SELECT RAISE(ABORT, 'no links today'); END");
    EXPECT_EQ(rowOf("page.htm", kPage).HTMLBody, "Tide tablesabc");
    ASSERT_EQ(project.log.entries.size(), 1U);
    EXPECT_EQ(project.log.entries[0].procedure, "MainBAS.ParseAdvancedMetaData()");
    EXPECT_EQ(result.rowsSaved, 1U);
}

TEST_F(AdvancedMetadataTest, writesNoLinksOfARowThatTheProjectDidntTake) {
    project.connection().exec("CREATE TRIGGER NoRows BEFORE INSERT ON URLs "
                              "BEGIN SELECT RAISE(ABORT, 'no rows today'); END");
    EXPECT_EQ(saved(cached("page.htm", kPage)).URLID, UrlId::none);
    EXPECT_EQ(links(), 0);
}

/// As of one of today's caches, sent as that type; its content still lies by itself.
UrlRecord sent(UrlRecord record, const std::string &type, const std::string &status = "200 OK") {
    record.MIMEType = type;
    record.MetaData = "HTTP/1.1 " + status + "\r\nContent-Type: " + type + "\r\n";
    record.facts.add("cache_layout", std::string("Simple 9"));
    return record;
}

TEST_F(AdvancedMetadataTest, takesWhatWasSentAsAPageForOne) {
    constexpr std::string_view kShort =
        "<!doctype html><meta charset=utf-8><title>Tides</title><p>High at noon";
    const UrlRecord page = row(sent(cached("tides", kShort), "text/html"));
    EXPECT_TRUE(page.IsWebPage);
    EXPECT_EQ(page.WebpageTitle, "Tides");
    EXPECT_EQ(page.Category, "HTML");
    const std::string wide = "\xFF\xFE<\0t\0i\0t\0l\0e\0>\0T\0<\0/\0t\0i\0t\0l\0e\0>\0"s;
    EXPECT_EQ(row(sent(cached("wide", wide), "text/html")).WebpageTitle, "T");
    const std::string xhtml = "<?xml version='1.0'?><div>x</div>";
    EXPECT_TRUE(row(sent(cached("x", xhtml), "application/xhtml+xml")).IsWebPage);
}

TEST_F(AdvancedMetadataTest, takesNothingElseForAPage) {
    constexpr std::string_view kText = "<p>only a paragraph";
    EXPECT_FALSE(row(sent(cached("a", kText), "text/html", "404 Not Found")).IsWebPage);
    EXPECT_FALSE(row(sent(cached("b", "GIF89a....."), "text/html")).IsWebPage);
    EXPECT_FALSE(row(sent(cached("c", "<?xml?><rss/>"), "text/html")).IsWebPage);
    EXPECT_FALSE(row(sent(cached("d", kText), "text/plain")).IsWebPage);
    EXPECT_FALSE(row(sent(cached("script.js", "f()"), "text/html")).IsWebPage);
    UrlRecord guessed = sent(cached("f", kText), "text/html", "500 Failed");
    guessed.IsWebPage = true; // as readers say that go by the type
    EXPECT_FALSE(row(guessed).IsWebPage);
    UrlRecord classic = sent(cached("g", kText), "text/html");
    classic.facts = FactList();
    EXPECT_FALSE(row(classic).IsWebPage) << "earlier cases were counted so";
}

/// A reader that saves the page "page.htm" beside its file.
ReadResult readPageBeside(ReadContext &ctx) {
    UrlRecord record;
    record.URL = "http://host/page.htm";
    record.CacheFileExists = true;
    record.RootPath = textOf(ctx.file.fullPath.parent_path()) + "/";
    record.CacheFileRelativePath = "page.htm";
    ctx.sink.save(record);
    return {};
}

constexpr Reader kPageReader = test::madeUp(HistoryFileType::csv, "page", readPageBeside);

class AdvancedMetadataOption : public test::ImportFixture {};

TEST_F(AdvancedMetadataOption, turnsTheStepOnAndOff) {
    add(HistoryFileType::csv, "file", "");
    project.folder.write("page.htm", kPage);
    for (const bool wanted : {true, false}) {
        job.parseAdvancedMetadata = wanted;
        Unwatched task;
        import(task, [](HistoryFileType) { return &kPageReader;
    });
}
EXPECT_EQ(project.text("SELECT group_concat(HTMLBody, '|') FROM URLs"), "Tide tablesabc|");
EXPECT_EQ(project.number("SELECT Count(*) FROM Links"), 3);
} // namespace

} // namespace nv
} // namespace nv
