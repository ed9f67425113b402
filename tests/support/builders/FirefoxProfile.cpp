#include "support/builders/FirefoxProfile.h"

namespace nv::test {

CurrentPlaces::CurrentPlaces(const std::filesystem::path &path, int pageSize)
    : SqliteFile(path, pageSize) {
    run("CREATE TABLE moz_places(id INTEGER PRIMARY KEY,url LONGVARCHAR,title LONGVARCHAR,"
        "visit_count INTEGER DEFAULT 0,hidden INTEGER DEFAULT 0 NOT NULL,typed INTEGER DEFAULT 0 "
        "NOT NULL,last_visit_date INTEGER,guid TEXT,description TEXT,site_name TEXT);"
        "CREATE TABLE moz_historyvisits(id INTEGER PRIMARY KEY,from_visit INTEGER,place_id "
        "INTEGER,visit_date INTEGER,visit_type INTEGER,session INTEGER,source INTEGER DEFAULT 0 "
        "NOT NULL,triggeringPlaceId INTEGER);"
        "CREATE TABLE moz_bookmarks(id INTEGER PRIMARY KEY,type INTEGER,fk INTEGER DEFAULT NULL,"
        "parent INTEGER,position INTEGER,title LONGVARCHAR,keyword_id INTEGER,folder_type TEXT,"
        "dateAdded INTEGER,lastModified INTEGER,guid TEXT);"
        "CREATE TABLE moz_keywords(id INTEGER PRIMARY KEY AUTOINCREMENT,keyword TEXT UNIQUE,"
        "place_id INTEGER,post_data TEXT);"
        "CREATE TABLE moz_inputhistory(place_id INTEGER NOT NULL,input LONGVARCHAR NOT NULL,"
        "use_count INTEGER,PRIMARY KEY(place_id,input));"
        "CREATE TABLE moz_anno_attributes(id INTEGER PRIMARY KEY,name VARCHAR(32) UNIQUE NOT NULL);"
        "CREATE TABLE moz_annos(id INTEGER PRIMARY KEY,place_id INTEGER NOT NULL,"
        "anno_attribute_id INTEGER,content LONGVARCHAR,dateAdded INTEGER DEFAULT 0)");
}

CurrentPlaces &CurrentPlaces::add(const PlacesPage &page) {
    SQLite::Statement row =
        prepare("INSERT INTO moz_places(id,url,title,visit_count) VALUES(?,?,?,?)");
    SQLite::bind(row, page.id, page.url, page.title, page.visitCount);
    row.exec();
    return *this;
}

CurrentPlaces &CurrentPlaces::add(const PlacesVisit &visit) {
    SQLite::Statement row = prepare("INSERT INTO moz_historyvisits(id,from_visit,place_id,"
                                    "visit_date,visit_type) VALUES(?,?,?,?,?)");
    SQLite::bind(row, visit.id, visit.from, visit.place, visit.date, visit.type);
    row.exec();
    return *this;
}

CurrentPlaces &CurrentPlaces::add(const PlacesBookmark &bookmark) {
    SQLite::Statement row = prepare("INSERT INTO moz_bookmarks(id,type,fk,parent,title,guid,"
                                    "dateAdded) VALUES(?,?,nullif(?,0),?,?,?,?)");
    SQLite::bind(row, bookmark.id, bookmark.type, bookmark.page, bookmark.parent, bookmark.title,
                 bookmark.guid, bookmark.added);
    row.exec();
    return *this;
}

CurrentPlaces &CurrentPlaces::annotate(std::int64_t page, const std::string &name,
                                       const std::string &content, std::int64_t added) {
    SQLite::Statement kind = prepare("INSERT OR IGNORE INTO moz_anno_attributes(name) VALUES(?)");
    SQLite::bind(kind, name);
    kind.exec();
    SQLite::Statement row = prepare("INSERT INTO moz_annos(place_id,anno_attribute_id,content,"
                                    "dateAdded) SELECT ?,id,?,? FROM moz_anno_attributes "
                                    "WHERE name=?");
    SQLite::bind(row, page, content, added, name);
    row.exec();
    return *this;
}

FirefoxForms::FirefoxForms(const std::filesystem::path &path, int pageSize)
    : SqliteFile(path, pageSize) {
    run("CREATE TABLE moz_formhistory(id INTEGER PRIMARY KEY,fieldname TEXT NOT NULL,value TEXT "
        "NOT NULL,timesUsed INTEGER,firstUsed INTEGER,lastUsed INTEGER,guid TEXT);"
        "CREATE TABLE moz_deleted_formhistory(id INTEGER PRIMARY KEY,timeDeleted INTEGER,"
        "guid TEXT);"
        "CREATE TABLE moz_sources(id INTEGER PRIMARY KEY,source TEXT NOT NULL);"
        "CREATE TABLE moz_history_to_sources(history_id INTEGER,source_id INTEGER,"
        "PRIMARY KEY(history_id,source_id)) WITHOUT ROWID");
}

FirefoxForms &FirefoxForms::add(const std::string &field, const std::string &value,
                                std::int64_t lastUsed) {
    SQLite::Statement row = prepare("INSERT INTO moz_formhistory(fieldname,value,timesUsed,"
                                    "lastUsed) VALUES(?,?,1,?)");
    SQLite::bind(row, field, value, lastUsed);
    row.exec();
    return *this;
}

FirefoxPermissions::FirefoxPermissions(const std::filesystem::path &path, int pageSize)
    : SqliteFile(path, pageSize) {
    run("CREATE TABLE moz_perms(id INTEGER PRIMARY KEY,origin TEXT,type TEXT,permission INTEGER,"
        "expireType INTEGER,expireTime INTEGER,modificationTime INTEGER);"
        "CREATE TABLE moz_hosts(id INTEGER PRIMARY KEY,host TEXT,type TEXT,permission INTEGER,"
        "expireType INTEGER,expireTime INTEGER,modificationTime INTEGER);"
        "CREATE TABLE moz_origin_interactions(origin TEXT PRIMARY KEY,lastInteractionTime "
        "INTEGER)");
}

FirefoxPermissions &FirefoxPermissions::add(const std::string &origin, const std::string &type,
                                            std::int64_t setting, std::int64_t modified) {
    SQLite::Statement row = prepare("INSERT INTO moz_perms(origin,type,permission,expireType,"
                                    "expireTime,modificationTime) VALUES(?,?,?,0,0,?)");
    SQLite::bind(row, origin, type, setting, modified);
    row.exec();
    return *this;
}

FirefoxFavicons::FirefoxFavicons(const std::filesystem::path &path, int pageSize)
    : SqliteFile(path, pageSize) {
    run("CREATE TABLE moz_icons(id INTEGER PRIMARY KEY,icon_url TEXT NOT NULL,expire_ms INTEGER "
        "NOT NULL DEFAULT 0,data BLOB);"
        "CREATE TABLE moz_pages_w_icons(id INTEGER PRIMARY KEY,page_url TEXT NOT NULL);"
        "CREATE TABLE moz_icons_to_pages(page_id INTEGER NOT NULL,icon_id INTEGER NOT NULL,"
        "PRIMARY KEY(page_id,icon_id)) WITHOUT ROWID");
}

FirefoxFavicons &FirefoxFavicons::add(const std::string &page, const std::string &icon) {
    SQLite::Statement first = prepare("INSERT INTO moz_pages_w_icons(page_url) VALUES(?)");
    SQLite::bind(first, page);
    first.exec();
    SQLite::Statement second = prepare("INSERT INTO moz_icons(icon_url) VALUES(?)");
    SQLite::bind(second, icon);
    second.exec();
    run("INSERT INTO moz_icons_to_pages SELECT max(p.id),max(i.id) FROM moz_pages_w_icons p,"
        "moz_icons i");
    return *this;
}

FirefoxDownloads::FirefoxDownloads(const std::filesystem::path &path, int pageSize)
    : SqliteFile(path, pageSize) {
    run("CREATE TABLE moz_downloads(id INTEGER PRIMARY KEY,name TEXT,source TEXT,target TEXT,"
        "tempPath TEXT,startTime INTEGER,endTime INTEGER,state INTEGER,referrer TEXT,entityID "
        "TEXT,currBytes INTEGER NOT NULL DEFAULT 0,maxBytes INTEGER NOT NULL DEFAULT -1,"
        "mimeType TEXT)");
}

FirefoxDownloads &FirefoxDownloads::add(const std::string &source, const std::string &target,
                                        std::int64_t started, std::int64_t state) {
    SQLite::Statement row =
        prepare("INSERT INTO moz_downloads(source,target,startTime,state) VALUES(?,?,?,?)");
    SQLite::bind(row, source, target, started, state);
    row.exec();
    return *this;
}

std::string firefoxLogins(const std::vector<FirefoxLogin> &logins) {
    std::string list;
    for (const FirefoxLogin &login : logins)
        list += std::string(list.empty() ? "" : ",") + R"({"id":1,"hostname":")" + login.site +
                R"(","encryptedUsername":")" + login.encryptedName + R"(","timeCreated":)" +
                std::to_string(login.created) + "}";
    return R"({"nextId":2,"logins":[)" + list + R"(],"version":3})";
}

} // namespace nv::test
