#include "app/project/RecentFiles.h"
#include "gui/Desk.h"
#include "platform/qt/PageGuard.h"
#include "ui/frame/FocusRing.h"
#include "ui/frame/Theme.h"
#include "ui/limits/TimeStrip.h"
#include "ui/table/TableTab.h"

#include <QComboBox>
#include <QLabel>
#include <QSet>
#include <QTabWidget>
#include <QToolButton>

// Who works with keys sees where they go, and they go from top to bottom.
namespace nv {

using namespace test;

class FocusTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void everyStopOfTabHasARing_data();
    void everyStopOfTabHasARing();
    void theRingComesWithKeysAndGoesWithTheMouse();
    void theRingLastsThroughAChangeOfTheme();
    void tabGoesFromTopToBottom();
    void chipsStandWhereTheyAreSeen();
    void f6LeadsThroughTheAreas();
    void f6LeadsToWhatCanBeUsed();
    void f6LeadsThroughTheFirstPage();
    void tabGoesDownTheFirstPage();

  private:
    QWidget *focus() { return m_form->focusWidget(); }
    FocusRing *ringAround(const QWidget *widget) {
        for (FocusRing *ring : m_form->findChildren<FocusRing *>())
            if (ring->widget() == widget && ring->isVisible())
                return ring;
        return nullptr;
    }
    void openAll();
    /// Their names in the order of Tab, from the box of the search on.
    QStringList namesByTab();

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void FocusTest::init() {
    m_desk = std::make_unique<Desk>();
    rememberFlag(m_desk->program.settings, "ShowPlaces", true);
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 800);
    m_form->show();
    m_form->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
    QTest::keyClick(m_form.get(), Qt::Key_Shift);
}

void FocusTest::cleanup() {
    m_form.reset();
    m_desk.reset();
    applyTheme(Theme::System);
}

void FocusTest::openAll() {
    openExample(*m_desk, *m_form);
    child<QAction>(*m_form, "actTime").setChecked(true);
    child<TableTab>(*m_form, "TableTab").filterByHost(QStringLiteral("example"));
    QVERIFY(waitFor([this] { return m_form->findChild<QToolButton *>("btnChip0") != nullptr; }));
    m_form->activateWindow(); // which the windows of the import have taken
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
}

QStringList FocusTest::namesByTab() {
    auto &search = child<QLineEdit>(*m_form, "txtSearch");
    search.setFocus();
    QStringList names;
    constexpr int kMost = 100;
    for (int stop = 0; stop < kMost; ++stop) {
        names += focus()->objectName();
        QTest::keyClick(focus(), Qt::Key_Tab);
        if (focus() == &search)
            break;
    }
    return names;
}

void FocusTest::everyStopOfTabHasARing_data() {
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

/// A line of the theme's accent lies along its edge. NV_SCREENSHOTS keeps them to be looked at.
void FocusTest::everyStopOfTabHasARing() {
    QFETCH(bool, dark);
    applyTheme(dark ? Theme::Dark : Theme::Light);
    openAll();
    child<QLineEdit>(*m_form, "txtSearch").setFocus();
    QSet<QWidget *> seen;
    while (!seen.contains(focus())) {
        seen += focus();
        QApplication::processEvents();
        const FocusRing *ring = ringAround(focus());
        QVERIFY2(ring, qPrintable(focus()->objectName()));
        const QImage shot = m_form->grab().toImage();
        const QWidget &around = *ring->parentWidget(); // what scrolls has its ring within
        const QRect drawn = ring->geometry() & around.rect();
        const QRect place(around.mapTo(m_form.get(), drawn.topLeft()), drawn.size());
        const QColor line = shot.pixelColor(place.left() + place.width() / 2, place.top() + 1);
        QVERIFY2(line == QApplication::palette().color(QPalette::Link),
                 qPrintable(focus()->objectName() + u' ' + line.name()));
        if (const QString folder = qEnvironmentVariable("NV_SCREENSHOTS");
            !folder.isEmpty() && focus()->objectName() == QStringLiteral("TimeStrip"))
            shot.save(QStringLiteral("%1/focus-%2.png").arg(folder).arg(int(dark)));
        QTest::keyClick(focus(), Qt::Key_Tab);
    }
    QVERIFY2(seen.size() > 20, qPrintable(QString::number(seen.size())));
}

void FocusTest::theRingComesWithKeysAndGoesWithTheMouse() {
    openAll();
    auto &grid = child<TableTab>(*m_form, "TableTab").grid();
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, QPoint(100, 10));
    QCOMPARE(focus(), &grid);
    QVERIFY(!ringAround(&grid));
    QTest::keyClick(&grid, Qt::Key_Down);
    QVERIFY(ringAround(&grid));
}

void FocusTest::theRingLastsThroughAChangeOfTheme() {
    openAll();
    auto &grid = child<TableTab>(*m_form, "TableTab").grid();
    grid.setFocus();
    QTest::keyClick(&grid, Qt::Key_Down);
    applyTheme(Theme::Dark);
    QTRY_VERIFY(ringAround(&grid));
}

void FocusTest::tabGoesFromTopToBottom() {
    openAll();
    const QStringList names = namesByTab();
    QCOMPARE(focus()->objectName(), QStringLiteral("txtSearch")); // all the way round
    const QStringList expected = {"txtSearch", "btnChip0",   "btnClearLimits",
                                  "cbLayout",  "PlacesTree", "TimeStrip",
                                  "URLGrid",   "cardText",   "viewerTabsBar"};
    qsizetype last = -1;
    for (const QString &name : expected) {
        const qsizetype at =
            name == "viewerTabsBar" ? names.indexOf("btnViewerPin") : names.indexOf(name);
        QVERIFY2(at > last, qPrintable(name + u':' + names.join(u' ')));
        last = at;
    }
    QStringList back;
    for (qsizetype stop = 0; stop < names.size(); ++stop) {
        QTest::keyClick(focus(), Qt::Key_Backtab, Qt::ShiftModifier);
        back.prepend(focus()->objectName());
    }
    QCOMPARE(back, names);
}

/// Also those that come later, and after others have gone.
void FocusTest::chipsStandWhereTheyAreSeen() {
    openAll();
    child<QLineEdit>(*m_form, "txtSearch").setText(QStringLiteral("example"));
    QTest::keyClick(&child<QLineEdit>(*m_form, "txtSearch"), Qt::Key_Return);
    QVERIFY(waitFor([this] { return m_form->findChild<QToolButton *>("btnChip1") != nullptr; }));
    const QStringList names = namesByTab();
    const qsizetype first = names.indexOf("btnChip0");
    QVERIFY(first > 0);
    QCOMPARE(names.mid(first, 4),
             QStringList({"btnChip0", "btnChip1", "btnClearLimits", "cbLayout"}));
}

void FocusTest::f6LeadsThroughTheAreas() {
    openAll();
    child<QLineEdit>(*m_form, "txtSearch").setFocus();
    QStringList reached;
    for (int area = 0; area < 7; ++area) {
        trigger(*m_form, "actNextArea");
        reached += focus()->objectName();
        bool isMarked = false;
        for (const FocusRing *ring : m_form->findChildren<FocusRing *>())
            isMarked |= ring->isVisible() && ring->widget()->isAncestorOf(focus());
        QVERIFY2(isMarked || ringAround(focus()), qPrintable(focus()->objectName()));
    }
    QCOMPARE(reached.mid(0, 6), QStringList({"btnChip0", "cbLayout", "PlacesTree", "TimeStrip",
                                             "URLGrid", "cardText"}));
    trigger(*m_form, "actPreviousArea");
    QCOMPARE(focus()->objectName(), QStringLiteral("cardText"));
    QVERIFY(ringAround(m_form->findChild<QWidget *>("CardPane")));
    child<TableTab>(*m_form, "TableTab").grid().setFocus();
    QVERIFY(!ringAround(m_form->findChild<QWidget *>("CardPane")));
}

/// Whatever is in front: each stop is shown, not grey, and takes keys.
void FocusTest::f6LeadsToWhatCanBeUsed() {
    openAll();
    auto &data = child<QTabWidget>(*m_form, "dataTabs");
    auto &viewers = child<QTabWidget>(*m_form, "viewerTabs");
    for (int tab = 0; tab < data.count(); ++tab)
        for (int pane = 0; pane < viewers.count(); ++pane) {
            data.setCurrentIndex(tab);
            viewers.setCurrentIndex(pane);
            QApplication::processEvents();
            for (int area = 0; area < 8; ++area) {
                trigger(*m_form, "actNextArea");
                QVERIFY(focus() && focus()->isVisible() && focus()->isEnabled());
                QVERIFY2(focus()->focusPolicy() & Qt::TabFocus, qPrintable(focus()->objectName()));
            }
        }
    data.setCurrentIndex(0);
    child<TableTab>(*m_form, "TableTab").filterByHost(QStringLiteral("nothing.has.it"));
    child<QWidget>(*m_form, "TimeStrip").setFocus();
    trigger(*m_form, "actNextArea");
    QCOMPARE(focus()->objectName(), QStringLiteral("btnEmptyShowAll"));
}

void FocusTest::f6LeadsThroughTheFirstPage() {
    trigger(*m_form, "actNextArea");
    QCOMPARE(focus()->objectName(), QStringLiteral("btnStepFolder"));
}

/// The steps on the left, then what stands beside them from above.
void FocusTest::tabGoesDownTheFirstPage() {
    storeFilenameINI(m_desk->program.settings, m_desk->folder.write("case.nvp", "x"));
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->show();
    m_form->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
    QStringList names;
    for (int stop = 0; stop < 6; ++stop) {
        names += focus()->objectName();
        QTest::keyClick(focus(), Qt::Key_Tab);
    }
    QCOMPARE(names, QStringList({"btnStepFolder", "btnStepFiles", "btnRecent1", "btnForget1",
                                 "btnWelcomeOpen", "btnWelcomeNew"}));
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::FocusTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "focus_test.moc"
