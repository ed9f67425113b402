#include "cli/ImportJson.h"

#include "base/Files.h"
#include "import/ImportSummary.h"
#include "time/DateFormat.h"

#include <nlohmann/json.hpp>

namespace nv::cli {

namespace {

using Json = nlohmann::ordered_json;

Json jsonOf(const RowsByKind &kinds) {
    Json rows = Json::object();
    for (const auto &[kind, counts] : kinds)
        rows[kind] = counts.rows;
    return rows;
}

Json jsonOf(const ProfileTotals &profile) {
    const KindRows all = profile.all();
    return {{"browser", profile.origin.browser},
            {"profile", profile.origin.profile},
            {"person", profile.origin.person},
            {"artefacts", profile.artefacts},
            {"not_read_yet", profile.notReadYet},
            {"rows", all.rows},
            {"first", isoUtc(all.first)},
            {"last", isoUtc(all.last)},
            {"rows_by_kind", jsonOf(profile.byKind)}};
}

/// How many records came from each browser; "" stands for those of none that is known.
Json browsersOf(const std::vector<ProfileTotals> &profiles) {
    std::map<std::string, std::uint64_t> rows;
    for (const ProfileTotals &profile : profiles)
        rows[profile.origin.browser] += profile.all().rows;
    return rows;
}

Json jsonOf(const ArtefactResult &artefact) {
    return {{"path", textOf(artefact.path)},
            {"type", static_cast<int>(artefact.type)},
            {"reader", artefact.readerKey},
            {"md5", artefact.md5Hash},
            {"state", stateWord(artefact.state)},
            {"rows", artefact.rowsSaved},
            {"rows_lost", artefact.rowsLost},
            {"not_reached", artefact.notReached},
            {"passed_over", artefact.passedOver},
            {"noted", artefact.noted},
            {"reason", artefact.reason},
            {"warning", artefact.warning},
            {"seconds", artefact.seconds},
            {"browser", artefact.origin.browser},
            {"profile", artefact.origin.profile},
            {"person", artefact.origin.person},
            {"rows_by_kind", jsonOf(artefact.byKind)}};
}

Json jsonOf(const std::vector<UnreadPlace> &places) {
    Json all = Json::array();
    for (const UnreadPlace &place : places)
        all.push_back({{"path", textOf(place.path)}, {"reason", place.reason}});
    return all;
}

Json jsonOf(const ImportSummary &summary) {
    Json artefacts = Json::array();
    for (const ArtefactResult &artefact : summary.artefacts)
        artefacts.push_back(jsonOf(artefact));
    Json kinds = Json::object();
    for (const auto &[key, kind] : summary.byReader())
        kinds[key] = {{"artefacts", kind.artefacts},
                      {"complete", kind.complete},
                      {"rows", kind.rows},
                      {"not_reached", kind.notReached},
                      {"passed_over", kind.passedOver},
                      {"noted", kind.noted}};
    const std::vector<ProfileTotals> found = summary.byProfile();
    Json profiles = Json::array();
    for (const ProfileTotals &profile : found)
        profiles.push_back(jsonOf(profile));
    return {{"artefacts", artefacts},
            {"totals",
             {{"artefacts", summary.artefacts.size()},
              {"rows", summary.rowsSaved()},
              {"rows_lost", summary.rowsLost()},
              {"not_reached", summary.notReached()},
              {"passed_over", summary.passedOver()},
              {"seconds", summary.seconds()}}},
            {"kinds", kinds},
            {"rows_by_kind", jsonOf(summary.byKind())},
            {"browsers", browsersOf(found)},
            {"profiles", profiles},
            {"unreadable", jsonOf(summary.gaps.unreadable)},
            {"links_not_followed", summary.gaps.linksNotFollowed},
            {"shader_caches", summary.gaps.shaderCaches},
            {"thumbnails",
             {{"made", summary.thumbnails.made},
              {"failed", summary.thumbnails.failed},
              {"passed_over", summary.thumbnails.passedOver},
              {"failure", summary.thumbnails.failure}}},
            {"cancelled", summary.cancelled},
            {"failure", summary.failure}};
}

} // namespace

std::string importJson(const ImportSummary &summary) {
    return jsonOf(summary).dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace nv::cli
