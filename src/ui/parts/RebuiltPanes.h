#pragma once

#include "ui/parts/Workbench.h"

#include <filesystem>

namespace nv {

class AuditPane;
class BrowserPane;
struct AuditRow;
struct UrlRecord;

/// The panes of cached and rebuilt pages: Browser and Audit. What they show of a page that was
/// rebuilt in an earlier run of the program is brought back first, which is a task.
class RebuiltPanes final : public QObject {
    Q_OBJECT

  public:
    explicit RebuiltPanes(Workbench &bench);

  private:
    class Browser;
    class Audit;
    bool bringBack(UrlRecord &page);
    bool isLeftInGallery(UrlRecord &page);
    void showPage(BrowserPane &pane, UrlId id);
    void showAudit(AuditPane &pane, UrlId id);
    void chooseOther(const AuditRow &row);

    /// A page in the Browser pane.
    struct Shown {
        UrlId id = UrlId::none;
        std::filesystem::path file;
        std::filesystem::file_time_type rebuilt; ///< when; of cached content none

        friend bool operator==(const Shown &, const Shown &) = default;
    };

    Workbench &m_bench;
    Shown m_shown;
    UrlId m_audited = UrlId::none; ///< the page that the audit is of
};

} // namespace nv
