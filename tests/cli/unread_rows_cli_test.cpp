#include "cli/DamagedProject.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class UnreadRowsCliTest : public DamagedProjectCase {
  protected:
    UnreadRowsCliTest() { makeProject(); }

    /// What the list gives of the rows, by ids.
    std::vector<std::string> listedIds(const std::vector<std::string> &more = {}) const {
        std::vector<std::string> call = {"list", project,     "--format",
                                         "csv",  "--columns", "id,status"};
        call.insert(call.end(), more.begin(), more.end());
        auto lines = linesOf(cli(call).out);
        if (!lines.empty())
            lines.erase(lines.begin()); // the headings
        return lines;
    }
    /// The whole rows in their order, and after them those that nobody can read.
    static std::vector<std::string> wholeThen(const std::vector<int> &broken) {
        std::vector<std::string> lines;
        for (int id = 1; id <= kRows; ++id)
            if (std::ranges::find(broken, id) == broken.end())
                lines.push_back(fmt::format("{},URL", id));
        for (const int id : broken)
            lines.push_back(fmt::format("{},Unreadable", id));
        return lines;
    }
};

TEST_F(UnreadRowsCliTest, aBrokenPageCostsTheListItsOwnRowsAlone) {
    const std::vector<int> broken = breakLeaf();
    const CliResult list = cli(
        {"list", project, "--format", "csv", "--columns", "id,status,url", "--query", "_DEFAULT"});
    EXPECT_EQ(list.exit, 2);
    EXPECT_THAT(list.err, HasSubstr(named(broken)));
    const auto lines = linesOf(list.out);
    ASSERT_EQ(lines.size(), kRows + 1u);
    std::vector<int> unread;
    for (std::size_t i = 1; i < lines.size(); ++i)
        if (lines[i] == fmt::format("{},Unreadable,", i))
            unread.push_back(static_cast<int>(i));
        else
            EXPECT_EQ(lines[i], fmt::format("{0},URL,http://host/{0}", i));
    EXPECT_EQ(unread, broken);
    const CliResult people = cli({"list", project});
    EXPECT_EQ(people.exit, 2);
    EXPECT_THAT(people.err, HasSubstr(named(broken)));
    // The columns are as wide as the first rows of the list need.
    EXPECT_THAT(people.out, HasSubstr("Unrea\u2026"));
}

TEST_F(UnreadRowsCliTest, aBrokenPageOfTheDateIndexCostsNoRow) {
    const auto whole = listedIds();
    breakPageOf("URLDateIndex", 2);
    EXPECT_EQ(whole, wholeThen({}));
    EXPECT_EQ(listedIds(), whole);
    const CliResult list = cli({"list", project});
    EXPECT_EQ(list.exit, 0);
    EXPECT_THAT(list.err, HasSubstr("The project is damaged: its rows were found one by one."));
    EXPECT_EQ(cli({"export", project, at("index.csv")}).exit, 0);
    EXPECT_EQ(text(at("index.csv")), text(at("whole.csv")));
    const CliResult report =
        cli({"report", project, "--type", "tabular", "--out", at("report"), "--all"});
    EXPECT_EQ(report.exit, 0) << report.err;
    EXPECT_THAT(report.out, HasSubstr("3000 rows reported"));
}

TEST_F(UnreadRowsCliTest, aHostFilterGoesOnAfterABrokenPage) {
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("UPDATE URLs SET Host = 'other' WHERE URL_ID > 2000; "
              "UPDATE URLs SET ActionDateLocal = 50000 WHERE URL_ID = 1");
    const std::vector<int> broken = breakLeaf();
    std::vector<std::string> expected;
    for (int id = 2; id <= 2000; ++id)
        if (std::ranges::find(broken, id) == broken.end())
            expected.push_back(fmt::format("{},URL", id));
    expected.emplace_back("1,URL"); // by its date
    for (const int id : broken)
        expected.push_back(fmt::format("{},Unreadable", id));
    EXPECT_EQ(listedIds({"--host", "host"}), expected);
    const CliResult run = cli({"export", project, at("host.csv"), "--host", "host"});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.err, HasSubstr(named(broken)));
}

TEST_F(UnreadRowsCliTest, withoutTheDateIndexABrokenPageCostsItsOwnRowsAlone) {
    SQLite::Database(project, SQLite::OPEN_READWRITE).exec("DROP INDEX URLDateIndex");
    const std::vector<int> broken = breakLeaf();
    EXPECT_EQ(listedIds(), wholeThen(broken));
    const CliResult run = cli({"export", project, at("rows.csv")});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.err, HasSubstr(named(broken)));
}

TEST_F(UnreadRowsCliTest, aConditionThatMeetsABrokenPageIsNoWrongUsage) {
    breakLeaf();
    const CliResult run = cli({"tag", project, "--where", "WebPageTitle LIKE '%30'"});
    EXPECT_EQ(run.exit, 3) << run.err;
    EXPECT_THAT(run.err, HasSubstr("malformed"));
    EXPECT_EQ(cli({"tag", project, "--where", "Nothing = 1"}).exit, 1);
}

TEST_F(UnreadRowsCliTest, withFiltersTheRowsThatCantBeReadAreNoneOfThoseHidden) {
    const std::vector<int> broken = breakLeaf();
    const CliResult list = cli({"list", project, "--format", "csv", "--columns", "url", "--filter",
                                "historyurls,missingfileext"});
    EXPECT_EQ(list.exit, 2) << list.err;
    EXPECT_EQ(linesOf(list.out).size(), kRows + 1u);
    EXPECT_THAT(list.err, HasSubstr(named(broken)));
}

TEST_F(UnreadRowsCliTest, everyFormOfExportNamesTheRowsThatItLacks) {
    const std::vector<int> broken = breakLeaf();
    for (const char *form : {"csv", "jsonl", "xlsx", "txt"}) {
        const std::string file = at((std::string("rows.") + form).c_str());
        const CliResult run = cli({"export", project, file});
        EXPECT_EQ(run.exit, 2) << form;
        EXPECT_THAT(run.err, HasSubstr(named(broken))) << form;
        EXPECT_THAT(run.err, HasSubstr("3000 rows written")) << form;
    }
    const auto whole = linesOf(text(at("whole.csv")));
    const auto lines = linesOf(text(at("rows.csv")));
    ASSERT_EQ(lines.size(), whole.size());
    std::size_t differing = 0;
    for (std::size_t i = 0; i < lines.size(); ++i)
        differing += lines[i] == whole[i] ? 0 : 1;
    EXPECT_EQ(differing, broken.size());
    const auto events = linesOf(text(at("rows.jsonl")));
    const auto event = nlohmann::json::parse(events.at(static_cast<std::size_t>(broken[0]) - 1));
    EXPECT_EQ(event.at("message"),
              fmt::format("row {} of the project could not be read", broken[0]));
}

TEST_F(UnreadRowsCliTest, aReportNamesThemAndTheirEntriesSaySo) {
    const std::vector<int> broken = breakLeaf();
    for (const char *type : {"tabular", "graphical"}) {
        const CliResult run = cli({"report", project, "--type", type, "--out", at(type), "--all"});
        EXPECT_EQ(run.exit, 2) << run.err;
        EXPECT_THAT(run.err, HasSubstr(fmt::format("{} records could not be written; their "
                                                   "entries say so. Ids: {} to {}.",
                                                   broken.size(), broken.front(), broken.back())))
            << type;
        EXPECT_THAT(run.out, HasSubstr("3000 rows reported"));
    }
}

TEST_F(UnreadRowsCliTest, aProjectThatLacksAColumnGivesNoEmptyRows) {
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("PRAGMA legacy_alter_table = ON; ALTER TABLE URLs DROP COLUMN OtherDateMeaning");
    const CliResult list = cli({"list", project, "--format", "csv"});
    EXPECT_EQ(list.exit, 3);
    EXPECT_THAT(list.err, HasSubstr("no such column: OtherDateMeaning"));
    EXPECT_THAT(list.err, HasSubstr("upgrade"));
    EXPECT_EQ(list.out, "");
    for (const char *form : {"csv", "jsonl", "xlsx", "txt"}) {
        const std::string file = at((std::string("rows.") + form).c_str());
        const CliResult run = cli({"export", project, file});
        EXPECT_EQ(run.exit, 3) << form;
        EXPECT_THAT(run.err, HasSubstr("no such column: OtherDateMeaning")) << form;
        EXPECT_FALSE(fs::exists(file)) << form;
    }
    // What doesn't need the column still works.
    EXPECT_EQ(linesOf(cli({"list", project}).out).size(), kRows + 1u);
}

} // namespace
} // namespace nv::test
