#include "db/SourceFiles.h"

#include "base/Files.h"
#include "base/Succeeds.h"
#include "base/Text.h"
#include "db/BindId.h"
#include "db/SqliteErrors.h"
#include "time/Date.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

namespace nv {

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

/// A file without a hash is no other file's content.
SourceFileId SourceFiles::rowOf(const HistoryFile &file) {
    if (file.md5Hash.empty())
        return SourceFileId::none;
    const auto &rows = rowsByHash();
    const auto row = rows.find(toLower(file.md5Hash));
    return row == rows.end() ? SourceFileId::none : row->second;
}

std::unordered_map<std::string, SourceFileId> &SourceFiles::rowsByHash() {
    if (m_rowsByHash)
        return *m_rowsByHash;
    SQLite::Statement row(m_database,
                          "SELECT MD5Hash, SourceFile_ID FROM SourceFiles ORDER BY SourceFile_ID");
    auto &rows = m_rowsByHash.emplace();
    while (row.executeStep())
        rows.emplace(toLower(row.getColumn(0).getString()),
                     SourceFileId{row.getColumn(1).getInt64()});
    return rows;
}

SourceFileId SourceFiles::addRow(const HistoryFile &file) {
    SQLite::Statement insert(m_database,
                             "INSERT INTO SourceFiles (DateProcessed, FileName, FileExt, FilePath,"
                             " MD5Hash, FileSize, Successful) VALUES (?, ?, ?, ?, ?, ?, 0)");
    insert.bind(1, Date::fromTimePoint(m_clock.now()).days());
    insert.bind(2, file.fileName);
    insert.bind(3, file.fileExt);
    insert.bind(4, textOf(file.fullPath));
    insert.bind(5, file.md5Hash);
    insert.bind(6, static_cast<std::int64_t>(file.fileSize));
    insert.exec();
    const SourceFileId id{m_database.getLastInsertRowid()};
    rowsByHash().emplace(toLower(file.md5Hash), id);
    return id;
}

} // namespace nv
