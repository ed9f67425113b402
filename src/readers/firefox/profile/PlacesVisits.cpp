#include "readers/firefox/profile/PlacesVisits.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "readers/firefox/Kinds.h"

namespace nv {

namespace {

/// "URL" is what the classic rules call an address that was gone to. A page that came in another
/// way says how.
std::string statusOf(const ReadContext &ctx, const PlaceVisit &visit) {
    if (ctx.deleted)
        return "Deleted";
    const std::string word = visitTypeWord(visit);
    const bool isPlain = word.empty() || visit.type <= visits::kBookmark;
    return isPlain ? "URL" : word;
}

bool isListed(const PlacesPages::Page *page) {
    return page && page->isListed;
}

UrlRecord visitRecord(const ReadContext &ctx, const PlaceVisit &visit, PlacesPages &pages,
                      const PlacesDownloads &downloads, Date fileCreated) {
    const PlacesPages::Page *page = pages.find(visit.place);
    UrlRecord record = profileRecord(ctx, kFirefoxVisit, "Visited",
                                     page ? page->url : std::string_view(), fileCreated);
    addSource(record, "moz_historyvisits", visit.id);
    record.ActionDateUTC = mozDate(PlaceVisit::known(visit.date), pages.unit());
    record.Status = statusOf(ctx, visit);
    record.Typed = visit.type == visits::kTyped;
    record.Referrer = pages.referrerOf(visit);
    if (page) {
        record.WebpageTitle = page->title;
        record.Hidden = page->isHidden;
    }
    addVisit(record.facts, visit, pages, downloads);
    if (!isListed(page))
        addMozNumber(record.facts, "page_id", PlaceVisit::known(visit.place));
    return record;
}

} // namespace

void addVisit(FactList &facts, const PlaceVisit &visit, const PlacesPages &pages,
              const PlacesDownloads &downloads) {
    addVisitFacts(facts, visit, pages.isAndroid());
    addMozNumber(facts, "download_id", downloads.of(visit));
}

bool saveVisits(ReadContext &ctx, PlacesPages &pages, const PlacesDownloads &downloads,
                Date fileCreated, ReadResult &result) {
    RecordTrap trap(ctx.log, "Firefox3History.saveVisits()", textOf(ctx.file.fullPath));
    const auto total = static_cast<double>(pages.visits().size());
    double done = 0;
    std::uint64_t unlisted = 0;
    for (const PlaceVisit &visit : pages.visits()) {
        if (!ctx.task.advance(done++ / total)) {
            result.state = ReadState::cancelled;
            return false;
        }
        if (visit.isTold)
            continue;
        trap.attempt(static_cast<std::uint64_t>(visit.id), [&] {
            UrlRecord record = visitRecord(ctx, visit, pages, downloads, fileCreated);
            ctx.sink.save(record);
            unlisted += isListed(pages.find(visit.place)) ? 0 : 1;
        });
    }
    if (trap.failed() > 0)
        result.passedOver["damaged visit"] += trap.failed();
    if (unlisted > 0)
        result.noted["visit of a page that is no longer listed, so without its address"] = unlisted;
    return true;
}

} // namespace nv
