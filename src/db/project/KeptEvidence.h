#pragma once

#include <string>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// What a project keeps of the folders that its imports have read: in table `DefaultSettings`,
/// under this name with a number from 1 on.
inline constexpr const char *kEvidenceFolderSetting = "EvidenceFolder";

/// These folders, as they were called then, in the order of their imports: whole, without a
/// separator at the end. None lies within one that was kept before it. A project of an earlier
/// build may have none. Throws StorageFailure.
std::vector<std::string> keptEvidenceFolders(SQLite::Database &project);

} // namespace nv
