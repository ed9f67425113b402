#include "db/marks/PartChoices.h"

#include "db/schema/SchemaCatalogue.h"
#include "db/sql/BindId.h"
#include "db/sql/Savepoint.h"
#include "db/sql/StoredText.h"

#include <SQLiteCpp/Statement.h>

namespace nv {

void PartChoices::choose(UrlId page, const std::string &address, UrlId part) {
    Savepoint whole(m_database);
    SchemaCatalogue(m_database).addOnFirstUse(kPartChoicesTable);
    forget(page, address);
    SQLite::Statement insert(
        m_database, "INSERT INTO PartChoices (URL_ID, Address, PartURL_ID) VALUES (?, ?, ?)");
    bindId(insert, 1, page);
    bindText(insert, 2, address);
    bindId(insert, 3, part);
    insert.exec();
    whole.release();
}

// Texts of a project are compared in either case, addresses aren't.
void PartChoices::forget(UrlId page, const std::string &address) {
    if (!m_database.tableExists(kPartChoicesTable))
        return;
    SQLite::Statement remove(
        m_database, "DELETE FROM PartChoices WHERE URL_ID = ? AND Address = ? COLLATE BINARY");
    bindId(remove, 1, page);
    bindText(remove, 2, address);
    remove.exec();
}

std::map<std::string, UrlId> PartChoices::of(UrlId page) const {
    std::map<std::string, UrlId> all;
    if (!m_database.tableExists(kPartChoicesTable))
        return all;
    SQLite::Statement row(m_database,
                          "SELECT Address, PartURL_ID FROM PartChoices WHERE URL_ID = ? "
                          "ORDER BY Choice_ID");
    bindId(row, 1, page);
    while (row.executeStep())
        all.insert_or_assign(row.getColumn(0).getString(), UrlId{row.getColumn(1).getInt64()});
    return all;
}

} // namespace nv
