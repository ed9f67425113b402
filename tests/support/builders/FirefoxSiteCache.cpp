#include "support/builders/FirefoxSiteCache.h"

#include <fstream>

namespace nv::test {

namespace {

std::string utf16(std::string_view ascii) {
    std::string bytes;
    for (const char c : ascii)
        bytes += {c, '\0'};
    return bytes;
}

void addRow(SqliteFile &file, const std::string &sql, const std::string &first,
            const std::string &second, int third) {
    SQLite::Statement row = file.prepare(sql);
    row.bind(1, first);
    row.bind(2, second);
    row.bind(3, third);
    row.exec();
}

} // namespace

FirefoxSiteCacheFiles::FirefoxSiteCacheFiles(const std::filesystem::path &folder)
    : m_folder(folder), m_file(folder / "caches.sqlite") {
    m_file.run("PRAGMA user_version=31")
        .run("CREATE TABLE caches (id INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT)")
        .run("CREATE TABLE security_info (id INTEGER NOT NULL PRIMARY KEY, hash BLOB NOT NULL, "
             "data BLOB NOT NULL, refcount INTEGER NOT NULL)")
        .run("CREATE TABLE entries (id INTEGER NOT NULL PRIMARY KEY, request_method TEXT NOT NULL, "
             "request_url_no_query TEXT NOT NULL, request_url_query TEXT NOT NULL, "
             "request_referrer TEXT NOT NULL, request_body_id TEXT NULL, response_type INTEGER NOT "
             "NULL, response_status INTEGER NOT NULL, response_status_text TEXT NOT NULL, "
             "response_body_id TEXT NULL, response_security_info_id INTEGER NULL, cache_id INTEGER "
             "NOT NULL, request_url_fragment TEXT NOT NULL, response_padding_size INTEGER NULL)")
        .run("CREATE TABLE request_headers (name TEXT NOT NULL, value TEXT NOT NULL, entry_id "
             "INTEGER NOT NULL)")
        .run("CREATE TABLE response_headers (name TEXT NOT NULL, value TEXT NOT NULL, entry_id "
             "INTEGER NOT NULL)")
        .run("CREATE TABLE response_url_list (url TEXT NOT NULL, entry_id INTEGER NOT NULL)")
        .run("CREATE TABLE storage (namespace INTEGER NOT NULL, key BLOB NULL, cache_id INTEGER "
             "NOT NULL, PRIMARY KEY(namespace, key))");
    for (int cache = 1; cache <= 2; ++cache) {
        m_file.run("INSERT INTO caches VALUES (" + std::to_string(cache) + ")");
        SQLite::Statement row = m_file.prepare("INSERT INTO storage VALUES (?, ?, ?)");
        const std::string name = utf16(cache == 1 ? "pages" : "scripts");
        row.bind(1, cache - 1);
        row.bind(2, name.data(), static_cast<int>(name.size()));
        row.bind(3, cache);
        row.exec();
    }
}

FirefoxSiteCacheFiles &FirefoxSiteCacheFiles::add(const FirefoxSiteEntry &entry) {
    ++m_count;
    SQLite::Statement row = m_file.prepare(
        "INSERT INTO entries VALUES (?, ?, ?, ?, ?, NULL, ?, ?, ?, ?, 1, ?, ?, NULL)");
    SQLite::bind(row, m_count, entry.method, entry.url, entry.query, entry.referrer, entry.type,
                 entry.status, entry.statusText, entry.body, entry.cache, entry.fragment);
    if (entry.body.empty())
        row.bind(9);
    row.exec();
    for (const auto &[name, value] : entry.headers)
        addRow(m_file, "INSERT INTO response_headers VALUES (?, ?, ?)", name, value, m_count);
    for (const auto &[name, value] : entry.requestHeaders)
        addRow(m_file, "INSERT INTO request_headers VALUES (?, ?, ?)", name, value, m_count);
    auto urls = entry.urls;
    if (urls.empty())
        urls.push_back(entry.url + entry.query);
    for (const std::string &url : urls) {
        SQLite::Statement way = m_file.prepare("INSERT INTO response_url_list VALUES (?, ?)");
        SQLite::bind(way, url, m_count);
        way.exec();
    }
    return *this;
}

FirefoxSiteCacheFiles &FirefoxSiteCacheFiles::addBody(const std::string &name,
                                                      std::string_view bytes) {
    const std::filesystem::path file = m_folder / "morgue" / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
    return *this;
}

std::string FirefoxSiteCacheFiles::bodyName(const std::string &id) {
    const int folder = std::stoi(id.substr(id.size() - 3, 2), nullptr, 16);
    return std::to_string(folder) + "/" + id + ".final";
}

std::filesystem::path FirefoxSiteCacheFiles::close() {
    m_file.close();
    return m_file.path();
}

} // namespace nv::test
