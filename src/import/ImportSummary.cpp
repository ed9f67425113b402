#include "import/ImportSummary.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

namespace nv {

namespace {

template <class Sum, class Value>
Sum sumOver(const std::vector<ArtefactResult> &artefacts, Value &&value) {
    return std::transform_reduce(artefacts.begin(), artefacts.end(), Sum{}, std::plus<>(), value);
}

} // namespace

std::string_view stateWord(ArtefactState state) {
    switch (state) {
    case ArtefactState::complete:
        return "complete";
    case ArtefactState::cutShort:
        return "cut short";
    case ArtefactState::cancelled:
        return "cancelled";
    case ArtefactState::failed:
        return "failed";
    case ArtefactState::notReadYet:
        return "not read yet";
    case ArtefactState::vanished:
        return "vanished";
    case ArtefactState::notReached:
        return "not reached";
    }
    return "failed";
}

std::uint64_t ImportSummary::rowsSaved() const {
    return sumOver<std::uint64_t>(artefacts, [](const auto &each) { return each.rowsSaved; });
}

std::uint64_t ImportSummary::rowsLost() const {
    return sumOver<std::uint64_t>(artefacts, [](const auto &each) { return each.rowsLost; });
}

std::uint64_t ImportSummary::passedOver() const {
    return sumOver<std::uint64_t>(artefacts, [](const auto &each) {
        return std::accumulate(each.passedOver.begin(), each.passedOver.end(), std::uint64_t{0},
                               [](auto sum, const auto &part) { return sum + part.second; });
    });
}

std::uint64_t ImportSummary::hashedBeside() const {
    return sumOver<std::uint64_t>(artefacts, [](const auto &each) {
        return static_cast<std::uint64_t>(std::ranges::count_if(
            each.beside, [](const auto &file) { return file.failure.empty(); }));
    });
}

std::map<std::string, KindTotals> ImportSummary::byReader() const {
    std::map<std::string, KindTotals> kinds;
    for (const ArtefactResult &artefact : artefacts) {
        KindTotals &kind = kinds[artefact.readerKey];
        ++kind.artefacts;
        kind.complete += artefact.state == ArtefactState::complete ? 1 : 0;
        kind.rows += artefact.rowsSaved;
        kind.notReached += artefact.notReached;
        for (const auto &[reason, count] : artefact.passedOver)
            kind.passedOver[reason] += count;
        for (const auto &[reason, count] : artefact.noted)
            kind.noted[reason] += count;
    }
    return kinds;
}

std::vector<ProfileTotals> ImportSummary::byProfile() const {
    std::map<std::tuple<std::string, std::string, std::string>, ProfileTotals> profiles;
    for (const ArtefactResult &artefact : artefacts) {
        const Origin &origin = artefact.origin;
        ProfileTotals &profile = profiles[{origin.browser, origin.profile, origin.person}];
        profile.origin = {origin.browser, {}, origin.profile, origin.person, {}};
        ++profile.artefacts;
        profile.notReadYet += artefact.state == ArtefactState::notReadYet ? 1 : 0;
        addUp(profile.byKind, artefact.byKind);
    }
    std::vector<ProfileTotals> list;
    list.reserve(profiles.size());
    for (auto &[key, profile] : profiles)
        list.push_back(std::move(profile));
    return list;
}

RowsByKind ImportSummary::byKind() const {
    RowsByKind all;
    for (const ArtefactResult &artefact : artefacts)
        addUp(all, artefact.byKind);
    return all;
}

std::uint64_t ProfileTotals::rows() const {
    return all().rows;
}

KindRows ProfileTotals::all() const {
    KindRows sum;
    for (const auto &[kind, rows] : byKind)
        sum.add(rows);
    return sum;
}

std::uint64_t ImportSummary::notReached() const {
    return sumOver<std::uint64_t>(artefacts, [](const auto &each) { return each.notReached; });
}

std::size_t ImportSummary::count(ArtefactState state) const {
    return static_cast<std::size_t>(std::ranges::count(artefacts, state, &ArtefactResult::state));
}

double ImportSummary::seconds() const {
    return sumOver<double>(artefacts, [](const auto &each) { return each.seconds; });
}

} // namespace nv
