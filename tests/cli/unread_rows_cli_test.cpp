#include "base/Text.h"
#include "cli/CliCase.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sqlite3.h>

#include <fstream>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A project of 3,000 rows that is damaged by hand.
class UnreadRowsCliTest : public CliCase {
  protected:
    static constexpr int kRows = 3000;

    UnreadRowsCliTest() {
        fs::create_directories(evidence);
        EXPECT_EQ(cli({"import", project, evidence.string()}).exit, 0);
        SQLite::Database(project, SQLite::OPEN_READWRITE)
            .exec(fmt::format(
                "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < {}) "
                "INSERT INTO URLs (URL_ID, URL, Host, CacheType, Status, IsHistory, ActionDateUTC,"
                " ActionDateLocal, WebPageTitle) SELECT i, 'http://host/' || i, 'host',"
                " 'IE History', 'URL', 1, 40000 + i, 40000 + i, 'title ' || i FROM n",
                kRows));
        // The first load that may write makes the index by which later ones find their rows.
        EXPECT_EQ(cli({"export", project, at("whole.csv")}).exit, 0);
    }

    std::string at(const char *name) const { return (folder.path() / name).string(); }

    /// Breaks a page in the middle of table URLs; the rows in it.
    std::vector<int> breakLeaf() {
        std::int64_t page = 0;
        std::int64_t pageSize = 0;
        {
            SQLite::Database database(project, SQLite::OPEN_READONLY);
            page = database
                       .execAndGet("SELECT pageno FROM dbstat WHERE name = 'URLs' AND pagetype = "
                                   "'leaf' ORDER BY path LIMIT 1 OFFSET 20")
                       .getInt64();
            pageSize = database.execAndGet("PRAGMA page_size").getInt64();
        }
        std::fstream file(project, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp((page - 1) * pageSize);
        file << std::string(16, '\xFF');
        file.close();
        SQLite::Database database(project, SQLite::OPEN_READONLY);
        std::vector<int> broken;
        for (int id = 1; id <= kRows; ++id) {
            SQLite::Statement row(database, "SELECT URL FROM URLs WHERE URL_ID = ?");
            row.bind(1, id);
            if (row.tryExecuteStep() != SQLITE_ROW)
                broken.push_back(id);
        }
        EXPECT_GT(broken.size(), 3u);
        EXPECT_LT(broken.size(), 200u);
        return broken;
    }

    static std::string named(const std::vector<int> &broken) {
        return fmt::format("{} rows of the project could not be read: {} to {}", broken.size(),
                           broken.front(), broken.back());
    }

    static std::vector<std::string> linesOf(const std::string &text) {
        std::vector<std::string> lines;
        const std::string plain = replaceAll(text, "\r\n", "\n");
        for (const std::string_view line : split(plain, '\n'))
            lines.emplace_back(line);
        if (!lines.empty() && lines.back().empty())
            lines.pop_back();
        return lines;
    }
};

TEST_F(UnreadRowsCliTest, aBrokenPageCostsTheListItsOwnRowsAlone) {
    const std::vector<int> broken = breakLeaf();
    const CliResult list = cli({"list", project, "--format", "csv", "--columns",
                                "COL_URL_ID,COL_URL_STATUS,COL_URL_VALUE", "--query", "_DEFAULT"});
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

TEST_F(UnreadRowsCliTest, withFiltersTheRowsThatCantBeReadAreNoneOfThoseHidden) {
    const std::vector<int> broken = breakLeaf();
    const CliResult list = cli({"list", project, "--format", "csv", "--columns", "COL_URL_VALUE",
                                "--filter", "historyurls,missingfileext"});
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
