#include "gui/Boxes.h"
#include "gui/Desk.h"

#include <QComboBox>
#include <QDialog>

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

class AccessibleNamesTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();
    void everyBoxOfTheWindowHasAName();
    void everyBoxOfADialogHasAName_data();
    void everyBoxOfADialogHasAName();
    void everyBoxOfTheOtherWindowsHasAName();
    void everyBoxOfTheChoiceOfAPartHasAName();
    void aComboBoxSaysItsNameAndItsValue();

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

void AccessibleNamesTest::everyBoxOfTheOtherWindowsHasAName() {
    for (const auto &dialog : furtherDialogs()) {
        const QStringList nameless = namelessIn(*dialog);
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

} // namespace nv

QTEST_MAIN(nv::AccessibleNamesTest)
#include "accessible_names_test.moc"
