#include "gui/Boxes.h"
#include "gui/CachedSite.h"
#include "platform/qt/PageGuard.h"

#include <QAbstractButton>
#include <QDialog>
#include <QLabel>
#include <QTabWidget>
#include <QToolBar>

// Whoever has no mouse gets everywhere by Tab.
namespace nv {

using namespace test;

namespace {

QString told(const QWidget &widget) {
    return QStringLiteral("%1 %2").arg(QLatin1String(widget.metaObject()->className()),
                                       widget.objectName());
}

/// All that Tab leads to. Where a text or a list takes Tab for itself, Ctrl+Tab leads on.
std::set<const QWidget *> reachedIn(QWidget &window) {
    constexpr int kMostSteps = 400;
    constexpr int kAround = 20; ///< steps that lead to nothing new
    std::set<const QWidget *> reached;
    int known = 0;
    for (int step = 0; step < kMostSteps && known < kAround; ++step) {
        QWidget *now = window.focusWidget() ? window.focusWidget() : &window;
        known = reached.insert(now).second ? 0 : known + 1;
        QTest::keyClick(now, Qt::Key_Tab);
        if (window.focusWidget() == now)
            QTest::keyClick(now, Qt::Key_Tab, Qt::ControlModifier);
    }
    return reached;
}

bool isOneOfMany(const QWidget &box) {
    const auto *button = qobject_cast<const QAbstractButton *>(&box);
    return button && button->autoExclusive();
}

/// Of buttons of which one is chosen, arrows lead from the one that Tab leads to to the others.
bool isReached(const QWidget &box, const std::set<const QWidget *> &reached) {
    if (isOneOfMany(box))
        return std::ranges::any_of(reached, [&box](const QWidget *each) {
            return isOneOfMany(*each) && each->parentWidget() == box.parentWidget();
        });
    return std::ranges::any_of(reached, [&box](const QWidget *each) {
        return each == &box || each->focusProxy() == &box || box.focusProxy() == each;
    });
}

/// Commands of a tool bar stand in the menus too.
bool isOfToolBar(const QWidget &box) {
    for (const QWidget *parent = &box; parent; parent = parent->parentWidget())
        if (qobject_cast<const QToolBar *>(parent))
            return true;
    return false;
}

QStringList unreachedIn(QWidget &window) {
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window))
        return {QStringLiteral("the window isn't active")};
    const auto reached = reachedIn(window);
    QStringList unreached;
    for (QWidget *box : window.findChildren<QWidget *>()) {
        const bool showsOnly = box->testAttribute(Qt::WA_TransparentForMouseEvents);
        if (box->window() != &window || !box->isVisible() || !box->isEnabled() || showsOnly ||
            isOfToolBar(*box))
            continue;
        QAccessibleInterface *said = QAccessible::queryAccessibleInterface(box);
        const bool isProgress = said && said->role() == QAccessible::ProgressBar;
        if (said && isBox(said->role()) && !isProgress && !isInner(*said) &&
            !isReached(*box, reached) && !qobject_cast<QLabel *>(box))
            unreached += told(*box);
    }
    unreached.removeDuplicates();
    return unreached;
}

} // namespace

class TabOrderTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void theFirstPage();
    void theWindow_data();
    void theWindow();
    void theDialogs_data();
    void theDialogs();
    void theOtherWindows();

  private:
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void TabOrderTest::init() {
    m_desk = std::make_unique<Desk>();
    rememberFlag(m_desk->program.settings, "ShowPlaces", true);
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 800);
    m_form->show();
}

void TabOrderTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void TabOrderTest::theFirstPage() {
    const QStringList unreached = unreachedIn(*m_form);
    QVERIFY2(unreached.isEmpty(), qPrintable(unreached.join(u'|')));
}

void TabOrderTest::theWindow_data() {
    QTest::addColumn<QString>("pane");
    for (const char *pane : {"BrowserPane", "AuditPane", "LinksPane", "TextPane", "PicturePane",
                             "HexPane", "NotesPane", "ReportPane"})
        QTest::newRow(pane) << QString::fromLatin1(pane);
}

void TabOrderTest::theWindow() {
    QFETCH(QString, pane);
    openExample(*m_desk, *m_form);
    trigger(*m_form, "actTime");
    trigger(*m_form, "actTags");
    trigger(*m_form, "actFind");
    child<QLineEdit>(*m_form, "txtSearch").setText(QStringLiteral("example"));
    QTest::keyClick(&child<QLineEdit>(*m_form, "txtSearch"), Qt::Key_Return);
    QVERIFY(waitFor([this] { return child<QLabel>(*m_form, "labSnippet").isVisible(); }));
    child<QTabWidget>(*m_form, "viewerTabs").setCurrentWidget(m_form->findChild<QWidget *>(pane));
    QTest::qWait(100);
    const QStringList unreached = unreachedIn(*m_form);
    QVERIFY2(unreached.isEmpty(), qPrintable(unreached.join(u'|')));
}

void TabOrderTest::theDialogs_data() {
    QTest::addColumn<QString>("action");
    for (const char *action :
         {"actColumns", "actFilters", "actImport", "actExport", "actCreateReport", "actOptions",
          "actTimeZone", "actErrorLog", "actTips", "actUpgradeWizard", "actLayoutSaveAs",
          "actQueryForm", "actCaseTrail", "actHashSets"})
        QTest::newRow(action) << QString::fromLatin1(action);
}

void TabOrderTest::theDialogs() {
    QFETCH(QString, action);
    openExample(*m_desk, *m_form);
    auto *found = m_form->findChild<QAction *>(action);
    QVERIFY2(found, qPrintable(action));
    QStringList unreached{QStringLiteral("no dialog came")};
    QTimer::singleShot(0, qApp, [&unreached] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        unreached = unreachedIn(*dialog);
        dialog->reject();
    });
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    m_desk->examiner.script = {Answer::Yes};
    found->trigger();
    QVERIFY2(unreached.isEmpty(), qPrintable(unreached.join(u'|')));
}

void TabOrderTest::theOtherWindows() {
    for (const auto &dialog : furtherDialogs()) {
        dialog->show();
        const QStringList unreached = unreachedIn(*dialog);
        QVERIFY2(unreached.isEmpty(), qPrintable(told(*dialog) + u':' + unreached.join(u'|')));
    }
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::TabOrderTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tab_order_test.moc"
