#pragma once

#include <QAction>
#include <QWidget>

namespace nv {

/// What the main window shows while no project is open.
class WelcomePage final : public QWidget {
    Q_OBJECT

  public:
    WelcomePage(QAction &newProject, QAction &openProject, QWidget *parent = nullptr);
};

} // namespace nv
