#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "db/project/StoredQueries.h"
#include "db/records/RecordColumns.h"
#include "db/records/RecordStore.h"
#include "db/schema/SchemaColumns.h"
#include "support/TestProject.h"

#include <gtest/gtest.h>

#include <set>
#include <variant>

namespace nv {
namespace {

using namespace std::string_literals;

class RecordStoreTest : public testing::Test {
  protected:
    UrlRecord saved(UrlRecord record) {
        store.saveRecord(record, project.file);
        EXPECT_NE(record.URLID, UrlId::none);
        return store.getURL(record.URLID).value_or(UrlRecord());
    }

    UrlRecord savedUrl(const std::string &url) {
        UrlRecord record;
        record.URL = url;
        return saved(record);
    }

    std::int64_t rows() { return project.number("SELECT Count(*) FROM URLs"); }

    test::TestProject project;
    RecordStore store = project.store();
};

/// Gives every member another value.
struct Filler {
    UrlRecord &record;
    int n;
    void operator()(std::string UrlRecord::*member) const {
        record.*member = "text " + std::to_string(n);
    }
    void operator()(Date UrlRecord::*member) const { record.*member = Date::fromDays(40000.5 + n); }
    void operator()(bool UrlRecord::*member) const { record.*member = true; }
    void operator()(std::int64_t UrlRecord::*member) const { record.*member = 5'000'000'000 + n; }
    void operator()(Bytes UrlRecord::*member) const {
        record.*member = Bytes{0, static_cast<std::uint8_t>(n), 0xFF};
    }
    void operator()(SourceFileId UrlRecord::*) const {}
};

/// The columns whose members differ.
std::set<std::string_view> differences(const UrlRecord &a, const UrlRecord &b) {
    std::set<std::string_view> names;
    for (const RecordColumn &column : recordColumns())
        std::visit(
            [&](auto member) {
                if (!(a.*member == b.*member))
                    names.insert(column.name);
            },
            column.member);
    return names;
}

TEST(RecordColumns, areThoseOfTheSchemaInItsOrder) {
    const auto schema = schema::urlColumns().subspan(1); // after the key
    ASSERT_EQ(recordColumns().size(), schema.size());
    for (std::size_t i = 0; i < schema.size(); ++i)
        EXPECT_EQ(recordColumns()[i].name, schema[i].name);
}

TEST_F(RecordStoreTest, aRecordIsOfItsFilesBrowserUnlessItSaysOtherwise) {
    project.file.origin = {"Brave", "1.2", "Default", "alice", ""};
    const UrlRecord plain = savedUrl("http://host/");
    EXPECT_EQ(plain.Browser + "|" + plain.Profile + "|" + plain.Person, "Brave|Default|alice");
    UrlRecord record;
    record.Profile = "Profile 7";
    const UrlRecord own = saved(record);
    EXPECT_EQ(own.Browser + "|" + own.Profile + "|" + own.Person, "Brave|Profile 7|alice");
}

TEST(RecordStoreOfEarlierBuilds, aProjectWithoutTheLaterColumnsIsRead) {
    test::TestProject project;
    StoredQueries queries(project.connection());
    for (const StoredQuery &query : queries.list())
        queries.remove(query.name);
    project.connection().exec("INSERT INTO URLs (URL, WebPageTitle, Browser) "
                              "VALUES ('http://a/', 'title', 'lost')");
    for (const char *column : {"Browser", "Profile", "Person"})
        project.connection().exec(std::string("ALTER TABLE URLs DROP COLUMN ") + column);
    const auto record = project.store().getURL(UrlId{1});
    ASSERT_TRUE(record);
    EXPECT_EQ(record->URL, "http://a/");
    EXPECT_EQ(record->WebpageTitle, "title");
    EXPECT_EQ(record->Browser, "");
}

TEST_F(RecordStoreTest, everyMemberComesBackFromItsColumn) {
    UrlRecord record;
    int n = 0;
    for (const RecordColumn &column : recordColumns())
        std::visit(Filler{record, ++n}, column.member);
    const UrlRecord given = record;
    store.saveRecord(record, project.file);
    const UrlRecord read = store.getURL(record.URLID).value();
    EXPECT_EQ(differences(record, read), std::set<std::string_view>{});
    EXPECT_EQ(differences(given, read),
              (std::set<std::string_view>{"ActionDateLocal", "LastVisited", "Tagged", "TimeAdded",
                                          "URLFileExt"}));
    EXPECT_EQ(read.URLID, record.URLID);
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(RecordStoreTest, renamedMembersStandUnderTheirColumns) {
    UrlRecord record;
    record.host = "host.example";
    record.cacheType = "IE Cache";
    record.WebpageTitle = "Title";
    record.CacheFileCreatedGMTDOS = Date::fromDays(39814.25);
    saved(record);
    EXPECT_EQ(project.text("SELECT Host || CacheType || WebPageTitle FROM URLs"),
              "host.exampleIE CacheTitle");
    EXPECT_EQ(project.text("SELECT CacheFileCreated FROM URLs"), "39814.25");
}

TEST_F(RecordStoreTest, theKeyStandsInTheRecordAfterwards) {
    UrlRecord first, second;
    store.saveRecord(first, project.file);
    store.saveRecord(second, project.file);
    EXPECT_EQ(first.URLID, UrlId{1});
    EXPECT_EQ(second.URLID, UrlId{2});
}

TEST_F(RecordStoreTest, theSameUrlTwiceIsTwoRows) {
    savedUrl("http://host/");
    savedUrl("http://host/");
    EXPECT_EQ(rows(), 2);
}

TEST_F(RecordStoreTest, theSourceFileIsThatOfTheImport) {
    project.connection().exec("INSERT INTO SourceFiles (SourceFile_ID) VALUES (7)");
    project.file.sourceFileID = SourceFileId{7};
    UrlRecord record;
    record.SourceFile_ID = SourceFileId{99};
    EXPECT_EQ(saved(record).SourceFile_ID, SourceFileId{7});
}

TEST_F(RecordStoreTest, theLocalDateIsInTheProjectsZone) {
    UrlRecord record;
    record.ActionDateUTC = Date::fromCivil({2009, 2, 13, 23, 31, 30});
    const UrlRecord read = saved(record);
    EXPECT_EQ(read.ActionDateUTC, record.ActionDateUTC);
    EXPECT_EQ(read.LastVisited, record.ActionDateUTC);
    EXPECT_EQ(read.ActionDateLocal.civil().hour, 18);
    EXPECT_EQ(read.TimeAdded, Date::fromTimePoint(project.clock.now()));
}

TEST_F(RecordStoreTest, daylightTimeCountsOnlyWhereItIsEnabled) {
    project.zone.tzLatitudeBias = 1;
    project.zone.tzDSTBias = -60;
    UrlRecord record;
    record.ActionDateUTC = Date::fromCivil({2009, 7, 1, 12, 0, 0});
    EXPECT_EQ(saved(record).ActionDateLocal.civil().hour, 8);
    RecordStore without(project.connection(), {project.zone, false}, project.clock, project.log);
    without.saveRecord(record, project.file);
    EXPECT_EQ(without.getURL(record.URLID)->ActionDateLocal.civil().hour, 7);
}

TEST_F(RecordStoreTest, aRecordWithoutDateHasNoLocalDate) {
    const UrlRecord read = savedUrl("http://host/");
    EXPECT_FALSE(read.ActionDateUTC.has());
    EXPECT_FALSE(read.ActionDateLocal.has());
    EXPECT_FALSE(read.LastVisited.has());
    EXPECT_EQ(project.number("SELECT ActionDateUTC IS NULL AND ActionDateLocal IS NULL FROM URLs"),
              1);
}

TEST_F(RecordStoreTest, namesAndKindsAreInOrder) {
    const UrlRecord read = savedUrl("http://host/pictures/Photo1.JPG");
    EXPECT_EQ(read.URLFileName, "Photo1.JPG");
    EXPECT_EQ(read.CacheFileExt, "jpg");
    EXPECT_EQ(read.URLFileExt, "jpg");
    EXPECT_EQ(read.URLRawValue, read.URL);
    EXPECT_TRUE(read.IsPicture);
}

TEST_F(RecordStoreTest, aMissingHashIsMadeAndAGivenOneStays) {
    EXPECT_EQ(savedUrl("http://host/").HashedURL, hashOfUrl("http://host/"));
    UrlRecord record;
    record.URL = "http://host/";
    record.HashedURL = "given";
    EXPECT_EQ(saved(record).HashedURL, "given");
}

UrlRecord pageWithLinks(const std::string &links) {
    UrlRecord record;
    record.URL = "http://host/page.html";
    record.IsWebPage = true;
    record.Links = links;
    return record;
}

TEST_F(RecordStoreTest, linksOfAPageBecomeRows) {
    const UrlRecord page =
        saved(pageWithLinks("http://a/||mailto:x|javascript:void(0)|https://b/"));
    EXPECT_EQ(page.Links, "http://a/||mailto:x|javascript:void(0)|https://b/");
    EXPECT_EQ(project.text("SELECT group_concat(URL_ID || ' ' || URL || ' ' || HashedURL, ',') "
                           "FROM Links"),
              "1 http://a/ " + hashOfUrl("http://a/") + ",1 https://b/ " + hashOfUrl("https://b/"));
}

TEST_F(RecordStoreTest, theSameLinksTwiceAreRowsTwice) {
    saved(pageWithLinks("http://a/|http://a/"));
    EXPECT_EQ(project.number("SELECT Count(*) FROM Links"), 2);
}

TEST_F(RecordStoreTest, onlyPagesHaveLinks) {
    UrlRecord record = pageWithLinks("http://a/");
    record.URL = "http://host/picture.gif"; // which takes the flag away
    saved(record);
    EXPECT_EQ(project.number("SELECT Count(*) FROM Links"), 0);
}

TEST_F(RecordStoreTest, hostileTextIsStoredAsItIs) {
    const std::string hostile[] = {
        "http://host/'; DROP TABLE URLs; --",
        "http://host/\"quoted\" and 'single' [x] %s %n ?1 :a @b $c",
        "http://host/two\r\nlines\tand a tab",
        "http://host/zero\0byte and more"s,
        "http://host/\xE6\xBC\xA2\xE5\xAD\x97",
        "http://host/" + std::string(std::size_t{1} << 20, 'x'),
        ""s,
        "\0"s,
    };
    for (const std::string &url : hostile)
        EXPECT_EQ(savedUrl(url).URL, url);
    EXPECT_EQ(rows(), static_cast<std::int64_t>(std::size(hostile)));
    EXPECT_EQ(project.text("PRAGMA integrity_check"), "ok");
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(RecordStoreTest, bytesThatAreNoTextAreRepaired) {
    UrlRecord record;
    record.URL = "http://host/\xE9t\xE9";
    record.Links = "http://\xFF";
    record.IsWebPage = true;
    EXPECT_EQ(saved(record).URL, "http://host/\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(project.text("SELECT URL FROM Links"), "http://\xC3\xBF");
}

TEST_F(RecordStoreTest, textLongerThanItsColumnIsKeptWhole) {
    UrlRecord record;
    record.MIMEType = std::string(500, 'm');
    record.User = std::string(1000, 'u');
    const UrlRecord read = saved(record);
    EXPECT_EQ(read.MIMEType, record.MIMEType);
    EXPECT_EQ(read.User, record.User);
}

TEST_F(RecordStoreTest, aRowThatCantBeStoredIsTheOnlyOneLost) {
    project.file.sourceFileID = SourceFileId{99}; // no such row of SourceFiles
    UrlRecord record;
    record.URLID = UrlId{5};
    store.saveRecord(record, project.file);
    EXPECT_EQ(record.URLID, UrlId::none);
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_EQ(project.log.entries[0].procedure, "MainBAS.SaveRecord()");
    EXPECT_EQ(project.log.entries[0].severity, Severity::Warning);
    project.file.sourceFileID = SourceFileId::none;
    savedUrl("http://host/next");
    EXPECT_EQ(rows(), 1);
}

TEST_F(RecordStoreTest, aProjectThatCantBeWrittenEndsTheTask) {
    project.connection().exec("PRAGMA query_only = 1");
    UrlRecord record;
    EXPECT_THROW(store.saveRecord(record, project.file), StorageFailure);
    EXPECT_EQ(record.URLID, UrlId::none);
}

TEST_F(RecordStoreTest, aFullDiskEndsTheTask) {
    const auto pages = project.number("PRAGMA page_count");
    project.connection().exec("PRAGMA max_page_count = " + std::to_string(pages));
    UrlRecord record;
    record.URL = std::string(1'000'000, 'x');
    EXPECT_THROW(store.saveRecord(record, project.file), StorageFailure);
}

TEST_F(RecordStoreTest, aRowThatIsntThereGivesNothing) {
    EXPECT_FALSE(store.getURL(UrlId{42}).has_value());
    EXPECT_FALSE(store.getURL(UrlId::none).has_value());
    EXPECT_TRUE(project.log.entries.empty());
}

} // namespace
} // namespace nv
