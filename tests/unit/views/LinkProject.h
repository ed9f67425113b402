#pragma once

#include "base/Md5.h"
#include "support/TestProject.h"
#include "views/links/LinkAnalysis.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <filesystem>
#include <string>
#include <vector>

namespace nv::test {

/// A project whose records and links the test inserts itself, and a folder of cached files.
struct LinkProject {
    LinkProject() { std::filesystem::create_directories(scratch); }

    SQLite::Database &db() { return project.connection(); }

    std::int64_t record(const std::string &url, bool history = false) {
        return insert("INSERT INTO URLs (URL, HashedURL, IsHistory, Visits) VALUES (?, ?, ?, 7)",
                      {url, hashOfUrl(url), history ? "1" : "0"});
    }
    void link(std::int64_t page, const std::string &url) {
        insert("INSERT INTO Links (URL_ID, URL, HashedURL) VALUES (?, ?, ?)",
               {std::to_string(page), url, hashOfUrl(url)});
    }
    /// A cached file of the type with this content; an empty one is a file that is gone.
    std::int64_t cached(const std::string &cacheType, const std::string &name,
                        const std::string &content) {
        UrlRecord record;
        record.URL = "http://host/" + name;
        record.cacheType = cacheType;
        const auto file = project.folder.path() / "evidence" / name;
        record.RootPath = evidence.rootOf(file);
        record.CacheFileRelativePath = evidence.relativeOf(file);
        record.CacheFileExists = true;
        if (!content.empty())
            project.folder.write(std::filesystem::path("evidence") / name, content);
        records.saveRecord(record, project.file);
        return number(record.URLID);
    }

    LinkContext context(TaskMonitor &monitor) {
        return {db(), records, evidence, scratch, project.log, monitor};
    }
    LinkTotals run() { return runLinkAnalysis(context(task)); }
    /// "parent>child url" of each pair in the order of insertion.
    std::vector<std::string> pairs() {
        std::vector<std::string> pairs;
        SQLite::Statement rows(db(), "SELECT * FROM LinkAnalysis ORDER BY Link_ID");
        while (rows.executeStep())
            pairs.push_back(fmt::format("{}>{} {} {}", rows.getColumn("Parent_ID").getInt64(),
                                        rows.getColumn("Child_ID").getInt64(),
                                        rows.getColumn("URL").getString(),
                                        rows.getColumn("HashedURL").getString()));
        return pairs;
    }
    std::string field(const std::string &column, std::int64_t id) {
        return project.text(fmt::format("SELECT {} FROM URLs WHERE URL_ID = {}", column, id));
    }

    TestProject project;
    RecordStore records = project.store();
    Evidence evidence{project.folder.path() / "evidence"};
    std::filesystem::path scratch = project.folder.path() / "scratch";
    Unwatched task;

  private:
    std::int64_t insert(const char *sql, const std::vector<std::string> &values) {
        SQLite::Statement statement(db(), sql);
        for (int at = 0; at < static_cast<int>(values.size()); ++at)
            statement.bind(at + 1, values[static_cast<std::size_t>(at)]);
        statement.exec();
        return db().getLastInsertRowid();
    }
};

} // namespace nv::test
