#include "db/records/SourceFiles.h"

#include "base/Files.h"
#include "base/Succeeds.h"
#include "base/Text.h"
#include "db/sql/BindId.h"
#include "db/sql/SqliteErrors.h"
#include "db/sql/StoredText.h"
#include "time/Date.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include <array>

namespace nv {

namespace {

/// Of a content and who it is from.
std::string keyOf(std::string_view md5, std::string_view browser, std::string_view profile,
                  std::string_view person) {
    std::string key = toLower(md5);
    for (const std::string_view part : {browser, profile, person})
        key.append(1, '\0').append(part);
    return key;
}

/// In the order of their columns.
std::array<const std::string *, 5> textsOf(const Origin &origin) {
    return {&origin.browser, &origin.browserVersion, &origin.profile, &origin.person,
            &origin.device};
}

std::string keyOf(const HistoryFile &file) {
    const Origin &origin = file.origin;
    return keyOf(file.md5Hash, origin.browser, origin.profile, origin.person);
}

} // namespace

template <class Body>
bool SourceFiles::attempt(Body &&body) {
    return succeeds(m_log, Severity::Warning, "MainBAS.LogFile()", kContactSupport,
                    [&] { onProject(m_database, body); });
}

bool SourceFiles::logFile(HistoryFile &file) {
    return attempt([&] {
        file.sourceFileID = rowOf(file);
        if (file.sourceFileID == SourceFileId::none)
            file.sourceFileID = addRow(file);
        else
            noteRules(file.sourceFileID);
    });
}

bool SourceFiles::setSuccessful(SourceFileId id) {
    return attempt([&] {
        SQLite::Statement update(m_database,
                                 "UPDATE SourceFiles SET Successful = 1 WHERE SourceFile_ID = ?");
        bindId(update, 1, id);
        update.exec();
    });
}

bool SourceFiles::noteOrigin(const HistoryFile &file) {
    return attempt([&] { writeOrigin(file.sourceFileID, file.origin); });
}

void SourceFiles::writeOrigin(SourceFileId id, const Origin &origin) {
    SQLite::Statement update(m_database,
                             "UPDATE SourceFiles SET Browser = ifnull(nullif(?, ''), Browser), "
                             "BrowserVersion = ifnull(nullif(?, ''), BrowserVersion), "
                             "Profile = ifnull(nullif(?, ''), Profile), "
                             "Person = ifnull(nullif(?, ''), Person), "
                             "Device = ifnull(nullif(?, ''), Device) WHERE SourceFile_ID = ?");
    int at = 0;
    for (const std::string *text : textsOf(origin))
        bindText(update, ++at, *text);
    update.bind(++at, number(id));
    update.exec();
}

/// A file without a hash is no other file's content.
SourceFileId SourceFiles::rowOf(const HistoryFile &file) {
    if (file.md5Hash.empty())
        return SourceFileId::none;
    auto &rows = rowsByContent();
    const std::string key = keyOf(file);
    if (const auto row = rows.find(key); row != rows.end())
        return row->second;
    auto row = rows.extract(toLower(file.md5Hash)); // an earlier build's: from now on this file's
    if (row.empty())
        return SourceFileId::none;
    row.key() = key;
    const SourceFileId id = row.mapped();
    rows.insert(std::move(row));
    writeOrigin(id, file.origin);
    return id;
}

std::unordered_map<std::string, SourceFileId> &SourceFiles::rowsByContent() {
    if (m_rowsByContent)
        return *m_rowsByContent;
    SQLite::Statement row(m_database, "SELECT MD5Hash, Browser, Profile, Person, SourceFile_ID "
                                      "FROM SourceFiles ORDER BY SourceFile_ID");
    const auto text = [&row](int at) { return row.getColumn(at).getString(); };
    auto &rows = m_rowsByContent.emplace();
    while (row.executeStep()) {
        const bool ofEarlierBuild = row.getColumn(1).isNull();
        rows.emplace(ofEarlierBuild ? toLower(text(0)) : keyOf(text(0), text(1), text(2), text(3)),
                     SourceFileId{row.getColumn(4).getInt64()});
    }
    return rows;
}

void SourceFiles::noteRules(SourceFileId id) {
    if (m_rules == ReadBy::classicRules)
        return; // what other rules have read of it stays read
    SQLite::Statement update(m_database, "UPDATE SourceFiles SET ClassicOnly = 0 WHERE "
                                         "SourceFile_ID = ? AND ClassicOnly <> 0");
    update.bind(1, number(id));
    update.exec();
}

SourceFileId SourceFiles::addRow(const HistoryFile &file) {
    SQLite::Statement insert(
        m_database, "INSERT INTO SourceFiles (DateProcessed, FileName, FileExt, FilePath,"
                    " MD5Hash, FileSize, SHA256Hash, Browser, BrowserVersion, Profile, "
                    "Person, Device, ClassicOnly, Successful) VALUES (?, ?, ?, ?, ?, ?, ?, "
                    "?, ?, ?, ?, ?, ?, 0)");
    insert.bind(1, Date::fromTimePoint(m_clock.now()).days());
    insert.bind(2, file.fileName);
    insert.bind(3, file.fileExt);
    insert.bind(4, textOf(file.fullPath));
    insert.bind(5, file.md5Hash);
    insert.bind(6, static_cast<std::int64_t>(file.fileSize));
    insert.bind(7, file.sha256Hash);
    int at = 7;
    for (const std::string *text : textsOf(file.origin))
        bindText(insert, ++at, *text);
    insert.bind(++at, m_rules == ReadBy::classicRules ? 1 : 0);
    insert.exec();
    const SourceFileId id{m_database.getLastInsertRowid()};
    rowsByContent().emplace(keyOf(file), id);
    return id;
}

} // namespace nv
