#pragma once

#include <QAction>
#include <QWidget>

namespace nv {

class ImportSteps;
class RecentPane;
class StepsPane;

/// What the main window shows while no project is open: the three steps from evidence to rows, and
/// the recent projects beside them.
class WelcomePage final : public QWidget {
    Q_OBJECT

  public:
    /// All must outlive it.
    WelcomePage(QAction &newProject, QAction &openProject, ImportSteps &steps,
                QWidget *parent = nullptr);

    RecentPane &recent() { return *m_recent; }
    StepsPane &steps() { return *m_steps; }

  private:
    QWidget *newSteps(ImportSteps &steps);
    QWidget *newProjects(QAction &newProject, QAction &openProject);

    RecentPane *m_recent = nullptr;
    StepsPane *m_steps = nullptr;
};

} // namespace nv
