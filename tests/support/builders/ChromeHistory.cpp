#include "support/builders/ChromeHistory.h"

namespace nv::test {

namespace {

constexpr const char *kMeta =
    "CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);";

constexpr const char *kUrlsWithIcons =
    "CREATE TABLE urls(id INTEGER PRIMARY KEY,url LONGVARCHAR,title LONGVARCHAR,"
    "visit_count INTEGER DEFAULT 0 NOT NULL,typed_count INTEGER DEFAULT 0 NOT NULL,"
    "last_visit_time INTEGER NOT NULL,hidden INTEGER DEFAULT 0 NOT NULL,"
    "favicon_id INTEGER DEFAULT 0 NOT NULL);";
constexpr const char *kUrls =
    "CREATE TABLE urls(id INTEGER PRIMARY KEY AUTOINCREMENT,url LONGVARCHAR,title LONGVARCHAR,"
    "visit_count INTEGER DEFAULT 0 NOT NULL,typed_count INTEGER DEFAULT 0 NOT NULL,"
    "last_visit_time INTEGER NOT NULL,hidden INTEGER DEFAULT 0 NOT NULL);";

constexpr const char *kVisitsIndexed =
    "CREATE TABLE visits(id INTEGER PRIMARY KEY,url INTEGER NOT NULL,visit_time INTEGER NOT NULL,"
    "from_visit INTEGER,transition INTEGER DEFAULT 0 NOT NULL,segment_id INTEGER,"
    "is_indexed BOOLEAN);";
constexpr const char *kVisits =
    "CREATE TABLE visits(id INTEGER PRIMARY KEY,url INTEGER NOT NULL,visit_time INTEGER NOT NULL,"
    "from_visit INTEGER,transition INTEGER DEFAULT 0 NOT NULL,segment_id INTEGER,"
    "visit_duration INTEGER DEFAULT 0 NOT NULL);";

constexpr const char *kVisitsOfToday =
    "CREATE TABLE visits(id INTEGER PRIMARY KEY AUTOINCREMENT,url INTEGER NOT NULL,"
    "visit_time INTEGER NOT NULL,from_visit INTEGER,external_referrer_url TEXT,"
    "transition INTEGER DEFAULT 0 NOT NULL,segment_id INTEGER,"
    "visit_duration INTEGER DEFAULT 0 NOT NULL,opener_visit INTEGER,originator_cache_guid TEXT,"
    "originator_visit_id INTEGER,visited_link_id INTEGER DEFAULT 0 NOT NULL);";
constexpr const char *kTablesOfToday =
    "CREATE TABLE visit_source(id INTEGER PRIMARY KEY,source INTEGER NOT NULL);"
    "CREATE TABLE keyword_search_terms(keyword_id INTEGER NOT NULL,url_id INTEGER NOT NULL,"
    "term LONGVARCHAR NOT NULL,normalized_term LONGVARCHAR NOT NULL);"
    "CREATE TABLE downloads(id INTEGER PRIMARY KEY,guid VARCHAR,current_path LONGVARCHAR,"
    "target_path LONGVARCHAR,start_time INTEGER,received_bytes INTEGER,total_bytes INTEGER,"
    "state INTEGER,danger_type INTEGER,interrupt_reason INTEGER,hash BLOB,end_time INTEGER,"
    "opened INTEGER,last_access_time INTEGER,referrer VARCHAR,site_url VARCHAR,tab_url VARCHAR,"
    "tab_referrer_url VARCHAR,http_method VARCHAR,by_ext_id VARCHAR,by_ext_name VARCHAR,"
    "etag VARCHAR,last_modified VARCHAR,mime_type VARCHAR(255),original_mime_type VARCHAR(255));"
    "CREATE TABLE downloads_url_chains(id INTEGER NOT NULL,chain_index INTEGER NOT NULL,"
    "url LONGVARCHAR NOT NULL,PRIMARY KEY(id,chain_index));"
    "CREATE TABLE segments(id INTEGER PRIMARY KEY,name VARCHAR,url_id INTEGER NON NULL);"
    "CREATE TABLE content_annotations(visit_id INTEGER PRIMARY KEY,search_normalized_url VARCHAR,"
    "search_terms LONGVARCHAR,page_language VARCHAR);"
    "CREATE TABLE context_annotations(visit_id INTEGER PRIMARY KEY,"
    "total_foreground_duration INTEGER,response_code INTEGER DEFAULT 0 NOT NULL);"
    "CREATE TABLE clusters_and_visits(cluster_id INTEGER NOT NULL,visit_id INTEGER NOT NULL,"
    "normalized_url LONGVARCHAR NOT NULL,PRIMARY KEY(cluster_id,visit_id))WITHOUT ROWID;"
    "CREATE TABLE visited_links(id INTEGER PRIMARY KEY AUTOINCREMENT,link_url_id INTEGER,"
    "top_level_url LONGVARCHAR,frame_url LONGVARCHAR,visit_count INTEGER);";

constexpr const char *kIndexes = "CREATE INDEX visits_url_index ON visits (url);"
                                 "CREATE INDEX visits_from_index ON visits (from_visit);"
                                 "CREATE INDEX visits_time_index ON visits (visit_time);"
                                 "CREATE INDEX urls_url_index ON urls (url);";

constexpr std::int64_t kDay = 1305849600; // 2011-05-20

} // namespace

ChromeHistory::ChromeHistory(const std::filesystem::path &path, Version version, int pageSize,
                             const std::string &encoding)
    : SqliteFile(path, pageSize, encoding) {
    run(kMeta);
    const bool isOfToday = version == Version::schema70;
    run(version == Version::schema66 || isOfToday ? kUrls : kUrlsWithIcons);
    run(isOfToday ? kVisitsOfToday : version == Version::schema20 ? kVisitsIndexed : kVisits);
    if (isOfToday)
        run(kTablesOfToday);
    run(kIndexes);
    run("INSERT INTO meta VALUES('version','" + std::to_string(static_cast<int>(version)) + "')");
}

ChromeHistory &ChromeHistory::add(const ChromePage &page) {
    SQLite::Statement row =
        prepare("INSERT INTO urls(id,url,title,visit_count,typed_count,last_visit_time,hidden) "
                "VALUES(?,?,?,?,?,?,?)");
    SQLite::bind(row, page.id, page.url, page.title, page.visitCount, page.typedCount,
                 page.lastVisitTime, page.hidden ? 1 : 0);
    row.exec();
    for (const std::int64_t time : page.visitTimes) {
        SQLite::Statement visit = prepare(
            "INSERT INTO visits(url,visit_time,from_visit,transition) VALUES(?,?,0,805306368)");
        SQLite::bind(visit, page.id, time);
        visit.exec();
    }
    return *this;
}

void addExamplePages(ChromeHistory &history) {
    history
        .add({.id = 1,
              .url = "http://www.example.com/shop/list.html?item=7&colour=red",
              .title = "Shop \u2013 example",
              .visitCount = 2,
              .lastVisitTime = chromeTime(kDay + 3600, 250'000),
              .typedCount = 1,
              .visitTimes = {chromeTime(kDay), chromeTime(kDay + 3600, 250'000)}})
        .add({.id = 2,
              .url = "http://ads.example.net/frame",
              .visitCount = 1,
              .lastVisitTime = chromeTime(kDay + 3601),
              .hidden = true,
              .visitTimes = {chromeTime(kDay + 3601)}})
        .add({.id = 3, .url = "https://www.example.org/caf%C3%A9", .visitCount = 0});
}

} // namespace nv::test
