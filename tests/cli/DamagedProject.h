#pragma once

#include "base/Text.h"
#include "cli/CliCase.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <fstream>
#include <string>
#include <vector>

namespace nv::test {

/// A project of 3,000 rows that is damaged by hand.
class DamagedProjectCase : public CliCase {
  protected:
    static constexpr int kRows = 3000;

    /// Rows that the import of `evidence` gives come first; the others have no content.
    void makeProject() const {
        std::filesystem::create_directories(evidence);
        // An import that finds nothing ends with 1, and leaves an empty project.
        static_cast<void>(cli({"import", project, evidence.string()}));
        ASSERT_TRUE(std::filesystem::exists(project));
        SQLite::Database(project, SQLite::OPEN_READWRITE)
            .exec(fmt::format(
                "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < {}) "
                "INSERT OR IGNORE INTO URLs (URL_ID, URL, Host, CacheType, Status, IsHistory,"
                " ActionDateUTC, ActionDateLocal, WebPageTitle) SELECT i, 'http://host/' || i,"
                " 'host', 'IE History', 'URL', 1, 40000 + i, 40000 + i, 'title ' || i FROM n",
                kRows));
        // The first load that may write makes the index by which later ones find their rows.
        EXPECT_EQ(cli({"export", project, at("whole.csv")}).exit, 0);
    }

    std::string at(const char *name) const { return (folder.path() / name).string(); }

    /// Breaks a page in the middle of a table or an index.
    void breakPageOf(const std::string &name, int place) const {
        std::int64_t page = 0;
        std::int64_t pageSize = 0;
        {
            SQLite::Database database(project, SQLite::OPEN_READONLY);
            page = database
                       .execAndGet(fmt::format(
                           "SELECT pageno FROM dbstat WHERE name = '{}' AND pagetype = 'leaf' "
                           "ORDER BY path LIMIT 1 OFFSET {}",
                           name, place))
                       .getInt64();
            pageSize = database.execAndGet("PRAGMA page_size").getInt64();
        }
        std::fstream file(project, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp((page - 1) * pageSize);
        file << std::string(16, '\xFF');
    }

    /// Breaks a page in the middle of table URLs; the rows in it.
    std::vector<int> breakLeaf() const {
        breakPageOf("URLs", 20);
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

} // namespace nv::test
