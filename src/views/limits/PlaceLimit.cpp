#include "views/limits/PlaceLimit.h"

#include "base/DisplayText.h"
#include "db/hashes/FoundHashSets.h"
#include "db/hashes/HashLookup.h"
#include "db/marks/NamedTags.h"
#include "search/FoundIds.h"
#include "views/limits/EvidenceOfRow.h"
#include "views/limits/PlaceFunctions.h"
#include "views/limits/TagLimit.h"
#include "views/rows/NarrowIndex.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace nv {

namespace {

using nlohmann::json;

std::string_view nameOfNone(PlaceField field) {
    switch (field) {
    case PlaceField::Evidence:
        return "(no folder)";
    case PlaceField::Person:
        return "(no person)";
    case PlaceField::Browser:
        return "(no browser)";
    case PlaceField::Profile:
        return "(no profile)";
    case PlaceField::Domain:
    case PlaceField::Host:
        return "(no host)";
    case PlaceField::Tag:
        return "(untagged)";
    default:
        return "(no kind)";
    }
}

std::string withTree(std::string name, const PlaceTerm &term) {
    if (term.tree)
        name += fmt::format(" ({})", displayText(term.treeLabel));
    return name;
}

/// The statement's one parameter is a list in JSON, since values of evidence are no part of its
/// text.
class PlaceCondition {
  public:
    explicit PlaceCondition(SQLite::Database &project)
        : m_project(project), m_evidence(evidenceExpression(project)),
          m_hasOrigin(hasOriginColumns(project)), m_hasFacts(hasFacts(project)) {}

    std::string of(const PlaceChoice &choice) {
        std::vector<std::string> parts;
        if (!choice.only.empty())
            parts.push_back(fmt::format("({})", fmt::join(conditionsOf(choice.only), " OR ")));
        for (const std::string &condition : conditionsOf(choice.without))
            parts.push_back("NOT " + condition);
        return fmt::format("{}", fmt::join(parts, " AND "));
    }

    std::string bound() const {
        return m_values.dump(-1, ' ', false, json::error_handler_t::replace);
    }

  private:
    std::vector<std::string> conditionsOf(const std::vector<PlaceLimit> &limits) {
        std::vector<std::string> conditions;
        conditions.reserve(limits.size());
        for (const PlaceLimit &limit : limits) {
            std::vector<std::string> terms;
            terms.reserve(limit.terms.size() + 1);
            for (const PlaceTerm &term : limit.terms)
                terms.push_back(conditionOf(term));
            if (terms.empty())
                terms.emplace_back("1");
            conditions.push_back(fmt::format("({})", fmt::join(terms, " AND ")));
        }
        return conditions;
    }

    std::string conditionOf(const PlaceTerm &term) {
        const std::string named = conditionOfName(term);
        return term.tree
                   ? fmt::format("({} AND {})", named,
                                 isOne(fmt::format("{}({})", kTreeFunction, kRowPath), *term.tree))
                   : named;
    }

    std::string conditionOfName(const PlaceTerm &term) {
        const std::string &value = term.value;
        switch (term.field) {
        case PlaceField::Evidence:
            return isOne(m_evidence, value);
        case PlaceField::Person:
            return isOne(m_hasOrigin ? "Person" : "''", value);
        case PlaceField::Browser:
            return isOne(m_hasOrigin ? "Browser" : "''", value);
        case PlaceField::Profile:
            return isOne(m_hasOrigin ? "Profile" : "''", value);
        case PlaceField::Group:
            return isOne(fmt::format("{}(CacheType)", kGroupFunction), value);
        case PlaceField::Kind:
            return isOne(fmt::format("{}(CacheType)", kKindFunction), value);
        case PlaceField::Domain:
            return isOne(fmt::format("{}(Host)", kDomainFunction), value);
        case PlaceField::HashMeaning:
            return isInSet(value == wordOf(HashMeaning::notable)
                               ? rowsInHashSets(HashMeaning::notable)
                               : rowsInHashSets(HashMeaning::known));
        case PlaceField::HashSet:
            return isInSet(fmt::format("SELECT URL_ID FROM RecordFacts WHERE {} AND {}",
                                       hashSetFacts(), isOne("Value", value)));
        case PlaceField::Tag:
            return nv::conditionOf(tagLimitOf(NamedTags(m_project).list(), value), m_project);
        default:
            return isOne("Host", value) + " COLLATE NOCASE";
        }
    }

    std::string isOne(std::string_view column, const std::string &value) {
        m_values.push_back(value);
        return fmt::format("ifnull({}, '') = json_extract(?1, '$[{}]')", column,
                           m_values.size() - 1);
    }

    std::string isInSet(const std::string &rows) const {
        return m_hasFacts ? fmt::format("URL_ID IN ({})", rows) : "0";
    }

    SQLite::Database &m_project;
    std::string m_evidence;
    bool m_hasOrigin;
    bool m_hasFacts;
    json m_values = json::array();
};

std::string_view columnOf(PlaceField field) {
    switch (field) {
    case PlaceField::Browser:
        return "Browser";
    case PlaceField::Group:
    case PlaceField::Kind:
        return "CacheType";
    case PlaceField::Domain:
    case PlaceField::Host:
        return "Host";
    default:
        return "(of no index)";
    }
}

Columns columnsOf(const PlaceChoice &choice) {
    Columns columns;
    for (const auto *limits : {&choice.only, &choice.without})
        for (const PlaceLimit &limit : *limits)
            for (const PlaceTerm &term : limit.terms)
                if (const std::string_view column = columnOf(term.field);
                    std::ranges::find(columns, column) == columns.end())
                    columns.push_back(column);
    return columns;
}

} // namespace

std::string placeName(const PlaceTerm &term) {
    return withTree(
        term.value.empty() ? std::string(nameOfNone(term.field)) : displayText(term.value), term);
}

std::string placeValue(const PlaceTerm &term) {
    return withTree(term.value, term);
}

std::string placeText(const PlaceLimit &limit) {
    std::vector<std::string> names;
    names.reserve(limit.terms.size());
    for (const PlaceTerm &term : limit.terms)
        names.push_back(placeName(term));
    return fmt::format("{}", fmt::join(names, " / "));
}

std::string placeText(const PlaceChoice &choice) {
    const auto joined = [](const std::vector<PlaceLimit> &limits) {
        std::vector<std::string> texts;
        texts.reserve(limits.size());
        for (const PlaceLimit &limit : limits)
            texts.push_back(placeText(limit));
        return fmt::format("{}", fmt::join(texts, " or "));
    };
    std::string text = joined(choice.only);
    if (!choice.without.empty())
        text += (text.empty() ? "Without " : ", without ") + joined(choice.without);
    return text;
}

bool hasOriginColumns(SQLite::Database &project) {
    return project
               .execAndGet("SELECT count(*) FROM pragma_table_info('URLs') WHERE name IN "
                           "('Browser', 'Profile', 'Person')")
               .getInt() == 3;
}

IdQuery placeQuery(SQLite::Database &project, const PlaceChoice &choice) {
    needPlaceFunctions(project);
    PlaceCondition condition(project);
    const std::string text = condition.of(choice);
    return {"SELECT URL_ID FROM URLs WHERE " + text, condition.bound()};
}

Walk placeRows(SQLite::Database &project, const PlaceChoice &choice, TaskMonitor &task, RowIds &ids,
               UnreadRows &unread) {
    FoundRows found;
    const Walk walk = findRows(project, placeQuery(project, choice), RecordFilters(), task, found);
    ids = std::move(found.ids);
    unread = std::move(found.lost);
    std::erase_if(ids, [&unread](std::int32_t id) { return unread.contains(id); });
    std::ranges::sort(ids);
    return walk;
}

Walk keepIn(SQLite::Database &project, const PlaceChoice &choice, TaskMonitor &task, RowIds &ids) {
    if (choice.isEmpty())
        return Walk::Finished;
    needPlaceFunctions(project);
    PlaceCondition condition(project);
    const std::string text = condition.of(choice);
    RowIds found;
    if (findNarrow(project, columnsOf(choice), {text, condition.bound()}, task, found) ==
        Walk::Cancelled)
        return Walk::Cancelled;
    keepOnly(sortedIds(found), ids);
    return Walk::Finished;
}

} // namespace nv
