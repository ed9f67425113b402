#include "ui/frame/Theme.h"

#include "app/settings/Settings.h"

#include <QApplication>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleOptionViewItem>

namespace nv {

namespace {

/// Settings of this build that earlier ones don't know have a section of their own.

struct Colours {
    QRgb window, base, alternate, button, text, faint, disabled, highlight, highlighted, link, mid,
        tooltip;
};

// Text stands out from its ground by 7:1 or more, faint and disabled text by 4.5:1: what can't be
// chosen now is read all the same.
constexpr Colours kLight = {0xfff4f6f8, 0xffffffff, 0xfff6f9fc, 0xfffbfcfd, 0xff1a1f26, 0xff5b6672,
                            0xff67717c, 0xff1f66c1, 0xffffffff, 0xff0b57b7, 0xffc3cbd4, 0xffffffff};
constexpr Colours kDark = {0xff20242a, 0xff181b20, 0xff1d2127, 0xff2b3038, 0xffe7eaee, 0xffa3adb8,
                           0xff8b95a1, 0xff2a69b8, 0xffffffff, 0xff79b4f5, 0xff444c57, 0xff2b3038};

void setEverywhere(QPalette &palette, const Colours &colours) {
    const std::pair<QPalette::ColorRole, QRgb> roles[] = {
        {QPalette::Window, colours.window},
        {QPalette::Base, colours.base},
        {QPalette::AlternateBase, colours.alternate},
        {QPalette::Button, colours.button},
        {QPalette::WindowText, colours.text},
        {QPalette::Text, colours.text},
        {QPalette::ButtonText, colours.text},
        {QPalette::PlaceholderText, colours.faint},
        {QPalette::Highlight, colours.highlight},
        {QPalette::HighlightedText, colours.highlighted},
        {QPalette::Link, colours.link},
        {QPalette::LinkVisited, colours.link},
        {QPalette::BrightText, colours.highlighted},
        {QPalette::Mid, colours.mid},
        {QPalette::ToolTipBase, colours.tooltip},
        {QPalette::ToolTipText, colours.text},
    };
    for (const auto &[role, colour] : roles)
        palette.setColor(role, QColor::fromRgb(colour));
}

QPalette paletteOf(const Colours &colours) {
    QPalette palette(QColor::fromRgb(colours.button), QColor::fromRgb(colours.window));
    setEverywhere(palette, colours);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText})
        palette.setColor(QPalette::Disabled, role, QColor::fromRgb(colours.disabled));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor::fromRgb(colours.mid));
    return palette;
}

/// The style draws the frames of tick boxes, round choices and entry boxes darker than the window,
/// which nobody sees on a dark one.
constexpr const char *kDarkFrames = R"(
QMenu { border: 1px solid #57616d; background: #262b32; }
QLineEdit { border: 1px solid #57616d; border-radius: 3px; padding: 2px 3px; background: #181b20; }
QLineEdit:focus { border-color: #79b4f5; }
QLineEdit:disabled { border-color: #3a424c; background: #20242a; }
QAbstractItemView::indicator, QCheckBox::indicator {
    width: 13px; height: 13px; border: 1px solid #8b96a3; border-radius: 2px; background: #181b20;
}
QAbstractItemView::indicator:checked, QCheckBox::indicator:checked {
    border-color: #79b4f5; background: #2a69b8; image: url(:/images/tick.svg);
}
QAbstractItemView::indicator:disabled, QCheckBox::indicator:disabled {
    border-color: #57616d; background: #20242a;
}
QAbstractItemView::indicator:checked:disabled, QCheckBox::indicator:checked:disabled {
    border-color: #57616d; background: #444c57; image: url(:/images/tick.svg);
}
QRadioButton::indicator {
    width: 13px; height: 13px; border: 1px solid #8b96a3; border-radius: 7px; background: #181b20;
}
QRadioButton::indicator:checked {
    border-color: #79b4f5;
    background: qradialgradient(cx: 0.5, cy: 0.5, radius: 0.5, fx: 0.5, fy: 0.5,
        stop: 0 #79b4f5, stop: 0.5 #79b4f5, stop: 0.6 #181b20, stop: 1 #181b20);
}
QRadioButton::indicator:disabled { border-color: #57616d; background: #20242a; }
QRadioButton::indicator:checked:disabled {
    background: qradialgradient(cx: 0.5, cy: 0.5, radius: 0.5, fx: 0.5, fy: 0.5,
        stop: 0 #8b95a1, stop: 0.5 #8b95a1, stop: 0.6 #20242a, stop: 1 #20242a);
}
)";

/// On a light ground they are paler than what can be seen, too.
constexpr const char *kLightFrames = R"(
QAbstractItemView::indicator, QCheckBox::indicator {
    width: 13px; height: 13px; border: 1px solid #6f7a86; border-radius: 2px; background: #ffffff;
}
QAbstractItemView::indicator:checked, QCheckBox::indicator:checked {
    border-color: #1f66c1; background: #1f66c1; image: url(:/images/tick.svg);
}
QAbstractItemView::indicator:disabled, QCheckBox::indicator:disabled {
    border-color: #aab3bd; background: #f4f6f8;
}
QAbstractItemView::indicator:checked:disabled, QCheckBox::indicator:checked:disabled {
    border-color: #8e98a3; background: #8e98a3; image: url(:/images/tick.svg);
}
QRadioButton::indicator {
    width: 13px; height: 13px; border: 1px solid #6f7a86; border-radius: 7px; background: #ffffff;
}
QRadioButton::indicator:checked {
    border-color: #1f66c1;
    background: qradialgradient(cx: 0.5, cy: 0.5, radius: 0.5, fx: 0.5, fy: 0.5,
        stop: 0 #1f66c1, stop: 0.5 #1f66c1, stop: 0.6 #ffffff, stop: 1 #ffffff);
}
QRadioButton::indicator:disabled { border-color: #aab3bd; background: #f4f6f8; }
QRadioButton::indicator:checked:disabled {
    background: qradialgradient(cx: 0.5, cy: 0.5, radius: 0.5, fx: 0.5, fy: 0.5,
        stop: 0 #8e98a3, stop: 0.5 #8e98a3, stop: 0.6 #f4f6f8, stop: 1 #f4f6f8);
}
)";

/// Without the toolkit's own pictures on buttons, which match none of ours, and with values of
/// evidence from left to right in every window: otherwise "-1" would read "1-" in one that runs the
/// other way, and a date would stand after its time.
class PlainStyle final : public QProxyStyle {
  public:
    PlainStyle() : QProxyStyle(QStringLiteral("Fusion")) {}
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override {
        return hint == SH_DialogButtonBox_ButtonsHaveIcons
                   ? 0
                   : QProxyStyle::styleHint(hint, option, widget, returned);
    }
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override {
        const auto *cell = qstyleoption_cast<const QStyleOptionViewItem *>(option);
        if (element != CE_ItemViewItem || !cell || cell->direction == Qt::LeftToRight)
            return QProxyStyle::drawControl(element, option, painter, widget);
        QStyleOptionViewItem isolated(*cell);
        isolated.text = kLeftToRight + cell->text + kEndOfIsolate;
        QProxyStyle::drawControl(element, &isolated, painter, widget);
    }

  private:
    static constexpr QChar kLeftToRight{0x2066};
    static constexpr QChar kEndOfIsolate{0x2069};
};

/// Without the program's own colours there are those of the desktop.
bool systemIsDark() {
    QApplication::setPalette(QPalette());
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

} // namespace

std::string_view themeName(Theme theme) {
    switch (theme) {
    case Theme::Light:
        return "Light";
    case Theme::Dark:
        return "Dark";
    case Theme::System:
        break;
    }
    return "System";
}

Theme keptTheme(const IniFile &settings) {
    const std::string name = readText(settings, "Theme");
    for (const Theme theme : {Theme::Light, Theme::Dark}) {
        if (name == themeName(theme))
            return theme;
    }
    return Theme::System;
}

void keepTheme(IniFile &settings, Theme theme) {
    rememberText(settings, "Theme", themeName(theme));
}

void applyTheme(Theme theme) {
    const bool dark = theme == Theme::Dark || (theme == Theme::System && systemIsDark());
    QApplication::setStyle(new PlainStyle);
    QApplication::setPalette(paletteOf(dark ? kDark : kLight));
    qApp->setStyleSheet(QString::fromLatin1(dark ? kDarkFrames : kLightFrames));
}

} // namespace nv
