#pragma once

#include "ui/viewers/RecordPane.h"

#include <QWidget>

#include <functional>
#include <string>

class QPushButton;

namespace nv {

class BrowserPane;

/// The last report made, whatever the record.
class ReportPane final : public QWidget, public RecordPane {
    Q_OBJECT

  public:
    /// `reportURL` gives the report's first page; empty for none.
    explicit ReportPane(std::function<std::string()> reportURL, QWidget *parent = nullptr);

    void showRecord(UrlId id) override;
    /// The report belongs to no record: it stays.
    void clear() override {}
    /// Shows the report that was made last.
    void refresh();
    BrowserPane &browser() { return *m_browser; }

  signals:
    /// There is a report to be seen, or none any more.
    void refreshed(bool isThere);
    /// The report is to be seen at the window's size.
    void largeWanted();

  private:
    std::function<std::string()> m_reportURL;
    BrowserPane *m_browser = nullptr;
    QPushButton *m_large = nullptr;
    std::string m_shown;
};

} // namespace nv
