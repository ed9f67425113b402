#include "db/project/KeptEvidence.h"

#include "db/sql/SqliteErrors.h"

#include <SQLiteCpp/SQLiteCpp.h>

namespace nv {

std::vector<std::string> keptEvidenceFolders(SQLite::Database &project) {
    return onProject([&] {
        std::vector<std::string> folders;
        SQLite::Statement row(project, "SELECT DefaultValue FROM DefaultSettings"
                                       " WHERE DefaultName LIKE ? || '%' ORDER BY rowid");
        row.bind(1, std::string(kEvidenceFolderSetting));
        while (row.executeStep())
            folders.push_back(row.getColumn(0).getString());
        return folders;
    });
}

} // namespace nv
