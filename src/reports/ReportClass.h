#pragma once

#include "reports/CardEvidence.h"
#include "reports/ReportContext.h"
#include "reports/ReportFolder.h"
#include "reports/ReportTitle.h"
#include "views/IdLoader.h"
#include "views/UnreadRows.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <ostream>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// Writes a report: a folder of pages and pictures that can be handed over. Its rows are those of
/// `URLSortTable`. What is written holds nothing that runs, and nothing that is fetched when it is
/// opened; see docs/reports.md.
class ReportClass {
  public:
    /// The context must outlive it.
    explicit ReportClass(const ReportContext &ctx);

    // The options, and what is known of the record in hand.
    bool IncludeUser = true;       ///< column of the tabular report
    bool IncludeDataSource = true; ///< column of the tabular report
    bool UseCustomLogo = false;
    bool buildingReport = false;
    std::filesystem::path ReportFilePath; ///< of the finished page
    std::string User;
    int URLColWidth = 0; ///< pixels; 0 leaves the width to the browser
    std::filesystem::path DefaultThumbnailPath;
    bool UseDefaultThumbnailPath = false;
    bool SortAscending = true;
    bool IncludeTimeRebuilt = true;
    std::string Status;
    std::string OtherDate;
    bool IncludeAll = true; ///< all rows of the view, else the ticked ones
    int ReportType = 0;     ///< 0 graphical, else tabular
    std::string Browser;
    bool SkipHeader = false;
    std::string CaseNumber;
    bool Cancel = false; ///< the report was cancelled: there is no finished page
    bool IncludeAudit = false;
    bool IncludeNotes = true;
    std::string ReportTitle{kDefaultReportTitle};
    std::string Organization;
    std::string ReportDate;
    std::string ReportedBy;
    std::filesystem::path reportFolderPath;
    std::filesystem::path AgencyLogoPath;
    bool IncludeLinkAnalysis = false;
    std::string OriginalURL;
    std::string RebuiltDateTime;
    std::string PageParentFolderName;
    std::string HREF;      ///< the local copy
    std::size_t Index = 0; ///< from 1
    std::string ImageRelativePath;
    std::int64_t PageFileSize = 0;
    std::string ActionDate;
    std::string Visits;
    std::string PageFileName;
    std::string pageTitle;
    bool IncludeCaseTrail = false;   ///< what was done with the project, behind the legend
    std::size_t RecordsFailed = 0;   ///< entries that only say so
    UnreadRows FailedRows;           ///< which ones
    std::size_t FilesFailed = 0;     ///< cards without a cached file that could not be read
    std::size_t PagesIncomplete = 0; ///< rebuilt pages that could not be brought with all parts
    /// The examiner's pictures that a report can't show.
    std::set<std::filesystem::path> PicturesFailed;
    bool HeaderFailed = false;
    bool FooterFailed = false;

    static constexpr std::string_view kNoPicture = "images/report-default.png";

    /// Both write the report into a folder "Report" of `folder` and set `ReportFilePath`; whether
    /// it was finished is whether that file is there. A failure is logged. Throw StorageFailure
    /// when the report can't be written on.
    void CreateGraphicalReport(const std::filesystem::path &folder);
    void CreateTabularReport(const std::filesystem::path &folder);

    /// Both write one entry; `index` counts from 1. A record that fails is logged, and its entry
    /// says so: none is left out.
    void CreateGraphicalRecord(UrlId urlID, std::size_t index, std::ostream &file);
    void CreateTabularRecord(UrlId urlID, std::size_t index, std::ostream &file);
    void CreateHeader(std::ostream &file);
    void CreateFooter(std::ostream &file);
    /// One line of the page.
    static void PrintEntry(std::ostream &file, std::string_view entry);

  private:
    using Entries = bool (ReportClass::*)(const RowIds &, std::ostream &);
    void create(const std::filesystem::path &folder, int type, Entries entries);
    bool writeCards(const RowIds &ids, std::ostream &file);
    bool writeRows(const RowIds &ids, std::ostream &file);
    bool bringCards(std::span<const std::int32_t> ids, std::size_t first, std::size_t total);
    ReportCard cardOf(UrlId id, std::size_t place, TaskMonitor &task);
    ReportCard &cardFor(UrlId id);
    bool step(std::size_t done, std::size_t total, std::int64_t id);
    void take(const URLClass &record, std::size_t index);
    void countFailed(UrlId id);
    CardEvidence evidence() const;
    std::string customerOptions();
    std::string zoneNote() const;
    std::string logo();
    /// Empty when it can't be shown, which is noted.
    std::string ownPicture(const std::filesystem::path &picture, const std::string &name);

    const ReportContext &m_ctx;
    ReportFolder m_folder;
    std::string m_fallback{kNoPicture}; ///< shown where there is no picture
    std::vector<ReportCard> m_cards;    ///< brought, and not yet written
};

/// What the examiner has to know of a finished report, a sentence each; the log says why.
std::vector<std::string> notesOf(const ReportClass &report);

} // namespace nv
