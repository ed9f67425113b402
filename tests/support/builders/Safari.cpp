#include "support/builders/Safari.h"

namespace nv::test {

namespace {

constexpr const char *kProlog =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n";

std::string escaped(const std::string &text) {
    std::string result;
    for (const char c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else
            result += c;
    }
    return result;
}

std::string pair(const std::string &key, const std::string &type, const std::string &value) {
    return "<key>" + escaped(key) + "</key>\n<" + type + ">" + escaped(value) + "</" + type + ">\n";
}

void bindBytes(SQLite::Statement &row, int index, const std::optional<std::string> &bytes) {
    if (bytes)
        row.bind(index, bytes->data(), static_cast<int>(bytes->size()));
    else
        row.bind(index);
}

std::string withoutLineBreaks(const std::string &text) {
    std::string result;
    for (const char c : text)
        if (c != '\n')
            result += c;
    return result;
}

} // namespace

std::string safariResponse(const std::string &url, const Headers &headers) {
    std::string fields;
    for (const auto &[name, value] : headers)
        fields += pair(name, "string", value);
    return std::string(kProlog) + "<dict>\n" + pair("Version", "integer", "1") +
           "<key>Array</key>\n<array>\n<dict>\n" + pair("_CFURLStringType", "integer", "15") +
           pair("_CFURLString", "string", url) +
           "</dict>\n<real>321408000.5</real>\n<integer>0</integer>\n<integer>200</integer>\n"
           "<dict>\n" +
           fields + "</dict>\n<integer>11</integer>\n<string>text/plain</string>\n</array>\n" +
           "</dict>\n</plist>\n";
}

Headers headersOf(const std::string &type, const std::string &date,
                  const std::string &lastModified) {
    Headers headers = {{"Server", "harbour/1.0"}, {"Content-Type", type}, {"Date", date}};
    if (!lastModified.empty())
        headers.emplace_back("Last-Modified", lastModified);
    return headers;
}

SafariCache::SafariCache(const std::filesystem::path &path, Version version, int pageSize)
    : SqliteFile(path, pageSize), m_version(version) {
    run("CREATE TABLE cfurl_cache_schema_version(schema_version INTEGER);"
        "CREATE TABLE cfurl_cache_response(entry_ID INTEGER PRIMARY KEY AUTOINCREMENT UNIQUE,"
        "version INTEGER,hash_value INTEGER,storage_policy INTEGER,request_key TEXT UNIQUE,"
        "time_stamp NOT NULL DEFAULT CURRENT_TIMESTAMP);"
        "CREATE INDEX request_key_index ON cfurl_cache_response(request_key)");
    if (version == Version::oneTable)
        run("CREATE TABLE cfurl_cache_blob_data(entry_ID INTEGER PRIMARY KEY,response_object BLOB,"
            "request_object BLOB,receiver_data BLOB,proto_props BLOB,user_info BLOB)");
    else
        run("CREATE TABLE cfurl_cache_blob_data(entry_ID INTEGER PRIMARY KEY,response_object BLOB,"
            "request_object BLOB,proto_props BLOB,user_info BLOB);"
            "CREATE TABLE cfurl_cache_receiver_data(entry_ID INTEGER PRIMARY KEY,"
            "isDataOnFS INTEGER,receiver_data BLOB)");
}

SafariCache &SafariCache::addWithoutBlobs(std::int64_t id, const std::string &url) {
    SQLite::Statement row =
        prepare("INSERT INTO cfurl_cache_response(entry_ID,version,hash_value,storage_policy,"
                "request_key,time_stamp) VALUES(?,0,7,0,?,'2011-03-09 18:00:00')");
    SQLite::bind(row, id, url);
    row.exec();
    return *this;
}

SafariCache &SafariCache::add(const SafariEntry &entry) {
    addWithoutBlobs(entry.id, entry.url);
    const bool isOneTable = m_version == Version::oneTable;
    SQLite::Statement row =
        prepare(isOneTable ? "INSERT INTO cfurl_cache_blob_data(entry_ID,response_object,"
                             "receiver_data) VALUES(?,?,?)"
                           : "INSERT INTO cfurl_cache_blob_data(entry_ID,response_object) "
                             "VALUES(?,?)");
    row.bind(1, entry.id);
    bindBytes(row, 2, entry.response);
    if (isOneTable)
        bindBytes(row, 3, entry.body);
    row.exec();
    if (!isOneTable)
        addBody(entry);
    return *this;
}

void SafariCache::addBody(const SafariEntry &entry) {
    SQLite::Statement row = prepare("INSERT INTO cfurl_cache_receiver_data(entry_ID,isDataOnFS,"
                                    "receiver_data) VALUES(?,?,?)");
    row.bind(1, entry.id);
    row.bind(2, entry.isOnDisk ? 1 : 0);
    bindBytes(row, 3, entry.body);
    row.exec();
}

void addExampleEntries(SafariCache &cache) {
    const std::string page = "http://www.example.com/caf%C3%A9?q=tea&n=1";
    const std::string picture = "http://www.example.com/images/tea.gif";
    cache
        .add({.id = 1,
              .url = page,
              .response = safariResponse(page, headersOf("text/html; charset=utf-8",
                                                         "Wed, 09 Mar 2011 18:00:00 GMT",
                                                         "Tue, 01 Feb 2011 06:07:08 GMT")),
              .body = "<html><body>Tea</body></html>"})
        .add({.id = 2,
              .url = picture,
              .response =
                  safariResponse(picture, headersOf("image/gif", "Wed, 09 Mar 2011 18:00:01 GMT")),
              .body = std::string("GIF89a\1\0\1\0\0\0\0;", 14)})
        .addWithoutBlobs(3, "http://www.example.org/gone.html");
}

SafariHistory &SafariHistory::add(const SafariVisit &visit) {
    std::string xml = "<dict>\n" + pair("", "string", visit.url);
    if (visit.lastVisited)
        xml += pair("lastVisitedDate", "string", *visit.lastVisited);
    if (!visit.redirects.empty()) {
        xml += "<key>redirectURLs</key>\n<array>\n";
        for (const std::string &redirect : visit.redirects)
            xml += "<string>" + escaped(redirect) + "</string>\n";
        xml += "</array>\n";
    }
    if (visit.title)
        xml += pair("title", "string", *visit.title);
    if (visit.visitCount)
        xml += pair("visitCount", "integer", *visit.visitCount);
    return addXml(xml + "</dict>\n");
}

SafariHistory &SafariHistory::addXml(const std::string &xml) {
    m_entries += xml;
    return *this;
}

std::string SafariHistory::text() const {
    const std::string list = "<dict>\n<key>WebHistoryDates</key>\n<array>\n" + m_entries +
                             "</array>\n<key>WebHistoryFileVersion</key>\n<integer>1</integer>\n"
                             "</dict>\n</plist>\n";
    return kProlog + (m_spacing == Spacing::none ? withoutLineBreaks(list) : list);
}

void addExampleVisits(SafariHistory &history) {
    history
        .add({.url = "http://www.example.com/shop/list.html?item=7&colour=red",
              .title = "Shop \u2013 example",
              .lastVisited = "321408000.7",
              .visitCount = "3"})
        .add({.url = "http://www.example.com/caf%C3%A9",
              .lastVisited = "321407000.0",
              .redirects = {"http://example.com/"}})
        .add({.url = "https://www.example.org/", .title = "Tea & more", .lastVisited = "0"});
}

} // namespace nv::test
