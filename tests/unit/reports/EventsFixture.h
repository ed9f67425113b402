#pragma once

#include "db/records/RecordFacts.h"
#include "support/SmallFiles.h"
#include "unit/reports/ExportFixture.h"

#include <nlohmann/json.hpp>

#include <vector>

namespace nv::test {

/// A row with a date of each sort (1), one without any (2), and what exports tell of them.
struct EventsExportTest : ExportFixture {
    EventsExportTest() {
        project.add({{"URL", "http://a.example/x|y,z"},
                     {"Visits", std::int64_t{3}},
                     {"Action", "Visited"},
                     {"Host", "a.example"},
                     {"CacheType", "Chrome Visit"},
                     {"Browser", "Chrome"},
                     {"WebPageTitle", "two\r\nlines"},
                     {"ActionDateUTC", daysOf({2009, 2, 13, 23, 31, 30}) + 0.25 / 86400},
                     {"OtherDate", daysOf({2009, 2, 13, 23, 40, 0})},
                     {"OtherDateMeaning", "Last Modified"},
                     {"Tagged", std::int64_t{1}}});
        FactList facts;
        facts.add("created", "2008-01-02 03:04:05.678901", std::int64_t{7});
        facts.add("last_used", "2008-01-02 03:04:05.678901");
        facts.add("end_time", "2009-02-13 23:40:00.5");
        facts.add("last_modified", "Fri, 13 Feb 2009 23:31:30 GMT");
        facts.add("count", 7);
        RecordFacts(project.db()).store(UrlId{1}, facts);
        project.add({{"URL", "http://b.example/"}, {"CacheType", "Chrome Cookies"}});
        load();
    }

    std::vector<nlohmann::json> events() { return objects(ExportFormat::timesketch); }
};

} // namespace nv::test
