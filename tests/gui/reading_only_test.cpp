#include "app/program/ProjectHold.h"
#include "base/Files.h"
#include "gui/Desk.h"
#include "ui/table/TableTab.h"

#include <QLabel>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTabWidget>
#include <SQLiteCpp/SQLiteCpp.h>

// A project that another window has: it can be looked at here, and nothing is written to it.
namespace nv {

namespace fs = std::filesystem;
using namespace test;

class ReadingOnlyTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void commandsThatWriteAreOff();
    void everyPaneShowsTheRecordAndNothingIsWritten();
    void ticksAndNotesStayAsTheyAre();
    void importsAndDrawingsAreRefusedInWords();
    void theNextProjectIsWrittenToAgain();

  private:
    UrlGrid &grid() { return child<TableTab>(*m_form, "TableTab").grid(); }
    void openForReading();
    bool isUnchanged() const { return readWhole(m_project) == m_before; }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
    std::unique_ptr<ProjectHold> m_other;
    fs::path m_project;
    Bytes m_before;
};

void ReadingOnlyTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1200, 800);
    m_form->show();
    openExample(*m_desk, *m_form);
    trigger(*m_form, "actClose");
    openForReading();
}

void ReadingOnlyTest::cleanup() {
    m_form.reset();
    m_other.reset();
    m_desk.reset();
}

void ReadingOnlyTest::openForReading() {
    m_project = m_desk->folder.path() / "case.nvp";
    m_before = readWhole(m_project);
    m_other = std::make_unique<ProjectHold>(m_project, Front::window, m_desk->clock);
    m_desk->examiner.heard.clear();
    m_desk->examiner.script = {Answer::Yes};
    trigger(*m_form, "actOpen");
    QCOMPARE(m_desk->examiner.heard.front(), "project-in-use");
    m_desk->examiner.heard.clear();
    QVERIFY(m_desk->program.state.projectDB.isReadOnly());
    QVERIFY(grid().model()->rowCount() > 0);
}

void ReadingOnlyTest::commandsThatWriteAreOff() {
    QVERIFY(m_form->windowTitle().endsWith(QStringLiteral("(reading only)")));
    for (const char *name :
         {"actImport", "actSaveAs", "actTag", "actRebuild", "actRebuildExactly",
          "actRebuildByClassic", "actLinkAnalysis", "actBaseFolder", "actUpgradeWizard",
          "actApplyQuery", "actSaveQuery", "actDeleteQuery", "actQueryForm"})
        QVERIFY2(!child<QAction>(*m_form, name).isEnabled(), name);
    for (const char *name :
         {"actExport", "actFind", "actFilters", "actColumns", "actTimeZone", "actRefresh",
          "actCaseTrail", "actImportSummary", "actClose", "actValidateSQL"})
        QVERIFY2(child<QAction>(*m_form, name).isEnabled(), name);
}

void ReadingOnlyTest::everyPaneShowsTheRecordAndNothingIsWritten() {
    auto &viewers = child<QTabWidget>(*m_form, "viewerTabs");
    auto &data = child<QTabWidget>(*m_form, "dataTabs");
    for (int row = 0; row < grid().model()->rowCount(); ++row) {
        grid().setCurrentIndex(grid().model()->index(row, 3));
        for (int pane = 0; pane < viewers.count(); ++pane) {
            viewers.setCurrentIndex(pane);
            QTest::qWait(20);
        }
    }
    for (int tab = 0; tab < data.count(); ++tab) {
        data.setCurrentIndex(tab);
        QTest::qWait(20);
    }
    data.setCurrentIndex(0);
    emit grid().sortRequested(UrlColumn::Value, SortDirection::Descending);
    trigger(*m_form, "actRefresh");
    trigger(*m_form, "actClose");
    QVERIFY2(m_desk->examiner.heard.empty(),
             m_desk->examiner.heard.empty() ? "" : m_desk->examiner.heard.front().c_str());
    QVERIFY2(!fs::exists(m_desk->program.log.path()), "nothing has failed");
    QVERIFY(isUnchanged());
}

void ReadingOnlyTest::ticksAndNotesStayAsTheyAre() {
    grid().setCurrentIndex(grid().model()->index(0, 3));
    grid().setFocus();
    QTest::keyClick(&grid(), Qt::Key_Space);
    QCOMPARE(m_desk->examiner.heard, std::vector<std::string>{"reading-only"});
    auto &note = child<QPlainTextEdit>(*m_form, "NotesText");
    QVERIFY(note.isReadOnly());
    trigger(*m_form, "actClose");
    QVERIFY(isUnchanged());
}

void ReadingOnlyTest::importsAndDrawingsAreRefusedInWords() {
    m_form->takePath(m_desk->folder.path() / "evidence");
    QCOMPARE(m_desk->examiner.heard, std::vector<std::string>{"reading-only"});
    auto &data = child<QTabWidget>(*m_form, "dataTabs");
    for (int tab = 0; tab < data.count(); ++tab)
        if (data.tabText(tab) == QStringLiteral("Gallery"))
            data.setCurrentIndex(tab);
    child<QPushButton>(*m_form, "btnMakeThumbnails").click();
    QCOMPARE(m_desk->examiner.heard.size(), 2u);
    QCOMPARE(m_desk->examiner.heard.back(), "reading-only");
    QVERIFY(isUnchanged());
}

void ReadingOnlyTest::theNextProjectIsWrittenToAgain() {
    trigger(*m_form, "actClose");
    QVERIFY(child<QAction>(*m_form, "actImport").isEnabled());
    m_other.reset();
    trigger(*m_form, "actOpen");
    QVERIFY(!m_desk->program.state.projectDB.isReadOnly());
    QVERIFY(child<QAction>(*m_form, "actTag").isEnabled());
    QVERIFY(child<QAction>(*m_form, "actApplyQuery").isEnabled());
    QVERIFY(!child<QPlainTextEdit>(*m_form, "NotesText").isReadOnly());
}

} // namespace nv

QTEST_MAIN(nv::ReadingOnlyTest)
#include "reading_only_test.moc"
