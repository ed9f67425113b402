#include "views/limits/TagLimit.h"

#include "base/DisplayText.h"

#include <SQLiteCpp/Database.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace nv {

namespace {

/// Rows of tables that somebody else has made may hold anything.
constexpr std::string_view kListed =
    "typeof(URL_ID) = 'integer' AND URL_ID BETWEEN 1 AND 2147483647";

std::string rowsWith(const TagLimit &limit) {
    return fmt::format("SELECT URL_ID FROM RecordTags WHERE NamedTag_ID IN ({}) AND {}",
                       fmt::join(limit.tagIDs, ", "), kListed);
}

std::string rowsWithAny() {
    return fmt::format("SELECT URL_ID FROM RecordTags WHERE {}", kListed);
}

bool hasTags(SQLite::Database &project) {
    return project.tableExists(kRecordTagsTable);
}

/// Of a statement over RecordTags, ascending.
Walk rowsOf(SQLite::Database &project, const std::string &statement, TaskMonitor &task,
            RowIds &ids) {
    if (!hasTags(project))
        return Walk::Finished;
    const Walk walk = collectIds(project, {statement, ""}, task, ids);
    std::ranges::sort(ids);
    return walk;
}

bool hasTag(const TagLimit &limit, std::int64_t tagID) {
    return std::ranges::find(limit.tagIDs, tagID) != limit.tagIDs.end();
}

} // namespace

std::string conditionOf(const TagLimit &limit, SQLite::Database &project) {
    if (!hasTags(project))
        return limit.untagged ? "1" : "0";
    const std::string with = fmt::format("URL_ID IN ({})", rowsWith(limit));
    return limit.untagged ? fmt::format("({} OR URL_ID NOT IN ({}))", with, rowsWithAny()) : with;
}

Walk keepTagged(SQLite::Database &project, const TagLimit &limit, TaskMonitor &task, RowIds &ids) {
    RowIds with;
    RowIds any;
    if (rowsOf(project, rowsWith(limit), task, with) == Walk::Cancelled)
        return Walk::Cancelled;
    if (limit.untagged && rowsOf(project, rowsWithAny(), task, any) == Walk::Cancelled)
        return Walk::Cancelled;
    std::erase_if(ids, [&](std::int32_t id) {
        const bool isIn = std::ranges::binary_search(with, id) ||
                          (limit.untagged && !std::ranges::binary_search(any, id));
        return !isIn;
    });
    return Walk::Finished;
}

bool isOfTags(const PlaceLimit &place) {
    return !place.terms.empty() && place.terms.front().field == PlaceField::Tag;
}

TagLimit tagLimitOf(const std::vector<NamedTag> &tags, const std::string &name) {
    TagLimit limit{{}, name.empty()};
    for (const NamedTag &tag : tags)
        if (!name.empty() && tag.name == name)
            limit.tagIDs.push_back(tag.tagID);
    return limit;
}

bool hasAll(const TagLimit &limit, const TagLimit &part) {
    return !part.isEmpty() && (limit.untagged || !part.untagged) &&
           std::ranges::all_of(part.tagIDs, [&](std::int64_t id) { return hasTag(limit, id); });
}

void flipAll(TagLimit &limit, const TagLimit &part) {
    const bool goes = hasAll(limit, part);
    limit.untagged = part.untagged ? !goes : limit.untagged;
    for (const std::int64_t tagID : part.tagIDs) {
        std::erase(limit.tagIDs, tagID);
        if (!goes)
            limit.tagIDs.push_back(tagID);
    }
}

std::string tagLimitText(const std::vector<NamedTag> &tags, const TagLimit &limit) {
    std::vector<std::string> names;
    for (const std::int64_t tagID : limit.tagIDs) {
        const auto tag = std::ranges::find(tags, tagID, &NamedTag::tagID);
        names.push_back(tag == tags.end() ? "(deleted)" : displayText(tag->name));
    }
    if (limit.untagged)
        names.push_back(placeName({PlaceField::Tag, ""}));
    return fmt::format("{}", fmt::join(names, " or "));
}

} // namespace nv
