#include "gui/Desk.h"
#include "platform/qt/QtText.h"
#include "ui/import/ImportForm.h"
#include "ui/import/ZoneForm.h"
#include "ui/table/TableTab.h"

#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QTest>

// Projects come and go in the main window, and what it keeps of itself.
namespace nv {

using namespace test;

class WindowLifeTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void saveAsGoesOnInTheCopy();
    void aCopyThatFailsLeavesTheProjectOpen();
    void aDroppedProjectIsOpened();
    void aDroppedFileIsOfferedForImport();
    void whileATaskRunsNothingElseCanBeStarted();
    void recentFilesAreInTheFileMenu();
    void geometryAndTheViewersAreKept();
    void theCommandLineOpensAProject();
    void theCommandLineReadsAnArtefactAndTellsWhatCameOfIt();
    void aWrongCommandLineIsToldAndLeavesNoProject();
    void theWizardTellsWhatCouldNotBeRead();
    void anotherZoneChangesTheHeading();
    void aCancelledZoneChangesNothing();
    void theErrorLogIsShownAsPlainText();
    void theDialogsAskBeforeAProjectIsOverwritten();
    void everyWindowPartHasAName();

  private:
    void newWindow();
    void reopenWindow();
    UrlGrid &grid() { return child<TableTab>(*m_form, "TableTab").grid(); }
    fs::path project() const { return m_desk->folder.path() / "case.nvp"; }
    bool isOpen() const { return m_desk->program.state.projectDB.isOpen(); }
    void drop(const fs::path &path);

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void WindowLifeTest::init() {
    m_desk = std::make_unique<Desk>();
    newWindow();
}

void WindowLifeTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void WindowLifeTest::newWindow() {
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->show();
}

void WindowLifeTest::reopenWindow() {
    QVERIFY(m_form->close());
    m_form.reset();
    newWindow();
}

void WindowLifeTest::drop(const fs::path &path) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(pathToQt(path))});
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_form.get(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent event(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_form.get(), &event);
}

void WindowLifeTest::saveAsGoesOnInTheCopy() {
    openExample(*m_desk, *m_form);
    m_desk->dialogs.answer = m_desk->folder.path() / "copy.nvp";
    trigger(*m_form, "actSaveAs");
    QVERIFY(m_form->windowTitle().contains(QStringLiteral("copy.nvp")));
    QCOMPARE(grid().model()->rowCount(), 6);
    QTest::keyClick(&grid(), Qt::Key_Space);
    trigger(*m_form, "actClose");
    m_desk->dialogs.answer = project();
    trigger(*m_form, "actOpen");
    QCOMPARE(child<QLabel>(*m_form, "labTagged").text(), QStringLiteral("Ticked: 0"));
}

void WindowLifeTest::aCopyThatFailsLeavesTheProjectOpen() {
    openExample(*m_desk, *m_form);
    m_desk->dialogs.answer = m_desk->folder.path() / "nowhere" / "copy.nvp";
    trigger(*m_form, "actSaveAs");
    QCOMPARE(m_desk->examiner.heard.back(), std::string("save-as-failed"));
    QCOMPARE(grid().model()->rowCount(), 6);
    QVERIFY(m_form->windowTitle().contains(QStringLiteral("case.nvp")));
}

void WindowLifeTest::aDroppedProjectIsOpened() {
    openExample(*m_desk, *m_form);
    trigger(*m_form, "actClose");
    drop(project());
    QVERIFY(waitFor([this] { return isOpen(); }));
    QCOMPARE(grid().model()->rowCount(), 6);
}

void WindowLifeTest::aDroppedFileIsOfferedForImport() {
    openExample(*m_desk, *m_form);
    const fs::path folder = m_desk->folder.path() / "evidence";
    drop(folder);
    QString offered;
    whenShown<ImportForm>([&offered](ImportForm &wizard) {
        offered = child<QLineEdit>(wizard, "txtStartingDirectory").text();
        wizard.close();
    });
    QVERIFY(waitFor([&offered] { return !offered.isEmpty(); }));
    QCOMPARE(offered, pathToQt(folder));
}

void WindowLifeTest::whileATaskRunsNothingElseCanBeStarted() {
    openExample(*m_desk, *m_form);
    m_form->lockControls();
    m_form->lockControls();
    QVERIFY(!m_form->menuBar()->isEnabled());
    QVERIFY(!grid().isEnabled());
    const std::size_t heard = m_desk->examiner.heard.size();
    QVERIFY(!m_form->close());
    QCOMPARE(m_desk->examiner.heard.size(), heard);
    trigger(*m_form, "actClose");
    QVERIFY(isOpen());
    m_form->unlockControls();
    QVERIFY(!grid().isEnabled());
    m_form->unlockControls();
    QVERIFY(grid().isEnabled());
}

void WindowLifeTest::recentFilesAreInTheFileMenu() {
    openExample(*m_desk, *m_form);
    trigger(*m_form, "actClose");
    auto *recent = m_form->findChild<QAction *>(QStringLiteral("actRecent1"));
    QVERIFY(recent->text().contains(QStringLiteral("case.nvp")));
    QVERIFY(child<QMenu>(*m_form, "menuFile").actions().contains(recent));
    recent->trigger();
    QVERIFY(isOpen());
}

void WindowLifeTest::geometryAndTheViewersAreKept() {
    constexpr QSize kSize(783, 611); // fits the screen, which cuts what doesn't
    m_form->resize(kSize);
    QCOMPARE(m_form->size(), kSize);
    trigger(*m_form, "actViewers");
    reopenWindow();
    QCOMPARE(m_form->size(), kSize);
    QVERIFY(!m_form->findChild<QAction *>(QStringLiteral("actViewers"))->isChecked());
    QVERIFY(child<QSplitter>(*m_form, "mainSplitter").widget(1)->isHidden());
}

void WindowLifeTest::theCommandLineOpensAProject() {
    openExample(*m_desk, *m_form);
    trigger(*m_form, "actClose");
    m_form->loadCommandLineFile(project());
    QCOMPARE(grid().model()->rowCount(), 6);
    QVERIFY(grid().isVisible());
    QCOMPARE(m_form->focusWidget(), &grid());
}

void WindowLifeTest::theCommandLineReadsAnArtefactAndTellsWhatCameOfIt() {
    const fs::path evidence = makeEvidence(m_desk->folder);
    m_form->loadCommandLineFile(evidence / "History.IE5" / "index.dat");
    QCOMPARE(m_desk->examiner.heard, std::vector<std::string>{"command-line-file-imported"});
    QCOMPARE(grid().model()->rowCount(), 3);
    QVERIFY(!m_desk->program.task.isOpen);
}

/// The process's own memory is a file whose first bytes nobody can read.
void WindowLifeTest::theWizardTellsWhatCouldNotBeRead() {
    m_desk->dialogs.answer = project();
    trigger(*m_form, "actNew");
    whenShown<ImportForm>([this](ImportForm &wizard) {
        child<QLineEdit>(wizard, "txtStartingDirectory").setText(QStringLiteral("/proc/self/mem"));
        QTest::mouseClick(&child<QPushButton>(wizard, "btnNext"), Qt::LeftButton);
        QCOMPARE(m_desk->examiner.heard.back(), std::string("nothing-to-import"));
        const auto &gaps = child<QLabel>(wizard, "labScanGaps");
        QVERIFY(gaps.isVisible());
        QVERIFY(gaps.text().contains(QStringLiteral("could not be read: 1, the first one /proc/")));
        QVERIFY(!child<QPushButton>(wizard, "btnNext").isEnabled());
        QTest::mouseClick(&child<QPushButton>(wizard, "btnCancel"), Qt::LeftButton);
    });
    trigger(*m_form, "actImport");
    QCOMPARE(m_desk->program.import.gaps.unreadable.size(), std::size_t{1});
}

void WindowLifeTest::aWrongCommandLineIsToldAndLeavesNoProject() {
    m_form->loadCommandLineFile(m_desk->folder.path() / "missing.nvp");
    m_form->loadCommandLineFile(m_desk->folder.write("other.dat", "nothing known"));
    QCOMPARE(m_desk->examiner.heard,
             (std::vector<std::string>{"command-line-file-missing", "command-line-file-unknown"}));
    QCOMPARE(child<QStackedWidget>(*m_form, "mainPages").currentIndex(), 0);
}

void WindowLifeTest::anotherZoneChangesTheHeading() {
    openExample(*m_desk, *m_form);
    whenShown<ZoneForm>([](ZoneForm &dialog) {
        QTest::keyClicks(&child<QLineEdit>(dialog, "txtFindZone"), "(utc+09:00) osaka");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    trigger(*m_form, "actTimeZone");
    const int section = UrlModel::sectionOf(UrlColumn::ActionDateLocal);
    const QString heading = grid().model()->headerData(section, Qt::Horizontal).toString();
    QVERIFY2(heading.contains(QStringLiteral("+0900")), qPrintable(heading));
    QVERIFY(child<QLabel>(*m_form, "labZone").text().contains(QStringLiteral("+0900")));
}

void WindowLifeTest::aCancelledZoneChangesNothing() {
    openExample(*m_desk, *m_form);
    const QString before = child<QLabel>(*m_form, "labZone").text();
    whenShown<ZoneForm>([](ZoneForm &dialog) { dialog.reject(); });
    trigger(*m_form, "actTimeZone");
    QCOMPARE(child<QLabel>(*m_form, "labZone").text(), before);
}

void WindowLifeTest::theErrorLogIsShownAsPlainText() {
    m_desk->program.log.write({"<b>damage</b>", "MainBAS.GetURL()", Severity::Warning, ""});
    whenShown<QDialog>([](QDialog &dialog) {
        QVERIFY(child<QPlainTextEdit>(dialog, "txtText")
                    .toPlainText()
                    .contains(QStringLiteral("<b>damage</b>")));
        dialog.reject();
    });
    trigger(*m_form, "actErrorLog");
}

void WindowLifeTest::theDialogsAskBeforeAProjectIsOverwritten() {
    QtWindowDialogs dialogs(m_desk->examiner);
    const fs::path file = m_desk->folder.write("kept.nvp", "x");
    const auto choose = [&file](QFileDialog &dialog) {
        QCOMPARE(dialog.nameFilters().constFirst(), QStringLiteral("Norvelane Project (*.nvp)"));
        dialog.selectFile(pathToQt(file.parent_path() / "kept"));
        QMetaObject::invokeMethod(&dialog, "accept");
    };
    whenShown<QFileDialog>(choose);
    m_desk->examiner.script = {Answer::No};
    QVERIFY(!dialogs.createNewProjectFilename());
    QCOMPARE(m_desk->examiner.heard.back(), std::string("overwrite-project"));
    whenShown<QFileDialog>(choose);
    m_desk->examiner.script = {Answer::Yes};
    QCOMPARE(dialogs.chooseSaveAs().value_or(""), file);
}

void WindowLifeTest::everyWindowPartHasAName() {
    for (const char *name : {"MainForm", "URLGrid", "PropertiesGrid", "cbActiveQuery",
                             "txtHostFilter", "toolBar", "dataTabs", "viewerTabs"})
        QVERIFY2(m_form->objectName() == QLatin1String(name) ||
                     m_form->findChild<QWidget *>(QLatin1String(name)),
                 name);
}

} // namespace nv

QTEST_MAIN(nv::WindowLifeTest)
#include "window_life_test.moc"
