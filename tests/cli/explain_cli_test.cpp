#include "cli/ExplainCase.h"
#include "support/builders/NetAnalysisCase.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <map>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

TEST_F(ExplainCliTest, aValueOfATableIsReadAgainWhereItLies) {
    importAll();
    const json record = explained(1);
    EXPECT_EQ(record.at("kind"), "Chrome History");
    EXPECT_EQ(record.at("format_page"), "docs/formats/chrome-history.md");
    EXPECT_EQ(record.at("source").at("today"), "same");
    EXPECT_EQ(record.at("source").at("sha256").get<std::string>().size(), 64U);
    const json date = valueIn(record, "ActionDateUTC");
    EXPECT_EQ(date.at("place"), "table urls, row 7, column last_visit_time");
    EXPECT_EQ(date.at("stored"), "12943324800123456");
    EXPECT_EQ(date.at("check"), "same");
    EXPECT_EQ(date.at("file"), "History");
    EXPECT_EQ(bytesOf(date), std::string("\x00\x2D\xFB\xE2\xA4\xEC\x82\x40", 8));
    EXPECT_THAT(date.at("rule"), HasSubstr("since 1601"));
    EXPECT_THAT(date.at("zone"), HasSubstr("UTC"));
    const json url = valueIn(record, "URL");
    EXPECT_EQ(url.at("stored"), "http://a.example/p%20q");
    EXPECT_EQ(bytesOf(url), "http://a.example/p%20q");
    EXPECT_EQ(url.at("check"), "same");
    EXPECT_THAT(url.at("note"), HasSubstr("percent coding undone"));
    EXPECT_EQ(valueIn(record, "Visits").at("check"), "same");
    EXPECT_EQ(valueIn(record, "HashedURL").at("check"), "derived");
}

TEST_F(ExplainCliTest, noValueThatHasARuleDiffersFromItsSource) {
    importAll();
    std::map<std::string, int> checks;
    for (int row = 1; row <= 2; ++row) {
        const json record = explained(row);
        for (const json &value : record.at("values"))
            ++checks[value.at("check").get<std::string>()];
    }
    EXPECT_EQ(checks["differs"], 0);
    EXPECT_EQ(checks["unread"], 0);
    EXPECT_GT(checks["same"], 8);
}

TEST_F(ExplainCliTest, evidenceThatHasChangedIsToldSo) {
    importAll();
    SQLite::Database(history.string(), SQLite::OPEN_READWRITE)
        .exec("UPDATE urls SET last_visit_time = last_visit_time + 60000000");
    const json record = explained(1, 2);
    EXPECT_EQ(record.at("source").at("today"), "changed");
    EXPECT_EQ(valueIn(record, "ActionDateUTC").at("check"), "differs");
    EXPECT_EQ(valueIn(record, "WebPageTitle").at("check"), "same");
}

TEST_F(ExplainCliTest, evidenceThatIsGoneLeavesWhatTheImportKept) {
    importAll();
    fs::remove(history);
    const json record = explained(1, 2);
    EXPECT_EQ(record.at("source").at("today"), "gone");
    EXPECT_EQ(valueIn(record, "ActionDateUTC").at("check"), "unread");
}

TEST_F(ExplainCliTest, aRowOrAColumnThatIsGoneIsToldAndNothingCrashes) {
    importAll();
    SQLite::Database(history.string(), SQLite::OPEN_READWRITE)
        .exec("DELETE FROM urls; ALTER TABLE urls DROP COLUMN title");
    const json record = explained(1, 2);
    EXPECT_THAT(valueIn(record, "ActionDateUTC").at("note"), HasSubstr("no such row"));
    EXPECT_THAT(valueIn(record, "WebPageTitle").at("note"), HasSubstr("no such column"));
    writeWhole(history, "no database at all");
    EXPECT_EQ(valueIn(explained(1, 2), "ActionDateUTC").at("check"), "unread");
}

TEST_F(ExplainCliTest, bytesOfAnIndexAreNamedByTheirPlace) {
    IndexDat index;
    index.add({.url = "Visited: mara@http://a.example/", .secondDate = fileTime(2011, 3, 1, 12)});
    folder.write("evidence/History.IE5/index.dat", index.bytes());
    fs::remove_all(folder.path() / "evidence/alice");
    importAll();
    const json record = explained(1);
    const json date = valueIn(record, "ActionDateUTC");
    EXPECT_EQ(date.at("check"), "same") << date;
    EXPECT_EQ(date.at("length"), 8);
    EXPECT_EQ(date.at("offset").get<int>(),
              valueIn(record, "URLRawValue").at("offset").get<int>() - 0x68 + 0x10);
    EXPECT_EQ(valueIn(record, "URLRawValue").at("check"), "same");
}

/// The rules against what the readers make: of every format that has some.
class ExplainGoldenTest : public ExplainCliTest,
                          public testing::WithParamInterface<const char *> {};

TEST_P(ExplainGoldenTest, noValueDiffersFromItsSource) {
    fs::remove_all(folder.path() / "evidence");
    fs::copy(fs::path(NV_GOLDEN_DIR) / GetParam() / "input", folder.path() / "evidence",
             fs::copy_options::recursive);
    importAll();
    std::map<std::string, int> checks;
    for (int row = 1; row <= 40; ++row) {
        const CliResult run = cli({"explain", project, std::to_string(row), "--format", "json"});
        if (run.exit == 1)
            break;
        const json record = json::parse(run.out, nullptr, false);
        ASSERT_FALSE(record.is_discarded()) << run.err;
        for (const json &value : record.at("values")) {
            const auto check = value.at("check").get<std::string>();
            ++checks[check];
            EXPECT_NE(check, "differs") << record.at("kind") << ' ' << value;
        }
    }
    EXPECT_GT(checks["same"], 3);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, ExplainGoldenTest,
    testing::Values("chrome-history/three-pages", "chromium-history/every-table",
                    "chromium-cookies/every-column", "chromium-logins/three-logins",
                    "firefox-places/every-further-row", "firefox-cookies/of-firefox-153",
                    "firefox-forms/three-values", "ie-index/main-history",
                    "ie-index/cache-with-files"));

TEST_F(ExplainCliTest, aReportTellsItOfRowsWithTheTick) {
    importAll();
    ASSERT_EQ(cli({"tag", project, "1"}).exit, 0);
    const std::string out = (folder.path() / "report").string();
    const CliResult run = cli({"report", project, "--type", "tabular", "--out", out, "--origins"});
    ASSERT_EQ(run.exit, 0) << run.err;
    const std::string page = text(fs::path(out) / "index-history.htm");
    EXPECT_THAT(page, HasSubstr("ORIGINS:"));
    EXPECT_THAT(page, HasSubstr("table urls, row 7, column last_visit_time"));
    EXPECT_THAT(page, testing::Not(HasSubstr("table visits, row 2")));
}

TEST_F(ExplainCliTest, oneFieldIsToldInWords) {
    importAll();
    const CliResult run = cli({"explain", project, "1", "--field", "visits"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Lies at       table urls, row 7, column visit_count\n"));
    EXPECT_THAT(run.out, HasSubstr(" of History\n")) << "its bytes";
    EXPECT_THAT(run.out, HasSubstr("the source was read again and gives this value"));
    EXPECT_EQ(cli({"explain", project, "1", "--field", "nothing"}).exit, 1);
    EXPECT_EQ(cli({"explain", project, "99"}).exit, 1);
}

TEST_F(ExplainCliTest, aRowThatAnotherLeadsToIsRead) {
    importAll();
    const json visit = valueIn(explained(2), "URL");
    EXPECT_EQ(visit.at("place"), "table urls, row 7, column url");
    EXPECT_EQ(visit.at("check"), "same");
    const json transition = valueIn(explained(1), "transition");
    EXPECT_EQ(transition.at("place"), "table visits, row 3, column transition");
    EXPECT_EQ(transition.at("check"), "same");
}

/// What is decoded of an address lies where the address does.
TEST_F(ExplainCliTest, aPartOfAValueLiesInTheValue) {
    SQLite::Database(history.string(), SQLite::OPEN_READWRITE)
        .exec("UPDATE urls SET url = 'http://a.example/?q=tide+tables'");
    importAll();
    const json part = valueIn(explained(1), "URL > q");
    EXPECT_EQ(part.at("check"), "derived");
    EXPECT_EQ(part.at("place"), "table urls, row 7, column url");
    EXPECT_EQ(bytesOf(part), "http://a.example/?q=tide+tables");
}

/// Redirects that were carved have no kind.
TEST_F(ExplainCliTest, aRowWithoutAKindHasNoEmptyBrackets) {
    importAll();
    SQLite::Database(project, SQLite::OPEN_READWRITE).exec("UPDATE URLs SET CacheType = ''");
    const CliResult run = cli({"explain", project, "1"});
    EXPECT_THAT(run.out, HasSubstr("Record        1\n"));
    EXPECT_THAT(run.out, testing::Not(HasSubstr("()")));
}

/// The bytes before a text that tell its length, and that it is packed, are no letters.
TEST_F(ExplainCliTest, numbersBeforeATextOfACaseStayNumbers) {
    fs::remove_all(folder.path() / "evidence/alice");
    const std::string url = "http://a.example/" + std::string(17, 'p');
    folder.write("evidence/one.net", NetAnalysisCase()
                                         .add({.lastVisited = jetDate(2011, 3, 1),
                                               .internetHistory = url,
                                               .hostname = "a.example"})
                                         .bytes());
    importAll();
    const json record = explained(1);
    const std::string stored = valueIn(record, "URL").at("stored");
    const std::size_t then = stored.find(", then ");
    ASSERT_NE(then, std::string::npos) << stored;
    EXPECT_EQ(stored.substr(then + 7), url);
    EXPECT_EQ(stored.substr(0, then).find_first_not_of("0123456789ABCDEF"), std::string::npos);
    EXPECT_THAT(valueIn(record, "Host").at("stored").get<std::string>(),
                testing::AnyOf("a.example", "FFFE, then a.example"));
}

/// The project shows what the bytes were read as; the examiner sees the bytes and the rule.
TEST_F(ExplainCliTest, bytesThatAreNoUtf8StandAsBytes) {
    SQLite::Database(history.string(), SQLite::OPEN_READWRITE)
        .exec("UPDATE urls SET title = CAST(x'FF2FC328' AS TEXT)");
    importAll();
    const json title = valueIn(explained(1), "WebPageTitle");
    EXPECT_EQ(title.at("value"), "ÿ/Ã(");
    EXPECT_EQ(title.at("stored"), "FF2FC328");
    EXPECT_EQ(title.at("rule"), "text; the bytes are no UTF-8: each is a letter of Windows-1252");
    EXPECT_EQ(title.at("check"), "same");
}

/// A setting that is an object holds numbers with a fraction, also for none.
TEST_F(ExplainCliTest, numbersOfASettingAreComparedAsNumbers) {
    writeWhole(history.parent_path() / "Preferences",
               R"({"profile":{"content_settings":{"exceptions":{"site_engagement":{)"
               R"("https://a.example:443,*":{"last_modified":"12943324800123456",)"
               R"("setting":{"lastEngagementTime":1.2943324800123456e16,"pointsAddedToday":0.0,)"
               R"("rawScore":1.50}}}}}}})");
    importAll();
    int found = 0;
    for (const json &record : ofKind("Chrome Site Setting")) {
        ++found;
        const json setting = valueIn(record, "setting");
        EXPECT_THAT(setting.at("value"), HasSubstr("pointsAddedToday=0"));
        EXPECT_THAT(setting.at("value"), HasSubstr("rawScore=1.5"));
        EXPECT_EQ(setting.at("check"), "same");
    }
    EXPECT_EQ(found, 1);
}

TEST_F(ExplainCliTest, whatTheProgramMadeItselfIsToldSo) {
    importAll();
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("UPDATE URLs SET RebuiltFilePath = '/r/0000001.htm', RebuiltSourceCode = '<p>'");
    const json record = explained(1);
    for (const char *field : {"RebuiltFilePath", "RebuiltSourceCode"})
        EXPECT_EQ(valueIn(record, field).at("check"), "derived") << field;
}

/// Megabytes, control characters and marks of direction in what an evidence holds.
TEST_F(ExplainCliTest, aHostileRecordIsBoundedAndEscaped) {
    {
        SQLite::Database file(history.string(), SQLite::OPEN_READWRITE);
        SQLite::Statement row(file, "UPDATE urls SET title = ?, url = ?");
        row.bind(1, "safe\xE2\x80\xAE"
                    "fdp.exe\x1B[31m\n\xC2\x9B" +
                        std::string(3'000'000, 'A'));
        row.bind(2, "http://a.example/" + std::string(2'000'000, 'b'));
        row.exec();
    }
    importAll();
    const CliResult run = cli({"explain", project, "1"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_LT(run.out.size(), 200'000U);
    EXPECT_THAT(run.out, HasSubstr("<U+202E>"));
    EXPECT_THAT(run.out, HasSubstr("bytes in all)"));
    const CliResult whole = cli({"explain", project, "1", "--format", "json"});
    EXPECT_LT(whole.out.size(), 1'000'000U);
    for (const std::string &text : {run.out, whole.out})
        for (const char *hidden : {"\xE2\x80\xAE", "\x1B", "\xC2\x9B"})
            EXPECT_EQ(text.find(hidden), std::string::npos);
    const json title = valueIn(json::parse(whole.out), "WebPageTitle");
    EXPECT_EQ(title.at("value").get<std::string>().size(), 65536U);
    EXPECT_GT(title.at("value_bytes").get<std::size_t>(), 3'000'000U);
    EXPECT_EQ(title.at("check"), "same");
    EXPECT_THAT(title.at("value").get<std::string>(), HasSubstr("\xE2\x80\xAE"));
}

} // namespace
} // namespace nv::test
