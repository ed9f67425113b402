#include "search/Search.h"

#include "db/sql/SqliteErrors.h"
#include "readers/RecordKind.h"
#include "search/IndexMatch.h"
#include "search/MarkedRows.h"
#include "search/SearchedRowReader.h"

#include <algorithm>
#include <map>
#include <optional>
#include <unordered_map>

namespace nv {

namespace {

bool isOfText(const SearchClause &clause) {
    return clause.kind == ClauseKind::text || clause.kind == ClauseKind::expression;
}

RowTexts textsOf(const RowMatch &match) {
    return match.scope() == SearchScope::all ? RowTexts::all : RowTexts::values;
}

/// Compares what the index knows of rows with host:, browser:, kind:, before: and after:. Names
/// repeat, so that each is compared once.
class FactMatch {
  public:
    explicit FactMatch(const SearchQuery &query) {
        for (const SearchClause &clause : query.clauses)
            if (!isOfText(clause) && !isOfMark(clause.kind))
                m_asked.push_back({&clause, foldedCase(clause.text), {}});
    }
    bool empty() const { return m_asked.empty(); }
    bool meets(const RowFacts &row) {
        return std::ranges::all_of(
            m_asked, [&](Asked &asked) { return meets(asked, row) != asked.clause->isExcluded; });
    }

  private:
    struct Asked {
        const SearchClause *clause = nullptr;
        std::string folded;
        std::unordered_map<std::string, bool> known;
    };

    static bool meets(Asked &asked, const RowFacts &row) {
        const ClauseKind kind = asked.clause->kind;
        const bool isTimed = kind == ClauseKind::before || kind == ClauseKind::after;
        return isTimed ? liesInTime(row.actionDateUTC, *asked.clause) : isNamed(asked, row);
    }
    static bool isNamed(Asked &asked, const RowFacts &row) {
        const ClauseKind kind = asked.clause->kind;
        std::string key(kind == ClauseKind::host ? row.host : row.cacheType);
        if (kind == ClauseKind::browser)
            key.append(1, '\n').append(row.browser);
        const auto [at, isNew] = asked.known.try_emplace(std::move(key), false);
        if (!isNew)
            return at->second;
        if (kind == ClauseKind::host)
            at->second = isOfHost(row.host, asked.folded);
        else if (kind == ClauseKind::browser)
            at->second = isOfBrowser(row.browser, row.cacheType, asked.folded);
        else
            at->second = isOfKind(row.cacheType, asked.folded);
        return at->second;
    }

    std::vector<Asked> m_asked;
};

/// What of a search the index has told.
struct Told {
    std::optional<FoundIds> ids;   ///< nothing: no condition has told of rows yet, so it may be all
    std::vector<std::size_t> left; ///< conditions that it can't tell of
};

Told askIndex(SearchIndex &index, const RowMatch &match, StillWanted &wanted, std::size_t most) {
    const SearchQuery &query = match.query();
    Told told;
    FoundIds taken;
    bool areAllThere = true; // a table that somebody else has made may mark rows that aren't there
    for (std::size_t at = 0; at < query.clauses.size(); ++at) {
        const SearchClause &clause = query.clauses[at];
        const bool isMark = isOfMark(clause.kind);
        if (!isOfText(clause) && !isMark)
            continue;
        auto ids = isMark ? std::optional(match.marked(at))
                          : index.rowsWith(clause, match.scope(), wanted,
                                           query.clauses.size() == 1 ? most : 0);
        if (wanted.isOver())
            return told;
        areAllThere = areAllThere && !isMark;
        if (!ids)
            told.left.push_back(at);
        else if (clause.isExcluded)
            taken = eitherOf(taken, *ids);
        else
            told.ids = told.ids ? bothOf(*told.ids, *ids) : std::move(*ids);
    }
    FactMatch facts(query);
    if (!told.ids || !facts.empty() || !areAllThere) {
        FoundIds ids;
        std::size_t at = 0; // both go by ascending ids
        index.eachRow(wanted, [&](const RowFacts &row) {
            while (told.ids && at < told.ids->size() && told.ids->at(at) < row.id)
                ++at;
            const bool isIn = !told.ids || (at < told.ids->size() && told.ids->at(at) == row.id);
            if (isIn && facts.meets(row))
                ids.push_back(row.id);
        });
        told.ids = std::move(ids);
    }
    if (!taken.empty())
        told.ids = without(*told.ids, taken);
    return told;
}

/// Those of `from` that meet conditions that only their texts tell of.
void lookThrough(SQLite::Database &project, RowMatch &match, const Told &told, TaskMonitor &task,
                 std::size_t most, SearchFound &found) {
    SearchedRowReader reader(project, textsOf(match));
    const std::vector<SearchClause> &clauses = match.query().clauses;
    std::size_t done = 0;
    for (const std::int32_t id : *told.ids) {
        const double fraction = static_cast<double>(done++) / static_cast<double>(told.ids->size());
        found.isCancelled = !task.advance(fraction);
        if (found.isCancelled || (most > 0 && found.ids.size() >= most))
            break;
        if (!reader.goTo(id))
            continue;
        const bool meets = std::ranges::all_of(told.left, [&](std::size_t clause) {
            return match.meetsClause(clause, reader.row()) != clauses.at(clause).isExcluded;
        });
        if (meets)
            found.ids.push_back(id);
    }
    found.unread.insert(reader.unread().begin(), reader.unread().end());
}

using Counts = std::map<std::string, std::int64_t, std::less<>>;

NamedCounts sorted(const Counts &counts) {
    NamedCounts named(counts.begin(), counts.end());
    std::ranges::stable_sort(
        named, [](const auto &one, const auto &other) { return one.second > other.second; });
    return named;
}

/// Counts one for a name; most rows are of names that were there before.
void count(Counts &counts, std::string_view name) {
    const auto at = counts.find(name);
    if (at != counts.end())
        ++at->second;
    else
        counts.emplace(name, 1);
}

/// The same by the kinds' own words: projects hold some of them in capitals too.
Counts byKinds(const Counts &words) {
    Counts kinds;
    for (const auto &[word, rows] : words) {
        const RecordKind *kind = recordKind(word);
        kinds[std::string(kind ? kind->word : std::string_view(word))] += rows;
    }
    return kinds;
}

bool isContinued(char byte) {
    constexpr unsigned kContinues = 0x80;
    constexpr unsigned kTop = 0xC0;
    return (static_cast<unsigned char>(byte) & kTop) == kContinues;
}

SearchFound findOnce(SQLite::Database &project, SearchIndex &index, RowMatch &match,
                     TaskMonitor &task, std::size_t most) {
    constexpr double kIndexed = 0.5; // of the whole
    IndexNews news;
    SubTask indexing(task, 0, kIndexed);
    SearchFound found;
    found.isCancelled =
        index.bringUpToDate(indexing, news, needsParts(match)) == IndexEnd::cancelled;
    if (!found.isCancelled) {
        SubTask looking(task, kIndexed, 1);
        found = findIndexed(project, index, match, looking, most);
        StillWanted wanted(looking);
        found.counts = countFound(index, found.ids, wanted);
        found.isCancelled = found.isCancelled || wanted.isOver();
    }
    found.index = std::move(news);
    return found;
}

} // namespace

bool needsParts(const RowMatch &match) {
    return match.scope() == SearchScope::all &&
           std::ranges::any_of(match.query().clauses, [](const SearchClause &clause) {
               return clause.anyPart && isTold(clause);
           });
}

SearchFound findIndexed(SQLite::Database &project, SearchIndex &index, RowMatch &match,
                        TaskMonitor &task, std::size_t most) {
    SearchFound found;
    takeMarks(project, match);
    found.unread = index.unread();
    found.outside = index.outside();
    StillWanted wanted(task);
    Told told = askIndex(index, match, wanted, most);
    found.isCancelled = wanted.isOver();
    if (found.isCancelled)
        return found;
    if (told.left.empty())
        found.ids = std::move(*told.ids);
    else
        lookThrough(project, match, told, task, most, found);
    if (most > 0 && found.ids.size() > most)
        found.ids.resize(most);
    return found;
}

FoundCounts countFound(SearchIndex &index, const FoundIds &ids, StillWanted &wanted) {
    Counts kinds;
    Counts hosts;
    index.eachRowOf(ids, wanted, [&](const RowFacts &row) {
        count(kinds, row.cacheType);
        count(hosts, row.host);
    });
    return {sorted(byKinds(kinds)), sorted(hosts)};
}

SearchFound findRows(SQLite::Database &project, SearchIndex &index, RowMatch &match,
                     TaskMonitor &task, std::size_t most) {
    const auto found =
        index.unlessItIsDamaged([&] { return findOnce(project, index, match, task, most); });
    return found ? *found
                 : onProject(project, [&] { return findOnce(project, index, match, task, most); });
}

SearchFound scanRows(SQLite::Database &project, RowMatch &match, TaskMonitor &task,
                     std::size_t most) {
    SearchFound found;
    takeMarks(project, match);
    SearchedRowReader reader(project, textsOf(match));
    while ((most == 0 || found.ids.size() < most) && reader.next()) {
        if (match.meets(reader.row()))
            found.ids.push_back(reader.row().id);
        found.isCancelled = !task.advance(reader.fraction());
        if (found.isCancelled)
            break;
    }
    found.unread = reader.unread();
    found.outside = reader.outside();
    return found;
}

Snippet snippetOf(std::string_view text, const TextSpan &mark) {
    constexpr std::size_t kBefore = 40; // bytes
    constexpr std::size_t kAfter = 80;
    constexpr std::size_t kMostMarked = 200;
    constexpr std::string_view kCut = "…";
    const std::size_t marked = std::min(mark.length, kMostMarked);
    std::size_t from = mark.at > kBefore ? mark.at - kBefore : 0;
    std::size_t end = std::min(text.size(), mark.at + marked + kAfter);
    while (from > 0 && from < mark.at && isContinued(text[from]))
        ++from;
    while (end < text.size() && isContinued(text[end]))
        ++end;
    Snippet snippet;
    if (from > 0)
        snippet.text = kCut;
    snippet.mark = {snippet.text.size() + mark.at - from, std::min(marked, end - mark.at)};
    snippet.text += text.substr(from, end - from);
    if (end < text.size())
        snippet.text += kCut;
    return snippet;
}

} // namespace nv
