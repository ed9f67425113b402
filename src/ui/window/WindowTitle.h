#pragma once

#include <QMap>
#include <QString>

class QWidget;

namespace nv {

class TaskStatus;
class Workbench;

/// The title of the main window: how far running work is, before the program's and the project's
/// names, so that a minimised window tells it too.
class WindowTitle {
  public:
    /// `window` must outlive it.
    explicit WindowTitle(QWidget &window) : m_window(window) {}

    /// Shows its program's tasks, as their watcher, and its work in the background. Must outlive
    /// both.
    void follow(Workbench &bench);
    /// The title while nothing runs.
    void setCaption(const QString &caption);
    /// A task that the examiner waits for; one that is over soon isn't told.
    void showTask(const TaskStatus &status);
    /// Work in the background. `fraction` is 0 to 1.
    void showWork(const QString &name, double fraction);
    void endWork(const QString &name);
    void endAllWork();

  private:
    struct Work {
        QString name;
        int percent = 0;
    };
    void refresh();

    QWidget &m_window;
    QString m_caption;
    bool m_hasTask = false; ///< goes before work in the background
    Work m_task;
    QMap<QString, int> m_background; ///< percent by name
};

} // namespace nv
