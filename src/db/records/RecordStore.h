#pragma once

#include "base/Clock.h"
#include "base/FailureLog.h"
#include "db/records/HistoryFile.h"
#include "db/records/RecordColumns.h"
#include "db/records/RecordFacts.h"
#include "db/records/UrlRecord.h"

#include <SQLiteCpp/Statement.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace nv {

struct TimeZone;

/// The project's zone, in which `ActionDateLocal` is stored.
struct ProjectZone {
    const TimeZone &gmtZone;
    bool enableDSTChanges = true;
};

/// Rows of table `URLs`: writes one a record and reads them back. Its statements are kept, so it
/// must be gone before the connection is closed; all that it is given must outlive it.
class RecordStore {
  public:
    RecordStore(SQLite::Database &database, const ProjectZone &zone, const Clock &clock,
                FailureLog &log);

    /// Adds a row, always: the same URL in two files, or a file imported twice, is two rows.
    /// The record then is as the row has it, with its key in URLID. A failure loses this one row:
    /// it is logged and URLID is `none`. Throws StorageFailure when the project can't be written.
    void saveRecord(UrlRecord &record, const HistoryFile &file);

    /// Nothing when there is no such row, or when it can't be read, which is logged: a damaged page
    /// of the project costs its rows and no others. Throws StorageFailure when nothing can be read.
    /// What a project of an earlier build has no column for stays empty.
    std::optional<UrlRecord> getURL(UrlId id);

    /// What `UrlRecord::facts` was when the record was saved. Throws.
    FactList factsOf(UrlId id) { return m_facts.of(id); }

    /// Adds `count` rows to `Links` for the links found in the saved record's page. Unlike those
    /// that saveRecord makes of `UrlRecord::Links`, each names the page: link analysis finds a page
    /// by them. Throws.
    void addLinksToItself(const UrlRecord &page, std::size_t count);
    /// Sets `IsWebPage` of the record and of its row. Throws.
    void markAsWebPage(UrlRecord &record);

  private:
    void complete(UrlRecord &record, const HistoryFile &file) const;
    void insertRow(UrlRecord &record);
    void insertLinks(const UrlRecord &record);
    void bindLink(UrlId id, const std::string &url, const std::string &hash);

    SQLite::Database &m_database;
    ProjectZone m_zone;
    const Clock &m_clock;
    FailureLog &m_log;
    RecordFacts m_facts;
    std::vector<RecordColumn> m_readColumns; ///< those that the project has, as m_select gives them
    std::optional<SQLite::Statement> m_insert; ///< made when it is needed: reading goes without
    SQLite::Statement m_insertLink;
    SQLite::Statement m_select;
    SQLite::Statement m_markAsWebPage;
};

} // namespace nv
