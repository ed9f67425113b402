#pragma once

#include "reports/case/CaseFrame.h"
#include "reports/case/CaseOptions.h"
#include "reports/case/Redactor.h"
#include "reports/report/ReportContext.h"
#include "views/rows/IdLoader.h"

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace nv {

class ReportWriter;

/// The first page: the cover, what the report holds and lacks, time, and the files of evidence.
class CaseIndex {
  public:
    /// All must outlive it; `logo` is the picture's path in the report, empty for none.
    CaseIndex(const ReportWriter &report, const ReportContext &ctx, const CaseFrame &frame,
              Redactor &redactor)
        : m_report(report), m_ctx(ctx), m_frame(frame), m_redactor(redactor) {}

    std::string logo;
    /// Of the report.
    std::uint64_t rows = 0;

    /// `ids` are those whose time is drawn; the list of all files of evidence goes into `folder`.
    /// False when cancelled. Throws StorageFailure.
    bool write(std::ostream &file, const RowIds &ids, const std::filesystem::path &folder,
               TaskMonitor &task);

  private:
    void cover(std::ostream &file);
    void contents(std::ostream &file);
    void redactions(std::ostream &file);
    bool time(std::ostream &file, const RowIds &ids, TaskMonitor &task);
    void evidence(std::ostream &file, const std::filesystem::path &folder);
    void notRead(std::ostream &file);
    void trail(std::ostream &file);
    std::string text(const std::string &value);

    const ReportWriter &m_report;
    const ReportContext &m_ctx;
    const CaseFrame &m_frame;
    Redactor &m_redactor;
};

} // namespace nv
