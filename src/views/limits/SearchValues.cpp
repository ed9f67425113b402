#include "views/limits/SearchValues.h"

#include "base/DisplayText.h"
#include "base/Text.h"
#include "db/hashes/FoundHashSets.h"
#include "db/marks/NamedTags.h"
#include "db/sql/Damage.h"
#include "readers/RecordKind.h"
#include "search/FoldedText.h"
#include "views/limits/PlaceLevels.h"
#include "views/rows/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <unordered_map>
#include <utility>

namespace nv {

namespace {

using Counts = std::unordered_map<std::string, std::int64_t>;

/// The values of a column; rows that lie side by side mostly say the same.
class CountedColumn {
  public:
    void take(std::string_view value) {
        if (m_last == nullptr || *m_name != value) {
            const auto at = m_counts.try_emplace(std::string(value), 0).first;
            m_name = &at->first;
            m_last = &at->second;
        }
        ++*m_last;
    }
    const Counts &counts() const { return m_counts; }

  private:
    Counts m_counts;
    const std::string *m_name = nullptr;
    std::int64_t *m_last = nullptr;
};

bool isMore(const std::pair<std::string, std::int64_t> &one,
            const std::pair<std::string, std::int64_t> &other) {
    return one.second != other.second ? one.second > other.second : one.first < other.first;
}

/// Without the rows that have none.
NamedCounts sorted(const Counts &counts) {
    NamedCounts named;
    for (const auto &[name, rows] : counts)
        if (!name.empty())
            named.emplace_back(name, rows);
    std::ranges::sort(named, isMore);
    return named;
}

std::string_view textIn(const SQLite::Column &column) {
    const char *bytes = column.getText(); // before the length, which it settles
    return {bytes, static_cast<std::size_t>(column.getBytes())};
}

NamedCounts kindsOf(const Counts &words) {
    Counts kinds;
    std::map<int, std::pair<std::string, std::int64_t>> groups;
    for (const auto &[word, rows] : words) {
        const RecordKind *kind = recordKind(word);
        kinds[std::string(kind ? kind->word : std::string_view(word))] += rows;
        const std::string_view group = groupWord(groupOf(word));
        auto &[name, ofGroup] = groups[groupOrder(group)];
        name = toLower(group);
        ofGroup += rows;
    }
    NamedCounts named;
    for (const auto &[place, group] : groups)
        named.push_back(group);
    const NamedCounts types = sorted(kinds);
    named.insert(named.end(), types.begin(), types.end());
    return named;
}

/// False after a cancel.
bool readRows(SQLite::Database &project, TaskMonitor &task, SearchValues &values) {
    CountedColumn hosts;
    CountedColumn browsers;
    CountedColumn kinds;
    SQLite::Statement rows(project, fmt::format("SELECT lower(Host), CacheType, {} FROM URLs",
                                                hasOriginColumns(project) ? "Browser" : "NULL"));
    StatementWatch watch(project, task);
    Step step = watch.step(rows);
    for (; step == Step::Row; step = watch.step(rows)) {
        hosts.take(textIn(rows.getColumn(0)));
        const std::string_view kind = textIn(rows.getColumn(1));
        kinds.take(kind);
        const std::string_view browser = textIn(rows.getColumn(2));
        const BrowserFamily *family = browser.empty() ? browserOf(kind) : nullptr;
        browsers.take(family ? family->name : browser);
    }
    values.hosts = sorted(hosts.counts());
    values.browsers = sorted(browsers.counts());
    values.kinds = kindsOf(kinds.counts());
    return step != Step::Cancelled;
}

/// How many letters of `asked` have to be changed until it is a part of `text`.
std::size_t changesTo(std::string_view asked, std::string_view text) {
    std::vector<std::size_t> above(text.size() + 1, 0); // it may begin anywhere
    std::vector<std::size_t> line(above.size());
    for (std::size_t row = 1; row <= asked.size(); ++row) {
        line[0] = row;
        for (std::size_t at = 1; at <= text.size(); ++at) {
            const std::size_t other = asked[row - 1] == text[at - 1] ? 0 : 1;
            line[at] = std::min({above[at - 1] + other, above[at] + 1, line[at - 1] + 1});
        }
        std::swap(above, line);
    }
    return *std::ranges::min_element(above); // and end anywhere
}

/// Among the kinds these stand in small letters.
bool isGroup(std::string_view kind) {
    constexpr std::array kGroups = {RecordGroup::cache, RecordGroup::history, RecordGroup::cookies,
                                    RecordGroup::bookmarks, RecordGroup::other};
    return std::ranges::any_of(
        kGroups, [kind](RecordGroup group) { return toLower(groupWord(group)) == kind; });
}

/// What is missing, and of what there are others.
struct Missing {
    std::string_view row; ///< "no row is of a host with {} in its name"
    std::string_view all; ///< when there are none at all
};
Missing missingOf(ClauseKind kind) {
    switch (kind) {
    case ClauseKind::host:
        return {"no row is of a host with \"{}\" in its name", "no row has a host"};
    case ClauseKind::browser:
        return {"no row is of a browser with \"{}\" in its name", "no row names a browser"};
    case ClauseKind::kind:
        return {"no row is of kind \"{}\"", "there are no rows"};
    case ClauseKind::tag:
        return {"no row has a tag \"{}\"", "the project has no tags"};
    default:
        return {"no row is in a hash set \"{}\"", "no row was found in a hash set"};
    }
}

std::string adviceOn(const SearchClause &clause, const NamedCounts &values) {
    const std::string asked = foldedCase(clause.text);
    const bool isThere = std::ranges::any_of(values, [&](const auto &value) {
        return value.second > 0 && takesValue(clause.kind, value.first, asked);
    });
    if (isThere)
        return {};
    const Missing missing = missingOf(clause.kind);
    const std::string text =
        replaceAll(missing.row, std::string_view("{}"), displayText(clause.text));
    return values.empty() ? fmt::format("{}: {}", text, missing.all)
                          : fmt::format("{}; there are: {}", text, listedValues(values, asked));
}

/// "site:harbour", but no address and no time.
bool looksLikeOperator(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon == 0 || colon + 1 == text.size())
        return false;
    const std::string_view word = text.substr(0, colon);
    return std::ranges::all_of(word,
                               [](char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; }) &&
           text[colon + 1] != '/';
}

std::string adviceOn(const std::string &text) {
    return fmt::format("\"{}\" is no operator, and \"{}\" was looked for as it stands; there are: "
                       "host:, browser:, kind:, tag:, hashset:, before:, after:",
                       displayText(text.substr(0, text.find(':') + 1)), displayText(text));
}

} // namespace

const NamedCounts *SearchValues::of(ClauseKind kind) const {
    switch (kind) {
    case ClauseKind::host:
        return &hosts;
    case ClauseKind::browser:
        return &browsers;
    case ClauseKind::kind:
        return &kinds;
    case ClauseKind::tag:
        return &tags;
    case ClauseKind::hashSet:
        return &hashSets;
    default:
        return nullptr;
    }
}

void readMarkValues(SQLite::Database &project, SearchValues &values) {
    values.tags.clear();
    values.hashSets.clear();
    const NamedTags tags(project);
    const TagCounts counts = tags.counts();
    for (const NamedTag &tag : tags.list()) {
        const auto count = counts.find(tag.tagID);
        values.tags.emplace_back(tag.name, count == counts.end() ? 0 : count->second);
    }
    for (const FoundHashSet &set : foundHashSets(project))
        values.hashSets.emplace_back(set.name, static_cast<std::int64_t>(set.rows));
    for (const HashMeaning meaning : {HashMeaning::notable, HashMeaning::known})
        if (const auto rows = countInHashSets(project, meaning); rows > 0)
            values.hashSets.emplace_back(wordOf(meaning), static_cast<std::int64_t>(rows));
}

Walk loadSearchValues(SQLite::Database &project, TaskMonitor &task, SearchValues &values) {
    values = {};
    bool whole = true;
    const bool reads = unlessDamaged([&] {
        whole = readRows(project, task, values);
        readMarkValues(project, values);
    });
    values.areAll = reads && whole;
    if (!values.areAll)
        values = {};
    return whole ? Walk::Finished : Walk::Cancelled;
}

bool takesValue(ClauseKind kind, std::string_view value, std::string_view asked) {
    switch (kind) {
    case ClauseKind::host:
        return isOfHost(value, asked);
    case ClauseKind::browser:
        return isOfBrowser(value, {}, asked);
    case ClauseKind::kind:
        return isGroup(value) ? value == asked || value == std::string(asked) + 's'
                              : isOfKind(value, asked);
    default:
        return asked == "*" || foldedCase(value) == asked;
    }
}

NamedCounts valuesWith(const NamedCounts &values, std::string_view part, std::size_t most) {
    const std::string folded = foldedCase(part);
    NamedCounts first;
    NamedCounts rest;
    for (const auto &value : values) {
        const std::size_t at = foldedCase(value.first).find(folded);
        if (at != std::string::npos)
            (at == 0 ? first : rest).push_back(value);
    }
    first.insert(first.end(), rest.begin(), rest.end());
    first.resize(std::min(first.size(), most));
    return first;
}

NamedCounts nearestValues(const NamedCounts &values, std::string_view asked, std::size_t most) {
    constexpr std::size_t kMostLetters = 100;
    const std::string folded = foldedCase(asked.substr(0, kMostLetters));
    const std::size_t far = (folded.size() + 1) / 2; // such have nothing to do with it
    std::vector<std::pair<std::size_t, std::size_t>> order;
    order.reserve(values.size());
    for (std::size_t at = 0; at < values.size(); ++at)
        order.emplace_back(std::min(far, changesTo(folded, foldedCase(values[at].first))), at);
    const std::size_t count = std::min(most, order.size());
    std::ranges::partial_sort(order, order.begin() + static_cast<std::ptrdiff_t>(count));
    NamedCounts nearest;
    for (std::size_t at = 0; at < count; ++at)
        nearest.push_back(values[order[at].second]);
    return nearest;
}

std::string listedValues(const NamedCounts &values, std::string_view asked) {
    constexpr std::size_t kMostTold = 10;
    std::string text;
    for (const auto &[name, rows] : nearestValues(values, asked, kMostTold))
        text += fmt::format("{}{} ({})", text.empty() ? "" : ", ", displayText(name), rows);
    if (values.size() > kMostTold)
        text += fmt::format(" and {} more", values.size() - kMostTold);
    return text;
}

bool canBeAdvised(const SearchQuery &query) {
    const SearchValues any;
    return std::ranges::any_of(query.clauses, [&](const SearchClause &clause) {
        return any.of(clause.kind) != nullptr ||
               (clause.kind == ClauseKind::text && looksLikeOperator(clause.text));
    });
}

std::vector<std::string> searchAdvice(const SearchQuery &query, const SearchValues &values) {
    std::vector<std::string> advice;
    if (!values.areAll)
        return advice;
    for (const SearchClause &clause : query.clauses) {
        std::string text;
        if (const NamedCounts *known = values.of(clause.kind))
            text = adviceOn(clause, *known);
        else if (clause.kind == ClauseKind::text && looksLikeOperator(clause.text))
            text = adviceOn(clause.text);
        if (!text.empty())
            advice.push_back(std::move(text));
    }
    return advice;
}

} // namespace nv
