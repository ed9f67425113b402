#include "base/Files.h"
#include "base/Text.h"
#include "db/records/RecordFacts.h"
#include "reports/exports/ExportRows.h"
#include "reports/exports/ExportWriter.h"
#include "reports/report/SheetCount.h"
#include "support/SmallFiles.h"
#include "support/WorkingFolder.h"
#include "unit/reports/ExportFixture.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <regex>
#include <set>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char *kWhole = "http://a.example/|x,\"y\";caf\u00E9\u4E2D";

struct ExportTest : test::ExportFixture {
    ExportTest() {
        project.add({{"URL", kWhole},
                     {"Visits", std::int64_t{3}},
                     {"Action", "Visited"},
                     {"Host", "a.example"},
                     {"CacheType", "IE History"},
                     {"ActionDateUTC", test::daysOf({2009, 2, 13, 23, 31, 30}) + 0.25 / 86400},
                     {"Tagged", std::int64_t{1}}});
        project.add({{"URL", "=HYPERLINK(\"http://x\")"},
                     {"Host", "b.example"},
                     {"WebPageTitle", "two\r\nlines"}});
        job.selectedColumns = columnsFromString(
            "Index|Index;|COL_URL_TAG;URL|COL_URL_VALUE;Visits|COL_URL_VISITS;Action Date "
            "[UTC]|COL_URL_ACTION_DATE_UTC;Web Page Title|COL_URL_WEBPAGE_TITLE;");
        job.exportAllColumns = false;
        load();
    }

    std::vector<nlohmann::json> events() { return objects(ExportFormat::jsonl); }
    std::size_t files() {
        std::size_t count = 0;
        for ([[maybe_unused]] const auto &entry : fs::directory_iterator(out.parent_path()))
            ++count;
        return count;
    }
};

TEST_F(ExportTest, theDelimitedFormStandsAsDocumented) {
    project.db().exec("UPDATE URLs SET URL = replace(URL, char(0x4E2D), ''), "
                      "WebPageTitle = replace(WebPageTitle, char(13, 10), ' ')");
    table.refreshRows();
    EXPECT_EQ(written(ExportFormat::delimited),
              "Index||URL|Visits|Action Date [UTC]|Web Page Title\r\n"
              "1|True|http://a.example/|x,\"y\";caf\xE9|3|2009-02-13 23:31:30|\r\n"
              "2|False|=HYPERLINK(\"http://x\")||"
              "|two lines\r\n");
    EXPECT_EQ(job.counts.charactersBeyond, 0);
    EXPECT_THAT(notesOf(job), testing::IsEmpty());
    EXPECT_EQ(job.counts.rows, 2);
}

TEST_F(ExportTest, anotherDelimiterIsTaken) {
    job.delimiter = "\t";
    EXPECT_NE(written(ExportFormat::delimited).find("Index\t\tURL\tVisits"), std::string::npos);
}

TEST_F(ExportTest, noTaggedRowsGiveTheHeadingLineOnly) {
    job.exportAllRows = false;
    EXPECT_EQ(written(ExportFormat::delimited),
              "Index||URL|Visits|Action Date [UTC]|Web Page Title\r\n");
}

TEST_F(ExportTest, taggedRowsAreTakenWithTheirNumbersInTheTable) {
    project.db().exec("UPDATE URLs SET Tagged = 1 - Tagged");
    job.exportAllRows = false;
    selectTagged(job, table, project.db());
    ASSERT_EQ(job.selectedURLs.count(), 1U);
    EXPECT_EQ(job.selectedURLs.item(std::size_t{1}).rowNumber, 2U);
    EXPECT_THAT(written(ExportFormat::delimited), HasSubstr("\r\n2|True|"));
}

TEST_F(ExportTest, aHostFilterHoldsForTheExport) {
    table.choice.filterByHostEnabled = true;
    table.choice.filterByHostValue = "b.ex";
    table.loadURLs(nobody);
    written(ExportFormat::delimited);
    EXPECT_EQ(job.counts.rows, 1);
}

TEST_F(ExportTest, allColumnsAreThoseOfTheTableHiddenOnesToo) {
    job.exportAllColumns = true;
    job.delimiter = ";";
    const std::string text = written(ExportFormat::delimited);
    const std::string heading = text.substr(0, text.find('\r'));
    EXPECT_EQ(split(heading, ';').size(), kUrlColumnCount);
    EXPECT_THAT(heading, HasSubstr("Keyword Flag"));
}

TEST_F(ExportTest, longTextsAreWholeAndCantForgeALine) {
    const std::string longTitle = std::string(5000, 'a') + "\r\n2|forged" + std::string(400, 'b');
    project.db().exec("UPDATE URLs SET WebPageTitle = '" + longTitle + "' WHERE URL_ID = 1");
    table.refreshRows();
    const std::string text = written(ExportFormat::delimited);
    EXPECT_THAT(text,
                HasSubstr(std::string(5000, 'a') + "\u240D\u240A2|forged" + std::string(400, 'b')));
    EXPECT_EQ(std::ranges::count(text, '\n'), 3);
    EXPECT_THAT(written(ExportFormat::csv), HasSubstr('"' + longTitle + '"'));
}

TEST_F(ExportTest, csvIsQuotedAndInUtf8) {
    EXPECT_EQ(written(ExportFormat::csv),
              "index,tagged,url,visit_count,action_date_utc,title\r\n"
              "1,True,\"http://a.example/|x,\"\"y\"\";caf\u00E9\u4E2D\",3,2009-02-13T23:31:30Z,\r\n"
              "2,False,\"=HYPERLINK(\"\"http://x\"\")\",,,\"two\r\nlines\"\r\n");
}

TEST_F(ExportTest, theNamesOfBeforeAreThereOnDemand) {
    job.names = FieldNames::classic;
    EXPECT_TRUE(
        written(ExportFormat::csv)
            .starts_with("Index,COL_URL_TAG,URL,Visits,Action Date [UTC],Web Page Title\r\n"));
    const nlohmann::json event = events().at(0);
    EXPECT_EQ(event.at("COL_URL_VALUE"), kWhole);
    EXPECT_EQ(event.at("Index"), 1);
    EXPECT_FALSE(event.contains("url"));
}

TEST_F(ExportTest, noTwoFieldsOfALineHaveOneName) {
    job.exportAllColumns = true;
    written(ExportFormat::jsonl);
    const std::string line(ByteView(readWhole(out)).raw());
    std::set<std::string> names;
    std::size_t count = 0;
    const auto note = [&](int depth, nlohmann::json::parse_event_t event, nlohmann::json &parsed) {
        if (depth == 1 && event == nlohmann::json::parse_event_t::key) {
            ++count;
            names.insert(parsed.get<std::string>());
        }
        return true;
    };
    EXPECT_TRUE(nlohmann::json::parse(line.substr(0, line.find('\n')), note).is_object());
    EXPECT_EQ(count, kUrlColumnCount + 4);
    EXPECT_EQ(names.size(), count);
}

TEST_F(ExportTest, formulasOfCsvAreGuardedOnDemand) {
    job.guardFormulas = true;
    EXPECT_THAT(written(ExportFormat::csv), HasSubstr("\"'=HYPERLINK("));
    EXPECT_EQ(job.counts.cellsGuarded, 1);
}

TEST_F(ExportTest, jsonLinesAreEventsOfATimeline) {
    const auto list = events();
    ASSERT_EQ(list.size(), 2U);
    const nlohmann::json &event = list.at(0);
    EXPECT_EQ(event.at("message"), std::string("IE History Visited ") + kWhole);
    EXPECT_EQ(event.at("timestamp_desc"), "Visited");
    EXPECT_EQ(event.at("datetime"), "2009-02-13T23:31:30.250000+00:00");
    EXPECT_EQ(event.at("timestamp"), 1234567890250000);
    EXPECT_TRUE(event.at("timestamp").is_number_integer());
    EXPECT_EQ(event.at("url"), kWhole);
    EXPECT_EQ(event.at("visit_count"), 3);
    EXPECT_EQ(event.at("tagged"), true);
    EXPECT_EQ(event.at("index"), 1);
    EXPECT_EQ(list.at(1).at("title"), "two\r\nlines");
}

TEST_F(ExportTest, everyDateOfAnEventIsIso) {
    job.exportAllColumns = true;
    const std::regex iso(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(\.\d{6}\+00:00|Z|[+-]\d\d:\d\d))");
    const nlohmann::json event = events().at(0);
    for (const char *key : {"datetime", "action_date_utc", "action_date_local"})
        EXPECT_TRUE(std::regex_match(event.at(key).get<std::string>(), iso)) << event.at(key);
}

TEST_F(ExportTest, anEventWithoutADateSaysSo) {
    const nlohmann::json event = events().at(1);
    EXPECT_TRUE(event.at("datetime").is_null());
    EXPECT_TRUE(event.at("timestamp").is_null());
    EXPECT_EQ(event.at("timestamp_desc"), "Action Date");
    EXPECT_EQ(job.counts.rowsWithoutDate, 1);
    EXPECT_THAT(notesOf(job), ElementsAre(HasSubstr("1 events have no date")));
}

TEST_F(ExportTest, datesBefore1970CountBackwards) {
    project.db().exec("UPDATE URLs SET ActionDateUTC = 25568.999994212963 WHERE URL_ID = 1");
    table.refreshRows();
    const nlohmann::json event = events().at(0);
    EXPECT_EQ(event.at("datetime"), "1969-12-31T23:59:59.500000+00:00");
    EXPECT_EQ(event.at("timestamp"), -500000);
}

TEST_F(ExportTest, bytesThatAreNoUtf8BecomeText) {
    project.db().exec("UPDATE URLs SET WebPageTitle = CAST(x'636166E9' AS TEXT) WHERE URL_ID = 1");
    table.refreshRows();
    EXPECT_EQ(events().at(0).at("title"), "caf\u00E9");
    EXPECT_TRUE(isUtf8(written(ExportFormat::csv)));
}

TEST_F(ExportTest, aSheetIsWrittenAndLongCellsAreCounted) {
    project.db().exec("UPDATE URLs SET WebPageTitle = CAST(zeroblob(40000) AS TEXT), URL = "
                      "replace(hex(zeroblob(20000)), '0', 'x') WHERE URL_ID = 1");
    table.refreshRows();
    EXPECT_TRUE(written(ExportFormat::xlsx).starts_with("PK"));
    EXPECT_EQ(job.counts.cellsCut, 2);
    EXPECT_EQ(files(), 1U) << "nothing is left beside it";
}

TEST_F(ExportTest, aCancelWritesNothing) {
    for (const ExportFormat format :
         {ExportFormat::delimited, ExportFormat::csv, ExportFormat::jsonl, ExportFormat::xlsx}) {
        job.format = format;
        job.outputFilePath = out;
        test::CancelAfter task(1);
        EXPECT_EQ(exportRows(job, table, project.folder.path(), task), ExportEnd::cancelled);
        EXPECT_EQ(task.headings.at(0).title, "EXPORTING URLS");
        EXPECT_EQ(files(), 0U);
    }
}

TEST_F(ExportTest, aCancelledOverwriteLeavesTheFile) {
    writeWhole(out, "before");
    job.outputFilePath = out;
    test::CancelAfter task(1);
    exportRows(job, table, project.folder.path(), task);
    EXPECT_EQ(std::string(ByteView(readWhole(out)).raw()), "before");
}

TEST_F(ExportTest, anUnwritablePathIsAFailure) {
    job.outputFilePath = folder.path() / "none" / "out.txt";
    for (const ExportFormat format : {ExportFormat::delimited, ExportFormat::xlsx}) {
        job.format = format;
        EXPECT_THROW(exportRows(job, table, project.folder.path(), nobody), StorageFailure);
    }
}

TEST_F(ExportTest, aFullDiskIsAFailureInEveryForm) {
    project.db().exec("UPDATE URLs SET WebPageTitle = hex(randomblob(15000))");
    table.refreshRows();
    for (const ExportFormat format :
         {ExportFormat::delimited, ExportFormat::csv, ExportFormat::jsonl, ExportFormat::xlsx}) {
        job.format = format;
        job.outputFilePath = out;
        const test::SmallFiles limit(20'000);
        EXPECT_ANY_THROW(exportRows(job, table, project.folder.path(), nobody));
        job.abandon();
        EXPECT_EQ(files(), 0U) << static_cast<int>(format);
    }
}

TEST_F(ExportTest, aSheetIsReadBack) {
    written(ExportFormat::xlsx);
    EXPECT_EQ(countSheets(out), (SheetCount{3, 6 + 5 + 4}));
    EXPECT_EQ(job.counts.sheets, 1);
    for (const char *text : {"", "no zip at all, but longer than its end record"}) {
        writeWhole(out, text);
        EXPECT_ANY_THROW(countSheets(out));
    }
}

TEST_F(ExportTest, furtherSheetsAreToldOf) {
    job.counts.sheets = 1;
    EXPECT_TRUE(notesOf(job).empty());
    job.counts.sheets = 2;
    EXPECT_THAT(notesOf(job), ElementsAre(HasSubstr("2 sheets")));
}

TEST_F(ExportTest, aRowOfOneEmptyCellIsARowOfCsv) {
    job.selectedColumns = columnsFromString("Web Page Title|COL_URL_WEBPAGE_TITLE;");
    EXPECT_EQ(written(ExportFormat::csv), "title\r\n\"\"\r\n\"two\r\nlines\"\r\n");
}

TEST_F(ExportTest, whatASpreadsheetRunsIsGuarded) {
    for (const char *text : {"=cmd|' /C calc'!A0", "+1", "-1", "@SUM(1)", "\t=1", "\r=1", "\n=1",
                             "\uFF1D1", "\uFF0B1", "\uFF0D1", "\uFF201"})
        EXPECT_TRUE(looksLikeFormula(text)) << text;
    for (const char *text : {"", "http://a.example/?a=1", "'=1", "1", "\u00E9"})
        EXPECT_FALSE(looksLikeFormula(text)) << text;
}

TEST_F(ExportTest, hostileTextsGoThroughEveryForm) {
    const std::string title("<script>\"'`\0\x01\x1B[31m\u202Egnp.exe,|;\t\r\n=cmd|' /C calc'!A0",
                            52);
    const std::string lone = "a\xED\xA0\x80z"; // half of a character of 32 bits
    SQLite::Statement change(project.db(), "UPDATE URLs SET WebPageTitle = ?, Host = ?, URL = ?");
    change.bind(1, title);
    change.bind(2, lone);
    change.bind(3, "javascript:" + std::string(1'000'000, 'x'));
    change.exec();
    table.refreshRows();
    job.selectedColumns = columnsFromString("Title|COL_URL_WEBPAGE_TITLE;Host|COL_URL_HOST;"
                                            "URL|COL_URL_VALUE;");
    const nlohmann::json event = events().at(0);
    EXPECT_EQ(event.at("title"), title);
    EXPECT_EQ(event.at("url").get<std::string>().size(), 1'000'011U);
    EXPECT_TRUE(isUtf8(event.at("host").get<std::string>()));
    const std::string csv = written(ExportFormat::csv);
    EXPECT_THAT(csv, HasSubstr('"' + replaceAll(title, "\"", "\"\"") + '"'));
    EXPECT_TRUE(isUtf8(csv));
    const std::string plain = written(ExportFormat::delimited);
    EXPECT_EQ(std::ranges::count(plain, '\n'), 3) << "a heading and two rows";
    EXPECT_EQ(plain.find('\0'), std::string::npos);
    written(ExportFormat::xlsx);
    EXPECT_EQ(countSheets(out), (SheetCount{3, 9}));
    EXPECT_EQ(job.counts.cellsCut, 2);
}

TEST_F(ExportTest, factsGoAlongWhereTheFormHasAPlaceForThem) {
    FactList facts;
    facts.add("transition", "typed", 33554433);
    facts.add("url_chain", "http://a/");
    facts.add("url_chain", "=cmd|' /C calc'!A0");
    facts.add("count", 7);
    RecordFacts(project.db()).store(UrlId{1}, facts);
    const auto list = events();
    EXPECT_EQ(list.at(0).at("facts"), nlohmann::json::parse(R"({"transition":"typed","count":7,
                                        "url_chain":["http://a/","=cmd|' /C calc'!A0"]})"));
    EXPECT_EQ(list.at(0).at("facts_raw"), nlohmann::json::parse(R"({"transition":33554433})"));
    EXPECT_FALSE(list.at(1).contains("facts"));
    EXPECT_FALSE(list.at(1).contains("facts_raw"));
    written(ExportFormat::xlsx);
    EXPECT_EQ(countSheets(out), (SheetCount{3 + 5, 6 + 5 + 4 + 4 + 3 * 4 + 1}))
        << "a sheet of four facts, of which one has a raw form";
    EXPECT_EQ(job.counts.sheets, 1) << "the rows have one";
    EXPECT_EQ(written(ExportFormat::delimited).find("typed"), std::string::npos);
}

TEST_F(ExportTest, progressNamesTheRows) {
    test::MemoryTask task;
    job.outputFilePath = out;
    exportRows(job, table, project.folder.path(), task);
    ASSERT_EQ(task.steps.size(), 2U);
    EXPECT_EQ(task.steps.at(1).topMessage, "Collecting row data...");
    EXPECT_EQ(task.steps.at(1).bottomMessage, "Exporting 2 of 2");
}

TEST_F(ExportTest, theWholeTextCanBeWrittenInOneGo) {
    job.outputFilePath = out;
    job.exportText = "caf\u00E9\r\n";
    EXPECT_TRUE(job.exportToFile());
    EXPECT_EQ(std::string(ByteView(readWhole(out)).raw()), "caf\xE9\r\n");
}

TEST_F(ExportTest, theColumnsOnShowAreOneText) {
    const std::array shown{UrlColumn::Tag, UrlColumn::Value};
    const std::string text = columnsAsString(shown);
    EXPECT_EQ(text, "Index|Index;|COL_URL_TAG;URL|COL_URL_VALUE;");
    const SelectedColumns columns = columnsFromString(text);
    ASSERT_EQ(columns.count(), 3U);
    EXPECT_EQ(columns.item("COL_URL_VALUE").columnHeader, "URL");
    EXPECT_EQ(columns.item(std::size_t{2}).keyName, "COL_URL_TAG");
}

TEST_F(ExportTest, theProjectAndTheEvidenceAreNotWrittenOver) {
    const fs::path nvp = project.folder.path() / "case.nvp";
    const fs::path evidence = folder.path() / "evidence";
    fs::create_directories(evidence);
    fs::create_symlink(nvp, folder.path() / "link.txt");
    for (const fs::path &target : {nvp, fs::path(nvp.native() + "-wal"), folder.path() / "link.txt",
                                   evidence / "x.txt", folder.path() / "other.nvp", evidence})
        EXPECT_TRUE(refusalOf(target, {nvp, {evidence}})) << target;
    EXPECT_FALSE(refusalOf(out, {nvp, {evidence}}));
    EXPECT_FALSE(refusalOf(out, {nvp, {"", "/"}}));
    EXPECT_TRUE(refusalOf(evidence / "x.txt", {nvp, {folder.path() / "other", evidence}}));
    const test::WorkingFolder in(evidence);
    EXPECT_TRUE(refusalOf("new.csv", {nvp, {evidence}}));
    EXPECT_FALSE(refusalOf("../new.csv", {nvp, {evidence}}));
}

} // namespace
} // namespace nv
