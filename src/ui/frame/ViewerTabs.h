#pragma once

#include "ui/viewers/RecordPane.h"
#include "views/record/ViewerChoice.h"

#include <QTabWidget>
#include <QTimer>

#include <functional>
#include <optional>
#include <vector>

class QToolButton;

namespace nv {

/// Runs a command of the window; the examiner is told when it fails. Nothing happens while a task
/// runs.
using RunCommand = std::function<void(const char *procedure, const std::function<void()> &command)>;

/// The viewers: panes for the table's current record, of which those that can be seen are filled.
/// The tab that fits the record comes to the front by itself, until the examiner goes to a tab:
/// that one is pinned then. Tabs without anything for the record are dim.
class ViewerTabs final : public QTabWidget {
    Q_OBJECT

  public:
    /// While `isBusy`, panes wait.
    ViewerTabs(RunCommand run, std::function<bool()> isBusy, QWidget *parent = nullptr);

    /// `pane` is the widget itself or belongs to it. `procedure` stands in the log when showing
    /// fails.
    void addPane(QWidget &widget, RecordPane &pane, const QString &title, const char *procedure);
    /// The same for one that stands elsewhere, or for now among the tabs.
    void addAside(QWidget &widget, RecordPane &pane, const char *procedure);
    /// Makes a pane that stood aside the first tab, which no other takes the place of by itself;
    /// null takes it out again.
    void setCardTab(QWidget *card);
    /// How it is found out what a record has for the panes; must not throw.
    void setLook(std::function<std::optional<ViewedRecord>(UrlId)> look);

    /// Nothing is shown without a record.
    void setRecord(std::optional<UrlId> id);
    /// The record has changed, or the viewers came up.
    void refresh();
    /// Its tick, tags or note have: the panes that don't show them are left alone.
    void refreshMarks();
    /// Why a pane that isn't about the record has nothing to show; an empty text: it has something.
    void setEmpty(QWidget &pane, const QString &why);
    std::optional<UrlId> record() const { return m_id; }

    /// Brings it to the front until another record asks for another pane.
    void showOnce(QWidget &pane);
    /// The same for the pane that shows the record's content best, and leads the keys into it.
    /// False where the record has no content.
    bool enterBest();

    bool isPinned() const;
    void setPinned(bool pinned);
    /// The front pane gets a window of its own, and comes back when that is closed.
    void detachFront();
    bool isFullSize() const;
    void setFullSize(bool full);

  signals:
    void pinnedChanged(bool pinned);
    /// The viewers want all of the window, or give it back.
    void fullSizeWanted(bool full);

  protected:
    void changeEvent(QEvent *event) override;

  private:
    struct Entry {
        QWidget *widget = nullptr;
        RecordPane *pane = nullptr;
        const char *procedure = "";
        bool isStale = true;   ///< doesn't show the record yet
        QString whyEmpty = {}; ///< of one that isn't about the record
    };
    QWidget *newButtons();
    void addKeys();
    bool isUp(const Entry &entry) const;
    void takeFront();
    void look();
    void showChange();
    void markTabs();
    void markTab(int place, bool isDim, const QString &tip);
    void markViewer(int place, Viewer viewer);
    QWidget *paneOf(Viewer viewer) const;
    /// Comes after the click or key that chose the record is over: a pane may run a task, which
    /// locks the grid that the click is in.
    void showFront();

    RunCommand m_run;
    std::function<bool()> m_isBusy;
    std::function<std::optional<ViewedRecord>(UrlId)> m_look;
    std::vector<Entry> m_panes;
    std::optional<UrlId> m_id;
    std::optional<ViewedRecord> m_viewed;
    QTimer m_soon;
    QWidget *m_card = nullptr; ///< while it is a tab
    QToolButton *m_pin = nullptr;
    QToolButton *m_full = nullptr;
    bool m_choosing = false; ///< the front tab is being changed by what the record holds
};

} // namespace nv
