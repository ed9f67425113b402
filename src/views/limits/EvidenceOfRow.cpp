#include "views/limits/EvidenceOfRow.h"

#include "db/project/KeptEvidence.h"
#include "db/sql/Damage.h"
#include "views/limits/MovedEvidence.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace nv {

namespace {

/// Which of the chosen folders a file lies in.
class ChosenFolders {
  public:
    explicit ChosenFolders(const std::vector<std::string> &kept) {
        std::vector<std::string> all;
        all.reserve(kept.size());
        for (const std::string &folder : kept)
            all.push_back(asRootPath(folder));
        std::ranges::sort(all); // what lies in a folder follows it
        m_folders.reserve(all.size());
        for (std::string &folder : all)
            if (m_folders.empty() || !folder.starts_with(m_folders.back()))
                m_folders.push_back(std::move(folder));
    }

    std::size_t count() const { return m_folders.size(); }

    /// Null where it lies in none. A folder that was read as one may have been chosen itself.
    const std::string *around(std::string_view path) const {
        const std::string place = asRootPath(path);
        const auto behind = std::ranges::upper_bound(m_folders, place);
        if (behind == m_folders.begin() || !place.starts_with(*(behind - 1)))
            return nullptr;
        return &*(behind - 1);
    }

    void takeSources(SQLite::Database &project) {
        SQLite::Statement row(project, "SELECT SourceFile_ID, FilePath FROM SourceFiles");
        while (row.executeStep())
            if (const std::string *folder = around(row.getColumn(1).getString()))
                m_bySource[row.getColumn(0).getInt64()] = folder;
    }

    /// Where the evidence has been moved since, the row's path is a new one, that of its source
    /// isn't. Files of the same bytes have one source, so its path comes second.
    std::string_view of(std::int64_t source, std::string_view path, std::string_view root) const {
        if (const std::string *folder = around(path))
            return *folder;
        const auto known = m_bySource.find(source);
        return known == m_bySource.end() ? root : std::string_view(*known->second);
    }

  private:
    std::vector<std::string> m_folders; ///< in order, none within another
    std::unordered_map<std::int64_t, const std::string *> m_bySource;
};

std::string_view textOf(sqlite3_value *value) {
    const auto *text = reinterpret_cast<const char *>(sqlite3_value_text(value));
    const int size = sqlite3_value_bytes(value);
    return text == nullptr ? std::string_view()
                           : std::string_view(text, static_cast<std::size_t>(size));
}

void answer(sqlite3_context *context, int, sqlite3_value **arguments) {
    const auto *folders = static_cast<const ChosenFolders *>(sqlite3_user_data(context));
    const std::string_view place =
        folders->of(sqlite3_value_int64(arguments[0]), textOf(arguments[1]), textOf(arguments[2]));
    sqlite3_result_text64(context, place.data(), place.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void forget(void *folders) {
    const std::unique_ptr<ChosenFolders> gone(static_cast<ChosenFolders *>(folders));
}

bool hasFunction(SQLite::Database &database, const std::string &expression) {
    sqlite3_stmt *statement = nullptr;
    const std::string sql = fmt::format("SELECT {} FROM URLs", expression);
    const int result =
        sqlite3_prepare_v2(database.getHandle(), sql.c_str(), -1, &statement, nullptr);
    sqlite3_finalize(statement);
    return result == SQLITE_OK;
}

} // namespace

std::string evidenceExpression(SQLite::Database &project) {
    std::unique_ptr<ChosenFolders> folders;
    std::size_t keptCount = 0;
    std::int64_t lastSource = 0;
    const bool isWhole = unlessDamaged([&] {
        const std::vector<std::string> kept = keptEvidenceFolders(project);
        keptCount = kept.size();
        folders = std::make_unique<ChosenFolders>(kept);
        if (folders->count() < 2)
            return;
        lastSource =
            project.execAndGet("SELECT ifnull(max(SourceFile_ID), 0) FROM SourceFiles").getInt64();
    });
    if (!isWhole || folders->count() < 2)
        return "RootPath";
    // Both only become more: these numbers tell one state from the next. To replace
    // a function fails while a statement is at work.
    const std::string name = fmt::format("place_evidence_{}_{}", keptCount, lastSource);
    std::string expression = fmt::format("{}(SourceFile_ID, {}, RootPath)", name, kRowPath);
    if (hasFunction(project, expression))
        return expression;
    if (!unlessDamaged([&] { folders->takeSources(project); }))
        return "RootPath";
    // What a project's own views and triggers say can't call it.
    constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY;
    constexpr int kArguments = 3;
    // The connection owns the folders, also where this fails.
    const int result =
        sqlite3_create_function_v2(project.getHandle(), name.c_str(), kArguments, kFlags,
                                   folders.release(), answer, nullptr, nullptr, forget);
    if (result != SQLITE_OK)
        throw SQLite::Exception(project.getHandle(), result);
    return expression;
}

} // namespace nv
