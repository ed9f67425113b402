#pragma once

#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "base/Trap.h"
#include "search/FoundIds.h"
#include "search/RowMatch.h"
#include "search/SearchQuery.h"
#include "search/StillWanted.h"

#include <SQLiteCpp/Database.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nv {

/// Where an index may lie.
struct IndexPlace {
    std::filesystem::path project;
    std::filesystem::path beside;  ///< where it belongs
    std::filesystem::path scratch; ///< a folder for one that can't lie there
    bool isEvidence = false;       ///< the project lies among evidence: nothing is written there
};

/// What bringing an index up to date came to.
struct IndexNews {
    bool madeAnew = false;
    std::string why; ///< why another one wasn't taken; empty when there was none
    std::int64_t added = 0;
    std::int64_t changed = 0;
    std::int64_t gone = 0;
    std::filesystem::path file; ///< where it lies
    bool inScratch = false;     ///< it couldn't lie beside the project, and goes with this run

    bool hasAny() const { return madeAnew || added + changed + gone > 0; }
};

enum class IndexEnd { ready, cancelled };

/// What tells of a row without reading it from the project.
struct RowFacts {
    std::int32_t id = 0;
    std::string_view host;
    std::string_view browser;
    std::string_view cacheType;
    Date actionDateUTC;
};

/// The index that makes searches quick: a file beside the project, which holds what can be made
/// again and nothing else. Whether it tells the truth is found out anew before each search: by the
/// stamp of the project's file, and where that has changed, whoever has changed it, by comparing
/// every row. So it needs no help from those who write rows.
class SearchIndex {
  public:
    /// `project` is an open connection to the project; it and the log must outlive this.
    SearchIndex(SQLite::Database &project, IndexPlace place, FailureLog &log);

    /// Makes the index or puts right what has changed. With `parts` it also finds parts of words in
    /// pages and headers, which takes as long again and as much of the disk. A cancelled call keeps
    /// what it has done, and the next one goes on from there. Throws StorageFailure when no index
    /// can be made.
    [[nodiscard]] IndexEnd bringUpToDate(TaskMonitor &task, IndexNews &news, bool parts = false);

    /// Takes the index that is there as it stands, though rows may have changed since it was made.
    /// False when there is none, or none that ever was whole.
    bool openAsItStands(bool parts = false);
    /// Nothing has changed in the project since the index that is open was brought up to date.
    bool isUpToDate();

    // All of the following need an index that is open; they throw what the database says. What
    // they give or show is a part when it is no longer wanted at their end.

    /// The rows that meet a condition of text; nothing when the index can't tell, as of one or two
    /// letters or of an expression. With a `most` it stops when it has so many.
    std::optional<FoundIds> rowsWith(const SearchClause &clause, SearchScope scope,
                                     StillWanted &wanted, std::size_t most = 0);
    /// Some of the rows that meet all of these conditions of text, soon and at most so many: of the
    /// first rows alone, and those that meet all in their values or all in their texts. None where
    /// looking everywhere is the only way.
    FoundIds someWithAll(const std::vector<SearchClause> &clauses, SearchScope scope,
                         StillWanted &wanted, std::size_t most);
    /// Shows all rows, in the order of their ids.
    void eachRow(StillWanted &wanted, const std::function<void(const RowFacts &)> &show);
    /// Shows these rows, as far as the index has them.
    void eachRowOf(const FoundIds &ids, StillWanted &wanted,
                   const std::function<void(const RowFacts &)> &show);
    /// Rows of the project that couldn't be read, or not whole.
    std::set<std::int32_t> unread();
    /// How many rows of other programs have ids that no list can hold.
    std::int64_t outside();
    /// Runs `body`, which asks the index. Nothing when bytes of the index made no sense: it is gone
    /// then, and the next call that brings it up to date makes another.
    template <class Body>
    auto unlessItIsDamaged(Body &&body) {
        auto result = trapped(m_log, Severity::Low, "SearchIndex.Search()",
                              "The search index is made anew", decltype(std::optional(body()))(),
                              [&] { return std::optional(std::forward<Body>(body)()); });
        if (!result)
            discard("it was damaged");
        return result;
    }

  private:
    /// Closes the file and removes it.
    void discard(std::string why);
    IndexEnd update(TaskMonitor &task, IndexNews &news, bool parts);
    bool openWhole(const std::string &stamp, bool parts);
    bool openForUpdate();
    bool mayBeWritten(const std::filesystem::path &file) const;
    std::filesystem::path freshPlace(IndexNews &news);
    IndexEnd makeAnew(TaskMonitor &task, IndexNews &news, bool parts);
    IndexEnd fill(SQLite::Database &index, TaskMonitor &task, IndexNews &news, bool parts);
    void setForeignAside();
    /// Of numbers up to `last`.
    FoundIds docsOf(const char *table, const std::string &match, StillWanted &wanted,
                    std::size_t most, std::int64_t last = std::numeric_limits<std::int64_t>::max());

    SQLite::Database &m_project;
    IndexPlace m_place;
    FailureLog &m_log;
    std::filesystem::path m_file;
    std::unique_ptr<SQLite::Database> m_index;
    std::string m_why;           ///< the last index was given up
    bool m_passesBeside = false; ///< the one beside is damaged, and can't be removed
};

} // namespace nv
