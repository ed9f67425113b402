#include "db/marks/NamedTags.h"
#include "db/marks/RecordTags.h"
#include "unit/reports/EventsFixture.h"

#include <gmock/gmock.h>

namespace nv::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// A row of one kind with these facts: "time meaning" of its events.
struct FactEventsTest : EventsExportTest {
    using Fields = std::vector<std::pair<std::string, Cell>>;
    std::vector<std::string> told(const FactList &facts) {
        RecordFacts(project.db()).store(UrlId{3}, facts);
        table.loadURLs(nobody);
        table.sortBy(UrlColumn::Id, SortDirection::Ascending, nobody);
        std::vector<std::string> list;
        for (const auto &event : events())
            if (event.at("id").get<std::int64_t>() == 3)
                list.push_back(event.at("datetime").get<std::string>().substr(11, 15) + " " +
                               event.at("timestamp_desc").get<std::string>());
        return list;
    }
    double second(int at) const { return daysOf({2026, 11, 21, 23, 42, at}); }
};

TEST_F(FactEventsTest, aDownloadBeginsBeforeItEnds) {
    project.add({{"URL", "http://c.example/"},
                 {"CacheType", "Chrome Download"},
                 {"Action", "Downloaded"},
                 {"ActionDateUTC", second(10) + 0.118003 / 86400},
                 {"OtherDate", second(10)},
                 {"OtherDateMeaning", "Download End (UTC)"}});
    FactList facts;
    facts.add("start_time", "2026-11-21 23:42:10.118003");
    facts.add("end_time", "2026-11-21 23:42:10.140300");
    facts.add("last_used", "2026-11-21 23:42:10.2");
    EXPECT_THAT(told(facts),
                ElementsAre("23:42:10.118003 Downloaded", "23:42:10.140300 Download End (UTC)",
                            "23:42:10.200000 Last Used"));
}

TEST_F(FactEventsTest, aFactOfAnotherMeaningIsItsOwnEvent) {
    project.add({{"URL", "http://c.example/"},
                 {"CacheType", "Chrome Login"},
                 {"Action", "Saved"},
                 {"ActionDateUTC", second(10)}});
    FactList facts;
    facts.add("password_changed", "2026-11-21 23:42:10.5");
    facts.add("created", "2026-11-21 23:42:10.25");
    facts.add("last_filled", "2026-11-21 23:42:10");
    EXPECT_THAT(told(facts),
                ElementsAre("23:42:10.250000 Saved", "23:42:10.500000 Password Changed",
                            "23:42:10.000000 Login Filled In"));
}

TEST_F(FactEventsTest, aColumnOfTheSameNameHasTheFractionOfItsFact) {
    project.add({{"URL", "http://c.example/"},
                 {"CacheType", "Chrome Cache"},
                 {"Action", "Visited"},
                 {"ActionDateUTC", second(10)},
                 {"OtherDate", second(10)},
                 {"OtherDateMeaning", "Last Requested Time"},
                 {"ExpiryDate", second(20)}});
    FactList facts;
    facts.add("request_time", "2026-11-21 23:42:10.311224");
    facts.add("last_used", "2026-11-21 23:42:10");
    facts.add("last_used", "2026-11-21 23:42:10.75");
    facts.add("expires", "2026-11-21 23:42:20.5");
    facts.add("created", "2026-11-21 23:42:20");
    EXPECT_THAT(told(facts),
                ElementsAre("23:42:10.000000 Visited", "23:42:10.311224 Last Requested Time",
                            "23:42:20.500000 Expires", "23:42:10.000000 Last Used",
                            "23:42:10.750000 Last Used", "23:42:20.000000 Created"));
}

TEST_F(FactEventsTest, cookiesHaveEachDateOnceUnderItsName) {
    project.add({{"URL", "http://c.example/"},
                 {"CacheType", "Firefox Cookies"},
                 {"Action", "Cached"},
                 {"ActionDateUTC", second(10)},
                 {"OtherDate", second(30)},
                 {"OtherDateMeaning", "Expiry Date"},
                 {"ExpiryDate", second(30)}});
    EXPECT_THAT(told({}), ElementsAre("23:42:10.000000 Last Accessed", "23:42:30.000000 Expires"));
    project.db().exec("UPDATE URLs SET CacheType = 'Chrome Cookies', OtherDateMeaning = "
                      "'Creation Date (UTC)', OtherDate = ActionDateUTC WHERE URL_ID = 3");
    FactList facts;
    facts.add("created", "2026-11-21 23:42:10.125");
    EXPECT_THAT(told(facts),
                ElementsAre("23:42:10.000000 Last Accessed", "23:42:10.125000 Creation Date (UTC)",
                            "23:42:30.000000 Expires"));
    EXPECT_THAT(lines(ExportFormat::l2tcsv), testing::Contains(HasSubstr(",...B,WEBHIST,Chrome "
                                                                         "Cookies,Creation Date")));
    EXPECT_THAT(lines(ExportFormat::body),
                testing::Contains(testing::AllOf(HasSubstr("(Creation Date (UTC))"),
                                                 testing::EndsWith("|0|0|0|1795304530"))));
}

TEST_F(EventsExportTest, aCommaInATagsNameMakesNoTwoTags) {
    const NamedTag tag =
        NamedTags(project.db())
            .add({.tagID = 0, .name = "a, b", .color = {}, .position = 0, .note = {}});
    const std::vector<std::int32_t> first = {1};
    EXPECT_TRUE(RecordTags(project.db()).set(tag.tagID, first, "", nobody));
    table.loadURLs(nobody);
    table.sortBy(UrlColumn::Id, SortDirection::Ascending, nobody);
    EXPECT_THAT(written(ExportFormat::timesketchCsv), HasSubstr("\"tagged,a; b\""));
    EXPECT_EQ(job.counts.signsReplaced, job.counts.events);
    EXPECT_EQ(events()[0].at("tag").dump(), R"(["tagged","a, b"])");
}

} // namespace
} // namespace nv::test
