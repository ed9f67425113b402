#pragma once

#include "db/records/RecordFacts.h"
#include "db/sql/BindId.h"
#include "search/IndexFile.h"
#include "search/Search.h"
#include "search/SearchIndex.h"
#include "support/TestProject.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace nv::test {

/// A project whose rows a test writes column by column, and its search index.
struct SearchedProject : TestProject {
    std::int32_t add(const std::vector<std::pair<std::string, std::string>> &fields) {
        std::string names;
        std::string marks;
        for (const auto &[name, value] : fields) {
            names += (names.empty() ? "" : ", ") + name;
            marks += marks.empty() ? "?" : ", ?";
        }
        SQLite::Statement row(connection(),
                              fmt::format("INSERT INTO URLs ({}) VALUES ({})", names, marks));
        int at = 0;
        for (const auto &[name, value] : fields)
            row.bind(++at, value);
        row.exec();
        return static_cast<std::int32_t>(connection().getLastInsertRowid());
    }
    void addDated(const std::string &url, const CivilTime &date) {
        SQLite::Statement row(connection(), "INSERT INTO URLs (URL, ActionDateUTC) VALUES (?, ?)");
        row.bind(1, url);
        row.bind(2, Date::fromCivil(date).days());
        row.exec();
    }
    IndexPlace place() const {
        return {database.filePath, indexBeside(database.filePath), folder.path() / "scratch"};
    }
    SearchIndex index() { return {connection(), place(), log}; }

    /// The rows that the index and a scan of each row find, which are the same.
    FoundIds found(const std::string &text, SearchScope scope = SearchScope::all) {
        SearchIndex search = index();
        RowMatch match(parseSearch(text), scope);
        const SearchFound byIndex = findRows(connection(), search, match, task);
        EXPECT_FALSE(byIndex.isCancelled);
        EXPECT_EQ(byIndex.ids, scanRows(connection(), match, task).ids) << text;
        news = byIndex.index;
        return byIndex.ids;
    }

    Unwatched task;
    IndexNews news;
};

} // namespace nv::test
