#include "ui/parts/ThemePart.h"

#include <QEvent>
#include <QWidget>

namespace nv {

ThemePart::ThemePart(MainMenus &menus, QWidget &window, IniFile &settings)
    : m_window(window), m_settings(settings) {
    menus.showTheme(keptTheme(settings));
    connect(&menus, &MainMenus::themeChosen, this, [this](Theme theme) {
        keepTheme(m_settings, theme);
        applyTheme(theme);
    });
    window.installEventFilter(this);
}

bool ThemePart::eventFilter(QObject *watched, QEvent *event) {
    // After the event is over: the toolkit is changing its own palette.
    if (watched == &m_window && event->type() == QEvent::ThemeChange &&
        keptTheme(m_settings) == Theme::System)
        QMetaObject::invokeMethod(
            this, [] { applyTheme(Theme::System); }, Qt::QueuedConnection);
    return false;
}

} // namespace nv
