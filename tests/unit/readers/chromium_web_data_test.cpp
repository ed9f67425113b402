#include "readers/chrome/profile/WebData.h"
#include "support/FactText.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/ChromiumProfile.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using test::fact;

struct ChromiumWebData : testing::Test {
    const std::vector<UrlRecord> &read(test::SqliteFile &data) {
        data.close();
        return reading.read(parseChromiumWebData, file).records();
    }
    /// How often a rule was counted.
    std::uint64_t passedOver(const std::string &reason) const {
        const auto found = reading.result.passedOver.find(reason);
        return found == reading.result.passedOver.end() ? 0 : found->second;
    }
    test::TempFolder folder;
    std::filesystem::path file = folder.path() / "Web Data";
    test::SqliteHistoryReading reading;
};

TEST_F(ChromiumWebData, whatWasTypedIsARow) {
    test::ChromiumWebData data(file);
    data.addForm("email", "mara@port.example", 1308139200, 1308142800, 3);
    const UrlRecord r = read(data).at(0);
    EXPECT_EQ(r.cacheType, "Chrome Form Value");
    EXPECT_EQ(r.Action, "Typed");
    EXPECT_EQ(r.Status, "Form Value");
    EXPECT_EQ(r.URLFileName, "email");
    EXPECT_EQ(r.URLParameters, "mara@port.example");
    EXPECT_EQ(isoUtc(r.ActionDateUTC), "2011-06-15T13:00:00Z");
    EXPECT_EQ(isoUtc(r.OtherDate), "2011-06-15T12:00:00Z");
    EXPECT_EQ(r.OtherDateMeaning, "First Used");
    EXPECT_EQ(r.Visits, -1);
    EXPECT_EQ(fact(r, "field_name") + "=" + fact(r, "field_value"), "email=mara@port.example");
    EXPECT_EQ(fact(r, "count"), "3");
    EXPECT_EQ(fact(r, "first_used"), "2011-06-15 12:00:00 [1308139200]");
    EXPECT_EQ(fact(r, "last_used"), "2011-06-15 13:00:00 [1308142800]");
    EXPECT_EQ(fact(r, "source_table"), "autofill");
    EXPECT_FALSE(r.IsHistory || r.IsCookie || r.IsBookmark);
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_EQ(reading.origin.browserVersion, "Web Data 158");
}

TEST_F(ChromiumWebData, usesOfEarlierVersionsStandInATableOfTheirOwn) {
    test::SqliteFile data(file);
    data.run("CREATE TABLE autofill (name VARCHAR, value VARCHAR, value_lower VARCHAR, pair_id "
             "INTEGER PRIMARY KEY, count INTEGER DEFAULT 1)")
        .run("CREATE TABLE autofill_dates (pair_id INTEGER DEFAULT 0, date_created INTEGER DEFAULT "
             "0)")
        .run("INSERT INTO autofill VALUES('topic','anchor','anchor',7,3),('topic','sail','sail',8,"
             "1),('topic','oar','oar',9,1)")
        .run("INSERT INTO autofill_dates VALUES(7,1308139202),(7,1308139200),(7,1308139201),"
             "(8,1308139300)");
    const auto &rows = read(data);
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(fact(rows[0], "first_used"), "2011-06-15 12:00:00 [1308139200]");
    EXPECT_EQ(fact(rows[0], "used"), "2011-06-15 12:00:01 [1308139201]");
    EXPECT_EQ(fact(rows[0], "last_used"), "2011-06-15 12:00:02 [1308139202]");
    EXPECT_EQ(isoUtc(rows[1].ActionDateUTC), "2011-06-15T12:01:40Z");
    EXPECT_EQ(fact(rows[1], "used"), "");
    EXPECT_FALSE(rows[2].ActionDateUTC.has());
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

TEST_F(ChromiumWebData, anEntryThatBothTablesOfFormsHaveIsOneRow) {
    test::ChromiumWebData data(file);
    data.addForm("email", "a@b.example", 1308139200, 1308142800, 3);
    data.run("INSERT INTO autocomplete(name,label,value,date_created,date_last_used,count) VALUES"
             "('email','E-mail','a@b.example',1308139200,1308142800,3),"
             "('email','E-mail','c@d.example',1308139200,1308142800,1)");
    const auto &rows = read(data);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(fact(rows[1], "field_value") + fact(rows[1], "field_label"), "c@d.exampleE-mail");
    EXPECT_EQ(passedOver("form values of table autocomplete that table autofill has too"), 1U);
}

TEST_F(ChromiumWebData, anAddressIsPutTogetherWithoutTelephoneNumbers) {
    test::ChromiumWebData data(file);
    data.run("INSERT INTO addresses(guid,use_count,use_date,date_modified) VALUES('g1',4,"
             "1308139200,1308142800),('g2',0,0,0)");
    data.addAddressPart("g1", 3, "Mara").addAddressPart("g1", 5, "Hafen");
    data.addAddressPart("g1", 9, "mara@port.example").addAddressPart("g1", 14, "+49 40 123456");
    data.addAddressPart("g1", 77, "Kai 1").addAddressPart("g1", 33, "Hamburg");
    data.addAddressPart("g1", 36, "DE").addAddressPart("g1", 104, "1");
    const auto &rows = read(data);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].cacheType, "Chrome Address");
    EXPECT_EQ(rows[0].WebpageTitle, "Mara Hafen");
    EXPECT_EQ(isoUtc(rows[0].ActionDateUTC), "2011-06-15T12:00:00Z");
    EXPECT_EQ(fact(rows[0], "full_name"), "Mara Hafen");
    EXPECT_EQ(fact(rows[0], "email"), "mara@port.example");
    EXPECT_EQ(fact(rows[0], "address"), "Kai 1, Hamburg, DE");
    EXPECT_EQ(fact(rows[0], "count"), "4");
    for (const RecordFact &each : rows[0].facts)
        EXPECT_EQ(factText(each).find("123456"), std::string::npos) << each.name;
    EXPECT_EQ(passedOver("telephone numbers of addresses are not stored"), 1U);
}

TEST_F(ChromiumWebData, addressesOfEarlierVersionsAreKnown) {
    test::SqliteFile data(file);
    data.run("CREATE TABLE autofill(name, value)")
        .run("CREATE TABLE autofill_profiles(guid, company_name, street_address, city, state, "
             "zipcode, country_code, date_modified, use_count, use_date)")
        .run("INSERT INTO autofill_profiles VALUES('g','Rope Ltd','Quay 2','Hull','','HU1','GB',"
             "1308142800,2,1308139200)")
        .run("CREATE TABLE autofill_profile_names(guid, first_name, middle_name, last_name, "
             "full_name)")
        .run("INSERT INTO autofill_profile_names VALUES('g','Ann','','Rope','Ann B. Rope'),"
             "('g','Other','','Name','')")
        .run("CREATE TABLE autofill_profile_emails(guid, email)")
        .run("INSERT INTO autofill_profile_emails VALUES('g','ann@rope.example')")
        .run("CREATE TABLE autofill_profile_phones(guid, number)")
        .run("INSERT INTO autofill_profile_phones VALUES('g','0123456')");
    const auto &rows = read(data);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(fact(rows[0], "full_name"), "Ann B. Rope");
    EXPECT_EQ(fact(rows[0], "email"), "ann@rope.example");
    EXPECT_EQ(fact(rows[0], "company"), "Rope Ltd");
    EXPECT_EQ(fact(rows[0], "address"), "Quay 2, Hull, HU1, GB");
    EXPECT_EQ(passedOver("telephone numbers of addresses are not stored"), 1U);
}

TEST_F(ChromiumWebData, cardsHaveNoNumbers) {
    test::ChromiumWebData data(file);
    data.run("INSERT INTO credit_cards VALUES('g','Mara Hafen',5,2027,x'7631304111',1308142800,2,"
             "1308139200,'blue one')")
        .run("INSERT INTO masked_credit_cards VALUES('s','M HAFEN','VISA','4111',6,2028,'Bank','')")
        .run("INSERT INTO server_card_metadata VALUES('s',9,12952612800000000)");
    const auto &rows = read(data);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].cacheType, "Chrome Card");
    EXPECT_EQ(fact(rows[0], "full_name") + fact(rows[0], "card_expiry"), "Mara Hafen2027-05");
    EXPECT_EQ(fact(rows[0], "nickname"), "blue one");
    EXPECT_EQ(fact(rows[1], "card_network") + fact(rows[1], "bank"), "VISABank");
    EXPECT_EQ(isoUtc(rows[1].ActionDateUTC), "2011-06-15T12:00:00Z") << "microseconds since 1601";
    for (const UrlRecord &row : rows)
        for (const RecordFact &each : row.facts)
            EXPECT_EQ(factText(each).find("4111"), std::string::npos) << each.name;
}

TEST_F(ChromiumWebData, enginesThatAPersonUsedAreRows) {
    test::ChromiumWebData data(file);
    data.run("INSERT INTO keywords VALUES(1,'Built In','in.example','','https://in.example/?q="
             "{searchTerms}','',0,0,5,0,0)")
        .run("INSERT INTO keywords VALUES(2,'Used','used.example','https://used.example/icon',"
             "'https://used.example/?q={searchTerms}','https://led.example/',0,4,6,0,"
             "12952612800000000)")
        .run("INSERT INTO keywords VALUES(3,'Own','own','','https://own.example/?q=%s','',"
             "1308139200,0,0,0,0)")
        .run("ALTER TABLE keywords ADD COLUMN starter_pack_id INTEGER DEFAULT 0")
        .run("INSERT INTO keywords VALUES(4,'Tabs','@tabs','','chrome://tabs/?q={searchTerms}','',"
             "12952612800000000,0,0,12952612800000000,0,3)");
    const auto &rows = read(data);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].cacheType, "Chrome Search Engine");
    EXPECT_EQ(rows[0].URL, "https://used.example/?q={searchTerms}");
    EXPECT_EQ(rows[0].Referrer, "https://led.example/");
    EXPECT_EQ(fact(rows[0], "search_engine") + fact(rows[0], "keyword"), "Usedused.example");
    EXPECT_EQ(fact(rows[0], "last_used"), "2011-06-15 12:00:00 [12952612800000000]");
    EXPECT_EQ(isoUtc(rows[1].ActionDateUTC), "2011-06-15T12:00:00Z");
    EXPECT_EQ(passedOver("search engines that came with the browser and weren't used"), 2U);
}

TEST_F(ChromiumWebData, tablesThatAreNotReadAreCounted) {
    test::ChromiumWebData data(file);
    data.run("INSERT INTO local_ibans VALUES('a',x'763130'),('b',x'763130')");
    EXPECT_TRUE(read(data).empty());
    EXPECT_EQ(passedOver("rows of table local_ibans, which is not read"), 2U);
}

TEST_F(ChromiumWebData, hostileValuesAreReadAsWhatTheyCanBe) {
    test::ChromiumWebData data(file);
    data.run("INSERT INTO autofill VALUES(NULL,x'FF',NULL,'soon',9223372036854775807,'many')")
        .run("INSERT INTO autofill VALUES(7,8,9,-5,1e300,NULL)")
        .run("INSERT INTO addresses(guid) VALUES(x'00')")
        .run("INSERT INTO address_type_tokens(guid,type,value) VALUES(x'00','seven',7),"
             "(NULL,NULL,NULL),('g',9223372036854775807,'x')")
        .run("INSERT INTO credit_cards(guid,expiration_year) VALUES('g',-9223372036854775808)");
    const auto &rows = read(data);
    EXPECT_EQ(reading.result.state, ReadState::complete);
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(fact(rows[0], "last_used"), "9223372036854775807");
    EXPECT_FALSE(rows[0].ActionDateUTC.has());
}

TEST_F(ChromiumWebData, aFileOfOtherTablesFails) {
    test::SqliteFile data(file);
    data.run("CREATE TABLE songs(id)");
    read(data);
    EXPECT_EQ(reading.result.state, ReadState::failed);
    EXPECT_EQ(reading.log.entries.size(), 1U);
}

TEST_F(ChromiumWebData, cancellingKeepsTheRowsSoFar) {
    test::ChromiumWebData data(file);
    for (int i = 0; i < 50; ++i)
        data.addForm("field", std::to_string(i), 1308139200, 1308139200, 1);
    data.close();
    test::CancelAfter task(5);
    reading.read(parseChromiumWebData, file, task);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_LT(reading.records().size(), 50U);
}

} // namespace
} // namespace nv
