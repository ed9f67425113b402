#include "base/Files.h"
#include "gui/Desk.h"
#include "platform/qt/QtText.h"
#include "ui/table/TableTab.h"
#include "ui/viewers/LinksModel.h"
#include "ui/viewers/LinksPane.h"
#include "ui/widgets/NoRow.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <SQLiteCpp/Database.h>

// Link analysis from the window, and the pane of a record's links.
namespace nv {

using namespace test;

constexpr const char *kPage = "http://host/page.html";

class LinksTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void theMenuRunsTheAnalysisAndTheLinkedColumnIsFresh();
    void aNoLeavesEverythingAsItIs();
    void cancelKeepsWhatWasFoundAndSaysSo();
    void aFailureIsToldAndLeavesNoPairs();
    void thePaneSaysWhatToDoAndItsButtonRunsTheAnalysis();
    void thePaneListsBothDirections();
    void theCommandNeedsAProject();
    void aDoubleClickGoesToTheOtherRecord();
    void thePopUpMenuGoesToTheOtherRecord();
    void theReturnKeyGoesToTheOtherRecord();
    void aRecordThatTheTableDoesNotShowIsTold();
    void cellsAndRowsAreCopied();
    void idsBeyond16BitsNameTheirSwitch();
    void textsOfEvidenceStayTexts();

  private:
    void openEvidence();
    UrlGrid &grid() { return child<TableTab>(*m_form, "TableTab").grid(); }
    SQLite::Database &project() { return m_desk->program.state.projectDB.connection(); }
    std::int64_t count(const std::string &what) {
        return project().execAndGet("SELECT Count(*) FROM " + what).getInt64();
    }
    QString linked(std::int64_t id) {
        const auto place = child<TableTab>(*m_form, "TableTab").table()->placeOf(UrlId{id});
        return grid()
            .model()
            ->index(static_cast<int>(place.value()), UrlModel::sectionOf(UrlColumn::Linked))
            .data()
            .toString();
    }
    QTableView &links() { return child<QTableView>(*m_form, "LinksGrid"); }
    QString cell(int row, int column) {
        return links().model()->index(row, column).data().toString();
    }
    QString summary() { return child<QLabel>(*m_form, "labLinks").text(); }
    void choose(std::int64_t id) { grid().setCurrentUrl(UrlId{id}); }
    std::int64_t current() { return number(grid().currentUrl().value_or(UrlId::none)); }
    void analyse() {
        m_desk->examiner.script = {Answer::Yes, Answer::Ok};
        trigger(*m_form, "actLinkAnalysis");
        QVERIFY(m_desk->examiner.script.empty());
    }
    void openPane() {
        child<QTabWidget>(*m_form, "viewerTabs")
            .setCurrentWidget(&child<LinksPane>(*m_form, "LinksPane"));
        QVERIFY(waitFor([this] { return summary() != noRowText(); }));
    }
    /// Analysed, with the links of the page in the pane.
    void showLinksOfPage() {
        analyse();
        choose(m_page);
        openPane();
        QVERIFY(waitFor([this] { return links().model()->rowCount() == 2; }));
    }
    QPoint placeOf(int row) {
        return links().visualRect(links().model()->index(row, LinksModel::Direction)).center();
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
    std::int64_t m_page = 0;
    std::int64_t m_visit = 0; ///< the first of two
};

/// A cached page, and a history of two visits to it.
void LinksTest::openEvidence() {
    const fs::path evidence = m_desk->folder.path() / "evidence";
    IndexDat cache;
    cache.folder("ABCDEFGH");
    const std::string html = "<html><body>Hi <a href='b.html'>b</a></body></html> ";
    fs::create_directories(evidence / "a" / "ABCDEFGH");
    writeWhole(evidence / "a" / "ABCDEFGH" / "page[1].htm", html);
    cache.add({.url = kPage,
               .secondDate = fileTime(2011, 3, 1, 12),
               .fileSize = static_cast<std::uint32_t>(html.size()),
               .folder = 0,
               .fileName = "page[1].htm"});
    m_desk->folder.write("evidence/a/index.dat", cache.bytes());
    IndexDat history;
    for (const std::uint16_t day : {std::uint16_t{2}, std::uint16_t{3}})
        history.add({.url = std::string("Visited: mara@") + kPage,
                     .secondDate = fileTime(2011, 3, day, 12)});
    m_desk->folder.write("evidence/b/index.dat", history.bytes());
    Program &program = m_desk->program;
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    setRootPath(program, evidence);
    program.import.startingDirectory = evidence.string();
    program.import.parseAdvancedMetadata = true;
    Unwatched nobody;
    program.import.historyFiles = scan(program.import, nobody, program.log).historyFiles;
    static_cast<void>(runImportJob(program, nobody, program.state.tempFolderPath));
    trigger(*m_form, "actRefresh");
}

void LinksTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1200, 800);
    m_form->show();
    openEvidence();
    const char *page = "SELECT URL_ID FROM URLs WHERE CacheType = 'IE Cache'";
    m_page = project().execAndGet(page).getInt64();
    m_visit = project().execAndGet("SELECT min(URL_ID) FROM URLs WHERE IsHistory").getInt64();
    choose(m_page);
}

void LinksTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void LinksTest::theMenuRunsTheAnalysisAndTheLinkedColumnIsFresh() {
    QCOMPARE(linked(m_page), QString());
    project().exec("UPDATE URLs SET HTMLBody = 'old'");
    m_desk->examiner.script = {Answer::Yes, Answer::Ok};
    auto &tools = child<QMenu>(*m_form, "menuTools");
    QTest::mouseClick(m_form->menuBar(), Qt::LeftButton, {},
                      m_form->menuBar()->actionGeometry(tools.menuAction()).center());
    QVERIFY(tools.isVisible());
    auto *action = m_form->findChild<QAction *>(QStringLiteral("actLinkAnalysis"));
    QTest::mouseClick(&tools, Qt::LeftButton, {}, tools.actionGeometry(action).center());
    const std::vector<std::string> heard = {"use-link-analysis", "link-analysis-results"};
    QCOMPARE(m_desk->examiner.heard, heard);
    QCOMPARE(linked(m_page), QStringLiteral("2"));
    QCOMPARE(linked(m_visit), QStringLiteral("1"));
    QCOMPARE(count("URLs WHERE HTMLBody = 'Hi b'"), 1);
    QVERIFY(!m_desk->program.task.isOpen);
    QCOMPARE(action->shortcut(), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_L));
    QVERIFY(action->toolTip().contains(QStringLiteral("cached pages")));
}

void LinksTest::aNoLeavesEverythingAsItIs() {
    analyse();
    m_desk->examiner.heard.clear();
    m_desk->examiner.script = {Answer::No};
    trigger(*m_form, "actLinkAnalysis");
    QCOMPARE(m_desk->examiner.heard, std::vector<std::string>{"use-link-analysis"});
    QCOMPARE(count("LinkAnalysis"), 2);
}

void LinksTest::cancelKeepsWhatWasFoundAndSaysSo() {
    QTimer poll;
    connect(&poll, &QTimer::timeout, this, [&] {
        if (child<QLabel>(m_desk->status, "labMsg1").text() !=
            QStringLiteral("RUNNING LINK ANALYSIS"))
            return;
        poll.stop();
        QCOMPARE(child<QLabel>(m_desk->status, "labMsg2").text(),
                 QStringLiteral("Comparing History data to Cache data..."));
        QTest::mouseClick(&child<QPushButton>(m_desk->status, "btnCancel"), Qt::LeftButton);
    });
    poll.start(0);
    analyse();
    QCOMPARE(m_desk->examiner.heard.back(), std::string("link-analysis-results"));
    QCOMPARE(count("LinkAnalysis"), 0);
    analyse();
    QCOMPARE(count("LinkAnalysis"), 2);
}

void LinksTest::aFailureIsToldAndLeavesNoPairs() {
    analyse();
    // No trigger of a project's file ever runs: a second pair breaks the index.
    project().exec("DELETE FROM LinkAnalysis; CREATE UNIQUE INDEX breaks ON LinkAnalysis "
                   "(Parent_ID IS NOT NULL)");
    m_desk->examiner.heard.clear();
    analyse();
    const std::vector<std::string> heard = {"use-link-analysis", "link-analysis-failed"};
    QCOMPARE(m_desk->examiner.heard, heard);
    QCOMPARE(count("LinkAnalysis"), 0);
    QCOMPARE(linked(m_page), QString());
}

void LinksTest::thePaneSaysWhatToDoAndItsButtonRunsTheAnalysis() {
    openPane();
    QVERIFY2(summary().contains(QStringLiteral("has not been run")), qPrintable(summary()));
    auto &button = child<QPushButton>(*m_form, "btnRunLinkAnalysis");
    QVERIFY(button.isVisible());
    QVERIFY(!links().isVisible());
    m_desk->examiner.script = {Answer::Yes, Answer::Ok};
    QTest::mouseClick(&button, Qt::LeftButton);
    QVERIFY(waitFor([this] { return links().model()->rowCount() == 2; }));
    QVERIFY(!button.isVisible());
    project().exec("INSERT INTO URLs (URL, HashedURL) VALUES ('http://other/', 'x')");
    trigger(*m_form, "actRefresh");
    choose(project().execAndGet("SELECT max(URL_ID) FROM URLs").getInt64());
    QVERIFY(waitFor(
        [this] { return summary().startsWith(QStringLiteral("Link analysis found no page")); }));
}

void LinksTest::thePaneListsBothDirections() {
    showLinksOfPage();
    QCOMPARE(summary(), QStringLiteral("Pages that link to this record: 0. Records that it links "
                                       "to: 2."));
    QCOMPARE(cell(0, LinksModel::Record), QString::number(m_visit));
    QCOMPARE(cell(0, LinksModel::Direction), QStringLiteral("Child"));
    QCOMPARE(cell(0, LinksModel::Kind), QStringLiteral("History"));
    QCOMPARE(cell(0, LinksModel::VisitCount), QStringLiteral("1"));
    QCOMPARE(cell(0, LinksModel::Url), QString::fromLatin1(kPage));
    QCOMPARE(cell(0, LinksModel::Hash).size(), 32);
    choose(m_visit);
    QVERIFY(waitFor([this] { return links().model()->rowCount() == 1; }));
    QCOMPARE(cell(0, LinksModel::Record), QString::number(m_page));
    QCOMPARE(cell(0, LinksModel::Direction), QStringLiteral("Parent"));
    QCOMPARE(cell(0, LinksModel::Kind), QStringLiteral("Cache"));
    for (int column = 0; column < LinksModel::Count; ++column) {
        const auto header = [&](int role) {
            return links().model()->headerData(column, Qt::Horizontal, role).toString();
        };
        QVERIFY(!header(Qt::DisplayRole).isEmpty());
        QVERIFY(!header(Qt::ToolTipRole).isEmpty());
    }
}

void LinksTest::theCommandNeedsAProject() {
    openPane();
    trigger(*m_form, "actClose");
    QVERIFY(!m_form->findChild<QAction *>(QStringLiteral("actLinkAnalysis"))->isEnabled());
    QCOMPARE(summary(), noRowText());
}

void LinksTest::aDoubleClickGoesToTheOtherRecord() {
    showLinksOfPage();
    QTest::mouseClick(links().viewport(), Qt::LeftButton, {}, placeOf(1));
    QTest::mouseDClick(links().viewport(), Qt::LeftButton, {}, placeOf(1));
    QCOMPARE(current(), m_visit + 1);
    QVERIFY(waitFor([this] { return links().model()->rowCount() == 1; }));
}

void LinksTest::thePopUpMenuGoesToTheOtherRecord() {
    showLinksOfPage();
    QTest::mouseClick(links().viewport(), Qt::RightButton, {}, placeOf(0));
    QTimer::singleShot(0, this, [] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu);
        QAction *go = menu->actions().constFirst();
        QCOMPARE(go->objectName(), QStringLiteral("actGoToLinked"));
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(go).center());
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, placeOf(0),
                            links().viewport()->mapToGlobal(placeOf(0)));
    QApplication::sendEvent(links().viewport(), &event);
    QVERIFY(waitFor([this] { return current() == m_visit; }));
}

void LinksTest::theReturnKeyGoesToTheOtherRecord() {
    showLinksOfPage();
    QTest::keyClick(&links(), Qt::Key_Return);
    QCOMPARE(current(), m_visit);
    QCOMPARE(m_form->focusWidget(), static_cast<QWidget *>(&grid()));
}

void LinksTest::aRecordThatTheTableDoesNotShowIsTold() {
    showLinksOfPage();
    project().exec("UPDATE URLs SET Host = 'shown' WHERE URL_ID = " + std::to_string(m_page));
    auto &host = child<QLineEdit>(*m_form, "txtHostFilter");
    QTest::keyClicks(&host, QStringLiteral("shown"));
    QTest::keyClick(&host, Qt::Key_Return);
    QCOMPARE(current(), m_page);
    QVERIFY(waitFor([this] { return links().model()->rowCount() == 2; }));
    m_desk->examiner.heard.clear();
    QTest::keyClick(&links(), Qt::Key_Return);
    QCOMPARE(m_desk->examiner.heard, std::vector<std::string>{"link-record-unavailable"});
    QCOMPARE(current(), m_page);
}

void LinksTest::cellsAndRowsAreCopied() {
    showLinksOfPage();
    links().setFocus();
    links().setCurrentIndex(links().model()->index(0, LinksModel::Url));
    QTest::keyClick(&links(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(), QString::fromLatin1(kPage));
    links().selectAll();
    links().findChild<QAction *>(QStringLiteral("actCopyGridRows"))->trigger();
    const QStringList lines = QApplication::clipboard()->text().split(u'\n');
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines[0], QStringLiteral("URL ID\tDirection\tKind\tVisit Count\tVisits\tURL\t"
                                      "Hashed URL"));
    QVERIFY(lines[1].startsWith(QStringLiteral("%1\tChild\tHistory\t1\t").arg(m_visit)));
}

void LinksTest::idsBeyond16BitsNameTheirSwitch() {
    project().exec("INSERT INTO URLs (URL_ID, URL, HashedURL) VALUES (40000, 'x', 'y')");
    m_desk->program.state.wideRecordIds = false;
    trigger(*m_form, "actRefresh");
    choose(40000);
    openPane();
    QVERIFY2(summary().startsWith(QStringLiteral("Error Loading Links: ")), qPrintable(summary()));
    QVERIFY(summary().contains(QStringLiteral("40000")));
    QVERIFY(summary().contains(QStringLiteral("WideRecordIds in the section [BEYOND]")));
    m_desk->program.state.wideRecordIds = true;
    trigger(*m_form, "actRefresh");
    QVERIFY(waitFor([this] { return summary().startsWith(QStringLiteral("Link analysis")); }));
}

void LinksTest::textsOfEvidenceStayTexts() {
    analyse();
    const std::string evil = "http://<b>bold</b>/" + std::string(2000, 'x') + "\n";
    SQLite::Statement update(project(), "UPDATE LinkAnalysis SET URL = ?");
    update.bind(1, evil);
    update.exec();
    openPane();
    QVERIFY(waitFor([this] { return links().model()->rowCount() == 2; }));
    QVERIFY(cell(0, LinksModel::Url).size() < 400);
    const QModelIndex url = links().model()->index(0, LinksModel::Url);
    QVERIFY(url.data(Qt::ToolTipRole).toString().contains(QStringLiteral("&lt;b&gt;")));
    QVERIFY(url.data(LinksModel::kWholeText).toString().size() > 2000);
}

} // namespace nv

QTEST_MAIN(nv::LinksTest)
#include "links_test.moc"
