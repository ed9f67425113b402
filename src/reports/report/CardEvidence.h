#pragma once

#include "db/records/UrlRecord.h"
#include "readers/Body.h"
#include "reports/report/ReportContext.h"
#include "reports/report/ReportFolder.h"

#include <optional>
#include <span>
#include <string>

namespace nv {

/// A row on its way to its cue card. Paths are relative to the report's folder, with "/".
struct ReportCard {
    UrlRecord record;
    std::string target;      ///< the local copy of the content; empty when there is none
    std::string absence;     ///< why not, in plain words
    bool incomplete = false; ///< not all parts of the rebuilt page could be brought
    bool isGone = false;     ///< the import has found the content, and it isn't there any more
    bool isChanged = false;  ///< the content, or a part of the page, is NOT what was imported
    std::string thumbnail;   ///< a small picture of the content; empty for none
    int width = 0;           ///< of it, in pixels
    std::optional<DrawJob> drawing;
};

/// Copies what rows hold into the folder of a report, in a form that is safe to open, and draws it
/// small. Evidence is only read.
class CardEvidence {
  public:
    /// Both must outlive it.
    CardEvidence(const ReportContext &ctx, const ReportFolder &folder)
        : m_ctx(ctx), m_folder(folder) {}

    /// The row's page or picture; `place` tells the rows of a batch apart. Throws.
    void bring(ReportCard &card, std::size_t place, TaskMonitor &task) const;
    /// Makes the drawings of a batch, whose start costs much. One that fails is logged and leaves
    /// its card without.
    void draw(std::span<ReportCard> cards, TaskMonitor &task) const;

  private:
    bool bringRebuilt(ReportCard &card, TaskMonitor &task) const;
    void compare(ReportCard &card, UrlId id, const Body &content) const;
    void bringContent(ReportCard &card, std::size_t place) const;
    void bringPicture(ReportCard &card, const std::filesystem::path &content,
                      const std::string &kind) const;
    void bringText(ReportCard &card, const std::filesystem::path &content, std::size_t place) const;
    void planPage(ReportCard &card, const std::filesystem::path &page) const;
    void take(ReportCard &card, const Drawn &drawn) const;
    RebuildContext contextFor(const std::filesystem::path &folder, TaskMonitor &task) const;
    std::filesystem::path scratch() const { return m_ctx.rebuild.tempFolderPath / "~cards"; }

    const ReportContext &m_ctx;
    const ReportFolder &m_folder;
};

} // namespace nv
