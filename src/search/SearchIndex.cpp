#include "search/SearchIndex.h"

#include "base/Files.h"
#include "base/Replace.h"
#include "db/sql/SideFiles.h"
#include "db/sql/SqliteErrors.h"
#include "search/IndexFile.h"
#include "search/IndexFill.h"
#include "search/IndexMatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <unordered_set>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// What the index knows of itself.
constexpr const char *kParts = "parts"; ///< "whole" when its table is filled
constexpr const char *kRows = "rows";   ///< "whole" once all rows were indexed

std::unordered_set<std::int64_t> deadOf(SQLite::Database &index) {
    std::unordered_set<std::int64_t> dead;
    SQLite::Statement rows(index, "SELECT Doc FROM Dead");
    while (rows.executeStep())
        dead.insert(rows.getColumn(0).getInt64());
    return dead;
}

std::string_view textIn(const SQLite::Column &column) {
    const char *bytes = column.getText(); // before the length, which it settles
    return {bytes, static_cast<std::size_t>(column.getBytes())};
}

constexpr std::string_view kRowFacts =
    "SELECT URL_ID, Host, Browser, CacheType, ActionDateUTC FROM Rows";

void showFacts(SQLite::Statement &row, const std::function<void(const RowFacts &)> &show) {
    const SQLite::Column date = row.getColumn(4);
    const SQLite::Column host = row.getColumn(1);
    const SQLite::Column browser = row.getColumn(2);
    const SQLite::Column type = row.getColumn(3);
    show({row.getColumn(0).getInt(), textIn(host), textIn(browser), textIn(type),
          date.isNull() ? Date() : Date::fromDays(date.getDouble())});
}

bool isWritable(const fs::path &path) {
    return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

constexpr std::string_view kMaking = ".~new"; ///< before the number of the process

/// What processes left that were killed while they made an index.
void removeLeftovers(const fs::path &file) {
    const std::string start = file.filename().string() + std::string(kMaking);
    std::error_code none;
    for (const auto &entry : fs::directory_iterator(fs::absolute(file).parent_path(), none)) {
        const std::string name = entry.path().filename().string();
        int process = 0;
        if (!name.starts_with(start) ||
            std::from_chars(name.data() + start.size(), name.data() + name.size(), process).ptr !=
                name.data() + name.size())
            continue;
        const bool isAlive = ::kill(process, 0) == 0 || errno != ESRCH;
        if (process > 0 && !isAlive && index_file::look(entry.path()) == index_file::Look::ours)
            removeDatabase(entry.path());
    }
}

/// A file that is gone at the end, whatever happens, unless it was moved.
class Passing {
  public:
    explicit Passing(fs::path file) : m_file(std::move(file)) { removeDatabase(m_file); }
    ~Passing() { removeDatabase(m_file); }
    Passing(const Passing &) = delete;
    Passing &operator=(const Passing &) = delete;

  private:
    fs::path m_file;
};

} // namespace

SearchIndex::SearchIndex(SQLite::Database &project, IndexPlace place, FailureLog &log)
    : m_project(project), m_place(std::move(place)), m_log(log), m_file(m_place.beside) {}

void SearchIndex::discard(std::string why) {
    m_index.reset();
    const auto look = index_file::look(m_file);
    const bool isOurs = look == index_file::Look::ours || look == index_file::Look::older;
    if (isOurs && mayBeWritten(m_file))
        removeDatabase(m_file);
    else if (isOurs && m_file == m_place.beside)
        m_passesBeside = true;
    m_file = m_place.beside;
    m_why = std::move(why);
}

bool SearchIndex::mayBeWritten(const fs::path &file) const {
    const bool isForbidden = m_place.isEvidence && file == m_place.beside;
    return !isForbidden && isWritable(fs::absolute(file).parent_path());
}

/// Whatever somebody has put under the name of the index isn't lost.
void SearchIndex::setForeignAside() {
    for (int n = 1;; ++n) {
        fs::path aside = m_place.beside;
        aside += fmt::format(".aside{}", n);
        std::error_code failure;
        if (fs::symlink_status(aside, failure).type() != fs::file_type::not_found)
            continue;
        failure.clear();
        fs::rename(m_place.beside, aside, failure);
        if (failure)
            throw StorageFailure(
                fmt::format("\"{}\" is no search index and can't be moved away: {}",
                            textOf(m_place.beside), failure.message()));
        m_why = fmt::format("what lay there was none, and is \"{}\" now", textOf(aside));
        return;
    }
}

/// Nothing has changed since it was made.
bool SearchIndex::openWhole(const std::string &stamp, bool parts) {
    const bool isPassed = m_passesBeside && m_file == m_place.beside;
    if (!m_index && !isPassed && index_file::look(m_file) == index_file::Look::ours)
        m_index = index_file::open(m_file, false);
    return m_index && index_file::fact(*m_index, index_file::kStamp) == stamp &&
           (!parts || index_file::fact(*m_index, kParts) == "whole");
}

bool SearchIndex::openAsItStands(bool parts) {
    const auto isThere = unlessItIsDamaged([&] {
        static_cast<void>(openWhole({}, parts)); // whatever its stamp
        return m_index && index_file::fact(*m_index, kRows) == "whole" &&
               (!parts || index_file::fact(*m_index, kParts) == "whole");
    });
    return isThere.value_or(false);
}

bool SearchIndex::isUpToDate() {
    return openWhole(stampOf(m_place.project), false);
}

/// There is one that can be put right.
bool SearchIndex::openForUpdate() {
    m_index.reset();
    if (index_file::look(m_file) != index_file::Look::ours || !mayBeWritten(m_file) ||
        !isWritable(m_file))
        return false;
    m_index = index_file::open(m_file, true);
    if (!m_index)
        discard("it was damaged");
    return m_index != nullptr;
}

fs::path SearchIndex::freshPlace(IndexNews &news) {
    news.inScratch = !mayBeWritten(m_place.beside);
    if (news.inScratch)
        return m_place.scratch / m_place.beside.filename();
    switch (index_file::look(m_place.beside)) {
    case index_file::Look::foreign:
        setForeignAside();
        break;
    case index_file::Look::older:
        m_why = "it was of another version of this program";
        break;
    case index_file::Look::none:
    case index_file::Look::ours:
        break;
    }
    return m_place.beside;
}

IndexEnd SearchIndex::bringUpToDate(TaskMonitor &task, IndexNews &news, bool parts) {
    std::optional<IndexEnd> end = unlessItIsDamaged([&] { return update(task, news, parts); });
    if (!end) {
        news = {};
        end = onProject(m_project, [&] { return update(task, news, parts); });
    }
    news.file = m_file;
    news.inScratch = m_index && m_file != m_place.beside;
    return *end;
}

IndexEnd SearchIndex::update(TaskMonitor &task, IndexNews &news, bool parts) {
    const std::string stamp = stampOf(m_place.project);
    if (openWhole(stamp, parts))
        return IndexEnd::ready;
    task.describe({"SEARCH INDEX", "Indexing what is searched...", textOf(m_place.project), ""});
    const bool goesOn = openForUpdate();
    IndexEnd end = goesOn ? fill(*m_index, task, news, parts) : makeAnew(task, news, parts);
    // Rows that are dead are passed over in each search, and a file of them only grows.
    constexpr std::int64_t kFew = 10'000;
    if (end == IndexEnd::ready && goesOn) {
        const auto count = [this](const char *table) {
            return m_index->execAndGet(fmt::format("SELECT count(*) FROM {}", table)).getInt64();
        };
        if (const std::int64_t dead = count("Dead"); dead > kFew && dead > count("Rows") / 2) {
            discard("most of its rows have changed");
            end = makeAnew(task, news, parts);
        }
    }
    if (end == IndexEnd::ready)
        index_file::setFact(*m_index, index_file::kStamp, stamp);
    return end;
}

/// Under a name of its own, until it is whole: whoever searches meanwhile isn't disturbed, and a
/// start that was killed leaves no index that passes for one.
IndexEnd SearchIndex::makeAnew(TaskMonitor &task, IndexNews &news, bool parts) {
    m_index.reset();
    m_file = freshPlace(news);
    news.madeAnew = true;
    news.why = std::exchange(m_why, {});
    fs::path making = m_file;
    making += fmt::format("{}{}", kMaking, ::getpid());
    removeLeftovers(m_file);
    const Passing file(making);
    IndexEnd end = IndexEnd::cancelled;
    {
        const auto fresh = onFile(making, [&] { return index_file::make(making); });
        end = fill(*fresh, task, news, parts);
    }
    removeSideFiles(m_file); // a journal of the file before would be read into this one
    replaceDurably(making, m_file);
    m_index = index_file::open(m_file, true);
    if (!m_index)
        throw StorageFailure(fmt::format("the search index \"{}\" can't be read", textOf(m_file)));
    return end;
}

IndexEnd SearchIndex::fill(SQLite::Database &index, TaskMonitor &task, IndexNews &news,
                           bool parts) {
    return onRow(index, [&] {
        const std::string known = index_file::fact(index, kParts);
        const bool fillsParts = parts && known != "whole";
        SQLite::Transaction transaction(index, SQLite::TransactionBehavior::IMMEDIATE);
        index_file::setFact(index, index_file::kStamp, {});
        if (fillsParts) {
            index.exec("DROP TABLE IF EXISTS Parts; CREATE VIRTUAL TABLE Parts USING fts5(Page, "
                       "Headers, content='', columnsize=0, tokenize='trigram')");
            index_file::gatherMuch(index, "Parts");
        }
        IndexFill fill(m_project, index, parts || known == "whole", fillsParts);
        const bool whole = fill.run(task);
        if (fillsParts)
            index_file::setFact(index, kParts, whole ? "whole" : "");
        if (whole)
            index_file::setFact(index, kRows, "whole");
        transaction.commit();
        news.added += fill.added();
        news.changed += fill.changed();
        news.gone += fill.gone();
        return whole ? IndexEnd::ready : IndexEnd::cancelled;
    });
}

FoundIds SearchIndex::docsOf(const char *table, const std::string &match, StillWanted &wanted,
                             std::size_t most, std::int64_t last) {
    const auto dead = deadOf(*m_index);
    SQLite::Statement rows(
        *m_index, fmt::format("SELECT rowid FROM {0} WHERE {0} MATCH ? AND rowid <= ?", table));
    rows.bind(1, match);
    rows.bind(2, last);
    FoundIds ids;
    while ((most == 0 || ids.size() < most) && wanted.goesOn() && rows.executeStep()) {
        const std::int64_t doc = rows.getColumn(0).getInt64();
        if (dead.empty() || !dead.contains(doc))
            ids.push_back(rowOfDoc(doc));
    }
    if (!std::ranges::is_sorted(ids))
        std::ranges::sort(ids);
    ids.shrink_to_fit(); // a search of millions is kept as long as it is in force
    return ids;
}

std::optional<FoundIds> SearchIndex::rowsWith(const SearchClause &clause, SearchScope scope,
                                              StillWanted &wanted, std::size_t most) {
    if (!isTold(clause))
        return std::nullopt;
    FoundIds ids = docsOf("Brief", runMatchOf(clause), wanted, most);
    if (scope == SearchScope::values)
        return ids;
    FoundIds inTexts;
    if (clause.anyPart)
        inTexts = docsOf("Parts", runMatchOf(clause), wanted, most);
    else if (const std::string match = wordMatchOf(clause); !match.empty())
        inTexts = docsOf("Words", match, wanted, most);
    if (inTexts.empty())
        return ids;
    return eitherOf(ids, inTexts);
}

FoundIds SearchIndex::someWithAll(const std::vector<SearchClause> &clauses, SearchScope scope,
                                  StillWanted &wanted, std::size_t most) {
    constexpr std::int64_t kFirstRows = 200'000; // of the pass that made the index
    std::string inValues;
    std::string inTexts;
    bool areWords = scope == SearchScope::all;
    for (const SearchClause &clause : clauses) {
        if (!isTold(clause) || clause.isExcluded)
            return {};
        const std::string word = wordMatchOf(clause);
        areWords = areWords && !clause.anyPart && !word.empty();
        inValues += (inValues.empty() ? "" : " AND ") + runMatchOf(clause);
        inTexts += (inTexts.empty() ? "" : " AND ") + word;
    }
    FoundIds ids = docsOf("Brief", inValues, wanted, most, kFirstRows);
    if (areWords)
        ids = eitherOf(ids, docsOf("Words", inTexts, wanted, most, kFirstRows));
    ids.resize(std::min(ids.size(), most));
    return ids;
}

void SearchIndex::eachRow(StillWanted &wanted, const std::function<void(const RowFacts &)> &show) {
    SQLite::Statement rows(*m_index, std::string(kRowFacts) + " ORDER BY URL_ID");
    while (wanted.goesOn() && rows.executeStep())
        showFacts(rows, show);
}

void SearchIndex::eachRowOf(const FoundIds &ids, StillWanted &wanted,
                            const std::function<void(const RowFacts &)> &show) {
    // Going to a row costs as much as reading some tens of them in their order.
    constexpr std::size_t kMany = 20'000;
    if (ids.size() > kMany) {
        auto next = ids.begin(); // both go by ascending ids
        return eachRow(wanted, [&](const RowFacts &row) {
            while (next != ids.end() && *next < row.id)
                ++next;
            if (next != ids.end() && *next == row.id)
                show(row);
        });
    }
    SQLite::Statement rows(*m_index, std::string(kRowFacts) + " WHERE URL_ID = ?");
    for (const std::int32_t id : ids) {
        if (!wanted.goesOn())
            break;
        rows.bind(1, id);
        if (rows.executeStep())
            showFacts(rows, show);
        rows.reset();
    }
}

std::int64_t SearchIndex::outside() {
    const std::string count = index_file::fact(*m_index, "outside");
    std::int64_t number = 0;
    std::from_chars(count.data(), count.data() + count.size(), number);
    return number;
}

std::set<std::int32_t> SearchIndex::unread() {
    std::set<std::int32_t> ids;
    SQLite::Statement rows(*m_index, "SELECT URL_ID FROM Unread");
    while (rows.executeStep())
        ids.insert(rows.getColumn(0).getInt());
    return ids;
}

} // namespace nv
