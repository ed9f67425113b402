#include "support/builders/ChromiumProfile.h"

namespace nv::test {

namespace {

void makeMeta(SqliteFile &file, int version) {
    file.run("CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR)");
    file.run("INSERT INTO meta VALUES('mmap_status','-1'),('version','" + std::to_string(version) +
             "')");
}

void bindBytes(SQLite::Statement &row, int at, const std::string &bytes) {
    row.bind(at, bytes.data(), static_cast<int>(bytes.size()));
}

} // namespace

std::string bytesOfHex(const std::string &digits) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

std::string v10(const std::string &digits) {
    return "v10" + bytesOfHex(digits);
}

ChromiumCookies::ChromiumCookies(const std::filesystem::path &path, int version)
    : SqliteFile(path) {
    makeMeta(*this, version);
    run("CREATE TABLE cookies(creation_utc INTEGER NOT NULL,host_key TEXT NOT NULL,"
        "top_frame_site_key TEXT NOT NULL,name TEXT NOT NULL,value TEXT NOT NULL,encrypted_value "
        "BLOB NOT NULL,path TEXT NOT NULL,expires_utc INTEGER NOT NULL,is_secure INTEGER NOT NULL,"
        "is_httponly INTEGER NOT NULL,last_access_utc INTEGER NOT NULL,has_expires INTEGER NOT "
        "NULL,is_persistent INTEGER NOT NULL,priority INTEGER NOT NULL,samesite INTEGER NOT NULL,"
        "source_scheme INTEGER NOT NULL,source_port INTEGER NOT NULL,last_update_utc INTEGER NOT "
        "NULL,source_type INTEGER NOT NULL,has_cross_site_ancestor INTEGER NOT NULL)");
}

ChromiumCookies &ChromiumCookies::add(const ChromiumCookie &cookie) {
    SQLite::Statement row =
        prepare("INSERT INTO cookies(creation_utc,host_key,top_frame_site_key,name,value,path,"
                "expires_utc,is_secure,is_httponly,last_access_utc,samesite,source_scheme,"
                "source_port,last_update_utc,encrypted_value,has_expires,is_persistent,priority,"
                "source_type,has_cross_site_ancestor) "
                "VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,1,1,1,0,0)");
    SQLite::bind(row, cookie.created, cookie.host, cookie.topFrameSite, cookie.name, cookie.value,
                 cookie.path, cookie.expires, cookie.secure, cookie.httpOnly, cookie.lastAccess,
                 cookie.sameSite, cookie.sourceScheme, cookie.sourcePort, cookie.lastUpdate);
    bindBytes(row, 15, cookie.encrypted);
    row.exec();
    return *this;
}

ChromiumWebData::ChromiumWebData(const std::filesystem::path &path) : SqliteFile(path) {
    makeMeta(*this, 158);
    for (const char *form :
         {"autofill (name VARCHAR,", "autocomplete (name VARCHAR, label VARCHAR,"})
        run(std::string("CREATE TABLE ") + form +
            " value VARCHAR, value_lower VARCHAR, date_created INTEGER DEFAULT 0, "
            "date_last_used INTEGER DEFAULT 0, count INTEGER DEFAULT 1)");
    run("CREATE TABLE addresses (guid VARCHAR PRIMARY KEY, use_count INTEGER NOT NULL DEFAULT 0, "
        "use_date INTEGER NOT NULL DEFAULT 0, date_modified INTEGER NOT NULL DEFAULT 0, "
        "language_code VARCHAR, label VARCHAR, initial_creator_id INTEGER DEFAULT 0, "
        "record_type INTEGER)");
    run("CREATE TABLE address_type_tokens (guid VARCHAR, type INTEGER, value VARCHAR, "
        "verification_status INTEGER DEFAULT 0, observations BLOB, PRIMARY KEY (guid, type))");
    run("CREATE TABLE credit_cards (guid VARCHAR PRIMARY KEY, name_on_card VARCHAR, "
        "expiration_month INTEGER, expiration_year INTEGER, card_number_encrypted BLOB, "
        "date_modified INTEGER NOT NULL DEFAULT 0, use_count INTEGER NOT NULL DEFAULT 0, "
        "use_date INTEGER NOT NULL DEFAULT 0, nickname VARCHAR)");
    run("CREATE TABLE masked_credit_cards (id VARCHAR, name_on_card VARCHAR, network VARCHAR, "
        "last_four VARCHAR, exp_month INTEGER DEFAULT 0, exp_year INTEGER DEFAULT 0, "
        "bank_name VARCHAR, nickname VARCHAR)");
    run("CREATE TABLE server_card_metadata (id VARCHAR NOT NULL, use_count INTEGER NOT NULL "
        "DEFAULT 0, use_date INTEGER NOT NULL DEFAULT 0)");
    run("CREATE TABLE keywords (id INTEGER PRIMARY KEY,short_name VARCHAR NOT NULL,keyword VARCHAR "
        "NOT NULL,favicon_url VARCHAR NOT NULL,url VARCHAR NOT NULL,originating_url VARCHAR,"
        "date_created INTEGER DEFAULT 0,usage_count INTEGER DEFAULT 0,prepopulate_id INTEGER "
        "DEFAULT 0,last_modified INTEGER DEFAULT 0,last_visited INTEGER DEFAULT 0)");
    run("CREATE TABLE local_ibans (guid VARCHAR PRIMARY KEY, value_encrypted VARCHAR)");
}

ChromiumWebData &ChromiumWebData::addForm(const std::string &name, const std::string &value,
                                          std::int64_t first, std::int64_t last,
                                          std::int64_t count) {
    SQLite::Statement row = prepare("INSERT INTO autofill VALUES(?,?,lower(?2),?,?,?)");
    SQLite::bind(row, name, value, first, last, count);
    row.exec();
    return *this;
}

ChromiumWebData &ChromiumWebData::addAddressPart(const std::string &guid, int type,
                                                 const std::string &value) {
    SQLite::Statement row =
        prepare("INSERT INTO address_type_tokens(guid,type,value) VALUES(?,?,?)");
    SQLite::bind(row, guid, type, value);
    row.exec();
    return *this;
}

ChromiumLogins::ChromiumLogins(const std::filesystem::path &path) : SqliteFile(path) {
    makeMeta(*this, 43);
    run("CREATE TABLE logins (origin_url VARCHAR NOT NULL, action_url VARCHAR, username_element "
        "VARCHAR, username_value VARCHAR, password_element VARCHAR, password_value BLOB, "
        "submit_element VARCHAR, signon_realm VARCHAR NOT NULL, date_created INTEGER NOT NULL, "
        "blacklisted_by_user INTEGER NOT NULL, scheme INTEGER NOT NULL, times_used INTEGER, "
        "id INTEGER PRIMARY KEY AUTOINCREMENT, date_last_used INTEGER NOT NULL DEFAULT 0, "
        "date_password_modified INTEGER NOT NULL DEFAULT 0, date_last_filled INTEGER NOT NULL "
        "DEFAULT 0)");
    run("CREATE TABLE stats (origin_domain VARCHAR NOT NULL, username_value VARCHAR, "
        "dismissal_count INTEGER, update_time INTEGER NOT NULL)");
}

ChromiumLogins &ChromiumLogins::add(const ChromiumLogin &login) {
    SQLite::Statement row = prepare(
        "INSERT INTO logins(origin_url,action_url,username_element,username_value,signon_realm,"
        "date_created,date_last_used,date_password_modified,times_used,blacklisted_by_user,"
        "scheme,password_value) VALUES(?,?1,'login',?,?1,?,?,?,?,?,0,?)");
    SQLite::bind(row, login.site, login.user, login.created, login.lastUsed, login.passwordChanged,
                 login.timesUsed, login.neverSave ? 1 : 0);
    bindBytes(row, 8, login.password);
    row.exec();
    return *this;
}

} // namespace nv::test
