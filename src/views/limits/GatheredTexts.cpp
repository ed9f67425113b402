#include "views/limits/GatheredTexts.h"

#include "base/Text.h"
#include "db/hashes/FoundHashSets.h"
#include "db/hashes/HashLookup.h"
#include "db/marks/NamedTags.h"
#include "views/rows/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <numeric>

namespace nv {

namespace {

/// A row of the statement: id, name, what the cell says of it besides.
struct Part {
    std::int32_t id = 0;
    bool isNotable = false;
    std::string name;
};

std::string tagRows() {
    return fmt::format("SELECT r.URL_ID, n.Name, '' FROM {} r JOIN {} n ON n.NamedTag_ID = "
                       "r.NamedTag_ID WHERE typeof(r.URL_ID) = 'integer' AND r.URL_ID BETWEEN 1 "
                       "AND 2147483647 GROUP BY r.URL_ID, n.NamedTag_ID ORDER BY r.URL_ID, "
                       "n.Position, n.NamedTag_ID",
                       kRecordTagsTable, kNamedTagsTable);
}

std::string setRows() {
    return fmt::format("SELECT DISTINCT URL_ID, Value, Name FROM RecordFacts WHERE {} ORDER BY "
                       "URL_ID, Name DESC, Value",
                       hashSetFacts());
}

/// One cell.
class CellParts {
  public:
    explicit CellParts(UrlColumn column) : m_isOfTags(column == UrlColumn::TagNames) {}

    std::int32_t id = 0;
    void add(const Part &part) {
        if (m_isOfTags)
            m_text.append(m_text.empty() ? "" : ", ").append(part.name);
        else
            m_sets.push_back(
                {part.isNotable ? HashMeaning::notable : HashMeaning::known, part.name, 0});
    }
    void giveTo(GatheredTexts &texts) {
        if (id > 0)
            texts.add(id, m_isOfTags ? m_text : hashSetsText(m_sets));
        m_text.clear();
        m_sets.clear();
    }

  private:
    bool m_isOfTags;
    std::string m_text;
    std::vector<FoundHashSet> m_sets;
};

bool areThere(SQLite::Database &project, UrlColumn column) {
    return column == UrlColumn::TagNames
               ? project.tableExists(kNamedTagsTable) && project.tableExists(kRecordTagsTable)
               : hasFacts(project);
}

} // namespace

void GatheredTexts::add(std::int32_t id, std::string_view text) {
    const auto [at, isNew] =
        m_places.try_emplace(std::string(text), static_cast<std::uint32_t>(m_texts.size()));
    if (isNew)
        m_texts.emplace_back(text);
    m_rows.emplace_back(id, at->second);
}

const std::pair<std::int32_t, std::uint32_t> *GatheredTexts::find(std::int32_t id) const {
    const auto at =
        std::ranges::lower_bound(m_rows, id, {}, &std::pair<std::int32_t, std::uint32_t>::first);
    return at != m_rows.end() && at->first == id ? &*at : nullptr;
}

std::string_view GatheredTexts::of(std::int32_t id) const {
    const auto *row = find(id);
    return row ? std::string_view(m_texts.at(row->second)) : std::string_view();
}

void GatheredTexts::rank() {
    std::vector<std::uint32_t> order(m_texts.size());
    std::iota(order.begin(), order.end(), 0U);
    std::ranges::sort(order, [this](std::uint32_t one, std::uint32_t other) {
        const std::string low = toLower(m_texts[one]);
        const std::string high = toLower(m_texts[other]);
        return low != high ? low < high : m_texts[one] < m_texts[other];
    });
    m_ranks.assign(m_texts.size(), 0);
    for (std::size_t at = 0; at < order.size(); ++at)
        m_ranks[order[at]] = static_cast<std::uint32_t>(at) + 1;
}

std::uint32_t GatheredTexts::rankOf(std::int32_t id) const {
    const auto *row = find(id);
    return row ? m_ranks.at(row->second) : 0;
}

Walk gatherTexts(SQLite::Database &project, UrlColumn column, TaskMonitor &task,
                 GatheredTexts &texts) {
    if (!areThere(project, column))
        return Walk::Finished;
    SQLite::Statement rows(project, column == UrlColumn::TagNames ? tagRows() : setRows());
    StatementWatch watch(project, task);
    CellParts cell(column);
    Step step = watch.step(rows);
    for (; step == Step::Row; step = watch.step(rows)) {
        const std::int32_t id = rows.getColumn(0).getInt();
        if (id != cell.id)
            cell.giveTo(texts);
        cell.id = id;
        cell.add({id, rows.getColumn(2).getString() == factFor(HashMeaning::notable),
                  decodeText(rows.getColumn(1).getString())});
    }
    cell.giveTo(texts);
    return step == Step::Cancelled || watch.cancelled() ? Walk::Cancelled : Walk::Finished;
}

Walk sortByGathered(SQLite::Database &project, const ColumnSort &sort, TaskMonitor &task,
                    RowIds &ids) {
    GatheredTexts texts;
    if (gatherTexts(project, sort.column, task, texts) == Walk::Cancelled)
        return Walk::Cancelled;
    texts.rank();
    std::vector<std::pair<std::uint32_t, std::int32_t>> ranked;
    ranked.reserve(ids.size());
    for (const std::int32_t id : ids)
        ranked.emplace_back(texts.rankOf(id), id);
    const bool isUp = sort.direction == SortDirection::Ascending;
    std::ranges::stable_sort(ranked, [isUp](const auto &one, const auto &other) {
        if (one.first == 0 || other.first == 0)
            return one.first != 0 && other.first == 0;
        return isUp ? one.first < other.first : one.first > other.first;
    });
    std::ranges::transform(ranked, ids.begin(), &std::pair<std::uint32_t, std::int32_t>::second);
    return Walk::Finished;
}

} // namespace nv
