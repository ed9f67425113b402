#include "gui/Boxes.h"
#include "gui/Desk.h"
#include "ui/table/TableTab.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>

#include <map>

// What a screen reader is told: the tree of accessible objects, not the widgets behind it.
namespace nv {

using namespace test;

namespace {

void collectNameless(QAccessibleInterface *object, QStringList &nameless) {
    if (!object || !object->isValid())
        return;
    if (isBox(object->role()) && !isInner(*object)) {
        const QString name = object->text(QAccessible::Name).trimmed();
        const bool saysItsValue =
            object->role() == QAccessible::ComboBox && name == object->text(QAccessible::Value);
        if (name.isEmpty() || saysItsValue)
            nameless += object->object()->metaObject()->className() + QStringLiteral(" ") +
                        object->object()->objectName();
    }
    const bool hasCells = object->tableInterface() || object->role() == QAccessible::List;
    for (int at = 0; !hasCells && at < object->childCount(); ++at)
        collectNameless(object->child(at), nameless);
}

QStringList namelessIn(QWidget &window) {
    QStringList nameless;
    collectNameless(QAccessible::queryAccessibleInterface(&window), nameless);
    nameless.removeDuplicates();
    return nameless;
}

} // namespace

namespace {

/// The letters of what stands in a window at once, each with the controls that have it.
QStringList sharedLettersIn(const QWidget &window) {
    std::map<QString, QStringList> taken;
    for (const QWidget *each : window.findChildren<QWidget *>()) {
        if (!each->isVisible() || each->window() != &window)
            continue;
        const auto *label = qobject_cast<const QLabel *>(each);
        const auto *button = qobject_cast<const QAbstractButton *>(each);
        const auto *group = qobject_cast<const QGroupBox *>(each);
        const QString text = label && label->buddy() ? label->text()
                             : button                ? button->text()
                             : group                 ? group->title()
                                                     : QString();
        if (const QString key = QKeySequence::mnemonic(text).toString(); !key.isEmpty())
            taken[key] += text;
    }
    QStringList shared;
    for (const auto &[key, texts] : taken)
        if (texts.size() > 1)
            shared += key + u' ' + texts.join(u'/');
    return shared;
}

/// What of a window a screen reader doesn't name, and letters that lead to two places.
QStringList faultsIn(QWidget &window) {
    return namelessIn(window) + sharedLettersIn(window);
}

/// All below the menu bar.
void collectActions(const QList<QAction *> &actions, std::vector<QPointer<QAction>> &found) {
    for (QAction *action : actions) {
        if (action->menu())
            collectActions(action->menu()->actions(), found);
        else if (!action->isSeparator())
            found.emplace_back(action);
    }
}

} // namespace

class AccessibleNamesTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();
    void everyBoxOfTheWindowHasAName();
    void everyBoxOfADialogHasAName_data();
    void everyBoxOfADialogHasAName();
    void everyDialogOfTheMenusHasNamesAndLettersOfItsOwn();
    void everyBoxOfTheOtherWindowsHasAName();
    void everyBoxOfTheChoiceOfAPartHasAName();
    void aComboBoxSaysItsNameAndItsValue();
    void theTickAndTheIconOfARowAreSaid();

  private:
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void AccessibleNamesTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->show();
    openExample(*m_desk, *m_form);
}

void AccessibleNamesTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void AccessibleNamesTest::everyBoxOfTheWindowHasAName() {
    trigger(*m_form, "actHosts");
    trigger(*m_form, "actFind");
    QCOMPARE(namelessIn(*m_form), QStringList());
    trigger(*m_form, "actClose");
    QCOMPARE(namelessIn(*m_form), QStringList());
}

void AccessibleNamesTest::everyBoxOfADialogHasAName_data() {
    QTest::addColumn<QString>("action");
    for (const char *action :
         {"actColumns", "actFilters", "actImport", "actExport", "actCreateReport", "actCaseTrail",
          "actImportSummary", "actOptions", "actTimeZone", "actErrorLog", "actTips",
          "actUpgradeWizard", "actLayoutSaveAs", "actQueryForm", "actHashSets"})
        QTest::newRow(action) << QString::fromLatin1(action);
}

void AccessibleNamesTest::everyBoxOfADialogHasAName() {
    QFETCH(QString, action);
    auto *found = m_form->findChild<QAction *>(action);
    QVERIFY2(found, qPrintable(action));
    QStringList nameless{QStringLiteral("no dialog came")};
    QTimer::singleShot(0, qApp, [&nameless] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        nameless = namelessIn(*dialog);
        dialog->reject();
    });
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    m_desk->examiner.script = {Answer::Yes};
    found->trigger();
    QCOMPARE(nameless, QStringList());
}

/// Each command that ends with dots asks for something: a dialog comes, or a choice of files.
void AccessibleNamesTest::everyDialogOfTheMenusHasNamesAndLettersOfItsOwn() {
    std::vector<QPointer<QAction>> actions; // some come anew with what is done
    collectActions(m_form->menuBar()->actions(), actions);
    std::set<QString> came;
    QStringList faults;
    m_desk->dialogs.answer.reset();                          // choices of files are given up
    const std::set<QString> leaving = {"actNew", "actOpen"}; // they close the project first
    for (const QPointer<QAction> &action : actions) {
        if (!action || !action->text().endsWith(QStringLiteral("...")) || !action->isEnabled() ||
            leaving.contains(action->objectName()))
            continue;
        const QString name = action->objectName();
        QTimer closing;
        connect(&closing, &QTimer::timeout, this, [&] {
            auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            came.insert(name);
            for (const QString &fault : faultsIn(*dialog))
                faults += name + QStringLiteral(": ") + fault;
            dialog->reject();
        });
        closing.start(20);
        action->trigger();
        QTest::qWait(30);
    }
    QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
    const QStringList all(came.begin(), came.end());
    QVERIFY2(all.size() >= 14, qPrintable(all.join(u' ')));
}

void AccessibleNamesTest::everyBoxOfTheOtherWindowsHasAName() {
    for (const auto &dialog : furtherDialogs()) {
        dialog->show();
        const QStringList nameless = faultsIn(*dialog);
        QVERIFY2(nameless.isEmpty(), qPrintable(dialog->objectName() + nameless.join(u'|')));
    }
    QCOMPARE(namelessIn(m_desk->status), QStringList());
}

/// The reason why a record can't stand there is told to who can't see it, too.
void AccessibleNamesTest::everyBoxOfTheChoiceOfAPartHasAName() {
    PartQuestion question;
    question.address = "https://host/a.png";
    question.alternatives.resize(2);
    PartChoiceForm form(question, [](UrlId) { return std::string("it has no content"); });
    form.show();
    QCOMPARE(namelessIn(form), QStringList());
    auto &other = child<QLineEdit>(form, "txtOtherPart");
    QTest::keyClicks(&other, QStringLiteral("7"));
    form.accept();
    QVERIFY(form.isVisible());
    QCOMPARE(namelessIn(form), QStringList());
    QAccessibleInterface *said = QAccessible::queryAccessibleInterface(&other);
    QCOMPARE(said->text(QAccessible::Description), QStringLiteral("it has no content"));
    QTest::keyClicks(&other, QStringLiteral("8"));
    QVERIFY(said->text(QAccessible::Description) != QStringLiteral("it has no content"));
}

void AccessibleNamesTest::aComboBoxSaysItsNameAndItsValue() {
    auto &box = child<QComboBox>(*m_form, "cbLayout");
    QAccessibleInterface *said = QAccessible::queryAccessibleInterface(&box);
    QCOMPARE(said->text(QAccessible::Name), QStringLiteral("Layout"));
    QCOMPARE(said->text(QAccessible::Value), QStringLiteral("Examiner"));
    QCOMPARE(said->childCount(), 1);
    QVERIFY(said->indexOfChild(said->child(0)) == 0);
    said->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    QTRY_VERIFY(said->state().expanded);
    said->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    QTRY_VERIFY(!said->state().expanded);
}

/// The keys stand in the first column when the table opens.
void AccessibleNamesTest::theTickAndTheIconOfARowAreSaid() {
    auto &grid = child<TableTab>(*m_form, "TableTab").grid();
    auto *table = QAccessible::queryAccessibleInterface(&grid)->tableInterface();
    const auto cell = [&](UrlColumn column) {
        return table->cellAt(0, UrlModel::sectionOf(column));
    };
    const auto headings = cell(UrlColumn::Tag)->tableCellInterface()->columnHeaderCells();
    QCOMPARE(headings.size(), 1);
    QCOMPARE(headings[0]->text(QAccessible::Name), QStringLiteral("Tick"));
    QCOMPARE(cell(UrlColumn::Tag)->text(QAccessible::Name), QStringLiteral("Not ticked"));
    QVERIFY(cell(UrlColumn::Tag)->state().checkable && !cell(UrlColumn::Tag)->state().checked);
    grid.setCurrentIndex(grid.model()->index(0, UrlModel::sectionOf(UrlColumn::Tag)));
    QTest::keyClick(&grid, Qt::Key_Space);
    QCOMPARE(cell(UrlColumn::Tag)->text(QAccessible::Name), QStringLiteral("Ticked"));
    QVERIFY(cell(UrlColumn::Tag)->state().checked);
    QVERIFY(!cell(UrlColumn::Icon)->text(QAccessible::Name).isEmpty());
    QVERIFY(!cell(UrlColumn::Host)->state().checkable);
    // A click sets the tick once.
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {},
                      grid.visualRect(grid.currentIndex()).center());
    QCOMPARE(cell(UrlColumn::Tag)->text(QAccessible::Name), QStringLiteral("Not ticked"));
}

} // namespace nv

QTEST_MAIN(nv::AccessibleNamesTest)
#include "accessible_names_test.moc"
