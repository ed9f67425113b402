#include "views/limits/Places.h"

#include "address/RegisteredDomain.h"
#include "base/Text.h"
#include "db/hashes/FoundHashSets.h"
#include "db/sql/Damage.h"
#include "db/sql/Savepoint.h"
#include "readers/PathOrigin.h"
#include "readers/RecordKind.h"
#include "views/limits/EvidenceOfRow.h"
#include "views/limits/PlaceLevels.h"
#include "views/limits/TreesApart.h"
#include "views/rows/CellText.h"
#include "views/rows/DamagedList.h"
#include "views/rows/NarrowIndex.h"
#include "views/rows/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace nv {

namespace {

/// The texts of a column, each under a number of its own, with the rows that have it.
class CountedTexts {
  public:
    /// Rows that lie side by side mostly say the same.
    std::uint32_t take(std::string_view text) { return add(text, 1); }
    std::uint32_t add(std::string_view text, std::uint64_t rows) {
        if (m_texts.empty() || text != m_texts[m_last])
            m_last = numberOf(text);
        m_counts[m_last] += rows;
        return m_last;
    }
    std::size_t size() const { return m_texts.size(); }
    std::string_view text(std::size_t number) const { return m_texts[number]; }
    std::uint64_t count(std::size_t number) const { return m_counts[number]; }

  private:
    struct TextHash {
        using is_transparent = void; // NOLINT(readability-identifier-naming)
        std::size_t operator()(std::string_view text) const {
            return std::hash<std::string_view>()(text);
        }
    };

    std::uint32_t numberOf(std::string_view text) {
        if (const auto known = m_numbers.find(text); known != m_numbers.end())
            return known->second;
        const auto number = static_cast<std::uint32_t>(m_texts.size());
        // The map's texts stay where they are.
        m_texts.emplace_back(m_numbers.emplace(std::string(text), number).first->first);
        m_counts.push_back(0);
        return number;
    }

    std::unordered_map<std::string, std::uint32_t, TextHash, std::equal_to<>> m_numbers;
    std::vector<std::string_view> m_texts;
    std::vector<std::uint64_t> m_counts;
    std::uint32_t m_last = 0;
};

// Places among the columns, behind folder, person, browser and profile.
constexpr std::size_t kKind = std::tuple_size_v<OriginNames>;
constexpr std::size_t kTree = kKind + 1; ///< of the path
constexpr std::size_t kHost = kTree + 1;
constexpr std::size_t kColumns = kHost + 1;

/// The numbers of a row's folder, person, browser, profile, kind and tree.
using Origin = std::array<std::uint32_t, kTree + 1>;

std::string_view textIn(const SQLite::Column &column) {
    const char *bytes = column.getText(); // before the length, which it settles
    return {bytes, static_cast<std::size_t>(column.getBytes())};
}

std::string originColumns(SQLite::Database &project) {
    return fmt::format("{}, {}, CacheType, {}", evidenceExpression(project),
                       hasOriginColumns(project) ? "Person, Browser, Profile" : "NULL, NULL, NULL",
                       kRowPath);
}

void sortByRecords(std::vector<PlaceNode> &nodes) {
    std::ranges::sort(nodes, [](const PlaceNode &a, const PlaceNode &b) {
        return a.records != b.records ? a.records > b.records : a.term.value < b.term.value;
    });
    for (PlaceNode &node : nodes)
        sortByRecords(node.children);
}

/// Wherever they stand.
void sortGroups(std::vector<PlaceNode> &nodes) {
    if (!nodes.empty() && nodes.front().term.field == PlaceField::Group)
        std::ranges::stable_sort(nodes, {},
                                 [](const PlaceNode &node) { return groupOrder(node.term.value); });
    for (PlaceNode &node : nodes)
        sortGroups(node.children);
}

class PlaceCounts {
  public:
    /// Reads the rows that meet a condition, or all. False when it was cancelled.
    bool read(SQLite::Database &project, const std::string &condition, TaskMonitor &task) {
        Savepoint asOneMoment(
            project, Savepoint::For::reading); // what others write meanwhile counts for neither
        const bool hasHosts = condition.empty() && readHosts(project);
        SQLite::Statement rows(project,
                               fmt::format("SELECT {}, {} FROM URLs{}", originColumns(project),
                                           hasHosts ? "NULL" : "Host", condition));
        StatementWatch watch(project, task);
        Step step = watch.step(rows);
        for (; step == Step::Row; step = watch.step(rows))
            take(rows, hasHosts);
        rows.tryReset();
        asOneMoment.release();
        return step != Step::Cancelled;
    }

    void fill(Places &places) const {
        places.records = m_records;
        fillEvidence(places.evidence);
        fillKinds(places.kinds);
        fillHosts(places.hosts);
    }

  private:
    bool readHosts(SQLite::Database &project) {
        const bool isWhole =
            countNarrow(project, "Host", [this](std::string_view host, std::uint64_t rows) {
                m_texts[kHost].add(host, rows);
            });
        if (!isWhole)
            m_texts[kHost] = {};
        return isWhole;
    }

    void take(SQLite::Statement &row, bool hasHosts) {
        Origin origin{};
        for (std::size_t at = 0; at < kTree; ++at)
            origin.at(at) = m_texts.at(at).take(textIn(row.getColumn(static_cast<int>(at))));
        origin[kTree] = m_texts[kTree].take(m_treeOf(textIn(row.getColumn(kTree))));
        if (!hasHosts)
            m_texts[kHost].take(textIn(row.getColumn(static_cast<int>(kHost))));
        if (m_records++ == 0 || origin != m_lastOrigin) {
            m_lastOrigin = origin;
            m_last = &m_origins[origin];
        }
        ++*m_last;
    }

    using Counts = std::map<std::string, std::uint64_t, std::less<>>;

    std::string_view textOf(const Origin &origin, std::size_t at) const {
        return m_texts.at(at).text(origin.at(at));
    }

    OriginNames namesOf(const Origin &origin) const {
        OriginNames names;
        for (std::size_t at = 0; at < names.size(); ++at)
            names.at(at) = textOf(origin, at);
        return names;
    }

    /// From the root of the tree on.
    using Way = std::array<PlaceTerm, kKind + 1>;
    struct ByNames {
        bool operator()(const Way &one, const Way &other) const {
            return std::ranges::lexicographical_compare(one, other, isBefore);
        }
    };

    /// In the order of the tree, so that what belongs together lies side by side.
    void fillEvidence(std::vector<PlaceNode> &nodes) const {
        TreesApart apart;
        for (const auto &[origin, count] : m_origins)
            apart.add(namesOf(origin), textOf(origin, kTree));
        std::map<Way, std::uint64_t, ByNames> sorted;
        for (const auto &[origin, count] : m_origins) {
            Way way;
            std::ranges::move(apart.terms(namesOf(origin), textOf(origin, kTree)), way.begin());
            way[kKind] = {PlaceField::Group,
                          std::string(groupWord(groupOf(textOf(origin, kKind))))};
            sorted[std::move(way)] += count;
        }
        for (const auto &[way, count] : sorted) {
            std::vector<PlaceNode> *level = &nodes;
            for (const PlaceTerm &term : way) {
                PlaceNode &node = lastNode(*level, term);
                node.records += count;
                level = &node.children;
            }
        }
        sortGroups(nodes);
        liftUnknown(nodes);
    }

    void fillKinds(std::vector<PlaceNode> &nodes) const {
        std::map<std::string_view, Counts> groups;
        const CountedTexts &kinds = m_texts[kKind];
        for (std::size_t at = 0; at < kinds.size(); ++at)
            groups[groupWord(groupOf(kinds.text(at)))][typeWord(kinds.text(at))] += kinds.count(at);
        for (const auto &[group, counts] : groups)
            nodes.push_back(
                nodeOf({PlaceField::Group, std::string(group)}, PlaceField::Kind, counts));
        sortGroups(nodes);
    }

    static PlaceNode nodeOf(PlaceTerm term, PlaceField field, const Counts &counts) {
        PlaceNode node{.term = std::move(term)};
        node.children.reserve(counts.size());
        for (const auto &[text, count] : counts) {
            node.records += count;
            node.children.push_back({.term = {field, text}, .records = count});
        }
        return node;
    }

    /// Hosts that differ in the case of letters only are one.
    void fillHosts(std::vector<PlaceNode> &nodes) const {
        std::map<std::string, Counts> domains;
        const CountedTexts &hosts = m_texts[kHost];
        for (std::size_t at = 0; at < hosts.size(); ++at)
            domains[registeredDomain(hosts.text(at))][toLower(hosts.text(at))] += hosts.count(at);
        nodes.reserve(domains.size());
        for (const auto &[domain, counts] : domains) {
            nodes.push_back(nodeOf({PlaceField::Domain, domain}, PlaceField::Host, counts));
            if (counts.size() == 1 && counts.begin()->first == domain)
                nodes.back().children.clear();
        }
        sortByRecords(nodes);
    }

    std::array<CountedTexts, kColumns> m_texts;
    TreesOfPaths m_treeOf;
    std::map<Origin, std::uint64_t> m_origins;
    Origin m_lastOrigin{};
    std::uint64_t *m_last = nullptr;
    std::uint64_t m_records = 0;
};

std::vector<PlaceNode> hashSetPlaces(SQLite::Database &project) {
    std::vector<PlaceNode> nodes;
    for (const FoundHashSet &set : foundHashSets(project)) {
        const PlaceTerm meaning{PlaceField::HashMeaning, std::string(wordOf(set.meaning))};
        if (nodes.empty() || nodes.back().term != meaning)
            nodes.push_back({.term = meaning, .records = countInHashSets(project, set.meaning)});
        nodes.back().children.push_back(
            {.term = {PlaceField::HashSet, set.name}, .records = set.rows});
    }
    return nodes;
}

Walk countRows(SQLite::Database &project, TaskMonitor &task, Places &places) {
    bool whole = false;
    PlaceCounts counts;
    if (unlessDamaged([&] { whole = counts.read(project, "", task); })) {
        if (whole)
            counts.fill(places);
        return whole ? Walk::Finished : Walk::Cancelled;
    }
    // Of each row just what is counted is read; the condition holds for all that can be.
    const std::string origin = hasOriginColumns(project)
                                   ? " || ifnull(Person, '') || ifnull(Browser, '') || "
                                     "ifnull(Profile, '')"
                                   : "";
    const IdQuery countable{fmt::format("SELECT URL_ID FROM URLs WHERE '.' || ifnull({}, ''){} || "
                                        "ifnull(CacheType, '') || ifnull(Host, '') || ({}) <> ''",
                                        evidenceExpression(project), origin, kRowPath),
                            ""};
    SurvivingRows rows;
    const Walk walk = survivingRows(project, countable, task, rows);
    if (walk == Walk::Cancelled)
        return walk;
    places.unread = std::move(rows.lost);
    PlaceCounts survivors;
    whole = survivors.read(project, fmt::format(" WHERE URL_ID IN ({})", fmt::join(rows.ids, ",")),
                           task);
    if (whole)
        survivors.fill(places);
    return whole ? Walk::Finished : Walk::Cancelled;
}

} // namespace

std::vector<PlaceNode> tagPlaces(SQLite::Database &project, std::uint64_t records) {
    const NamedTags tags(project);
    const TagCounts counts = tags.counts();
    std::vector<PlaceNode> nodes;
    for (const NamedTag &tag : tags.list()) {
        const auto count = counts.find(tag.tagID);
        nodes.push_back(
            {.term = {PlaceField::Tag, tag.name},
             .records = count == counts.end() ? 0 : static_cast<std::uint64_t>(count->second)});
    }
    const std::uint64_t tagged = std::min(tags.rows(), records);
    nodes.push_back({.term = {PlaceField::Tag, ""}, .records = records - tagged});
    return nodes;
}

Walk loadPlaces(SQLite::Database &project, TaskMonitor &task, Places &places) {
    places = {};
    const Walk walk = countRows(project, task, places);
    if (walk == Walk::Finished && places.records > 0 &&
        !unlessDamaged([&] { places.tags = tagPlaces(project, places.records); }))
        places.tags.clear();
    if (walk == Walk::Finished && !unlessDamaged([&] { places.hashSets = hashSetPlaces(project); }))
        places.hashSets.clear();
    return walk;
}

} // namespace nv
