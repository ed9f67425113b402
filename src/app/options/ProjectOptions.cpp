#include "app/options/ProjectOptions.h"

#include "app/jobs/Trail.h"
#include "base/Files.h"
#include "db/project/ProjectFields.h"
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
    const ProgramState &state = program.state;
    const TimeZone &zone = state.gmtZone;
    return {{"TimeZoneBias", fmt::format("{}", zone.tzBias)},
            {"TimeZoneName", zone.tzName},
            {"TimeZoneID", zoneKey(zone)},
            {"LastTimeZoneID", zoneKey(zone)},
            {"RootPath", textOf(state.rootPath)},
            {"DateFormat", state.dateFormat},
            {"TimeFormat", state.timeFormat},
            {"ProjectDBPath", textOf(state.projectDBPath)},
            {"GalleryIncludeHTML", flagText(state.galleryIncludeHTML)},
            {"GalleryIncludePictures", flagText(state.galleryIncludePictures)},
            {"GalleryRecordsPerPage", fmt::format("{}", state.galleryRecordsPerPage)},
            {"RedrawThumbIfPageRebuilt", flagText(state.redrawThumbIfPageRebuilt)}};
}

std::vector<std::string>
storeProjectValues(Program &program, const std::vector<ProjectValue> &values, TrailNote note) {
    std::vector<std::string> unkept;
    if (program.state.projectDB.isReadOnly())
        return unkept;
    ProjectFields fields(program.state.projectDB.connection(), program.log);
    std::string changes;
    for (const ProjectValue &each : values) {
        const std::string before = fields.getDefault(each.name);
        if (before == each.value)
            continue;
        if (!fields.saveDefaultSetting(each.name, each.value)) {
            unkept.push_back(each.name);
            continue;
        }
        changes += fmt::format("{}{}: \"{}\" -> \"{}\"", changes.empty() ? "" : "; ", each.name,
                               before, each.value);
    }
    if (changes.empty() || note == TrailNote::no)
        return unkept;
    TrailEntry entry;
    entry.action = "Options";
    entry.detail = changes;
    noteInTrail(program, std::move(entry));
    return unkept;
}

} // namespace nv
