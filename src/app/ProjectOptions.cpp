#include "app/ProjectOptions.h"

#include "app/Trail.h"
#include "base/Files.h"
#include "db/ProjectFields.h"
#include "time/ExactZone.h"

#include <fmt/format.h>

#include <array>

namespace nv {

namespace {

constexpr auto kValues = std::to_array<ProjectValueFacts>({
    {"RootPath", "The base folder of the evidence", true},
    {"LastTimeZoneID", "The zone in which dates are shown", true},
    {"TimeZoneID", "The zone last chosen in Options", false},
    {"TimeZoneName", "The zone last chosen in Options", false},
    {"TimeZoneBias", "The zone last chosen in Options, minutes", false},
    {"DateFormat", "The date format when Options was confirmed", false},
    {"TimeFormat", "The time format when Options was confirmed", false},
    {"ProjectDBPath", "Where the project was when Options was confirmed", false},
    {"GalleryIncludeHTML", "The gallery showed web pages when Options was confirmed", false},
    {"GalleryIncludePictures", "The gallery showed pictures when Options was confirmed", false},
    {"GalleryRecordsPerPage", "Thumbnails on a page of the gallery when Options was confirmed",
     false},
    {"RedrawThumbIfPageRebuilt", "A rebuilt page got a new thumbnail when Options was confirmed",
     false},
    {"AppMajor", "The build that made or last upgraded the file", false},
    {"AppMinor", "The build that made or last upgraded the file", false},
    {"AppRevision", "The build that made or last upgraded the file", false},
});

std::string flagText(bool on) {
    return on ? "True" : "False";
}

} // namespace

std::span<const ProjectValueFacts> projectValueTable() {
    return kValues;
}

std::vector<ProjectValue> projectValuesInForce(const Program &program) {
    const ThisClass &state = program.thisClass;
    const TimeZoneClass &zone = state.GMTZone;
    return {{"TimeZoneBias", fmt::format("{}", zone.tzBias)},
            {"TimeZoneName", zone.tzName},
            {"TimeZoneID", zoneKey(zone)},
            {"LastTimeZoneID", zoneKey(zone)},
            {"RootPath", textOf(state.RootPath)},
            {"DateFormat", state.DateFormat},
            {"TimeFormat", state.TimeFormat},
            {"ProjectDBPath", textOf(state.ProjectDBPath)},
            {"GalleryIncludeHTML", flagText(state.GalleryIncludeHTML)},
            {"GalleryIncludePictures", flagText(state.GalleryIncludePictures)},
            {"GalleryRecordsPerPage", fmt::format("{}", state.GalleryRecordsPerPage)},
            {"RedrawThumbIfPageRebuilt", flagText(state.RedrawThumbIfPageRebuilt)}};
}

void storeProjectValues(Program &program, const std::vector<ProjectValue> &values, TrailNote note) {
    if (program.thisClass.ProjectDB.isReadOnly())
        return;
    ProjectFields fields(program.thisClass.ProjectDB.connection(), program.log);
    std::string changes;
    for (const ProjectValue &each : values) {
        const std::string before = fields.GetDefault(each.name);
        if (before == each.value || !fields.SaveDefaultSetting(each.name, each.value))
            continue;
        changes += fmt::format("{}{}: \"{}\" -> \"{}\"", changes.empty() ? "" : "; ", each.name,
                               before, each.value);
    }
    if (changes.empty() || note == TrailNote::no)
        return;
    TrailEntry entry;
    entry.Action = "Options";
    entry.Detail = changes;
    noteInTrail(program, std::move(entry));
}

} // namespace nv
