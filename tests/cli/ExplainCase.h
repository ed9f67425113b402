#pragma once

#include "cli/CliCase.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace nv::test {

/// A Chrome history of one page with two visits, in a profile of alice's.
class ExplainCliTest : public CliCase {
  protected:
    ExplainCliTest() {
        std::filesystem::create_directories(history.parent_path());
        SQLite::Database file(history.string(), SQLite::OPEN_CREATE | SQLite::OPEN_READWRITE);
        file.exec("CREATE TABLE urls (id INTEGER PRIMARY KEY, url TEXT, title TEXT, visit_count "
                  "INTEGER, typed_count INTEGER, last_visit_time INTEGER, hidden INTEGER);"
                  "CREATE TABLE visits (id INTEGER PRIMARY KEY, url INTEGER, visit_time INTEGER, "
                  "from_visit INTEGER, transition INTEGER, visit_duration INTEGER);"
                  "INSERT INTO urls VALUES (7, 'http://a.example/p%20q', 'A page', 2, 1, "
                  "12943324800123456, 0);"
                  "INSERT INTO visits VALUES (3, 7, 12943324800123456, 0, -1610612736, 0), "
                  "(2, 7, 12943324700000000, 0, 1, 5000000)");
    }
    void importAll() {
        const CliResult run = cli({"import", project, (folder.path() / "evidence").string()});
        ASSERT_EQ(run.exit, 0) << run.err;
    }
    nlohmann::json explained(int row, int exit = 0) {
        const CliResult run = cli({"explain", project, std::to_string(row), "--format", "json"});
        EXPECT_EQ(run.exit, exit) << run.err;
        return nlohmann::json::parse(run.out, nullptr, false);
    }
    /// Each without a value that differs from its source.
    std::vector<nlohmann::json> ofKind(const std::string &kind) {
        SQLite::Database file(project);
        SQLite::Statement row(file, "SELECT URL_ID FROM URLs WHERE CacheType = ?");
        row.bind(1, kind);
        std::vector<nlohmann::json> records;
        while (row.executeStep())
            records.push_back(explained(row.getColumn(0).getInt()));
        return records;
    }
    static nlohmann::json valueIn(const nlohmann::json &record, const std::string &field) {
        for (const nlohmann::json &value : record.at("values"))
            if (value.at("field") == field)
                return value;
        return {};
    }

    /// What lies in the history where the value is said to lie.
    std::string bytesOf(const nlohmann::json &value) const {
        return text(history).substr(value.at("offset").get<std::size_t>(),
                                    value.at("length").get<std::size_t>());
    }

    std::filesystem::path history =
        folder.path() / "evidence/alice/Chrome/User Data/Default/History";
};

} // namespace nv::test
