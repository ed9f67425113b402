#pragma once

#include "base/Files.h"
#include "db/project/ProjectDatabase.h"
#include "db/project/ProjectFields.h"
#include "db/project/StoredQueries.h"
#include "maintenance/ProjectUpgrade.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv::test {

/// A closed project with a record, its link and two settings, which tests damage by hand.
struct UpgradeFixture : testing::Test {
    UpgradeFixture() {
        std::filesystem::create_directories(temp);
        ProjectDatabase project(log, clock);
        project.filePath = path;
        EXPECT_TRUE(project.createDatabaseProject());
        EXPECT_TRUE(
            ProjectFields(project.connection(), log).saveDefaultSetting("LastTimeZoneID", "15"));
        project.connection().exec(
            "INSERT INTO SourceFiles (FileName) VALUES ('index.dat');"
            "INSERT INTO URLs (SourceFile_ID, URL, Visits, ActionDateUTC, Action, ThumbnailBLOB) "
            "VALUES (1, 'http://a.example/' || char(233), 3, 39000.25, 'Visited', x'00FF00'),"
            "(1, 'http://b.example/', NULL, NULL, 'Typed', NULL),"
            "(1, 'http://gone.example/', 1, 1, '', NULL);"
            "DELETE FROM URLs WHERE URL_ID = 3;"
            "INSERT INTO Links (URL_ID, URL) VALUES (1, 'http://c.example/');"
            "INSERT INTO LinkAnalysis (Parent_ID, Child_ID) VALUES (1, 2)");
        log.entries.clear();
    }

    /// Changes the closed project behind the program's back.
    void change(const std::string &sql) {
        SQLite::Database database(path, SQLite::OPEN_READWRITE);
        sqlite3Loose(database);
        database.exec(sql);
    }
    static void sqlite3Loose(SQLite::Database &database) {
        database.exec("PRAGMA foreign_keys=OFF; PRAGMA legacy_alter_table=ON; "
                      "PRAGMA writable_schema=ON");
    }
    /// Takes a column of URLs away as an earlier build didn't have it.
    void dropColumn(const std::string &column) {
        dropViews();
        change("ALTER TABLE URLs DROP COLUMN " + column);
    }
    void dropViews() {
        SQLite::Database database(path, SQLite::OPEN_READWRITE);
        std::vector<std::string> views;
        SQLite::Statement rows(database, "SELECT name FROM sqlite_master WHERE type = 'view'");
        while (rows.executeStep())
            views.push_back(rows.getColumn(0).getString());
        rows.reset();
        for (const std::string &view : views)
            database.exec("DROP VIEW \"" + view + "\"");
    }

    ProjectUpgrade upgrade() { return {{path, temp, {}}, build, log, clock}; }
    SchemaScan scan() {
        Unwatched task;
        return upgrade().scan(task);
    }
    FixOutcome fix() {
        Unwatched task;
        return upgrade().fix(task);
    }
    std::string text(const std::string &query, const std::filesystem::path &file) {
        SQLite::Database database(file, SQLite::OPEN_READONLY);
        return database.execAndGet(query).getString();
    }
    std::string text(const std::string &query) { return text(query, path); }
    std::string bytes(const std::filesystem::path &file) const {
        return std::string(ByteView(readWhole(file)).raw());
    }
    std::vector<std::string> filesBeside() const {
        std::vector<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(folder.path()))
            names.push_back(entry.path().filename());
        return names;
    }
    static std::vector<std::string> linesOf(const SchemaScan &scan) {
        std::vector<std::string> lines;
        for (const SchemaDifference &d : scan.differences)
            lines.push_back(d.table + " " + d.object + " " + d.name + " " + d.status);
        return lines;
    }

    TempFolder folder;
    std::filesystem::path path = folder.path() / "case.nvp";
    std::filesystem::path old = folder.path() / "case.nvp.old";
    std::filesystem::path temp = folder.path() / "Temp";
    AppBuild build{0, 1, 0};
    MemoryLog log;
    FixedClock clock;
};

} // namespace nv::test
