#pragma once

#include "reports/case/CaseOptions.h"
#include "reports/report/CardEvidence.h"
#include "reports/report/ReportContext.h"
#include "reports/report/ReportFolder.h"
#include "reports/report/ReportTitle.h"
#include "views/rows/IdLoader.h"
#include "views/rows/UnreadRows.h"

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
class ReportWriter {
  public:
    /// The context must outlive it.
    explicit ReportWriter(const ReportContext &ctx);

    // The options, and what is known of the record in hand.
    bool includeUser = true;       ///< column of the tabular report
    bool includeDataSource = true; ///< column of the tabular report
    bool useCustomLogo = false;
    bool buildingReport = false;
    std::filesystem::path reportFilePath; ///< of the finished page
    std::string user;
    int urlColWidth = 0; ///< pixels; 0 leaves the width to the browser
    std::filesystem::path defaultThumbnailPath;
    bool useDefaultThumbnailPath = false;
    bool sortAscending = true;
    bool includeTimeRebuilt = true;
    std::string status;
    std::string otherDate;
    bool includeAll = true; ///< all rows of the view, else the ticked ones
    int reportType = 0;     ///< of ReportFolder.h
    std::string browser;
    bool skipHeader = false;
    std::string caseNumber;
    bool cancel = false; ///< the report was cancelled: there is no finished page
    bool includeAudit = false;
    bool includeNotes = true;
    std::string reportTitle{kDefaultReportTitle};
    std::string organization;
    std::string reportDate;
    std::string reportedBy;
    std::filesystem::path reportFolderPath;
    std::filesystem::path agencyLogoPath;
    bool includeLinkAnalysis = false;
    std::string originalURL;
    std::string rebuiltDateTime;
    std::string pageParentFolderName;
    std::string href;            ///< the local copy
    std::size_t recordIndex = 0; ///< from 1
    std::string imageRelativePath;
    std::int64_t pageFileSize = 0;
    std::string actionDate;
    std::string visits;
    std::string pageFileName;
    std::string pageTitle;
    bool includeCaseTrail = false;   ///< what was done with the project, after the legend
    bool includeOrigins = false;     ///< where values of rows with the tick come from, after that
    CaseOptions caseOptions;         ///< of a report of a case
    RedactionCounts redacted;        ///< what became of its redactions
    RedactionRules unmetRedactions;  ///< those of them that nothing in the report fitted
    std::size_t recordsFailed = 0;   ///< entries that only say so
    UnreadRows failedRows;           ///< which ones
    std::size_t filesFailed = 0;     ///< cards without a cached file that is gone or unreadable
    UnreadRows changedRows;          ///< whose content is NOT what was imported
    std::size_t pagesIncomplete = 0; ///< rebuilt pages that could not be brought with all parts
    /// The examiner's pictures that a report can't show.
    std::set<std::filesystem::path> picturesFailed;
    bool headerFailed = false;
    bool footerFailed = false;

    static constexpr std::string_view kNoPicture = "images/report-default.png";

    /// Both write the report into a folder "Report" of `folder` and set `reportFilePath`; whether
    /// it was finished is whether that file is there. A failure is logged. Throw StorageFailure
    /// when the report can't be written on.
    void createGraphicalReport(const std::filesystem::path &folder);
    void createTabularReport(const std::filesystem::path &folder);

    /// Both write one entry; `index` counts from 1. A record that fails is logged, and its entry
    /// says so: none is left out.
    void createGraphicalRecord(UrlId urlID, std::size_t index, std::ostream &file);
    void createTabularRecord(UrlId urlID, std::size_t index, std::ostream &file);
    void createHeader(std::ostream &file);
    void createFooter(std::ostream &file);
    /// One line of the page.
    static void printEntry(std::ostream &file, std::string_view entry);

  private:
    using Entries = bool (ReportWriter::*)(const RowIds &, std::ostream &);
    void create(const std::filesystem::path &folder, int type, Entries entries);
    bool writeCards(const RowIds &ids, std::ostream &file);
    bool writeRows(const RowIds &ids, std::ostream &file);
    bool bringCards(std::span<const std::int32_t> ids, std::size_t first, std::size_t total);
    ReportCard cardOf(UrlId id, std::size_t place, TaskMonitor &task);
    ReportCard &cardFor(UrlId id);
    bool step(std::size_t done, std::size_t total, std::int64_t id);
    void take(const UrlRecord &record, std::size_t index);
    void countFailed(UrlId id);
    CardEvidence evidence() const;
    std::string logo();
    /// Empty when it can't be shown, which is noted.
    std::string ownPicture(const std::filesystem::path &picture, const std::string &name);

    const ReportContext &m_ctx;
    ReportFolder m_folder;
    std::string m_fallback{kNoPicture}; ///< shown where there is no picture
    std::vector<ReportCard> m_cards;    ///< brought, and not yet written
};

/// How many rows, cached files and pages aren't in it as they should be.
std::size_t gapsOf(const ReportWriter &report);

/// What the examiner has to know of a finished report, a sentence each; the log says why.
std::vector<std::string> notesOf(const ReportWriter &report);

} // namespace nv
