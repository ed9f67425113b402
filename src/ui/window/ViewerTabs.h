#pragma once

#include "ui/views/RecordPane.h"

#include <QTabWidget>
#include <QTimer>

#include <functional>
#include <optional>
#include <vector>

namespace nv {

/// Runs a command of the window; the examiner is told when it fails. Nothing happens while a task
/// runs.
using RunCommand = std::function<void(const char *procedure, const std::function<void()> &command)>;

/// The viewers: panes for the table's current record, of which the front one is filled.
class ViewerTabs final : public QTabWidget {
    Q_OBJECT

  public:
    /// While `isBusy`, panes wait.
    ViewerTabs(RunCommand run, std::function<bool()> isBusy, QWidget *parent = nullptr);

    /// `pane` is the widget itself or belongs to it. `procedure` stands in the log when showing
    /// fails.
    void addPane(QWidget &widget, RecordPane &pane, const QString &title, const char *procedure);
    /// Nothing is shown without a record.
    void setRecord(std::optional<UrlId> id);
    /// The record has changed, or the viewers came up.
    void refresh();
    std::optional<UrlId> record() const { return m_id; }

  private:
    struct Entry {
        QWidget *widget;
        RecordPane *pane;
        const char *procedure;
    };
    /// Comes after the click or key that chose the record is over: a pane may run a task, which
    /// locks the grid that the click is in.
    void showFront();

    RunCommand m_run;
    std::function<bool()> m_isBusy;
    std::vector<Entry> m_panes;
    std::optional<UrlId> m_id;
    QTimer m_soon;
};

} // namespace nv
