#pragma once

#include "app/ui/Workbench.h"

#include <filesystem>

namespace nv {

class ReportTools;

/// The commands Create Report and Publish Report.
class ReportPart final : public QObject {
    Q_OBJECT

  public:
    explicit ReportPart(Workbench &bench);

  private:
    void create();
    bool chooseOptions(ReportTools &tools);
    void tellOf(const ReportTools &tools, bool finished);
    void showReport(const std::filesystem::path &page);
    void tellOfFailures();
    void withdrawReport();
    void PublishReport();
    bool mayReplace(const std::filesystem::path &target, int type) const;
    void publishTo(const std::filesystem::path &target, int type);
    void openFolder() const;

    Workbench &m_bench;
};

} // namespace nv
