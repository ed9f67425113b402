#include "MadeProject.h"
#include "base/Files.h"
#include "db/records/RecordFacts.h"
#include "support/builders/ExifJpeg.h"
#include "views/record/Properties.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace nv::test {
namespace {

using testing::Contains;
using testing::Not;

class PropertiesTest : public testing::Test, protected MadeProject {
  protected:
    PropertiesTest() { dates.currentYear = 2011; }

    std::vector<Property> load(std::int64_t id) {
        return loadProperties(UrlId{id}, {db(), zone, dates, log, picture});
    }
    std::string value(std::int64_t id, std::string_view name) {
        const auto all = load(id);
        const auto found = std::ranges::find(all, name, &Property::name);
        return found == all.end() ? "(none)" : found->value;
    }
    std::int64_t addDated(const CivilTime &civil) {
        return add({{"ActionDateUTC", daysOf(civil)}, {"ActionDateLocal", 1.0}});
    }
    static std::vector<std::string> namesOf(const std::vector<Property> &all) {
        std::vector<std::string> names;
        for (const Property &property : all)
            names.push_back(property.name);
        return names;
    }

    DateSettings dates;
    std::function<std::optional<std::filesystem::path>()> picture;
};

TEST_F(PropertiesTest, fieldsStandInTheOrderOfTheDatabaseWithoutTyped) {
    const auto names = namesOf(load(add({{"URL", "http://host/"}})));
    EXPECT_EQ(names.front(), "URL_ID");
    EXPECT_EQ(names.back(), "Person");
    EXPECT_EQ(names.size(), 77U);
    EXPECT_THAT(names, Not(Contains("Typed")));
    EXPECT_EQ(names.at(1), "SourceFile_ID");
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(PropertiesTest, decodedValuesStandBehindTheFacts) {
    const auto id = add(
        {{"URL", "http://h.example/search?q=C+++AT&T+tables&t=1299006630"},
         {"URLRawValue", "Visited: a@http://h.example/search?q=C%2B%2B+AT%26T+tables&t=1299006630"},
         {"Referrer", "http://h.example/?from=mail"}});
    FactList facts;
    facts.add("cookie_value", "seen=1299006630");
    RecordFacts(db()).store(UrlId{id}, facts);
    EXPECT_EQ(value(id, "URL > q"), "C++ AT&T tables [Search term]");
    const auto all = load(id);
    EXPECT_THAT(all,
                Contains(Property{"URL > t", "2011-03-01 19:10:30 UTC [Unix time in seconds]"}));
    EXPECT_EQ(value(id, "Referrer > from"), "mail [Query parameter]");
    EXPECT_EQ(value(id, "cookie_value > seen"), "1299006630 [Name and value]");
    EXPECT_EQ(all.back(),
              (Property{"cookie_value > seen", "2011-03-01 19:10:30 UTC [Unix time in seconds]"}));
}

TEST_F(PropertiesTest, aFieldOfAnotherVersionIsShownButForRecordAdded) {
    db().exec("ALTER TABLE URLs ADD COLUMN Record_Added TEXT");
    db().exec("ALTER TABLE URLs ADD COLUMN ErrorCode TEXT");
    const auto plain = add({{"URL", "http://host/"}});
    const auto faulty = add({{"ErrorCode", "404"}, {"Record_Added", "x"}});
    EXPECT_EQ(load(plain).front().name, "URL_ID");
    const auto all = load(faulty);
    EXPECT_EQ(all.front(), (Property{"ErrorCode", "404"}));
    EXPECT_THAT(namesOf(all), Not(Contains("Record_Added")));
}

TEST_F(PropertiesTest, theZonesDateIsComputedAndMarked) {
    const auto winter = addDated({2009, 2, 13, 23, 31, 30});
    const auto summer = addDated({2009, 7, 1, 12, 0, 0});
    EXPECT_EQ(value(winter, "ActionDateLocal"), "2009-02-13 18:31:30 [-0500 STD]");
    EXPECT_EQ(value(summer, "ActionDateLocal"), "2009-07-01 08:00:00 [-0400 DST]");
    EXPECT_EQ(value(winter, "ActionDateUTC"), "2009-02-13 23:31:30 [UTC]");
    dates.enableDSTChanges = false;
    EXPECT_EQ(value(summer, "ActionDateLocal"), "2009-07-01 07:00:00 [-0500 STD]");
}

TEST_F(PropertiesTest, theMarkIsTestedOnTheConvertedDate) {
    // 02:00 UTC on the day of the change is the evening before in the zone.
    EXPECT_EQ(value(addDated({2009, 3, 8, 2, 0, 0}), "ActionDateLocal"),
              "2009-03-07 22:00:00 [-0500 STD]");
}

TEST_F(PropertiesTest, aDateOfMoreThanTenYearsAgoHasNoZoneDate) {
    EXPECT_EQ(value(addDated({2000, 12, 1, 0, 0, 0}), "ActionDateLocal"), "");
    EXPECT_EQ(value(addDated({2001, 12, 1, 0, 0, 0}), "ActionDateLocal"),
              "2001-11-30 19:00:00 [-0500 STD]");
    EXPECT_EQ(value(addDated({2000, 12, 1, 0, 0, 0}), "ActionDateUTC"),
              "2000-12-01 00:00:00 [UTC]");
    EXPECT_EQ(value(addDated({1980, 12, 31, 0, 0, 0}), "ActionDateUTC"), "1980-12-31 00:00:00");
}

TEST_F(PropertiesTest, otherDatesAreShownAbove1980) {
    const auto id = add({{"ExpiryDate", daysOf({1980, 12, 31, 23, 59, 59})},
                         {"LastVisited", daysOf({1981, 1, 1, 0, 0, 0})},
                         {"OtherDate", nullptr},
                         {"NotesDateTime", "no date"}});
    EXPECT_EQ(value(id, "ExpiryDate"), "");
    EXPECT_EQ(value(id, "LastVisited"), "1981-01-01 00:00:00");
    EXPECT_EQ(value(id, "OtherDate"), "");
    EXPECT_EQ(value(id, "NotesDateTime"), "");
}

TEST_F(PropertiesTest, sizesNumbersFlagsAndBytesHaveTheirForms) {
    const auto id = add({{"CacheFileSize", std::int64_t{1234567}},
                         {"MapFileOffset", 53248.0},
                         {"Visits", std::int64_t{-1}},
                         {"IsHistory", std::int64_t{1}},
                         {"URL", "http://h/caf\xC3\xA9\n2"}});
    EXPECT_EQ(value(id, "CacheFileSize"), "1,234,567.00");
    EXPECT_EQ(value(id, "MapFileOffset"), "53248");
    EXPECT_EQ(value(id, "Visits"), "") << "the format has no counter";
    EXPECT_EQ(value(id, "IsHistory"), "True");
    EXPECT_EQ(value(id, "IsCookie"), "False");
    EXPECT_EQ(value(id, "URL"), "http://h/café\n2");
    EXPECT_EQ(value(id, "ThumbnailBLOB"), "");
    EXPECT_EQ(sizeText(0), "0.00");
    EXPECT_EQ(sizeText(999), "999.00");
    EXPECT_EQ(sizeText(-1000), "-1,000.00");
}

TEST_F(PropertiesTest, aZoneThatCantBeAddedLosesThatFieldOnly) {
    zone.tzBias = -32768;
    const auto id = addDated({2009, 7, 1, 12, 0, 0});
    zone.tzDSTBias = -32768;
    EXPECT_EQ(value(id, "ActionDateLocal"), "");
    ASSERT_EQ(log.entries.size(), 1U);
    EXPECT_EQ(log.entries[0].procedure, "MainForm.LoadProperties()");
    EXPECT_EQ(log.entries[0].severity, Severity::Warning);
    EXPECT_EQ(load(id).size(), 77U);
}

TEST_F(PropertiesTest, theFactsOfTheRecordStandAfterItsFields) {
    const auto id = add({{"URL", "http://host/"}});
    const auto other = add({{"URL", "http://other/"}});
    FactList facts;
    facts.add("transition", "typed", 33554433);
    facts.add("count", 3);
    RecordFacts(db()).store(UrlId{id}, facts);
    const auto all = load(id);
    ASSERT_EQ(all.size(), 79U);
    EXPECT_EQ(all[77], (Property{"transition", "typed [33554433]"}));
    EXPECT_EQ(all[78], (Property{"count", "3"}));
    EXPECT_EQ(load(other).size(), 77U);
    db().exec("DROP TABLE RecordFacts"); // as in a project of an earlier build
    EXPECT_EQ(load(id).size(), 77U);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(PropertiesTest, aRowThatIsGoneHasNoProperties) {
    EXPECT_TRUE(load(99).empty());
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(PropertiesTest, aPictureShowsWhatTheCameraWrote) {
    const auto file = folder.write(
        "p.jpg", ExifJpeg().ascii(0x0110, "C-100").ascii(0x010F, "Acme").number(0x9209, 0).bytes());
    picture = [&] { return std::optional(file); };
    const auto id = add({{"Category", "Pictures"}});
    const auto all = load(id);
    ASSERT_EQ(all.size(), 80U);
    EXPECT_EQ(all[77], (Property{"EXIF-EquipMake", "Acme"}));
    EXPECT_EQ(all[78], (Property{"EXIF-EquipModel", "C-100"}));
    EXPECT_EQ(all[79], (Property{"EXIF-Flash", "0"}));
    EXPECT_EQ(load(add({{"Category", "HTML"}})).size(), 77U); // nobody looks for it
}

TEST_F(PropertiesTest, failuresOfExifDontStopTheOthers) {
    const auto id = add({{"Category", "PICTURES"}});
    picture = []() -> std::optional<std::filesystem::path> { throw std::runtime_error("no disk"); };
    EXPECT_EQ(load(id).size(), 77U);
    picture = [&] { return std::optional(folder.path() / "gone.jpg"); };
    EXPECT_EQ(load(id).size(), 77U);
    EXPECT_EQ(log.entries.size(), 2U);
    picture = [&] { return std::optional(folder.write("p.jpg", "\xFF\xD8\xFF\xD9")); };
    EXPECT_EQ(load(id).size(), 77U); // no data, no rows
    EXPECT_EQ(log.entries.size(), 2U);
}

} // namespace
} // namespace nv::test
