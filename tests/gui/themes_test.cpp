#include "gui/Boxes.h"
#include "gui/Desk.h"
#include "platform/qt/PageGuard.h"
#include "ui/frame/GuidePage.h"
#include "ui/frame/Theme.h"
#include "ui/search/SearchBar.h"

#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QTextBlock>

#include <cmath>

// Windows are read in both themes, and change with them while they are open.
namespace nv {

using namespace test;

namespace {

/// As in the guidelines for readable texts.
double contrast(const QColor &one, const QColor &other) {
    const auto light = [](const QColor &color) {
        const auto part = [](double value) {
            return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) +
               0.0722 * part(color.blueF());
    };
    const double a = light(one);
    const double b = light(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

/// Pixels of a hundred that differ.
double differing(const QImage &one, const QImage &other) {
    if (one.size() != other.size())
        return 100;
    qint64 count = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            count += one.pixel(x, y) != other.pixel(x, y) ? 1 : 0;
    return 100.0 * double(count) / (double(one.width()) * one.height());
}

} // namespace

class ThemesTest : public QObject {
    Q_OBJECT

  private slots:
    void cleanup() { applyTheme(Theme::System); }

    void textsAreReadAndWhatIsDisabledIsSeen_data();
    void textsAreReadAndWhatIsDisabledIsSeen();
    void aWindowThatIsOpenChangesAsANewOneLooks_data();
    void aWindowThatIsOpenChangesAsANewOneLooks();
    void theGuideHasTheColoursOfNow();
    void theSearchBarsFaultIsReadInBothThemes();
    void theSystemsChangeIsFollowed();
};

void ThemesTest::textsAreReadAndWhatIsDisabledIsSeen_data() {
    QTest::addColumn<int>("theme");
    QTest::newRow("light") << int(Theme::Light);
    QTest::newRow("dark") << int(Theme::Dark);
}

void ThemesTest::textsAreReadAndWhatIsDisabledIsSeen() {
    QFETCH(int, theme);
    applyTheme(Theme(theme));
    const QPalette palette = QApplication::palette();
    using Pair = std::pair<QPalette::ColorRole, QPalette::ColorRole>;
    for (const auto &[text, ground] :
         {Pair{QPalette::WindowText, QPalette::Window}, Pair{QPalette::Text, QPalette::Base},
          Pair{QPalette::ButtonText, QPalette::Button},
          Pair{QPalette::PlaceholderText, QPalette::Base}, Pair{QPalette::Link, QPalette::Base},
          Pair{QPalette::Link, QPalette::Window},
          Pair{QPalette::HighlightedText, QPalette::Highlight},
          Pair{QPalette::ToolTipText, QPalette::ToolTipBase}})
        QVERIFY2(contrast(palette.color(text), palette.color(ground)) >= 4.5,
                 qPrintable(palette.color(text).name()));
    for (const auto &[text, ground] :
         {Pair{QPalette::WindowText, QPalette::Window}, Pair{QPalette::Text, QPalette::Base},
          Pair{QPalette::ButtonText, QPalette::Button}}) {
        const QColor below = palette.color(QPalette::Disabled, ground);
        const double now = contrast(palette.color(QPalette::Disabled, text), below);
        QVERIFY2(now >= 4.0, qPrintable(QString::number(now)));
        QVERIFY(contrast(palette.color(QPalette::Active, text), below) > 2 * now);
    }
    QCheckBox box(QStringLiteral("Pictures"));
    box.show();
    const QImage empty = box.grab().toImage();
    double frame = 0; // of an empty box, against the window
    for (int x = 0; x < 12; ++x)
        frame = std::max(frame, contrast(empty.pixelColor(x, empty.height() / 2),
                                         palette.color(QPalette::Window)));
    QVERIFY2(frame >= 3, qPrintable(QString::number(frame)));
    box.setChecked(true);
    const QImage enabled = box.grab().toImage();
    box.setEnabled(false);
    QVERIFY(differing(enabled, box.grab().toImage()) > 5);
}

void ThemesTest::aWindowThatIsOpenChangesAsANewOneLooks_data() {
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::newRow("to dark") << int(Theme::Light) << int(Theme::Dark);
    QTest::newRow("to light") << int(Theme::Dark) << int(Theme::Light);
}

/// What takes a colour as it is made keeps it.
void ThemesTest::aWindowThatIsOpenChangesAsANewOneLooks() {
    QFETCH(int, from);
    QFETCH(int, to);
    applyTheme(Theme(from));
    const auto old = furtherDialogs();
    for (const auto &dialog : old) {
        dialog->resize(900, 600);
        dialog->show();
    }
    QApplication::processEvents();
    applyTheme(Theme(to));
    QApplication::processEvents();
    const auto made = furtherDialogs();
    for (std::size_t at = 0; at < made.size(); ++at) {
        made[at]->resize(900, 600);
        made[at]->show();
        QApplication::processEvents();
        const QImage one = old[at]->grab().toImage();
        const QImage other = made[at]->grab().toImage();
        const double parts = differing(one, other);
        if (const QString folder = qEnvironmentVariable("NV_SCREENSHOTS"); !folder.isEmpty()) {
            one.save(QStringLiteral("%1/theme-%2-old.png").arg(folder).arg(at));
            other.save(QStringLiteral("%1/theme-%2-new.png").arg(folder).arg(at));
        }
        QVERIFY2(parts < 1, qPrintable(made[at]->objectName() + QString::number(parts)));
    }
}

void ThemesTest::theGuideHasTheColoursOfNow() {
    applyTheme(Theme::Light);
    GuideForm guide(docsFolder() / "guide");
    guide.show();
    auto &page = child<GuidePage>(guide, "guidePage");
    const auto linkColour = [&page] {
        for (QTextBlock block = page.document()->begin(); block.isValid(); block = block.next())
            for (auto part = block.begin(); !part.atEnd(); ++part)
                if (part.fragment().charFormat().isAnchor())
                    return part.fragment().charFormat().foreground().color().name();
        return QString();
    };
    const QString file = page.file();
    QCOMPARE(linkColour(), QApplication::palette().color(QPalette::Link).name());
    const QString light = linkColour();
    applyTheme(Theme::Dark);
    QApplication::processEvents();
    QCOMPARE(linkColour(), QApplication::palette().color(QPalette::Link).name());
    QVERIFY(linkColour() != light);
    QCOMPARE(page.file(), file);
    QVERIFY(!page.isBackwardAvailable());
}

void ThemesTest::theSearchBarsFaultIsReadInBothThemes() {
    applyTheme(Theme::Light);
    SearchBar bar;
    bar.show();
    bar.showMessage(QStringLiteral("No such field"), SearchBar::Tone::fault);
    auto &message = child<QLabel>(bar, "labSearchMessage");
    for (const Theme theme : {Theme::Dark, Theme::Light, Theme::Dark}) {
        applyTheme(theme);
        QApplication::processEvents();
        const QPalette palette = QApplication::palette();
        QVERIFY(contrast(message.palette().color(QPalette::WindowText),
                         palette.color(QPalette::Window)) >= 4.5);
        QCOMPARE(message.palette().color(QPalette::Window), palette.color(QPalette::Window));
        QVERIFY(message.palette().color(QPalette::WindowText) !=
                palette.color(QPalette::WindowText));
    }
    bar.showMessage(QStringLiteral("Three letters"));
    QCOMPARE(message.palette().color(QPalette::WindowText),
             QApplication::palette().color(QPalette::WindowText));
}

void ThemesTest::theSystemsChangeIsFollowed() {
    Desk desk;
    applyTheme(Theme::System);
    const QColor ofSystem = QApplication::palette().color(QPalette::Window);
    MainForm form(desk.program, desk.dialogs);
    form.show();
    applyTheme(ofSystem.lightness() > 128 ? Theme::Dark : Theme::Light); // as if it had been so
    QVERIFY(QApplication::palette().color(QPalette::Window) != ofSystem);
    QEvent changed(QEvent::ThemeChange);
    QApplication::sendEvent(&form, &changed);
    QTRY_COMPARE(QApplication::palette().color(QPalette::Window), ofSystem);
    // Who has chosen a theme keeps it.
    trigger(form, "actThemeDark");
    const QColor dark = QApplication::palette().color(QPalette::Window);
    QApplication::sendEvent(&form, &changed);
    QApplication::processEvents();
    QCOMPARE(QApplication::palette().color(QPalette::Window), dark);
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::ThemesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "themes_test.moc"
