#include "app/jobs/RebuildThumbnails.h"

#include "base/Trap.h"
#include "readers/CachedBody.h"
#include "rebuild/Harvest.h"
#include "rebuild/LocalNames.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr int kWidth = 200; ///< of a rebuilt page's thumbnail, in pixels
/// Starting to draw takes as long as ten pages; folders of more pages would fill the Temp folder.
constexpr std::size_t kPagesAtOnce = 100;
constexpr std::string_view kProcedure = "MainBAS.CreateHTMLThumbnail()";

} // namespace

std::size_t RebuildThumbnails::pagesAtOnce() const {
    return isWanted() ? kPagesAtOnce : 1;
}

const ThumbnailContext &RebuildThumbnails::context() {
    if (!m_drawing) {
        const fs::path &scratch = m_tools.context().tempFolderPath;
        m_drawing.emplace(m_program, scratch, m_tools.drawing(scratch));
    }
    return m_drawing->context();
}

void RebuildThumbnails::add(UrlRecord &page) {
    if (!isWanted() || !fs::exists(page.RunTimeRebuiltFilePath))
        return;
    page.RunTimeThumbnailPath = rebuildFolderOf(page.URLID, m_tools.context()) /
                                fmt::format("~{}.thumbnail.jpg", sidOf(page.URLID));
    if (page.IsPicture)
        logFailureOf(m_program.log, kProcedure,
                     [&] { drawPicture(page, page.RunTimeThumbnailPath); });
    else
        m_pages.push_back({page.URLID, page.RunTimeRebuiltFilePath, page.RunTimeThumbnailPath});
}

void RebuildThumbnails::drawPicture(UrlRecord &record, const fs::path &destination) {
    if (const auto content = contentOf(record, m_tools.context().extraction()))
        makePictureThumbnail(*content, destination, record, kWidth, context());
}

void RebuildThumbnails::draw(std::span<RebuiltPage> outcomes, TaskMonitor &task) {
    if (m_pages.empty())
        return;
    SubTask part(task, shareOfRebuilding(), 1);
    part.describe({"CREATING THUMBNAILS", "Creating Thumbnails ", "", ""});
    std::vector<bool> drawn(m_pages.size(), false);
    logFailureOf(m_program.log, kProcedure,
                 [&] { drawn = createHTMLThumbnails(m_pages, kWidth, context(), part); });
    const Redrawn otherwise = part.advance(1) ? Redrawn::failed : Redrawn::notWanted;
    for (std::size_t i = 0; i < m_pages.size(); ++i) {
        const auto outcome = std::ranges::find(outcomes, m_pages[i].urlID, &RebuiltPage::urlID);
        if (outcome != outcomes.end())
            outcome->thumbnail = drawn[i] ? Redrawn::yes : otherwise;
    }
    m_pages.clear();
}

} // namespace nv
