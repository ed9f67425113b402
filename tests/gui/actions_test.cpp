#include "gui/Desk.h"

#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QToolBar>

#include <map>
#include <set>

// What all commands of the main window share.
namespace nv {

using namespace test;

class ActionsTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void everyActionHasATextATooltipAndAMenu();
    void shortcutsAreUnique();
    void mnemonicsAreUniqueInTheirMenu();
    void tooltipsNameTheKeys();
    void theToolbarFitsIntoASmallWindow();

  private:
    /// The commands of the window itself, without those of its panes.
    QList<QAction *> actions() {
        return m_form->findChildren<QAction *>(Qt::FindDirectChildrenOnly);
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void ActionsTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->show();
}

void ActionsTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void ActionsTest::everyActionHasATextATooltipAndAMenu() {
    std::set<QAction *> inMenus;
    int twice = 0;
    const std::function<void(const QMenu &)> walk = [&](const QMenu &menu) {
        for (QAction *entry : menu.actions())
            if (entry->menu())
                walk(*entry->menu());
            else if (!entry->isSeparator() && !inMenus.insert(entry).second)
                ++twice;
    };
    for (const QAction *top : m_form->menuBar()->actions())
        walk(*top->menu());
    QCOMPARE(twice, 0);
    QVERIFY(actions().size() > 30);
    for (QAction *action : actions()) {
        const QByteArray name = action->objectName().toUtf8();
        QVERIFY2(!action->text().isEmpty() && !name.isEmpty(), name.constData());
        QVERIFY2(!action->toolTip().isEmpty(), name.constData());
        QVERIFY2(inMenus.contains(action), name.constData());
    }
}

void ActionsTest::shortcutsAreUnique() {
    std::map<QString, QString> taken;
    for (const QAction *action : actions())
        for (const QKeySequence &key : action->shortcuts()) {
            const auto [place, isNew] = taken.emplace(key.toString(), action->objectName());
            QVERIFY2(isNew, qPrintable(key.toString() + u' ' + action->objectName() + u' ' +
                                       place->second));
        }
    QVERIFY(taken.size() > 15);
}

void ActionsTest::mnemonicsAreUniqueInTheirMenu() {
    openExample(*m_desk, *m_form);
    const std::function<void(const QList<QAction *> &)> walk = [&](const QList<QAction *> &list) {
        std::set<QString> taken;
        for (const QAction *entry : list) {
            const QString key = QKeySequence::mnemonic(entry->text()).toString();
            QVERIFY2(key.isEmpty() || taken.insert(key).second, qPrintable(entry->text()));
            if (entry->menu())
                walk(entry->menu()->actions());
        }
    };
    walk(m_form->menuBar()->actions());
}

void ActionsTest::tooltipsNameTheKeys() {
    for (const QAction *action : actions())
        if (!action->shortcut().isEmpty())
            QVERIFY2(action->toolTip().endsWith(QStringLiteral("(%1)").arg(
                         action->shortcut().toString(QKeySequence::NativeText))),
                     qPrintable(action->objectName()));
}

void ActionsTest::theToolbarFitsIntoASmallWindow() {
    m_form->resize(1280, 800);
    QTest::qWait(10);
    auto &bar = child<QToolBar>(*m_form, "toolBar");
    for (QAction *action : bar.actions())
        QVERIFY2(bar.widgetForAction(action)->isVisible(), qPrintable(action->objectName()));
}

} // namespace nv

QTEST_MAIN(nv::ActionsTest)
#include "actions_test.moc"
