#pragma once

#include "db/project/ProjectDatabase.h"
#include "db/records/RecordStore.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "time/TimeZone.h"

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>

#include <stdexcept>
#include <string>

namespace nv::test {

/// A new project in a folder of its own, in the zone of UTC-05:00 without daylight time.
struct TestProject {
    TempFolder folder;
    MemoryLog log;
    FixedClock clock;
    ProjectDatabase database{log, clock};
    TimeZone zone{Date::fromTimePoint(clock.now())};
    HistoryFile file;

    TestProject() {
        zone.tzBias = 300; // minutes, west positive
        zone.tzLatitudeBias = 0;
        database.filePath = folder.path() / "case.nvp";
        if (!database.createDatabaseProject())
            throw std::runtime_error(log.entries.at(0).message);
    }

    SQLite::Database &connection() { return database.connection(); }
    ProjectZone projectZone() const { return {zone}; }
    RecordStore store() { return {connection(), projectZone(), clock, log}; }

    std::string text(const std::string &query) {
        return connection().execAndGet(query).getString();
    }
    std::int64_t number(const std::string &query) {
        return connection().execAndGet(query).getInt64();
    }
};

} // namespace nv::test
