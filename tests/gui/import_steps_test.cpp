// The way from evidence to rows: the first page with its steps and recent projects, and what is
// dropped on a window.
#include "gui/Desk.h"
#include "platform/qt/QtText.h"
#include "ui/frame/WelcomePage.h"
#include "ui/import/ImportForm.h"
#include "ui/table/TableTab.h"

#include <QCommandLinkButton>
#include <QDragEnterEvent>
#include <QLabel>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>

namespace nv {

using namespace test;

class ImportStepsTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();
    void eachStepWaitsForTheOneBefore();
    void theStepsLeadToRowsByKeysAlone();
    void theCheckIsKeptUntilTheImport();
    void theCheckOutlivesTheProject();
    void anotherChoiceHasToBeCheckedAnew();
    void aProjectIsNotMadeAmongTheEvidence();
    void aProjectWithoutRecordsShowsTheSteps();
    void recentProjectsOpenByOneClick();
    void aRecentProjectThatIsGoneSaysSo();
    void aForgottenProjectLeavesPageAndMenu();
    void severalFoldersAreDroppedTogether();
    void whatIsNotTakenIsToldWithItsReason();
    void aProjectAndEvidenceAreDroppedTogether();
    void theWizardTakesWhatIsDroppedOnIt();
    void furtherPlacesCanBeTakenAway();

  private:
    bool isOpen() const { return m_desk->program.state.projectDB.isOpen(); }
    QWidget &welcome() { return child<WelcomePage>(*m_form, "WelcomePage"); }
    QPushButton &button(const char *name) { return child<QPushButton>(welcome(), name); }
    QString text(const char *name) { return child<QLabel>(welcome(), name).text(); }
    /// By the dialog, as an examiner chooses it.
    void chooseFolder(const fs::path &folder);
    void drop(QWidget &target, const QList<QUrl> &urls);
    static QList<QUrl> urlsOf(const std::vector<fs::path> &paths);
    /// Lets the check begin and end.
    static void waitForCheck(ImportForm &wizard);
    static void nameProject(ImportForm &wizard, const fs::path &file) {
        child<QLineEdit>(wizard, "txtImportProject").setText(pathToQt(file));
    }
    void importByTheThirdStep();
    fs::path secondEvidence();
    int rows() { return child<TableTab>(*m_form, "TableTab").grid().model()->rowCount(); }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void ImportStepsTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 800);
    m_form->show();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
}

void ImportStepsTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void ImportStepsTest::chooseFolder(const fs::path &folder) {
    m_desk->dialogs.answer = folder;
    button("btnStepFolder").click();
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
}

QList<QUrl> ImportStepsTest::urlsOf(const std::vector<fs::path> &paths) {
    QList<QUrl> urls;
    for (const fs::path &path : paths)
        urls += QUrl::fromLocalFile(pathToQt(path));
    return urls;
}

void ImportStepsTest::drop(QWidget &target, const QList<QUrl> &urls) {
    QMimeData data;
    data.setUrls(urls);
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&target, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent event(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&target, &event);
}

void ImportStepsTest::waitForCheck(ImportForm &wizard) {
    QVERIFY(waitFor([&wizard] { return wizard.isReady(); }));
}

void ImportStepsTest::importByTheThirdStep() {
    whenShown<ImportForm>([](ImportForm &wizard) {
        auto &next = child<QPushButton>(wizard, "btnNext");
        QVERIFY(waitFor([&next] { return next.text() == QStringLiteral("Finished"); }));
        next.click();
    });
    button("btnStepImport").click();
}

fs::path ImportStepsTest::secondEvidence() {
    IndexDat index;
    index.add({.url = "Visited: bob@http://c.example/", .secondDate = fileTime(2011, 3, 1, 12)});
    m_desk->folder.write("phone/History.IE5/index.dat", index.bytes());
    return m_desk->folder.path() / "phone";
}

void ImportStepsTest::eachStepWaitsForTheOneBefore() {
    QVERIFY(button("btnStepFolder").isEnabled());
    QVERIFY(!button("btnStepClear").isVisible());
    QVERIFY(!button("btnStepCheck").isEnabled());
    QVERIFY(!button("btnStepImport").isEnabled());
    QVERIFY(text("labStepCheck").contains(QStringLiteral("Waits for evidence")));
    const fs::path evidence = makeEvidence(m_desk->folder);
    chooseFolder(evidence);
    QVERIFY(text("labStepChoose").contains(QStringLiteral("evidence")));
    QVERIFY(button("btnStepCheck").isEnabled());
    QVERIFY(!button("btnStepImport").isEnabled());
    QVERIFY(!isOpen());
    button("btnStepClear").click();
    QVERIFY(!button("btnStepCheck").isEnabled());
}

void ImportStepsTest::theStepsLeadToRowsByKeysAlone() {
    m_desk->dialogs.answer = makeEvidence(m_desk->folder);
    QVERIFY(button("btnStepFolder").hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QVERIFY(button("btnStepCheck").hasFocus());
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    whenShown<ImportForm>([](ImportForm &wizard) {
        waitForCheck(wizard);
        QVERIFY(child<QWidget>(wizard, "ImportGrid").hasFocus());
        QTest::keyClick(&child<QWidget>(wizard, "ImportGrid"), Qt::Key_Return);
        auto &next = child<QPushButton>(wizard, "btnNext");
        QCOMPARE(next.text(), QStringLiteral("Finished"));
        QTest::keyClick(&next, Qt::Key_Return);
    });
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QVERIFY(isOpen());
    QCOMPARE(rows(), 6);
    QVERIFY(!button("btnStepCheck").isEnabled()); // the steps begin anew
}

void ImportStepsTest::theCheckIsKeptUntilTheImport() {
    chooseFolder(makeEvidence(m_desk->folder));
    whenShown<ImportForm>([](ImportForm &wizard) {
        waitForCheck(wizard);
        QCOMPARE(child<QPushButton>(wizard, "btnCancel").text(), QStringLiteral("Close"));
        child<QPushButton>(wizard, "btnCancel").click();
    });
    button("btnStepCheck").click();
    QVERIFY(!isOpen());
    QVERIFY(text("labStepCheck").contains(QStringLiteral("3 of 3 files")));
    QVERIFY(text("labStepCheck").contains(QStringLiteral("Time zone: ")));
    QVERIFY(button("btnStepImport").isEnabled());
    importByTheThirdStep();
    QCOMPARE(rows(), 6);
}

/// A project that is closed takes the import's job with it.
void ImportStepsTest::theCheckOutlivesTheProject() {
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    auto &empty = child<QWidget>(*m_form, "EmptyPage");
    m_desk->dialogs.answer = makeEvidence(m_desk->folder);
    child<QPushButton>(empty, "btnStepFolder").click();
    whenShown<ImportForm>([](ImportForm &wizard) {
        waitForCheck(wizard);
        wizard.reject();
    });
    child<QPushButton>(empty, "btnStepCheck").click();
    trigger(*m_form, "actClose");
    m_desk->dialogs.answer = m_desk->folder.path() / "second.nvp";
    importByTheThirdStep();
    QCOMPARE(rows(), 6);
}

void ImportStepsTest::anotherChoiceHasToBeCheckedAnew() {
    chooseFolder(makeEvidence(m_desk->folder));
    whenShown<ImportForm>([](ImportForm &wizard) {
        waitForCheck(wizard);
        wizard.reject();
    });
    button("btnStepCheck").click();
    QVERIFY(button("btnStepImport").isEnabled());
    chooseFolder(secondEvidence());
    QVERIFY(!button("btnStepImport").isEnabled());
    QVERIFY(text("labStepChoose").contains(QStringLiteral("phone")));
    whenShown<ImportForm>([](ImportForm &wizard) {
        waitForCheck(wizard);
        QVERIFY(wizard.checkedText().contains(QStringLiteral("4 of 4 files")));
        wizard.reject();
    });
    button("btnStepCheck").click();
}

void ImportStepsTest::aProjectIsNotMadeAmongTheEvidence() {
    const fs::path evidence = makeEvidence(m_desk->folder);
    chooseFolder(evidence);
    whenShown<ImportForm>([this, evidence](ImportForm &wizard) {
        waitForCheck(wizard);
        nameProject(wizard, evidence / "case.nvp");
        child<QPushButton>(wizard, "btnNext").click();
        QVERIFY(child<QWidget>(wizard, "txtImportProject").hasFocus());
        QCOMPARE(m_desk->examiner.heard.back(), std::string("lies-in-evidence"));
        QVERIFY(wizard.isReady());
        wizard.reject();
    });
    button("btnStepCheck").click();
    QVERIFY(!fs::exists(evidence / "case.nvp"));
    QVERIFY(!isOpen());
}

void ImportStepsTest::aProjectWithoutRecordsShowsTheSteps() {
    chooseFolder(makeEvidence(m_desk->folder));
    trigger(*m_form, "actNew");
    auto &empty = child<QWidget>(*m_form, "EmptyPage");
    QVERIFY(child<QPushButton>(empty, "btnStepCheck").isVisible());
    QVERIFY(child<QPushButton>(empty, "btnStepCheck").isEnabled()); // what was chosen stays
    whenShown<ImportForm>([](ImportForm &wizard) {
        waitForCheck(wizard);
        child<QPushButton>(wizard, "btnNext").click();
        child<QPushButton>(wizard, "btnNext").click();
    });
    child<QPushButton>(empty, "btnStepCheck").click();
    QCOMPARE(rows(), 6);
    QVERIFY(!empty.isVisible());
}

void ImportStepsTest::recentProjectsOpenByOneClick() {
    QVERIFY(child<QLabel>(welcome(), "labNoRecent").isVisible());
    openExample(*m_desk, *m_form);
    trigger(*m_form, "actClose");
    auto &recent = child<QCommandLinkButton>(welcome(), "btnRecent1");
    QTRY_VERIFY(recent.isVisible());
    QCOMPARE(recent.text(), QStringLiteral("case.nvp"));
    QVERIFY(recent.description().contains(QStringLiteral("changed 20")));
    QTest::keyClick(&recent, Qt::Key_Return);
    QVERIFY(isOpen());
    trigger(*m_form, "actClose");
    QTRY_VERIFY(child<QCommandLinkButton>(welcome(), "btnRecent1").isVisible());
    QTest::mouseClick(&child<QCommandLinkButton>(welcome(), "btnRecent1"), Qt::LeftButton);
    QVERIFY(isOpen());
    QCOMPARE(rows(), 6);
}

void ImportStepsTest::aRecentProjectThatIsGoneSaysSo() {
    openExample(*m_desk, *m_form);
    trigger(*m_form, "actClose");
    m_form.reset();
    fs::remove(m_desk->folder.path() / "case.nvp");
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->show();
    auto &recent = child<QCommandLinkButton>(welcome(), "btnRecent1");
    QVERIFY(!recent.isEnabled());
    QVERIFY(recent.description().contains(QStringLiteral("no longer there")));
    QVERIFY(child<QToolButton>(welcome(), "btnForget1").isEnabled());
}

void ImportStepsTest::aForgottenProjectLeavesPageAndMenu() {
    openExample(*m_desk, *m_form);
    trigger(*m_form, "actClose");
    auto &forget = child<QToolButton>(welcome(), "btnForget1");
    QVERIFY(forget.accessibleName().contains(QStringLiteral("case.nvp")));
    QTest::keyClick(&forget, Qt::Key_Space);
    QVERIFY(waitFor([this] { return !welcome().findChild<QToolButton *>("btnForget1"); }));
    QVERIFY(child<QLabel>(welcome(), "labNoRecent").isVisible());
    QVERIFY(!m_form->findChild<QAction *>(QStringLiteral("actRecent1")));
    QVERIFY(fs::exists(m_desk->folder.path() / "case.nvp"));
}

void ImportStepsTest::severalFoldersAreDroppedTogether() {
    const fs::path first = makeEvidence(m_desk->folder);
    const fs::path second = secondEvidence();
    drop(*m_form, urlsOf({first, second}));
    QVERIFY(waitFor([this] { return button("btnStepCheck").isEnabled(); }));
    whenShown<ImportForm>([this](ImportForm &wizard) {
        waitForCheck(wizard);
        nameProject(wizard, m_desk->folder.path() / "case.nvp");
        child<QPushButton>(wizard, "btnNext").click();
        child<QPushButton>(wizard, "btnNext").click();
    });
    button("btnStepCheck").click();
    QCOMPARE(rows(), 7);
    // The project lies beside both: their common folder can't be the base.
    QCOMPARE(m_desk->program.state.rootPath, fs::canonical(first));
    drop(*m_form, urlsOf({first, second}));
    QString offered;
    whenShown<ImportForm>([&offered](ImportForm &wizard) {
        offered = child<QLineEdit>(wizard, "txtStartingDirectory").text();
        auto &further = child<QListWidget>(wizard, "lstFurtherPlaces");
        QVERIFY(further.isVisible());
        QCOMPARE(further.count(), 1);
        wizard.reject();
    });
    QVERIFY(waitFor([&offered] { return !offered.isEmpty(); }));
    QCOMPARE(offered, pathToQt(fs::canonical(first)));
}

void ImportStepsTest::whatIsNotTakenIsToldWithItsReason() {
    QList<QUrl> urls = urlsOf({makeEvidence(m_desk->folder), m_desk->folder.path() / "gone"});
    urls += QUrl(QStringLiteral("https://example.org/disk"));
    drop(*m_form, urls);
    QVERIFY(waitFor([this] { return !m_desk->examiner.heard.empty(); }));
    QCOMPARE(m_desk->examiner.heard, std::vector<std::string>{"dropped-not-taken"});
    QVERIFY(waitFor([this] { return button("btnStepCheck").isEnabled(); }));
}

void ImportStepsTest::aProjectAndEvidenceAreDroppedTogether() {
    openExample(*m_desk, *m_form);
    trigger(*m_form, "actClose");
    const fs::path second = secondEvidence();
    QString offered;
    drop(*m_form, urlsOf({second, m_desk->folder.path() / "case.nvp"}));
    QTimer poll; // the project is opened before
    QObject::connect(&poll, &QTimer::timeout, m_form.get(), [&] {
        auto *wizard = qobject_cast<ImportForm *>(QApplication::activeModalWidget());
        if (!wizard)
            return;
        poll.stop();
        offered = child<QLineEdit>(*wizard, "txtStartingDirectory").text();
        wizard->reject();
    });
    poll.start(20);
    QVERIFY(waitFor([&offered] { return !offered.isEmpty(); }));
    QVERIFY(isOpen());
    QCOMPARE(offered, pathToQt(fs::canonical(second)));
}

void ImportStepsTest::theWizardTakesWhatIsDroppedOnIt() {
    const fs::path first = makeEvidence(m_desk->folder);
    const fs::path second = secondEvidence();
    const fs::path project = m_desk->folder.write("other.nvp", "x");
    const fs::path letter = m_desk->folder.write("letter.doc", "Dear");
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    whenShown<ImportForm>([&](ImportForm &wizard) {
        drop(wizard, urlsOf({first, second, first, project, letter}));
        QCOMPARE(wizard.places(),
                 (std::vector<fs::path>{fs::canonical(first), fs::canonical(second),
                                        fs::canonical(letter)}));
        QVERIFY(child<QLabel>(wizard, "labNotTaken").isVisible());
        QVERIFY(child<QLabel>(wizard, "labNotTaken")
                    .text()
                    .contains(QStringLiteral("other.nvp\" is a project")));
        auto &next = child<QPushButton>(wizard, "btnNext");
        next.click();
        QVERIFY(child<QLabel>(wizard, "labScanGaps")
                    .text()
                    .contains(QStringLiteral("no known file: ")));
        next.click();
        next.click();
    });
    trigger(*m_form, "actImport");
    QCOMPARE(rows(), 7);
}

void ImportStepsTest::furtherPlacesCanBeTakenAway() {
    const fs::path first = makeEvidence(m_desk->folder);
    m_desk->dialogs.answer = secondEvidence();
    whenShown<ImportForm>([&](ImportForm &wizard) {
        child<QLineEdit>(wizard, "txtStartingDirectory").setText(pathToQt(first));
        auto &further = child<QListWidget>(wizard, "lstFurtherPlaces");
        QVERIFY(!further.isVisible());
        child<QPushButton>(wizard, "btnAddPlace").click();
        QVERIFY(further.isVisible());
        QCOMPARE(wizard.places().size(), std::size_t{2});
        QTest::keyClick(&child<QPushButton>(wizard, "btnTakeAwayPlace"), Qt::Key_Space);
        QVERIFY(!further.isVisible());
        QCOMPARE(wizard.places(), std::vector<fs::path>{first});
        wizard.reject();
    });
    trigger(*m_form, "actImport");
}

} // namespace nv

QTEST_MAIN(nv::ImportStepsTest)
#include "import_steps_test.moc"
