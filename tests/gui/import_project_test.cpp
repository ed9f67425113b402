// The project and the zone that the wizard names before an import.
#include "app/program/Zones.h"
#include "gui/Desk.h"
#include "platform/qt/QtText.h"
#include "ui/frame/WelcomePage.h"
#include "ui/import/ImportForm.h"
#include "ui/table/TableTab.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <SQLiteCpp/Database.h>

namespace nv {

using namespace test;

class ImportProjectTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();
    void theProjectIsNamedBesideTheEvidence();
    void theProjectCanBeChosenByTheClassicDialog();
    void anotherProjectIsOnlyOverwrittenAfterAQuestion();
    void whileAProjectIsOpenNoneIsAskedFor();
    void utcIsOfferedFirst();

  private:
    QPushButton &button(const char *name) {
        return child<QPushButton>(child<WelcomePage>(*m_form, "WelcomePage"), name);
    }
    bool isOpen() const { return m_desk->program.state.projectDB.isOpen(); }
    int rows() { return child<TableTab>(*m_form, "TableTab").grid().model()->rowCount(); }
    void choose(const fs::path &folder) {
        m_desk->dialogs.answer = folder;
        button("btnStepFolder").click();
    }
    static void nameProject(ImportForm &wizard, const fs::path &file) {
        child<QLineEdit>(wizard, "txtImportProject").setText(pathToQt(file));
    }
    /// Looks at the wizard's page of what was found, and leaves it or imports.
    void check(const std::function<void(ImportForm &)> &look, bool imports);
    fs::path suggested() const { return m_desk->folder.path() / "evidence 2011-06-15.nvp"; }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void ImportProjectTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 800);
    m_form->show();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
}

void ImportProjectTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void ImportProjectTest::check(const std::function<void(ImportForm &)> &look, bool imports) {
    whenShown<ImportForm>([&](ImportForm &wizard) {
        QVERIFY(waitFor([&wizard] { return wizard.isReady(); }));
        look(wizard);
        if (!imports)
            return wizard.reject();
        child<QPushButton>(wizard, "btnNext").click();
        child<QPushButton>(wizard, "btnNext").click();
    });
    button("btnStepCheck").click();
}

void ImportProjectTest::theProjectIsNamedBesideTheEvidence() {
    choose(makeEvidence(m_desk->folder));
    check(
        [this](ImportForm &wizard) {
            auto &name = child<QLineEdit>(wizard, "txtImportProject");
            QVERIFY(name.isVisible());
            QCOMPARE(name.text(), pathToQt(suggested()));
            auto &next = child<QPushButton>(wizard, "btnNext");
            name.clear();
            QVERIFY(!next.isEnabled());
            name.setText(pathToQt(m_desk->folder.path() / "mine"));
            QVERIFY(next.isEnabled());
        },
        false);
    QVERIFY(child<QLabel>(*m_form, "labStepCheck")
                .text()
                .endsWith(QStringLiteral("Project: mine.nvp")));
    whenShown<ImportForm>([](ImportForm &wizard) {
        auto &next = child<QPushButton>(wizard, "btnNext");
        QVERIFY(waitFor([&next] { return next.text() == QStringLiteral("Finished"); }));
        next.click();
    });
    button("btnStepImport").click();
    QCOMPARE(m_desk->program.state.projectDBPath, m_desk->folder.path() / "mine.nvp");
    QCOMPARE(m_desk->dialogs.projectsAsked, 0);
    QVERIFY(m_desk->examiner.heard.empty());
    QCOMPARE(rows(), 6);
}

void ImportProjectTest::theProjectCanBeChosenByTheClassicDialog() {
    choose(makeEvidence(m_desk->folder));
    m_desk->folder.write("case.nvp", "another one, which the dialog has asked about");
    check(
        [this](ImportForm &wizard) {
            m_desk->dialogs.answer.reset();
            QTest::keyClick(&child<QPushButton>(wizard, "btnImportProject"), Qt::Key_Space);
            QCOMPARE(child<QLineEdit>(wizard, "txtImportProject").text(), pathToQt(suggested()));
            m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
            QTest::keyClick(&child<QPushButton>(wizard, "btnImportProject"), Qt::Key_Space);
        },
        true);
    QCOMPARE(m_desk->dialogs.projectsAsked, 2);
    QVERIFY(m_desk->examiner.heard.empty());
    QCOMPARE(m_desk->program.state.projectDBPath, m_desk->folder.path() / "case.nvp");
    QCOMPARE(rows(), 6);
}

void ImportProjectTest::anotherProjectIsOnlyOverwrittenAfterAQuestion() {
    choose(makeEvidence(m_desk->folder));
    const fs::path other = m_desk->folder.write("other.nvp", "another one");
    m_desk->examiner.script = {Answer::No};
    check(
        [&](ImportForm &wizard) {
            nameProject(wizard, other);
            child<QPushButton>(wizard, "btnNext").click();
            QCOMPARE(m_desk->examiner.heard, std::vector<std::string>{"overwrite-project"});
            QVERIFY(wizard.isReady());
        },
        false);
    QVERIFY(!isOpen());
    QCOMPARE(fs::file_size(other), std::uintmax_t{11});
}

void ImportProjectTest::whileAProjectIsOpenNoneIsAskedFor() {
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    const fs::path evidence = makeEvidence(m_desk->folder);
    whenShown<ImportForm>([evidence](ImportForm &wizard) {
        child<QLineEdit>(wizard, "txtStartingDirectory").setText(pathToQt(evidence));
        child<QPushButton>(wizard, "btnNext").click();
        QVERIFY(waitFor([&wizard] { return wizard.isReady(); }));
        QVERIFY(!child<QLineEdit>(wizard, "txtImportProject").isVisible());
        wizard.reject();
    });
    trigger(*m_form, "actImport");
}

/// The zone of the examiner's machine says nothing of the evidence.
void ImportProjectTest::utcIsOfferedFirst() {
    choose(makeEvidence(m_desk->folder));
    check(
        [](ImportForm &wizard) {
            const auto &zones = child<QComboBox>(wizard, "cbImportZone");
            QCOMPARE(zones.itemText(0), QStringLiteral("UTC"));
            QCOMPARE(zones.currentIndex(), 0);
            QVERIFY(zones.itemText(1).endsWith(QStringLiteral("(of this program)")));
            QCOMPARE(child<QLabel>(wizard, "labZoneQuestion").text(),
                     QStringLiteral("Times are shown in:"));
        },
        true);
    QCOMPARE(zoneKey(m_desk->program.state.gmtZone), std::string("UTC"));
    QCOMPARE(m_desk->program.state.projectDB.connection()
                 .execAndGet("SELECT round(max(abs(ActionDateLocal - ActionDateUTC)) * 1440) "
                             "FROM URLs")
                 .getDouble(),
             0.0);
    trigger(*m_form, "actClose");
    choose(m_desk->folder.path() / "evidence");
    m_desk->program.state.gmtZone.exact = exactZoneNamed(m_desk->program, "Europe/Berlin");
    check(
        [](ImportForm &wizard) {
            QCOMPARE(child<QComboBox>(wizard, "cbImportZone").currentText(),
                     QStringLiteral("Europe/Berlin (of this program)"));
        },
        false);
}

} // namespace nv

QTEST_MAIN(nv::ImportProjectTest)
#include "import_project_test.moc"
