#include "db/sql/SideFiles.h"

namespace nv {

namespace fs = std::filesystem;

fs::path sideFile(const fs::path &database, std::string_view suffix) {
    fs::path file = database;
    file += suffix;
    return file;
}

void removeSideFiles(const fs::path &database) {
    for (const std::string_view suffix : kSideSuffixes) {
        std::error_code ignored;
        fs::remove(sideFile(database, suffix), ignored);
    }
}

void removeDatabase(const fs::path &database) {
    std::error_code ignored;
    fs::remove(database, ignored);
    removeSideFiles(database);
}

} // namespace nv
