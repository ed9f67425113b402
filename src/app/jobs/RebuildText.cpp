#include "app/jobs/RebuildText.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace nv {

namespace {

std::string pageText(const RebuiltPage &page) {
    if (!page.rebuilt)
        return fmt::format("Record {} was not rebuilt: {}.", page.urlID, reasonText(page.why));
    return fmt::format("Record {} was rebuilt{}: {} replaced, {} missing{}.{}", page.urlID,
                       page.method == RebuildMethod::exact ? " exactly" : "",
                       counted(page.replaced, "reference"), page.missing,
                       notRewrittenText(page.notRewritten),
                       page.thumbnail == Redrawn::failed
                           ? " Its thumbnail could not be drawn; the error log tells why."
                           : "");
}

std::string undrawnText(const std::vector<RebuiltPage> &pages) {
    const auto count = std::ranges::count(pages, Redrawn::failed, &RebuiltPage::thumbnail);
    return count == 0 ? std::string()
                      : fmt::format(" {} could not be drawn; the error log tells why.",
                                    counted(static_cast<std::uint64_t>(count), "thumbnail"));
}

} // namespace

std::string notRewrittenText(std::size_t count) {
    return count == 0 ? std::string() : fmt::format(", {} not rewritten", count);
}

std::string reasonText(NotRebuilt why) {
    switch (why) {
    case NotRebuilt::noContent:
        return "it has no cached content";
    case NotRebuilt::contentGone:
        return "its cached content is gone";
    case NotRebuilt::noReferences:
        return "it holds no reference that can be replaced";
    case NotRebuilt::noPage:
        return "its content is no page";
    case NotRebuilt::wideIds:
        return "a part has an id above 32767; switch on [BEYOND] WideRecordIds in the settings";
    case NotRebuilt::cancelled:
        return "cancelled";
    case NotRebuilt::unreadable:
        return "its row can't be read, as the project is damaged there";
    case NotRebuilt::failed:
        break;
    }
    return "it failed; the error log tells why";
}

std::string reportText(const RebuildReport &report) {
    if (report.asked == 1 && report.pages.size() == 1)
        return pageText(report.pages.front());
    std::size_t rebuilt = 0;
    std::map<NotRebuilt, std::size_t> reasons;
    for (const RebuiltPage &page : report.pages) {
        if (page.rebuilt)
            ++rebuilt;
        else
            ++reasons[page.why];
    }
    std::string text = fmt::format("{}{} of {} rebuilt.", report.cancelled ? "Cancelled: " : "",
                                   rebuilt, counted(report.asked, "page"));
    for (const auto &[why, count] : reasons)
        text += fmt::format(" {} not: {}.", count, reasonText(why));
    return text + undrawnText(report.pages);
}

} // namespace nv
