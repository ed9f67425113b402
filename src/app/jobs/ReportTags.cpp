#include "app/jobs/ReportTags.h"

#include "base/Text.h"
#include "db/marks/RecordTags.h"
#include "db/project/ProjectFields.h"
#include "db/sql/ReadOnlyConnection.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace nv {

namespace {

/// Names, a line each: no name of a tag has a line end.
constexpr const char *kTagsName = "ReportTags";

} // namespace

std::vector<ReportTag> reportTags(Program &program, std::span<const std::int32_t> ids) {
    SQLite::Database &project = program.state.projectDB.connection();
    std::vector<NamedTag> known = NamedTags(project).list();
    std::vector<ReportTag> tags;
    if (known.empty())
        return tags;
    RowIds sorted(ids.begin(), ids.end());
    std::ranges::sort(sorted);
    tags.reserve(known.size());
    for (NamedTag &tag : known) {
        ReportTag &one = tags.emplace_back();
        std::ranges::set_intersection(sorted, RecordTags(project).rowsOf(tag.tagID),
                                      std::back_inserter(one.rows));
        one.tag = std::move(tag);
    }
    return tags;
}

RowIds rowsWithOneOf(const std::vector<ReportTag> &tags, const std::vector<std::string> &names) {
    RowIds rows;
    for (const ReportTag &each : tags) {
        if (std::ranges::find(names, each.tag.name) == names.end())
            continue;
        RowIds both;
        both.reserve(rows.size() + each.rows.size());
        std::ranges::set_union(rows, each.rows, std::back_inserter(both));
        rows = std::move(both);
    }
    return rows;
}

std::string tagsText(const std::vector<std::string> &names) {
    std::string text = names.size() == 1 ? "the tag " : "one of the tags ";
    for (std::size_t at = 0; at < names.size(); ++at)
        text += fmt::format("{}\"{}\"", at == 0 ? "" : ", ", names[at]);
    return text;
}

std::vector<std::string> keptReportTags(Program &program) {
    SQLite::Database &project = program.state.projectDB.connection();
    const std::string kept = ProjectFields(project, program.log).getDefault(kTagsName);
    std::vector<std::string> names;
    const NamedTags tags(project);
    for (const std::string_view line : split(kept, '\n'))
        if (const auto tag = line.empty() ? std::nullopt : tags.find(line))
            names.push_back(tag->name);
    return names;
}

bool keepReportTags(Program &program, const std::vector<std::string> &names) {
    SQLite::Database &project = program.state.projectDB.connection();
    if (isReadOnly(project))
        return true;
    std::string lines;
    for (const std::string &name : names)
        lines += name + '\n';
    return ProjectFields(project, program.log).saveDefaultSetting(kTagsName, lines);
}

} // namespace nv
