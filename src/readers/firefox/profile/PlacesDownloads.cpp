// Two annotations of a page tell of its last download:
//   downloads/destinationFileURI = "file:" address of the target
//   downloads/metaData           = JSON: state, deleted, endTime (ms), fileSize,
//                                  reputationCheckVerdict

#include "readers/firefox/profile/PlacesDownloads.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "readers/firefox/Kinds.h"
#include "readers/json/JsonObject.h"

#include <array>

namespace nv {

namespace {

constexpr auto kStates = std::to_array<MozWord>({{0, "in progress"},
                                                 {1, "complete"},
                                                 {2, "failed"},
                                                 {3, "cancelled"},
                                                 {4, "paused"},
                                                 {6, "blocked by parental controls"},
                                                 {8, "blocked as dangerous"}});

void addMetaData(UrlRecord &record, const PlaceAnnotation &note) {
    const JsonObject data = JsonObject::parsed(note.content);
    if (!data.isObject()) {
        record.facts.add("annotation", annotationText(note.name, note.content));
        return;
    }
    const std::optional<std::int64_t> ended = data.number("endTime");
    record.OtherDate = mozDate(ended, MozUnit::milliseconds);
    addMozDate(record.facts, "end_time", ended, MozUnit::milliseconds);
    addMozNumber(record.facts, "total_bytes", data.number("fileSize"));
    addMozWord(record.facts, "download_state", kStates, data.number("state"));
    if (const std::string state = mozWord(kStates, data.number("state")); !state.empty())
        record.Status = state;
    if (const auto deleted = data.truth("deleted"))
        record.facts.add("deleted", *deleted ? "yes" : "no");
    record.facts.add("danger", data.text("reputationCheckVerdict"));
}

} // namespace

PlacesDownloads::PlacesDownloads(PlacesNotes &notes, PlacesPages &pages) : m_pages(pages) {
    std::unordered_map<std::int64_t, std::size_t> byPlace;
    for (const PlaceAnnotation &note : notes.ofDownloads().all()) {
        const auto [entry, isNew] = byPlace.try_emplace(note.place, m_downloads.size());
        if (isNew)
            m_downloads.push_back({note.id, note.place, nullptr, note.added, nullptr, nullptr});
        Download &download = m_downloads[entry->second];
        (note.name == downloadNotes::kTarget ? download.target : download.metaData) = &note;
    }
    // A new download of the same file takes the annotations of the one before: the last visit is
    // theirs.
    for (const PlaceVisit &visit : pages.visits()) {
        const auto found =
            visit.type == visits::kDownload ? byPlace.find(visit.place) : byPlace.end();
        if (found == byPlace.end())
            continue;
        const PlaceVisit *&last = m_downloads[found->second].visit;
        if (!last || visit.date >= last->date)
            last = &visit;
    }
    for (const Download &download : m_downloads)
        if (download.visit)
            m_byVisit.emplace(download.visit->id, download.id);
}

std::optional<std::int64_t> PlacesDownloads::of(const PlaceVisit &visit) const {
    const auto found = m_byVisit.find(visit.id);
    return found == m_byVisit.end() ? std::nullopt : std::optional(found->second);
}

UrlRecord PlacesDownloads::recordOf(const ReadContext &ctx, const Download &download,
                                    Date fileCreated) const {
    UrlRecord record = profileRecord(ctx, kFirefoxDownload, "Downloaded",
                                     m_pages.urlOf(download.place), fileCreated);
    addSource(record, "moz_annos", download.id);
    record.facts.add("download_id", download.id);
    if (const PlaceVisit *visit = download.visit) {
        record.facts.add("visit_id", visit->id);
        addMozDate(record.facts, "start_time", PlaceVisit::known(visit->date), m_pages.unit());
        record.ActionDateUTC = mozDate(PlaceVisit::known(visit->date), m_pages.unit());
        record.Referrer = m_pages.referrerOf(*visit);
    }
    if (const PlaceAnnotation *target = download.target)
        record.facts.add("target_path", pathOfFileUrl(target->content), target->content);
    if (download.metaData)
        addMetaData(record, *download.metaData);
    addMozDate(record.facts, "created", download.added, MozUnit::microseconds);
    if (!record.ActionDateUTC.has()) // the visit is gone: the note was made after the start
        record.ActionDateUTC = mozDate(download.added, MozUnit::microseconds);
    if (record.OtherDate.has())
        record.OtherDateMeaning = "End Time";
    return record;
}

bool PlacesDownloads::save(ReadContext &ctx, Date fileCreated, ReadResult &result) const {
    RecordTrap trap(ctx.log, "Firefox3History.saveDownloads()", textOf(ctx.file.fullPath));
    for (const Download &download : m_downloads) {
        if (!ctx.task.advance(0)) {
            result.state = ReadState::cancelled;
            break;
        }
        trap.attempt(static_cast<std::uint64_t>(download.id), [&] {
            UrlRecord record = recordOf(ctx, download, fileCreated);
            ctx.sink.save(record);
        });
    }
    if (trap.failed() > 0)
        result.passedOver["damaged download"] += trap.failed();
    return result.state != ReadState::cancelled;
}

} // namespace nv
