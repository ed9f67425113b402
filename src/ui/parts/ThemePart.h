#pragma once

#include "app/settings/IniFile.h"
#include "ui/frame/MainMenus.h"

#include <QObject>

class QWidget;

namespace nv {

/// The theme that the examiner chooses, or that the system changes to while the program runs.
class ThemePart final : public QObject {
    Q_OBJECT

  public:
    ThemePart(MainMenus &menus, QWidget &window, IniFile &settings);

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    QWidget &m_window;
    IniFile &m_settings;
};

} // namespace nv
