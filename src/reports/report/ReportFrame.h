#pragma once

#include "reports/report/ReportContext.h"

#include <functional>
#include <ostream>
#include <string>

namespace nv {

class ReportWriter;

/// What stands around a report's entries: the head with the examiner's words and the zone, and the
/// tail.
class ReportFrame {
  public:
    /// Both must outlive it.
    ReportFrame(const ReportWriter &report, const ReportContext &ctx)
        : m_report(report), m_ctx(ctx) {}

    /// `logo` gives the place of the picture in the report's folder; asked only when it is shown.
    void writeHead(std::ostream &file, const std::function<std::string()> &logo) const;
    void writeTail(std::ostream &file) const;

  private:
    std::string customerOptions(const std::function<std::string()> &logo) const;
    std::string zoneNote() const;

    const ReportWriter &m_report;
    const ReportContext &m_ctx;
};

} // namespace nv
