#pragma once

#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "import/ImportTrail.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

enum class SourceState {
    same,
    changed,
    gone,
    unreadable, ///< or no plain file, nor a folder with files; the log says why
    unknown,    ///< no hash was taken when it was imported
    appeared,   ///< a log or journal beside what was imported, which wasn't there or wasn't read
};

/// "same", "changed", "gone", "unreadable", "no hash", "new".
std::string_view stateWord(SourceState state);

/// A file that was imported or read beside one, or a cache that is a folder, and what it is now; or
/// a file that lies beside one only now.
struct CheckedSource {
    std::string path;
    SourceState state = SourceState::unknown;
    std::int64_t sizeThen = 0; ///< bytes
    std::int64_t sizeNow = 0;  ///< 0 when it can't be read
    std::string md5Then;
    std::string md5Now;     ///< empty for a file that has grown: it isn't read
    std::string sha256Then; ///< empty when the project has none, as of earlier versions
    std::string sha256Now;
};

struct SourceCheck {
    std::vector<CheckedSource> sources; ///< in order of their import, as far as it came
    std::size_t total = 0;              ///< how many were imported or read
    /// Of those what earlier versions imported, which hashed no file beside: nobody can say whether
    /// such logs of databases and parts of caches have changed.
    std::size_t besideUnhashed = 0;
    std::vector<UnendedImport> unended; ///< what they read may be missing from `sources`
    bool cancelled = false;

    std::size_t count(SourceState state) const;
    bool allSame() const { return count(SourceState::same) == sources.size(); }
};

/// "12 files are as they were imported." or what differs, in one line for people.
std::string summaryText(const SourceCheck &check);

/// Hashes every file again that rows come from, as far as the import hashed it, and the logs that
/// lie beside one only now; with `only` no others than those. Writes nothing. Throws what the
/// database says.
SourceCheck verifySources(SQLite::Database &project, FailureLog &log, TaskMonitor &task,
                          const std::set<std::filesystem::path> *only = nullptr);

} // namespace nv
