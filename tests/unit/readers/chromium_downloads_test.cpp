#include "base/Files.h"
#include "time/DateFormat.h"
#include "unit/readers/ChromiumHistoryFixture.h"

namespace nv {
namespace {

using test::chromeTime;
using test::factOf;
using test::factsOf;
using test::kStamp;

class ChromiumDownloads : public test::ChromiumHistoryFixture {};

TEST_F(ChromiumDownloads, tellsAllOfADownload) {
    history().run(
        "INSERT INTO downloads VALUES(7,'guid','/current','/target'," +
        std::to_string(chromeTime(kStamp, 250000)) + ",10,20,4,3,40,x'00ff'," +
        std::to_string(chromeTime(kStamp + 9)) + ",1," + std::to_string(chromeTime(kStamp + 99)) +
        ",'http://referrer/','http://site/','http://tab/','http://tabreferrer/','POST','ext',"
        "'Helper','tag','Wed, 05 Nov 2025 08:00:00 GMT','a/b','c/d');"
        "INSERT INTO downloads_url_chains VALUES(7,1,'http://last/file.zip'),(7,0,'http://first/'),"
        "(8,0,'http://gone/')");
    read();
    const UrlRecord &record = only("Chrome Download");
    EXPECT_EQ(record.URL, "http://last/file.zip");
    EXPECT_EQ(record.Action, "Downloaded");
    EXPECT_EQ(record.Status, "interrupted");
    EXPECT_EQ(record.Referrer, "http://referrer/");
    EXPECT_EQ(record.MIMEType, "a/b");
    EXPECT_EQ(record.Visits, kVisitsUnknown);
    EXPECT_TRUE(record.IsHistory);
    EXPECT_EQ(isoUtc(record.ActionDateUTC), "2026-01-01T09:00:00Z");
    EXPECT_EQ(isoUtc(record.OtherDate), "2026-01-01T09:00:09Z");
    const std::string start = std::to_string(chromeTime(kStamp, 250000));
    EXPECT_EQ(factOf(record, "start_time"), "2026-01-01 09:00:00.250000 [" + start + "]");
    EXPECT_EQ(factOf(record, "download_state"), "interrupted [4]");
    EXPECT_EQ(factOf(record, "danger"), "dangerous content [3]");
    EXPECT_EQ(factOf(record, "interrupt_reason"), "cancelled by the user [40]");
    EXPECT_EQ(factOf(record, "opened"), "yes");
    EXPECT_EQ(factOf(record, "sha256"), "00ff");
    EXPECT_EQ(factOf(record, "by_extension"), "ext (Helper)");
    EXPECT_EQ(factOf(record, "target_path"), "/target");
    EXPECT_EQ(factOf(record, "current_path"), "/current");
    EXPECT_EQ(factOf(record, "received_bytes"), "10");
    EXPECT_EQ(factOf(record, "total_bytes"), "20");
    EXPECT_EQ(factOf(record, "http_method"), "POST");
    EXPECT_EQ(factOf(record, "original_mime_type"), "c/d");
    EXPECT_EQ(factsOf(record, "url_chain"),
              (std::vector<std::string>{"http://first/", "http://last/file.zip"}));
    EXPECT_EQ(reading->result.passedOver.at("addresses of downloads that are no longer listed"),
              1U);
}

TEST_F(ChromiumDownloads, joinsADownloadWithItsVisit) {
    page(1, chromeTime(kStamp), "http://file/");
    visit(1, 1, chromeTime(kStamp - 60));
    visit(2, 1, chromeTime(kStamp - 3));
    visit(3, 1, chromeTime(kStamp));
    history().run("INSERT INTO downloads(id,start_time) VALUES(5," +
                  std::to_string(chromeTime(kStamp - 2)) + "),(6," +
                  std::to_string(chromeTime(kStamp - 600)) +
                  ");INSERT INTO downloads_url_chains VALUES(5,0,'http://file/1'),"
                  "(6,0,'http://file/1')");
    read();
    const auto downloads = ofKind("Chrome Download");
    ASSERT_EQ(downloads.size(), 2U);
    EXPECT_EQ(factOf(*downloads[0], "visit_id"), "2");
    EXPECT_EQ(factOf(*downloads[1], "visit_id"), "-") << "ten minutes before any visit";
    EXPECT_EQ(factOf(*ofKind("Chrome Visit").at(1), "download_id"), "5");
    EXPECT_EQ(factOf(only("Chrome History"), "download_id"), "-");
}

TEST_F(ChromiumDownloads, readsDownloadsOfTheFirstForm) {
    history().run("DROP TABLE downloads; CREATE TABLE downloads(id INTEGER PRIMARY KEY,"
                  "full_path LONGVARCHAR,url LONGVARCHAR,start_time INTEGER,state INTEGER);"
                  "INSERT INTO downloads VALUES(1,'C:\\a.exe','http://file/a.exe',1306139730,1)");
    read();
    const UrlRecord &record = only("Chrome Download");
    EXPECT_EQ(isoUtc(record.ActionDateUTC), "2011-05-23T08:35:30Z");
    EXPECT_EQ(record.URL, "http://file/a.exe");
    EXPECT_EQ(record.Status, "complete");
    EXPECT_EQ(factOf(record, "target_path"), "C:\\a.exe");
    EXPECT_EQ(factOf(record, "start_time"), "2011-05-23 08:35:30 [1306139730]");
    EXPECT_EQ(factOf(record, "opened"), "-");
}

TEST_F(ChromiumDownloads, namesTheSearchEngineWhereWebDataTellsIt) {
    page(1, chromeTime(kStamp));
    history().run("INSERT INTO keyword_search_terms VALUES(2,1,'Row Boats','row boats'),"
                  "(9,66,'gone','gone')");
    read();
    EXPECT_EQ(factOf(*ofKind("Chrome Search Term").at(0), "search_engine"), "2");
    test::SqliteFile(file().parent_path() / "Web Data")
        .run("CREATE TABLE keywords(id INTEGER PRIMARY KEY,short_name);"
             "INSERT INTO keywords VALUES(2,'Find')")
        .close();
    read();
    const auto terms = ofKind("Chrome Search Term");
    ASSERT_EQ(terms.size(), 2U);
    EXPECT_EQ(terms[0]->Action, "Searched");
    EXPECT_EQ(terms[0]->URL, "http://page/1");
    EXPECT_EQ(isoUtc(terms[0]->ActionDateUTC), "2026-01-01T09:00:00Z");
    EXPECT_EQ(factOf(*terms[0], "search_engine"), "Find [2]");
    EXPECT_EQ(factOf(*terms[0], "search_term"), "Row Boats");
    EXPECT_EQ(terms[1]->URL, "");
    EXPECT_FALSE(terms[1]->ActionDateUTC.has());
    EXPECT_EQ(factOf(*terms[1], "page_id"), "66");
    EXPECT_EQ(reading->result.noted.at("search terms of pages that are no longer listed"), 1U);
}

TEST_F(ChromiumDownloads, aDamagedWebDataCostsTheNamesAlone) {
    page(1, chromeTime(kStamp));
    history().run("INSERT INTO keyword_search_terms VALUES(2,1,'a','a')");
    folder.write("Profile 1/Web Data", std::string(3000, 'x'));
    read();
    EXPECT_EQ(reading->result.state, ReadState::complete);
    EXPECT_EQ(factOf(only("Chrome Search Term"), "search_engine"), "2");
    EXPECT_EQ(reading->result.noted.size(), 1U);
    ASSERT_EQ(reading->log.entries.size(), 1U);
    EXPECT_NE(reading->log.entries[0].message.find("Web Data"), std::string::npos);
}

TEST_F(ChromiumDownloads, readsValuesOfAnyTypeInAnyColumn) {
    const std::vector<std::string> hostile = {
        "NULL",  "'text'", "x'ff00'", "9223372036854775807", "-9223372036854775808",
        "1e300", "0.5",    "''",      "'12950323200000000'"};
    const std::vector<std::pair<std::string, int>> tables = {
        {"visits(url,visit_time,from_visit,external_referrer_url,transition,segment_id,"
         "visit_duration,opener_visit,originator_cache_guid,originator_visit_id)",
         10},
        {"visit_source(id,source)", 2},
        {"keyword_search_terms(keyword_id,url_id,term,normalized_term)", 4},
        {"downloads(guid,current_path,target_path,start_time,received_bytes,total_bytes,state,"
         "danger_type,interrupt_reason,hash,end_time,opened,last_access_time,referrer,by_ext_id,"
         "mime_type)",
         16},
        {"downloads_url_chains(id,chain_index,url)", 3},
        {"segments(id,name,url_id)", 3},
        {"content_annotations(visit_id,search_normalized_url,search_terms,page_language)", 4},
        {"context_annotations(visit_id,total_foreground_duration,response_code)", 3},
        {"clusters_and_visits(cluster_id,visit_id,normalized_url)", 3},
        {"visited_links(link_url_id,top_level_url)", 2}};
    for (const auto &[table, columns] : tables) {
        const std::string name = table.substr(0, table.find('('));
        const std::string names = table.substr(table.find('(') + 1);
        history().run("DROP TABLE " + name + "; CREATE TABLE " + name + "(" + names);
        for (const std::string &value : hostile) {
            std::string values = value;
            for (int i = 1; i < columns; ++i)
                values += "," + value;
            history().run("INSERT INTO " + table + " VALUES(" + values + ")");
        }
    }
    history().run("INSERT INTO urls(id,url,title,last_visit_time) VALUES(7,'http://a/','',1)");
    read();
    EXPECT_EQ(reading->result.state, ReadState::complete) << reading->result.reason;
    EXPECT_EQ(reading->result.passedOver.count("damaged record of table visits"), 0U);
    EXPECT_EQ(ofKind("Chrome Visit").size(), hostile.size());
    EXPECT_EQ(ofKind("Chrome Download").size(), hostile.size());
    EXPECT_EQ(ofKind("Chrome Search Term").size(), hostile.size());
}

} // namespace
} // namespace nv
