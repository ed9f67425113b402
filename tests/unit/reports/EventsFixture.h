#pragma once

#include "base/Files.h"
#include "base/Text.h"
#include "db/records/RecordFacts.h"
#include "reports/exports/ExportRows.h"
#include "support/SmallFiles.h"
#include "support/WorkingFolder.h"
#include "unit/views/MadeProject.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace nv::test {

/// A row with a date of each sort (1), one without any (2), and what exports tell of them.
struct EventsExportTest : testing::Test {
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
        table.loadURLs(nobody);
        table.sortBy(UrlColumn::Id, SortDirection::Ascending, nobody);
    }

    std::string written(ExportFormat format) {
        job.format = format;
        job.outputFilePath = out;
        EXPECT_EQ(exportRows(job, table, project.folder.path(), nobody), ExportEnd::exported);
        return std::string(ByteView(readWhole(out)).raw());
    }
    std::vector<std::string> lines(ExportFormat format) {
        std::vector<std::string> list;
        const std::string text = written(format);
        for (const std::string_view line : split(text, '\n'))
            if (!line.empty())
                list.emplace_back(line);
        return list;
    }
    std::vector<nlohmann::json> events() {
        std::vector<nlohmann::json> list;
        for (const std::string &line : lines(ExportFormat::timesketch))
            list.push_back(nlohmann::json::parse(line));
        return list;
    }

    MadeProject project;
    Unwatched nobody;
    UrlTable table{project.db(), project.log, project.zone};
    Export job;
    TempFolder folder;
    std::filesystem::path out = folder.path() / "out.txt";
};

} // namespace nv::test
