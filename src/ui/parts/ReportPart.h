#pragma once

#include "reports/case/Redaction.h"
#include "ui/parts/ProjectLook.h"
#include "ui/parts/ReportWork.h"
#include "ui/parts/Workbench.h"
#include "ui/reports/RedactionForm.h"

#include <QTimer>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace nv {

class ReportWriter;
class WorkProgress;

/// The commands Create Report and Publish Report.
class ReportPart final : public QObject {
    Q_OBJECT

  public:
    explicit ReportPart(Workbench &bench);

  private:
    /// A report that was made since the start.
    struct Made {
        std::filesystem::path project;
        std::filesystem::path page;
        int type = 0;           ///< as the settings have it
        RedactionRules unmet;   ///< redactions that nothing in it fits
        bool isSettled = false; ///< published, or the examiner lets it go
    };

    /// A record and the viewer in front.
    using Read = std::pair<std::optional<UrlId>, const QWidget *>;
    Read whatIsRead() const;

    void create();
    /// Works on while the examiner goes on.
    void start(std::unique_ptr<ReportWork> work, RowIds rows);
    /// What came of the report that was in the making.
    void end(bool finished, const std::string &failure);
    /// Of the one in the making nothing is left.
    void giveUp();
    void endSoon();
    void addProgress();
    /// The newest report of the open project that is still there; empty for none.
    std::filesystem::path lastReport() const;
    void findReport();
    bool isThere(const Made &made) const;
    void settle(int type);
    std::optional<bool> askBeforeClosing();
    /// Leaves of the rows those that the report is of.
    bool chooseOptions(ReportWriter &report, RowIds &ids);
    void tellOf(const ReportWriter &report, bool finished);
    void showLarge();
    void showReport(const ReportWriter &report);
    RedactionAdviser adviser();
    /// False when the examiner thinks better of it.
    bool mayShowAll(int type) const;
    void tellOfFailures();
    void withdrawReport();
    /// That of the type which was made last.
    void publishReport();
    /// False when it isn't published.
    bool publish(int type);
    bool mayReplace(const std::filesystem::path &target, int type) const;
    bool publishTo(const std::filesystem::path &target, int type);
    void openFolder() const;

    Workbench &m_bench;
    ProjectLook m_look;                 ///< for what redactions fit
    WorkProgress *m_progress = nullptr; ///< in the status bar
    std::unique_ptr<ReportWork> m_work; ///< the report that is being made
    std::function<void()> m_ending;     ///< what is to be done once it is made
    QTimer m_end;
    Read m_readAtStart;       ///< when its making began
    bool m_publishes = false; ///< it, once it is made
    std::vector<Made> m_made; ///< in their order; a page is there once
};

} // namespace nv
