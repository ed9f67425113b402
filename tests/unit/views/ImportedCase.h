#pragma once

#include "import/ImportTrail.h"
#include "support/TestProject.h"
#include "views/overview/ImportOverview.h"

#include <gtest/gtest.h>

namespace nv::test {

/// A project as imports leave it: rows, and entries of its trail.
struct ImportedCase : testing::Test {
    void addRow(const std::string &person, const std::string &browser, const std::string &profile,
                double days = 40'603.75, const std::string &path = {}) {
        SQLite::Statement row(project.connection(),
                              "INSERT INTO URLs (URL, Person, Browser, Profile, CacheType, "
                              "ActionDateUTC, HistoryFilePath) VALUES ('http://a.example/', ?, ?, "
                              "?, 'CHROME HISTORY', ?, ?)");
        row.bind(1, person);
        row.bind(2, browser);
        row.bind(3, profile);
        row.bind(4, days);
        row.bind(5, path);
        row.exec();
    }
    void addEntry(TrailEntry entry) {
        entry.actionDateUTC = Date::fromUnixSeconds(1308139200);
        entry.appVersion = "2.0.0";
        CaseTrail(project.connection()).add(entry);
    }
    void addFile(ArtefactState state, const std::string &path = "/mnt/a/History",
                 const std::string &reason = {}, const std::string &md5 = {}) {
        ArtefactResult result;
        result.path = path;
        result.readerKey = "chrome-history";
        result.state = state;
        result.reason = reason;
        result.md5Hash = md5;
        addEntry(trailEntry(result, ImportSettings()));
    }
    std::int64_t lastRow() { return project.number("SELECT ifnull(max(URL_ID), 0) FROM URLs"); }
    void beginImport() { addEntry(trailEntry(ImportBegin{2, m_lastBefore = lastRow()}, "/mnt/a")); }
    void endImport(ImportEnd end = {}) {
        end.lastBefore = m_lastBefore;
        end.lastRow = m_lastBefore = lastRow();
        addEntry(trailEntry(end));
    }
    ImportOverview overview(ImportScope scope = ImportScope::last) {
        Unwatched nobody;
        ImportOverview found;
        EXPECT_EQ(loadImportOverview(project.connection(), scope, nobody, found), Walk::Finished);
        return found;
    }

    TestProject project;

  private:
    std::int64_t m_lastBefore = 0;
};

} // namespace nv::test
