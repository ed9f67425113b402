#include "support/builders/Places.h"

namespace nv::test {

namespace {

constexpr const char *kPlaces =
    "CREATE TABLE moz_places (id INTEGER PRIMARY KEY, url LONGVARCHAR, title LONGVARCHAR, "
    "rev_host LONGVARCHAR, visit_count INTEGER DEFAULT 0, hidden INTEGER DEFAULT 0 NOT NULL, "
    "typed INTEGER DEFAULT 0 NOT NULL, favicon_id INTEGER, frecency INTEGER DEFAULT -1 NOT NULL, "
    "last_visit_date INTEGER";
constexpr const char *kVisits =
    "CREATE TABLE moz_historyvisits (id INTEGER PRIMARY KEY, from_visit INTEGER, "
    "place_id INTEGER, visit_date INTEGER, visit_type INTEGER, session INTEGER);"
    "CREATE INDEX moz_historyvisits_placedateindex ON moz_historyvisits (place_id, visit_date);"
    "CREATE INDEX moz_historyvisits_fromindex ON moz_historyvisits (from_visit);"
    "CREATE INDEX moz_historyvisits_dateindex ON moz_historyvisits (visit_date);";
constexpr const char *kIndexes = "CREATE INDEX moz_places_hostindex ON moz_places (rev_host);"
                                 "CREATE INDEX moz_places_visitcount ON moz_places (visit_count);"
                                 "CREATE INDEX moz_places_frecencyindex ON moz_places (frecency);";
constexpr const char *kUrlIndex =
    "CREATE UNIQUE INDEX moz_places_url_uniqueindex ON moz_places (url);";
constexpr const char *kUrlHashIndex =
    "CREATE INDEX moz_places_url_hashindex ON moz_places (url_hash);";

constexpr std::int64_t kDay = 1305849600; // 2011-05-20

std::string laterColumns(Places::Version version) {
    switch (version) {
    case Places::Version::firefox3:
        return ");";
    case Places::Version::firefox41:
        return ", guid TEXT, foreign_count INTEGER DEFAULT 0 NOT NULL);";
    case Places::Version::firefox115:
        return ", guid TEXT, foreign_count INTEGER DEFAULT 0 NOT NULL, url_hash INTEGER DEFAULT 0 "
               "NOT NULL, description TEXT, preview_image_url TEXT, site_name TEXT, "
               "origin_id INTEGER, recalc_frecency INTEGER NOT NULL DEFAULT 0);";
    }
    return ");";
}

} // namespace

Places::Places(const std::filesystem::path &path, Version version, int pageSize,
               const std::string &encoding)
    : SqliteFile(path, pageSize, encoding) {
    run(kPlaces + laterColumns(version));
    run(kVisits);
    run(kIndexes);
    run(version == Version::firefox115 ? kUrlHashIndex : kUrlIndex);
}

Places &Places::add(const PlacesRow &row) {
    SQLite::Statement place =
        prepare("INSERT INTO moz_places(id,url,title,visit_count,hidden) VALUES(?,?,?,?,?)");
    SQLite::bind(place, row.id, row.url, row.title, row.visitCount, row.hidden ? 1 : 0);
    place.exec();
    for (const std::int64_t date : row.visitDates) {
        SQLite::Statement visit = prepare("INSERT INTO moz_historyvisits(from_visit,place_id,"
                                          "visit_date,visit_type) VALUES(0,?,?,1)");
        SQLite::bind(visit, row.id, date);
        visit.exec();
    }
    return *this;
}

void addExamplePlaces(Places &places) {
    places
        .add({.id = 1,
              .url = "http://www.example.com/shop/list.html?item=7&colour=red",
              .title = "Shop \u2013 example",
              .visitCount = 2,
              .visitDates = {firefoxTime(kDay, 999'999), firefoxTime(kDay + 3600)}})
        .add({.id = 2,
              .url = "http://ads.example.net/frame",
              .visitCount = 1,
              .hidden = true,
              .visitDates = {firefoxTime(kDay + 3601)}})
        .add({.id = 3, .url = "place:sort=8&maxResults=10", .visitCount = 0, .hidden = true});
}

} // namespace nv::test
