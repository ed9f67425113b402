#pragma once

#include "db/project/ProjectDatabase.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "time/TimeZone.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <variant>

namespace nv::test {

/// A new project whose rows the test inserts itself, column by column.
struct MadeProject {
    using Value = std::variant<std::nullptr_t, std::int64_t, double, std::string>;
    using Fields = std::initializer_list<std::pair<const char *, Value>>;

    MadeProject() : project(log, clock), zone(Date::fromTimePoint(clock.now())) {
        project.filePath = folder.path() / "case.nvp";
        EXPECT_TRUE(project.createDatabaseProject());
        // Eastern Time as the reference database holds it: west is positive.
        zone.tzBias = 300;
        zone.tzDSTBias = -60;
        zone.tzLatitudeBias = 1;
    }

    SQLite::Database &db() { return project.connection(); }

    std::int64_t insert(const char *table, Fields fields) {
        std::string names;
        std::string marks;
        for (const auto &[name, value] : fields) {
            names += fmt::format("{}[{}]", names.empty() ? "" : ", ", name);
            marks += marks.empty() ? "?" : ", ?";
        }
        const std::string values =
            names.empty() ? "DEFAULT VALUES" : fmt::format("({}) VALUES ({})", names, marks);
        SQLite::Statement statement(db(), fmt::format("INSERT INTO {} {}", table, values));
        int at = 1;
        for (const auto &field : fields)
            bind(statement, at++, field.second);
        statement.exec();
        return db().getLastInsertRowid();
    }
    std::int64_t add(Fields fields) { return insert("URLs", fields); }

    std::string fieldOf(std::int64_t id, const char *column) {
        SQLite::Statement statement(
            db(), fmt::format("SELECT [{}] FROM URLs WHERE URL_ID = {}", column, id));
        return statement.executeStep() ? statement.getColumn(0).getString() : "(no row)";
    }

    TempFolder folder;
    MemoryLog log;
    FixedClock clock;
    ProjectDatabase project;
    TimeZone zone;

  private:
    static void bind(SQLite::Statement &statement, int at, const Value &value) {
        if (const auto *whole = std::get_if<std::int64_t>(&value))
            statement.bind(at, *whole);
        else if (const auto *real = std::get_if<double>(&value))
            statement.bind(at, *real);
        else if (const auto *text = std::get_if<std::string>(&value))
            statement.bind(at, *text);
        else
            statement.bind(at);
    }
};

/// The stored form of a UTC date.
inline double daysOf(const CivilTime &civil) {
    return Date::fromCivil(civil).days();
}

} // namespace nv::test
