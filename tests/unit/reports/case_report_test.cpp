#include "base/Base64.h"
#include "base/Digest.h"
#include "db/trail/CaseTrail.h"
#include "reports/case/CaseStyle.h"
#include "unit/reports/CaseReportFixture.h"

#include <fstream>
#include <regex>

namespace nv::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using CaseReportTest = CaseReportFixture;

TEST_F(CaseReportTest, aCoverTellsTheCaseAndWhatIsInIt) {
    addHistory("http://one.example/", 1);
    add("http://two.example/a.gif", "GIF89a picture");
    const std::string html = makeCase([](ReportWriter &each) {
        each.caseNumber = "2011/17 <b>";
        each.reportedBy = "M. Quill";
        each.reportTitle = "Harbour & tide";
        each.caseOptions.content = "the query \"x\"";
    });
    EXPECT_THAT(html,
                AllOf(HasSubstr("<h1>Harbour &amp; tide</h1>"),
                      HasSubstr("<dt>Case</dt><dd>2011/17 &lt;b&gt;</dd>"),
                      HasSubstr("<dt>Examiner</dt><dd>M. Quill</dd>"),
                      HasSubstr("<dt>Rows</dt><dd>2</dd>"), HasSubstr("the query &quot;x&quot;"),
                      HasSubstr("Nothing was redacted."),
                      HasSubstr("<a href=\"history-1.htm\"><span>History</span><b>1</b>")));
    EXPECT_THAT(html, AllOf(HasSubstr("<a href=\"cards-1.htm\"><span>All rows</span><b>2</b>"),
                            HasSubstr("role=\"img\" aria-label=\"Events over time\""),
                            HasSubstr("aria-label=\"Hours of the day\"")));
    EXPECT_THAT(file("cache-1.htm"), HasSubstr("http://two.example/a.gif"));
    EXPECT_THAT(file("cards-1.htm"), HasSubstr("<a href=\"pictures/0000002.gif\"><img "
                                               "src=\"pictures/0000002.jpg\""));
    EXPECT_FALSE(fs::exists(folder.path / "cookies-1.htm"));
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(CaseReportTest, cardsSayWhereInItsFileARecordLies) {
    const auto save = [this](const std::string &kind, const std::string &path, std::int64_t offset,
                             const FactList &facts) {
        UrlRecord record;
        record.cacheType = kind;
        record.URL = record.URLRawValue = "http://one.example/";
        record.HistoryFilePath = path;
        record.HistoryVersion = kind == "Chrome Cache" ? "Block files 3.0" : "";
        record.MapFileOffset = offset;
        record.facts = facts;
        store.saveRecord(record, project.file);
    };
    FactList row;
    row.add("source_table", "moz_places");
    row.add("source_rowid", 17);
    FactList block;
    block.add("source_file", "data_3");
    block.add("source_offset", 12032);
    save("Firefox Visit", "/e/places.sqlite", 0, row);
    save("Chrome Cache", "/e/Cache/index", 12032, block);
    save("IE Cache", "/e/index.dat", 24832, {});
    save("Firefox Login", "/e/logins.json", 0, {});
    makeCase();
    const std::string cards = file("cards-1.htm");
    EXPECT_THAT(cards, AllOf(HasSubstr("/e/places.sqlite</span>, row 17 of table moz_places"),
                             HasSubstr("/e/Cache/index</span>, data_1[12032]"),
                             HasSubstr("/e/index.dat</span>, offset 24832"),
                             HasSubstr("/e/logins.json</span></dd>")));
    EXPECT_THAT(file("cache.csv"), HasSubstr("/e/Cache/index,12032,"));
    EXPECT_THAT(file("history.csv"), HasSubstr("/e/places.sqlite,,")) << "no byte is known";
}

TEST_F(CaseReportTest, onlyWhatHadACachedFileHasLostIt) {
    const auto cardOf = [this](const std::string &kind, bool hadFile) {
        UrlRecord record;
        record.cacheType = kind;
        record.URL = record.URLRawValue = "http://one.example/";
        record.CacheFileExists = hadFile;
        store.saveRecord(record, project.file);
        makeCase();
        const std::string cards = file("cards-1.htm");
        return cards.substr(cards.rfind("<article"));
    };
    for (const char *kind : {"Chrome Bookmark", "Chrome Login", "Chrome Form Value",
                             "Firefox Permission", "Chrome Site Setting"})
        EXPECT_THAT(cardOf(kind, false), AllOf(Not(HasSubstr("The cached file is gone.")),
                                               HasSubstr("There is no cached file.")))
            << kind;
    EXPECT_THAT(cardOf("Chrome Cache", true), HasSubstr("The cached file is gone."));
    EXPECT_THAT(cardOf("Chrome Cache", false),
                HasSubstr("The cached file was not there at the import."));
}

TEST_F(CaseReportTest, contentThatIsNotWhatWasImportedIsToldInRed) {
    const UrlId same = add("http://host/a.gif", "GIF89a one");
    const UrlId changed = add("http://host/b.gif", "GIF89a two");
    add("http://host/c.gif", "GIF89a three"); // never hashed
    hashThen(same, "GIF89a one");
    hashThen(changed, "GIF89a TWO");
    const std::string html = makeCase();
    const std::string cards = file("cards-1.htm");
    constexpr const char *kTold = "<span class=\"warn\">The content is NOT what was imported";
    EXPECT_EQ(countOf(cards, kTold), 1u);
    const std::string card = cards.substr(cards.find("id=\"r2\""));
    EXPECT_THAT(card.substr(0, card.find("</article>")), HasSubstr(kTold));
    EXPECT_EQ(file("pictures/0000002.gif"), "GIF89a two") << "it is handed over all the same";
    EXPECT_THAT(html, HasSubstr("<p class=\"warn\">1 card with content that is NOT what was "
                                "imported; the cards say so.</p>"));
    EXPECT_THAT(notes, testing::ElementsAre("The content of 1 record is NOT what was imported; "
                                            "their cards say so. Ids: 2."));
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_THAT(project.log.entries[0].message, HasSubstr("URL ID: 2 the content is NOT"));
}

TEST_F(CaseReportTest, cachedFilesThatAreGoneAreCounted) {
    for (const char *url : {"http://host/a.gif", "http://host/b.gif"})
        set(add(url, ""), "CacheFileExists", "1");
    add("http://host/c.gif", ""); // not there at the import
    EXPECT_THAT(makeCase(), HasSubstr("<p class=\"warn\">2 cached files could not be read; their "
                                      "cards say so.</p>"));
    EXPECT_THAT(notes,
                testing::ElementsAre("2 cached files could not be read; their cards say so."));
    EXPECT_THAT(makeCase([](ReportWriter &each) { each.caseOptions.cards = CaseCards::none; }),
                Not(HasSubstr("could not be read")))
        << "without cards nobody has looked";
}

TEST_F(CaseReportTest, nothingOfARecordRunsOrIsALinkOutside) {
    const UrlId id = addHistory("javascript:alert(1)", 1);
    set(id, "WebPageTitle", "</script><script>alert(2)</script><img src=x onerror=alert(3)>");
    set(id, "Notes", "\"><svg onload=alert(4)>\r\n\xE2\x80\xAEgnp.exe");
    set(id, "Referrer", "http://from.example/'\"><a href=http://out.example>");
    makeCase();
    const std::regex outside("<[a-z]+ [^<>]*(href|src)=[\"']?(https?:|//|javascript:|data:|file:)");
    for (const char *name : {"index.htm", "history-1.htm", "cards-1.htm"}) {
        const std::string text = file(name);
        EXPECT_FALSE(std::regex_search(text, outside)) << name;
        EXPECT_EQ(countOf(text, "<script"), 1u) << name;
        EXPECT_EQ(countOf(text, "<img"), 0u) << name;
        EXPECT_THAT(text,
                    AllOf(Not(HasSubstr("\xE2\x80\xAE")), HasSubstr(std::string(casePolicy()))));
    }
    EXPECT_THAT(file("cards-1.htm"), HasSubstr("&lt;/script&gt;&lt;script&gt;alert(2)"));
    EXPECT_THAT(file("cards-1.htm"), HasSubstr("<bdi class=\"u\">javascript:alert(1)</bdi>"));
}

TEST_F(CaseReportTest, thePolicyNamesStyleAndScriptByTheirHashes) {
    const std::string policy(casePolicy());
    EXPECT_THAT(policy, AllOf(HasSubstr("default-src 'none'"), HasSubstr("script-src 'sha256-"),
                              HasSubstr("style-src 'sha256-"), Not(HasSubstr("unsafe"))));
    EXPECT_THAT(std::string(caseScript()), Not(HasSubstr("eval")));
    EXPECT_THAT(std::string(caseScript()), Not(HasSubstr("innerHTML")));
}

/// Paper is narrower than a window: what is for phones may not reach it.
TEST_F(CaseReportTest, paperHasTablesWithHeadingsOnEachSheet) {
    const std::string style(caseStyle());
    const std::size_t phone = style.find("@media screen and (max-width:760px){");
    const std::size_t paper = style.find("@media print{");
    ASSERT_NE(phone, std::string::npos);
    ASSERT_LT(phone, paper);
    for (const char *rule : {"thead{display:none}", "table,tbody,tr,td{display:block"}) {
        EXPECT_GT(style.find(rule), phone) << rule;
        EXPECT_LT(style.rfind(rule), paper) << rule;
    }
    EXPECT_EQ(style.find("@media(max-width"), std::string::npos);
    EXPECT_THAT(style.substr(paper), AllOf(HasSubstr("thead{display:table-header-group}"),
                                           Not(HasSubstr("break-after:page"))));
}

TEST_F(CaseReportTest, hugeValuesAreCutOnPagesAndWholeInTheList) {
    const std::string url = "http://long.example/" + std::string(50000, 'a');
    addHistory(url, 1);
    makeCase();
    EXPECT_LT(file("history-1.htm").size(), 30000u);
    EXPECT_THAT(file("history-1.htm"), HasSubstr("(50,020 letters in all)"));
    EXPECT_THAT(file("history.csv"), HasSubstr(url));
}

TEST_F(CaseReportTest, listsHoldNoFormulas) {
    const UrlId id = addHistory("http://one.example/", 1);
    set(id, "WebPageTitle", "=cmd|' /C calc'!A1");
    makeCase();
    EXPECT_THAT(file("history.csv"), HasSubstr(",'=cmd|"));
}

TEST_F(CaseReportTest, manyRowsGoIntoPages) {
    CaseFrame frame;
    frame.title = "Title";
    CaseSection section;
    section.title = "History";
    section.name = "history";
    section.rows = 2 * kCaseRowsAPage + 1;
    section.rowsAPage = kCaseRowsAPage;
    frame.sections = {section};
    CaseTable table(frame, frame.sections.front(), temp);
    CaseRow row;
    for (std::uint64_t at = 0; at < section.rows; ++at) {
        row.id = UrlId{static_cast<std::int64_t>(at + 1)};
        row.address = "http://a.example/";
        table.add(row);
    }
    table.finish();
    const auto rowsIn = [this](const char *name) {
        return countOf(textAt(temp / name), "<tr data-r");
    };
    EXPECT_EQ(rowsIn("history-1.htm"), kCaseRowsAPage);
    EXPECT_EQ(rowsIn("history-2.htm"), kCaseRowsAPage);
    EXPECT_EQ(rowsIn("history-3.htm"), 1u);
    EXPECT_EQ(countOf(textAt(temp / "history.csv"), "\r\n"), section.rows + 1);
    EXPECT_THAT(textAt(temp / "history-2.htm"),
                AllOf(HasSubstr("Page 2 of 3"), HasSubstr("<a href=\"history-1.htm\">Previous</a>"),
                      HasSubstr("<a href=\"history-3.htm\">Next</a>")));
}

TEST_F(CaseReportTest, onlyTickedRowsHaveCardsUnlessAskedFor) {
    addHistory("http://one.example/", 1);
    addHistory("http://two.example/", 2);
    project.connection().exec("UPDATE URLs SET Tagged = 1 WHERE URL_ID = 2");
    makeCase([](ReportWriter &each) { each.caseOptions.cards = CaseCards::ticked; });
    EXPECT_EQ(countOf(file("ticked-1.htm"), "<article"), 1u);
    EXPECT_EQ(countOf(file("history-1.htm"), "<tr data-r"), 2u);
    makeCase([](ReportWriter &each) { each.caseOptions.cards = CaseCards::none; });
    EXPECT_FALSE(fs::exists(folder.path / "ticked-1.htm"));
}

TEST_F(CaseReportTest, evidenceAndWhatWasNotReadAreTold) {
    addHistory("http://one.example/", 1);
    project.connection().exec(
        "INSERT INTO SourceFiles (FilePath, FileSize, MD5Hash, SHA256Hash, Successful) VALUES "
        "('/case/<History>', 12345, 'aa11', 'bb22', 0)");
    TrailEntry entry;
    entry.actionDateUTC = Date::fromCivil({2011, 5, 1, 1, 0, 0});
    entry.action = "Not Readable";
    entry.detail = "permission denied";
    entry.filePath = "/case/locked";
    CaseTrail(project.connection()).add(entry);
    const std::string html = makeCase([](ReportWriter &each) { each.includeCaseTrail = true; });
    EXPECT_THAT(html, AllOf(HasSubstr("/case/&lt;History&gt;"), HasSubstr("SHA-256 bb22"),
                            HasSubstr("12.3 KB"), HasSubstr("not read to its end"),
                            HasSubstr("/case/locked"), HasSubstr("permission denied"),
                            HasSubstr("<h2 id=\"trail\">")));
    EXPECT_THAT(file("evidence.csv"), HasSubstr("/case/<History>"));
}

TEST_F(CaseReportTest, everyFileIsNamedWithItsHash) {
    add("http://two.example/a.gif", "GIF89a picture");
    makeCase();
    const std::string list = file("files.csv");
    std::size_t count = 0;
    for (const auto &entry : fs::recursive_directory_iterator(folder.path)) {
        if (!entry.is_regular_file() || entry.path().filename() == kReportFiles)
            continue;
        ++count;
        const std::string name = entry.path().lexically_relative(folder.path).generic_string();
        EXPECT_THAT(list, HasSubstr(name + "," + std::to_string(fs::file_size(entry.path())) + "," +
                                    hashesOfFile(entry.path())->sha256));
    }
    EXPECT_EQ(countOf(list, "\r\n"), count + 1);
}

TEST_F(CaseReportTest, aCancelLeavesNoFirstPage) {
    for (int day = 1; day < 10; ++day)
        addHistory("http://one.example/" + std::to_string(day), day);
    for (const int after : {0, 5, 15, 25}) {
        CancelAfter stop(after);
        monitor = &stop;
        EXPECT_EQ(makeCase(), "");
        EXPECT_TRUE(cancelled) << after;
    }
}

TEST_F(CaseReportTest, itIsPublishedWholeAndTakenOutAgain) {
    add("http://two.example/a.gif", "GIF89a picture");
    makeCase();
    const fs::path target = project.folder.path() / "handover";
    fs::create_directories(target);
    writeWhole(target / "mine.txt", "mine");
    Unwatched watch;
    EXPECT_FALSE(isReportThere(ReportFolder::at(target), kCaseType));
    publishReport(folder, kCaseType, target, watch);
    ASSERT_TRUE(isReportThere(ReportFolder::at(target), kCaseType));
    EXPECT_EQ(textAt(target / "pictures" / "0000001.gif"), "GIF89a picture");
    std::ofstream(target / kReportFiles, std::ios::app)
        << "../outside.txt,1,x\r\nmine.txt/../..,1,x\r\n";
    writeWhole(project.folder.path() / "outside.txt", "outside");
    removePublished(target);
    EXPECT_FALSE(fs::exists(target / "index.htm"));
    EXPECT_FALSE(fs::exists(target / "pictures"));
    EXPECT_EQ(textAt(target / "mine.txt"), "mine");
    EXPECT_EQ(textAt(project.folder.path() / "outside.txt"), "outside");
    writeWhole(target / "index.htm", "a page of the examiner's");
    removePublished(target);
    EXPECT_THROW(publishReport(folder, kCaseType, target, watch), std::runtime_error);
    EXPECT_EQ(textAt(target / "index.htm"), "a page of the examiner's");
}

} // namespace
} // namespace nv::test
