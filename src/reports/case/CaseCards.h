#pragma once

#include "reports/case/CaseFrame.h"
#include "reports/case/CaseRow.h"
#include "reports/case/RedactedContent.h"
#include "reports/report/CardEvidence.h"
#include "views/rows/UnreadRows.h"

#include <cstddef>
#include <fstream>
#include <functional>
#include <span>

namespace nv {

inline constexpr std::size_t kCaseCardsAPage = 100;

/// What cards couldn't show.
struct CardFailures {
    UnreadRows rows;
    UnreadRows changed; ///< their content is NOT what was imported
    std::size_t files = 0;
    std::size_t pagesIncomplete = 0;
};

/// Writes the cards of one section, each with its picture or page, a page of them after the other.
class CaseCardPages {
  public:
    /// All must outlive it.
    CaseCardPages(const ReportContext &ctx, const ReportFolder &folder, const CaseFrame &frame,
                  const CaseSection &section, Redactor &redactor);

    /// Brings and writes the next rows. False when cancelled. Throws StorageFailure.
    bool add(std::span<const std::int32_t> ids, TaskMonitor &task);
    void finish();

    CardFailures failures;
    CaseRows rows; ///< how they are read
    /// Where the appendix tells of a row: "origins-1.htm#o17"; empty where it doesn't.
    std::function<std::string(UrlId)> originOf;

  private:
    ReportCard bring(UrlId id, std::size_t place, TaskMonitor &task);
    void write(ReportCard &card, UrlId id);
    void beginCard();
    void endPage();

    const ReportContext &m_ctx;
    const ReportFolder &m_folder;
    const CaseFrame &m_frame;
    const CaseSection &m_section;
    CardEvidence m_evidence;
    RedactedContent m_redacted;
    std::ofstream m_page;
    std::filesystem::path m_path;
    std::size_t m_number = 0; ///< of the page in hand, from 1
    std::size_t m_cards = 0;  ///< on it
};

} // namespace nv
