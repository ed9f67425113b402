#include "support/builders/Cookies.h"

namespace nv::test {

ChromeCookies::ChromeCookies(const std::filesystem::path &path, int pageSize)
    : SqliteFile(path, pageSize) {
    run("CREATE TABLE cookies(creation_utc INTEGER NOT NULL UNIQUE PRIMARY KEY,host_key TEXT NOT "
        "NULL,name TEXT NOT NULL,value TEXT NOT NULL,path TEXT NOT NULL,expires_utc INTEGER NOT "
        "NULL,secure INTEGER NOT NULL,httponly INTEGER NOT NULL,last_access_utc INTEGER NOT NULL,"
        "encrypted_value BLOB DEFAULT '')");
}

ChromeCookies &ChromeCookies::add(const Cookie &cookie) {
    SQLite::Statement row =
        prepare("INSERT INTO cookies(creation_utc,host_key,name,value,path,expires_utc,secure,"
                "httponly,last_access_utc,encrypted_value) VALUES(?,?,?,?,'/',?,0,0,?,?)");
    SQLite::bind(row, cookie.creation, cookie.host, cookie.name, cookie.value, cookie.expiry,
                 cookie.lastAccess);
    row.bind(7, cookie.encrypted.data(), static_cast<int>(cookie.encrypted.size()));
    row.exec();
    return *this;
}

FirefoxCookies::FirefoxCookies(const std::filesystem::path &path, int pageSize)
    : SqliteFile(path, pageSize) {
    run("CREATE TABLE moz_cookies(id INTEGER PRIMARY KEY,name TEXT,value TEXT,host TEXT,path TEXT,"
        "expiry INTEGER,lastAccessed INTEGER,isSecure INTEGER,isHttpOnly INTEGER,"
        "creationTime INTEGER)");
}

FirefoxCookies &FirefoxCookies::add(const Cookie &cookie) {
    SQLite::Statement row =
        prepare("INSERT INTO moz_cookies(name,value,host,path,expiry,lastAccessed,isSecure,"
                "isHttpOnly) VALUES(?,?,?,'/',?,?,0,0)");
    SQLite::bind(row, cookie.name, cookie.value, cookie.host, cookie.expiry, cookie.lastAccess);
    row.exec();
    return *this;
}

} // namespace nv::test
