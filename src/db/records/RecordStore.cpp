#include "db/records/RecordStore.h"

#include "base/Md5.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/records/RecordColumns.h"
#include "db/records/RecordNames.h"
#include "db/sql/BindId.h"
#include "db/sql/SqliteErrors.h"
#include "db/sql/StoredText.h"
#include "time/TimeZone.h"

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace nv {

namespace {

std::string columnNames(std::span<const RecordColumn> columns) {
    std::string names;
    for (const RecordColumn &column : columns)
        names.append(names.empty() ? "\"" : ", \"").append(column.name).append("\"");
    return names;
}

std::string insertText() {
    std::string marks = "?";
    for (std::size_t i = 1; i < recordColumns().size(); ++i)
        marks.append(", ?");
    return "INSERT INTO URLs (" + columnNames(recordColumns()) + ") VALUES (" + marks + ")";
}

/// A project of an earlier build lacks these.
constexpr std::array<std::string_view, 3> kLaterColumns = {"Browser", "Profile", "Person"};

/// Of the columns that every project must have none is left out: a record without them would pass
/// for one whose source said nothing.
std::vector<RecordColumn> columnsThere(SQLite::Database &database) {
    SQLite::Statement known(database, "SELECT 1 FROM pragma_table_info('URLs') WHERE name = ? "
                                      "COLLATE NOCASE");
    std::vector<RecordColumn> there;
    for (const RecordColumn &column : recordColumns()) {
        known.reset();
        known.bind(1, std::string(column.name));
        const bool isLater = std::ranges::find(kLaterColumns, column.name) != kLaterColumns.end();
        if (!isLater || known.executeStep())
            there.push_back(column);
    }
    return there;
}

/// Binds a member of the record to a 1-based parameter. Texts and bytes aren't copied: they must
/// stay until the statement has run.
struct Binder {
    SQLite::Statement &statement;
    const UrlRecord &record;
    int at;

    void operator()(std::string UrlRecord::*member) const {
        bindText(statement, at, record.*member);
    }
    void operator()(Date UrlRecord::*member) const {
        if (const Date &date = record.*member; date.has())
            statement.bind(at, date.days());
        else
            statement.bind(at);
    }
    void operator()(bool UrlRecord::*member) const { statement.bind(at, record.*member ? 1 : 0); }
    void operator()(std::int64_t UrlRecord::*member) const { statement.bind(at, record.*member); }
    void operator()(Bytes UrlRecord::*member) const {
        if (const Bytes &bytes = record.*member; !bytes.empty())
            statement.bindNoCopy(at, bytes.data(), static_cast<int>(bytes.size()));
        else
            statement.bind(at);
    }
    void operator()(SourceFileId UrlRecord::*member) const {
        if (const SourceFileId id = record.*member; id != SourceFileId::none)
            bindId(statement, at, id);
        else
            statement.bind(at);
    }
};

/// The way back: sets a member from a 0-based column.
struct Reading {
    SQLite::Statement &statement;
    UrlRecord &record;
    int at;

    SQLite::Column column() const { return statement.getColumn(at); }

    void operator()(std::string UrlRecord::*member) const { record.*member = column().getString(); }
    void operator()(Date UrlRecord::*member) const {
        record.*member = column().isNull() ? Date() : Date::fromDays(column().getDouble());
    }
    void operator()(bool UrlRecord::*member) const { record.*member = column().getInt() != 0; }
    void operator()(std::int64_t UrlRecord::*member) const { record.*member = column().getInt64(); }
    void operator()(Bytes UrlRecord::*member) const {
        const std::string bytes = column().getString();
        (record.*member).assign(bytes.begin(), bytes.end());
    }
    void operator()(SourceFileId UrlRecord::*member) const {
        record.*member = SourceFileId{column().getInt64()};
    }
};

void takeOrigin(UrlRecord &record, const Origin &origin) {
    if (record.Browser.empty())
        record.Browser = origin.browser;
    if (record.Profile.empty())
        record.Profile = origin.profile;
    if (record.Person.empty())
        record.Person = origin.person;
}

} // namespace

RecordStore::RecordStore(SQLite::Database &database, const ProjectZone &zone, const Clock &clock,
                         FailureLog &log)
    : m_database(database), m_zone(zone), m_clock(clock), m_log(log), m_facts(database),
      m_readColumns(columnsThere(database)),
      m_insertLink(database, "INSERT INTO Links (URL_ID, URL, HashedURL) VALUES (?, ?, ?)"),
      m_select(database, "SELECT " + columnNames(m_readColumns) + " FROM URLs WHERE URL_ID = ?"),
      m_markAsWebPage(database, "UPDATE URLs SET IsWebPage = 1 WHERE URL_ID = ?") {}

void RecordStore::saveRecord(UrlRecord &record, const HistoryFile &file) {
    record.URLID = UrlId::none;
    const auto save = [&] {
        complete(record, file);
        insertRow(record);
        m_facts.store(record.URLID, record.facts);
        if (record.IsWebPage)
            insertLinks(record);
    };
    trapped(m_log, Severity::Warning, "MainBAS.SaveRecord()", kContactSupport,
            [&] { onProject(m_database, save); });
}

void RecordStore::complete(UrlRecord &record, const HistoryFile &file) const {
    record.SourceFile_ID = file.sourceFileID;
    takeOrigin(record, file.origin);
    record.LastVisited = record.ActionDateUTC;
    record.ActionDateLocal =
        record.ActionDateUTC.has()
            ? convertDateToZone(record.ActionDateUTC, m_zone.gmtZone, m_zone.enableDSTChanges)
            : Date();
    record.TimeAdded = Date::fromTimePoint(m_clock.now());
    record.Tag = false;
    orderNames(record);
    if (record.HashedURL.empty())
        record.HashedURL = hashOfUrl(record.URL);
}

void RecordStore::insertRow(UrlRecord &record) {
    if (!m_insert)
        m_insert.emplace(m_database, insertText());
    int at = 0;
    m_insert->tryReset();
    for (const RecordColumn &column : recordColumns())
        std::visit(Binder{*m_insert, record, ++at}, column.member);
    m_insert->exec();
    record.URLID = UrlId{m_database.getLastInsertRowid()};
    m_insert->tryReset();
}

void RecordStore::insertLinks(const UrlRecord &record) {
    for (const std::string_view part : split(record.Links, '|')) {
        if (!containsNoCase(part, "http"))
            continue;
        const std::string link(part);
        bindLink(record.URLID, link, hashOfUrl(link));
        m_insertLink.exec();
    }
    m_insertLink.tryReset();
}

/// `url` must stay until the statement has run.
void RecordStore::bindLink(UrlId id, const std::string &url, const std::string &hash) {
    m_insertLink.tryReset();
    bindId(m_insertLink, 1, id);
    bindText(m_insertLink, 2, url);
    m_insertLink.bind(3, hash);
}

void RecordStore::addLinksToItself(const UrlRecord &page, std::size_t count) {
    onProject(m_database, [&] {
        bindLink(page.URLID, page.URL, page.HashedURL);
        for (std::size_t i = 0; i < count; ++i) {
            m_insertLink.exec();
            m_insertLink.reset(); // the values stay bound
        }
    });
}

void RecordStore::markAsWebPage(UrlRecord &record) {
    onProject(m_database, [&] {
        m_markAsWebPage.tryReset();
        bindId(m_markAsWebPage, 1, record.URLID);
        m_markAsWebPage.exec();
        m_markAsWebPage.tryReset();
    });
    record.IsWebPage = true;
}

std::optional<UrlRecord> RecordStore::getURL(UrlId id) {
    const auto read = [&]() -> std::optional<UrlRecord> {
        m_select.tryReset();
        bindId(m_select, 1, id);
        if (!m_select.executeStep())
            return std::nullopt;
        UrlRecord record;
        record.URLID = id;
        int at = 0;
        for (const RecordColumn &column : m_readColumns)
            std::visit(Reading{m_select, record, at++}, column.member);
        m_select.tryReset();
        return record;
    };
    return trapped(m_log, Severity::Warning, "MainBAS.GetURL()", kContactSupport,
                   std::optional<UrlRecord>(), [&read] { return onRow(read); });
}

} // namespace nv
