#include "ui/import/LightPalette.h"

#include "views/overview/LightColors.h"

#include <QApplication>

namespace nv {

QPalette lightPalette(ImportLight light) {
    QPalette palette = QApplication::palette();
    const bool isDark = palette.color(QPalette::Window).lightness() <
                        palette.color(QPalette::WindowText).lightness();
    const LightColors colors = lightColors(light, isDark);
    palette.setColor(QPalette::Window, QColor::fromRgb(colors.ground));
    palette.setColor(QPalette::WindowText, QColor::fromRgb(colors.text));
    palette.setColor(QPalette::Text, QColor::fromRgb(colors.text));
    return palette;
}

} // namespace nv
