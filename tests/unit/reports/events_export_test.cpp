#include "base/Files.h"
#include "base/Text.h"
#include "db/marks/NamedTags.h"
#include "db/marks/RecordTags.h"
#include "db/records/RecordFacts.h"
#include "rebuild/RebuildContext.h"
#include "reports/events/RecordEvents.h"
#include "reports/exports/ExportRows.h"
#include "support/SmallFiles.h"
#include "support/TestProject.h"
#include "support/WorkingFolder.h"
#include "support/builders/ExifJpeg.h"
#include "unit/reports/EventsFixture.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <map>
#include <regex>
#include <set>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::EventsExportTest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

TEST_F(EventsExportTest, eachDateOfARecordIsAnEventOfItsOwn) {
    std::vector<std::string> told;
    for (const auto &event : events())
        told.push_back(event.at("datetime").get<std::string>() + " " +
                       event.at("timestamp_desc").get<std::string>());
    EXPECT_THAT(told, ElementsAre("2009-02-13T23:31:30.250000+00:00 Visited",
                                  "2009-02-13T23:40:00.000000+00:00 Last Modified",
                                  "2008-01-02T03:04:05.678901+00:00 Created",
                                  "2008-01-02T03:04:05.678901+00:00 Last Used",
                                  "2009-02-13T23:40:00.500000+00:00 Download Ended"));
    EXPECT_EQ(job.counts.events, 5);
    EXPECT_EQ(job.counts.rowsWithoutDate, 1);
    EXPECT_THAT(notesOf(job), ElementsAre(HasSubstr("5 events"), HasSubstr("1 rows have no date")));
}

/// A copy of a history was made when the evidence was taken: no visit was.
TEST_F(EventsExportTest, datesOfTheEvidencesOwnFilesAreNoEventsOfABrowser) {
    const double copied = test::daysOf({2026, 1, 2, 3, 4, 5});
    const double used = test::daysOf({2026, 1, 2, 3, 4, 6});
    for (const char *kind : {"Chrome History", "Firefox Cookies", "Safari Cache", "Opera Cache",
                             "IE History", "Chrome Cache"})
        project.add({{"URL", std::string("http://") + kind},
                     {"CacheType", kind},
                     {"CacheFileCreated", copied},
                     {"CacheFileLastAccessed", used}});
    table.loadURLs(nobody);
    table.sortBy(UrlColumn::Id, SortDirection::Ascending, nobody);
    std::vector<std::string> told;
    for (const auto &event : events())
        if (event.at("datetime").get<std::string>().starts_with("2026"))
            told.push_back(event.at("source_long").get<std::string>() + ": " +
                           event.at("timestamp_desc").get<std::string>());
    EXPECT_THAT(told,
                ElementsAre("Opera Cache: Cache File Created (by the file system of the evidence)",
                            "Opera Cache: Cache File Last Accessed (by the file system of the "
                            "evidence)",
                            "IE History: Cache File Created"));
}

TEST_F(EventsExportTest, aCookieEndsWhenItsFactSays) {
    const double tenDigits = test::daysOf({2050, 4, 19, 23, 16, 47});
    project.add({{"URL", std::string("c.example")},
                 {"CacheType", "Firefox Cookies"},
                 {"ExpiryDate", tenDigits},
                 {"OtherDate", tenDigits},
                 {"OtherDateMeaning", "Expiry Date"}});
    FactList facts;
    facts.add("expires", "9999-12-31 23:59:59", std::int64_t{253402300799});
    RecordFacts(project.db()).store(UrlId{3}, facts);
    table.loadURLs(nobody);
    table.sortBy(UrlColumn::Id, SortDirection::Ascending, nobody);
    std::vector<std::string> told;
    for (const auto &event : events())
        if (event.at("source_long") == "Firefox Cookies")
            told.push_back(event.at("datetime").get<std::string>() + " " +
                           event.at("timestamp_desc").get<std::string>());
    EXPECT_THAT(told, ElementsAre("9999-12-31T23:59:59.000000+00:00 Expires"));
}

/// What the program checks of an upload: the fields that it asks for are there and filled, the time
/// is one, both forms of it agree, and a field keeps its type.
TEST_F(EventsExportTest, linesHoldTheRulesOfAnUpload) {
    const std::regex iso(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}\+00:00)");
    std::map<std::string, nlohmann::json::value_t> types;
    std::set<std::string> unique;
    for (const auto &event : events()) {
        for (const char *name : {"message", "datetime", "timestamp_desc", "data_type",
                                 "source_short", "source_long"}) {
            ASSERT_TRUE(event.at(name).is_string()) << name;
            EXPECT_NE(event.at(name), "") << name;
        }
        EXPECT_TRUE(event.at("timestamp").is_number_integer());
        EXPECT_TRUE(std::regex_match(event.at("datetime").get<std::string>(), iso));
        EXPECT_EQ(isoWithFraction(event.at("timestamp").get<std::int64_t>()), event.at("datetime"));
        EXPECT_EQ(event.at("source_short"), "WEBHIST");
        EXPECT_TRUE(event.at("tag").is_array());
        for (const auto &[name, value] : event.items()) {
            if (value.is_null())
                continue;
            const auto type = types.emplace(name, value.type()).first->second;
            EXPECT_EQ(type, value.type()) << name;
        }
        EXPECT_TRUE(unique
                        .insert(event.at("id").dump() + event.at("timestamp").dump() +
                                event.at("timestamp_desc").dump())
                        .second);
    }
    const auto first = events().at(0);
    EXPECT_EQ(first.at("tag"), nlohmann::json({"tagged"}));
    EXPECT_EQ(first.at("data_type"), "norvelane:chrome:visit");
    EXPECT_EQ(first.at("source_long"), "Chrome Visit");
    EXPECT_EQ(first.at("visit_count"), 3);
    EXPECT_EQ(first.at("fact_count"), "7");
}

TEST_F(EventsExportTest, csvHasTheFieldsThatTheProgramAsksForInFront) {
    const std::string text = written(ExportFormat::timesketchCsv);
    EXPECT_TRUE(text.starts_with("message,datetime,timestamp,timestamp_desc,data_type,source_short,"
                                 "source_long,tag,id,url,"));
    EXPECT_THAT(text, HasSubstr("\"Chrome Visit Visited http://a.example/x|y,z two\r\nlines\","
                                "2009-02-13T23:31:30.250000+00:00,1234567890250000,Visited,"
                                "norvelane:chrome:visit,WEBHIST,Chrome Visit,tagged,1,"));
    EXPECT_THAT(text, Not(HasSubstr("b.example")));
}

/// The fields of each line, by the rules of RFC 4180; a quoted one may have ends of lines in it.
std::vector<std::vector<std::string>> csvRows(std::string_view text) {
    std::vector<std::vector<std::string>> rows(1, std::vector<std::string>(1));
    bool isQuoted = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        std::string &field = rows.back().back();
        if (c == '"' && isQuoted && text.substr(at + 1).starts_with('"'))
            field += text[++at];
        else if (c == '"')
            isQuoted = !isQuoted;
        else if (!isQuoted && c == ',')
            rows.back().emplace_back();
        else if (!isQuoted && c == '\n')
            rows.emplace_back(1);
        else if (isQuoted || c != '\r')
            field += c;
    }
    EXPECT_FALSE(isQuoted);
    if (rows.back() == std::vector<std::string>(1))
        rows.pop_back();
    return rows;
}

/// What evidence can hold at worst: ends of lines, quotation marks, a NUL, half a pair of UTF-16, a
/// byte that is no UTF-8, a formula, an end of a JSON list.
struct HostileEventsTest : EventsExportTest {
    HostileEventsTest() {
        const std::string hex = "687474703A2F2F682F" // http://h/
                                "225C0D0A2C0A00EDA080FFE280A8273D5D7D";
        project.db().exec("UPDATE URLs SET URL = CAST(X'" + hex +
                          "' AS TEXT), WebPageTitle = CAST(X'3D00220A' AS TEXT), Action = "
                          "CAST(X'0A220A00FF' AS TEXT) WHERE URL_ID = 1");
        project.db().exec("INSERT INTO URLs (URL, CacheType, ActionDateUTC) VALUES "
                          "(CAST(X'" +
                          hex + "' AS TEXT), 'Chrome Visit', 39857.5)");
        NamedTags tags(project.db());
        const std::vector<std::int32_t> rows = {1};
        const NamedTag tag =
            tags.add({.tagID = 0, .name = "a \"b\", ]", .color = {}, .position = 0, .note = {}});
        EXPECT_TRUE(RecordTags(project.db()).set(tag.tagID, rows, "", nobody));
        table.refreshRows();
        table.loadURLs(nobody);
    }
};

TEST_F(HostileEventsTest, aLineOfJsonIsOneEventInTheOrderOfTheFields) {
    const auto list = lines(ExportFormat::timesketch);
    ASSERT_THAT(list, SizeIs(6));
    for (const std::string &line : list) {
        const auto event = nlohmann::ordered_json::parse(line); // strict in its UTF-8 too
        std::vector<std::string> names;
        for (const auto &[name, value] : event.items())
            names.push_back(name);
        names.resize(7);
        EXPECT_THAT(names, ElementsAre("message", "datetime", "timestamp", "timestamp_desc",
                                       "data_type", "source_short", "source_long"));
        EXPECT_TRUE(event.at("timestamp").is_number_integer());
        EXPECT_EQ(isoWithFraction(event.at("timestamp").get<std::int64_t>()), event.at("datetime"));
        EXPECT_TRUE(event.at("message").get<std::string>().starts_with("Chrome Visit"));
        EXPECT_NE(event.at("timestamp_desc"), "");
        for (const auto &[name, value] : event.items()) {
            if (value.is_string()) {
                EXPECT_TRUE(isUtf8(value.get<std::string>())) << name;
            }
        }
    }
    const auto tags = nlohmann::json::parse(list[0]).at("tag");
    EXPECT_EQ(tags.size(), 2U);
    EXPECT_THAT(tags, testing::Contains("a \"b\", ]"));
}

TEST_F(HostileEventsTest, aLineOfCsvHasEachFieldInItsPlace) {
    const auto rows = csvRows(written(ExportFormat::timesketchCsv));
    ASSERT_THAT(rows, SizeIs(7));
    for (std::size_t at = 1; at < rows.size(); ++at) {
        ASSERT_EQ(rows[at].size(), rows[0].size());
        EXPECT_EQ(rows[at][1], isoWithFraction(std::stoll(rows[at][2])));
        EXPECT_NE(rows[at][3], "");
        EXPECT_EQ(rows[at][4], "norvelane:chrome:visit");
        EXPECT_EQ(rows[at][5], "WEBHIST");
        for (const std::string &field : rows[at]) {
            EXPECT_EQ(field.find('\0'), std::string::npos) << field;
            EXPECT_TRUE(isUtf8(field)) << field;
        }
    }
    EXPECT_THAT(rows[1][0], HasSubstr("\u2400"));
    EXPECT_GT(job.counts.signsReplaced, 0);
    EXPECT_THAT(rows[0], testing::Contains("tag"));
}

TEST_F(EventsExportTest, aBodyFileHasElevenFieldsAndOneTimeALine) {
    const auto list = lines(ExportFormat::body);
    ASSERT_THAT(list, SizeIs(5));
    for (const std::string &line : list)
        EXPECT_THAT(split(line, '|'), SizeIs(11)) << line;
    EXPECT_EQ(list[0], "0|Chrome Visit Visited http://a.example/x%7Cy,z two\u240D\u240Alines "
                       "(Visited)|1|0|0|0|0|1234567890|0|0|0");
    EXPECT_TRUE(list[2].ends_with("|0|0|0|1199243045")) << list[2];
    EXPECT_EQ(job.counts.signsReplaced, 5);
}

TEST_F(EventsExportTest, aBodyFileCantSayTimesBefore1970) {
    project.db().exec("UPDATE URLs SET ActionDateUTC = 20000 WHERE URL_ID = 1");
    table.refreshRows();
    EXPECT_THAT(lines(ExportFormat::body), SizeIs(4));
    EXPECT_EQ(job.counts.eventsTooEarly, 1);
    EXPECT_THAT(lines(ExportFormat::l2tcsv), SizeIs(6)) << "this form can";
}

TEST_F(EventsExportTest, linesOfLog2timelineHaveSeventeenFields) {
    const auto list = lines(ExportFormat::l2tcsv);
    ASSERT_THAT(list, SizeIs(6));
    for (const std::string &line : list)
        EXPECT_THAT(split(line, ','), SizeIs(17)) << line;
    EXPECT_EQ(list[0], "date,time,timezone,MACB,source,sourcetype,type,user,host,short,desc,"
                       "version,filename,inode,notes,format,extra");
    EXPECT_TRUE(list[1].starts_with("02/13/2009,23:31:30,UTC,.A..,WEBHIST,Chrome Visit,Visited,-,-,"
                                    "http://a.example/x|y z,"))
        << list[1];
    EXPECT_TRUE(list[3].starts_with("01/02/2008,03:04:05,UTC,...B,")) << list[3];
}

/// The address of the row is cleaned up: of some schemes only a part is left.
TEST_F(EventsExportTest, theAddressOfTheArtefactIsToldWhereItDiffers) {
    const auto rawOfFirst = [this] { return events().at(0).at("url_raw"); };
    project.db().exec("UPDATE URLs SET URLRawValue = URL WHERE URL_ID = 1");
    table.refreshRows();
    EXPECT_TRUE(rawOfFirst().is_null());
    EXPECT_THAT(lines(ExportFormat::l2tcsv)[1], Not(HasSubstr("url_raw")));
    EXPECT_THAT(lines(ExportFormat::body)[0], Not(HasSubstr("[")));
    project.db().exec("UPDATE URLs SET URL = 'a.example', "
                      "URLRawValue = 'mailto:ann@a.example?a,%20|b' WHERE URL_ID = 1");
    table.refreshRows();
    EXPECT_EQ(rawOfFirst(), "mailto:ann@a.example?a,%20|b");
    EXPECT_EQ(events().at(0).at("url"), "a.example");
    const auto rows = csvRows(written(ExportFormat::timesketchCsv));
    EXPECT_EQ(rows[0][10], "url_raw");
    EXPECT_EQ(rows[1][10], "mailto:ann@a.example?a,%20|b");
    const std::string line = lines(ExportFormat::l2tcsv)[1];
    EXPECT_TRUE(line.ends_with("; url_raw: mailto:ann@a.example?a %20|b")) << line;
    EXPECT_THAT(split(line, ','), SizeIs(17));
    EXPECT_THAT(lines(ExportFormat::body)[0],
                HasSubstr("lines [mailto:ann@a.example?a,%20%7Cb] (Visited)|1|"));
}

TEST_F(EventsExportTest, aPlaceTellsTheAddressOfTheArtefactToo) {
    project.db().exec("UPDATE URLs SET URL = 'geo:54.32,10.13', "
                      "URLRawValue = 'view-source:geo:54.32,10.13' WHERE URL_ID = 1");
    table.refreshRows();
    EXPECT_THAT(written(ExportFormat::kml), HasSubstr("[view-source:geo:54.32,10.13] | row 1 | "));
}

TEST_F(EventsExportTest, localTimeIsSaidToBeNone) {
    project.db().exec("UPDATE URLs SET CacheType = 'IE Weekly' WHERE URL_ID = 1");
    table.refreshRows();
    EXPECT_THAT(events().at(0).at("timestamp_desc"), HasSubstr("local time"));
}

TEST_F(EventsExportTest, aProjectOfAnEarlierBuildHasEventsToo) {
    project.db().exec("DROP INDEX IF EXISTS URLTimeIndex; ALTER TABLE URLs DROP COLUMN Person; "
                      "ALTER TABLE URLs DROP COLUMN Profile; "
                      "ALTER TABLE URLs DROP COLUMN Browser");
    table.refreshRows();
    const auto list = events();
    ASSERT_THAT(list, SizeIs(5));
    EXPECT_FALSE(list[0].contains("browser"));
    EXPECT_TRUE(list[0].contains("source_offset"));
}

TEST_F(EventsExportTest, aProjectWithoutRowsGivesTheHeadAlone) {
    project.db().exec("DELETE FROM RecordFacts; DELETE FROM URLs");
    table.loadURLs(nobody);
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_THAT(lines(ExportFormat::timesketchCsv), SizeIs(1));
    EXPECT_EQ(written(ExportFormat::body), "");
    EXPECT_THAT(written(ExportFormat::kml), HasSubstr("</kml>"));
}

TEST_F(EventsExportTest, addressesOfMapsArePlaces) {
    project.db().exec("UPDATE URLs SET URL = 'https://maps.example/@54.5,-10.25,9z?a=<&\"b\"' "
                      "WHERE URL_ID = 1");
    table.refreshRows();
    const std::string text = written(ExportFormat::kml);
    EXPECT_TRUE(text.starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<kml "));
    EXPECT_THAT(text, HasSubstr("<coordinates>-10.2500000,54.5000000</coordinates>"));
    EXPECT_THAT(text, HasSubstr("<when>2009-02-13T23:31:30Z</when>"));
    EXPECT_THAT(text, HasSubstr("a=&lt;&amp;&quot;b&quot;"));
    EXPECT_THAT(text, HasSubstr("what was looked at, not where anybody was"));
    EXPECT_THAT(notesOf(job), ElementsAre("The file has 1 place of 1 row."));
}

TEST(PlacesExport, picturesSayWhereTheyWereTaken) {
    test::TestProject project;
    RecordStore store = project.store();
    const fs::path evidence = project.folder.path() / "evidence";
    const fs::path scratch = project.folder.path() / "scratch";
    fs::create_directories(evidence);
    fs::create_directories(scratch);
    writeWhole(evidence / "p.jpg",
               test::ExifJpeg().position({54, 30, 0}, 'N', {10, 15, 0}, 'W').bytes());
    UrlRecord record;
    record.cacheType = "IE Cache";
    record.URL = "http://a.example/p.jpg";
    record.MIMEType = "image/jpeg";
    record.RootPath = Evidence(evidence).rootOf(evidence / "p.jpg");
    record.CacheFileRelativePath = Evidence(evidence).relativeOf(evidence / "p.jpg");
    record.CacheFileExists = true;
    store.saveRecord(record, project.file);
    Unwatched task;
    const Evidence found(evidence);
    const RebuildContext ctx{project.connection(), store, found, scratch, project.log, task, {}};
    const WarcSource contents{ctx, "", {}};
    UrlTable table(project.connection(), project.log, project.zone);
    table.loadURLs(task);
    Export job;
    job.format = ExportFormat::kml;
    job.contents = &contents;
    job.outputFilePath = project.folder.path() / "places.kml";
    ASSERT_EQ(exportRows(job, table, scratch, task), ExportEnd::exported);
    const Bytes bytes = readWhole(job.outputFilePath);
    EXPECT_THAT(std::string(ByteView(bytes).raw()),
                HasSubstr("<coordinates>-10.2500000,54.5000000</coordinates>"));
    EXPECT_TRUE(fs::is_empty(scratch));
}

} // namespace
} // namespace nv
