#include "base/Files.h"
#include "gui/Desk.h"
#include "platform/qt/PageGuard.h"
#include "platform/qt/QtText.h"
#include "ui/import/ImportForm.h"
#include "ui/table/TableTab.h"
#include "ui/viewers/LinksModel.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>
#include <SQLiteCpp/Database.h>

// The window as one thing: an examiner's whole way through it.
namespace nv {

using namespace test;

constexpr const char *kPage = "http://host/page.html";

class WalkTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void theWholeWayFromTheWizardToThePanes();
    void theRowMenuHasWhatConcernsTheCell();
    void theRowMenuFiltersByTheHost();
    void aDoubleClickOnARebuiltCellShowsThePage();
    void everyGridCopiesItsOwnCells();
    void theLayoutOutlivesTheRun();

  private:
    void makeSite();
    void import();
    void activate();
    /// A key with Ctrl.
    void press(Qt::Key key);
    void runAnalysis();
    UrlGrid &grid() { return child<TableTab>(*m_form, "TableTab").grid(); }
    int rows() { return grid().model()->rowCount(); }
    std::string inProject(const std::string &sql) {
        return m_desk->program.state.projectDB.connection().execAndGet(sql).getString();
    }
    void exec(const std::string &sql) { m_desk->program.state.projectDB.connection().exec(sql); }
    QTabWidget &viewers() { return child<QTabWidget>(*m_form, "viewerTabs"); }
    void bringUp(const char *pane) { viewers().setCurrentWidget(&child<QWidget>(*m_form, pane)); }
    QString front() { return viewers().currentWidget()->objectName(); }
    /// In the layout that shows the column.
    QPoint placeOf(int row, UrlColumn column) {
        if (grid().isColumnHidden(UrlModel::sectionOf(column))) {
            auto &layouts = child<QComboBox>(*m_form, "cbLayout");
            layouts.setCurrentText(QStringLiteral("Classic"));
            emit layouts.activated(layouts.currentIndex());
        }
        const QModelIndex cell = grid().model()->index(row, UrlModel::sectionOf(column));
        grid().scrollTo(cell);
        return grid().visualRect(cell).center();
    }
    void click(int row, UrlColumn column) {
        QTest::mouseClick(grid().viewport(), Qt::LeftButton, {}, placeOf(row, column));
    }
    /// The entries of the row menu of that cell; one of them may be clicked.
    QStringList rowMenu(int row, UrlColumn column, const char *picked = nullptr);
    void choose(const char *url) {
        grid().setCurrentUrl(UrlId{std::stoll(
            inProject(std::string("SELECT min(URL_ID) FROM URLs WHERE URL = '") + url + "'"))});
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void WalkTest::init() {
    m_desk = std::make_unique<Desk>();
    m_desk->program.state.redrawThumbIfPageRebuilt = false; // starting to draw takes a second
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 800);
    m_form->show();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get())); // keys of commands need that
    makeSite();
}

void WalkTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

/// A cached page with a picture, and a history of two visits to it.
void WalkTest::makeSite() {
    const fs::path evidence = m_desk->folder.path() / "evidence";
    IndexDat cache;
    cache.folder("ABCDEFGH");
    const auto add = [&](const std::string &url, const std::string &name,
                         const std::string &content) {
        m_desk->folder.write("evidence/a/ABCDEFGH/" + name, content);
        cache.add({.url = url,
                   .secondDate = fileTime(2011, 3, 1, 12),
                   .fileSize = static_cast<std::uint32_t>(content.size()),
                   .folder = 0,
                   .fileName = name});
    };
    fs::create_directories(evidence / "a" / "ABCDEFGH");
    add(kPage, "page[1].htm",
        "<html><title>Inbox</title><body>Hi <a href='b.html'>b</a><img src=\"pic/logo.gif\" "
        "></body></html> ");
    add("http://host/pic/logo.gif", "logo[1].gif", "GIF89a");
    m_desk->folder.write("evidence/a/index.dat", cache.bytes());
    IndexDat history;
    for (const std::uint16_t day : {std::uint16_t{2}, std::uint16_t{3}})
        history.add({.url = std::string("Visited: mara@") + kPage,
                     .secondDate = fileTime(2011, 3, day, 12)});
    m_desk->folder.write("evidence/b/index.dat", history.bytes());
}

/// New project, wizard, both by clicks.
void WalkTest::import() {
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    const fs::path evidence = m_desk->folder.path() / "evidence";
    whenShown<ImportForm>([evidence](ImportForm &wizard) {
        auto &metadata = child<QCheckBox>(wizard, "chkParseAdvancedMetadata");
        if (!metadata.isChecked())
            QTest::mouseClick(&metadata, Qt::LeftButton, {}, QPoint(8, metadata.height() / 2));
        auto &loose = child<QCheckBox>(wizard, "chkHTMLFiles"); // the page would be found twice
        if (loose.isChecked())
            QTest::mouseClick(&loose, Qt::LeftButton, {}, QPoint(8, loose.height() / 2));
        auto &folder = child<QLineEdit>(wizard, "txtStartingDirectory");
        folder.clear();
        QTest::keyClicks(&folder, toQt(evidence.string()));
        auto &next = child<QPushButton>(wizard, "btnNext");
        for (int page = 0; page < 3; ++page)
            QTest::mouseClick(&next, Qt::LeftButton);
    });
    auto *bar = &child<QToolBar>(*m_form, "toolBar");
    QAction *action = m_form->findChild<QAction *>(QStringLiteral("actImport"));
    QTest::mouseClick(bar->widgetForAction(action), Qt::LeftButton);
    QCOMPARE(rows(), 4);
}

/// Keys of menus go to the active window only, and so does the focus. No window manager is there to
/// make it that again after a task's window was up.
void WalkTest::activate() {
    m_form->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
}

void WalkTest::press(Qt::Key key) {
    activate();
    QTest::keyClick(m_form.get(), key, Qt::ControlModifier);
}

void WalkTest::runAnalysis() {
    m_desk->examiner.script = {Answer::Yes, Answer::Ok};
    trigger(*m_form, "actLinkAnalysis");
    QVERIFY(m_desk->examiner.script.empty());
}

QStringList WalkTest::rowMenu(int row, UrlColumn column, const char *picked) {
    const QPoint place = placeOf(row, column);
    QTest::mouseClick(grid().viewport(), Qt::RightButton, {}, place);
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, grid().viewport()->mapToGlobal(place));
    QApplication::sendEvent(grid().viewport(), &event);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    if (!menu)
        return {};
    QStringList names;
    QList<QAction *> named; // not all are the menu's children: the window's commands are in it
    for (QAction *each : menu->actions())
        if (!each->objectName().isEmpty()) {
            names += each->objectName();
            named += each;
        }
    // The menu is gone once a command of it runs.
    const qsizetype picks = picked ? names.indexOf(QLatin1String(picked)) : -1;
    if (picks >= 0)
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(named[picks]).center());
    else
        menu->close();
    return names;
}

void WalkTest::theWholeWayFromTheWizardToThePanes() {
    import();
    // Filter by a host, then take it back.
    auto &host = child<QLineEdit>(*m_form, "txtHostFilter");
    QTest::keyClicks(&host, QStringLiteral("nowhere"));
    QTest::keyClick(&host, Qt::Key_Return);
    QCOMPARE(rows(), 0);
    QTest::mouseClick(&child<QPushButton>(*m_form, "btnEmptyShowAll"), Qt::LeftButton);
    QCOMPARE(rows(), 4);
    // Write a query, save it, run another, run the saved one from the table's list.
    press(Qt::Key_E);
    auto &statement = child<QPlainTextEdit>(*m_form, "txtSQLDef");
    QTRY_VERIFY(statement.hasFocus());
    statement.clear();
    QTest::keyClicks(&statement, QStringLiteral("SELECT * FROM URLs WHERE IsHistory = False"));
    whenShown<QInputDialog>([](QInputDialog &dialog) {
        QTest::keyClicks(dialog.findChild<QLineEdit *>(), QStringLiteral("Cached"));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    QTest::mouseClick(&child<QToolButton>(*m_form, "btnSaveQuery"), Qt::LeftButton);
    QCOMPARE(rows(), 2);
    QTest::mouseClick(&child<QToolButton>(*m_form, "btnDefaultQuery"), Qt::LeftButton);
    QCOMPARE(rows(), 4);
    child<QTabWidget>(*m_form, "dataTabs").setCurrentIndex(0);
    auto &queries = child<QComboBox>(*m_form, "cbActiveQuery");
    QTest::keyClicks(&queries, QStringLiteral("Cached"));
    emit queries.activated(queries.currentIndex());
    QCOMPARE(rows(), 2);
    // Follow a link from the page to a visit of it.
    queries.setCurrentIndex(0);
    emit queries.activated(0);
    runAnalysis();
    choose(kPage);
    click(grid().currentIndex().row(), UrlColumn::Linked);
    bringUp("LinksPane");
    auto &links = child<QTableView>(*m_form, "LinksGrid");
    QTRY_VERIFY(links.model()->rowCount() > 0);
    const UrlId page = grid().currentUrl().value();
    QTest::keyClick(&links, Qt::Key_Return);
    QVERIFY(grid().currentUrl().value() != page);
    // And back to the page.
    QTRY_COMPARE(links.model()->index(0, LinksModel::Record).data().toString(),
                 QString::number(number(page)));
    QTest::keyClick(&links, Qt::Key_Return);
    QCOMPARE(grid().currentUrl().value(), page);
    // Note it, tick it, rebuild it.
    bringUp("NotesPane");
    auto &note = child<QPlainTextEdit>(*m_form, "NotesText");
    QTRY_VERIFY(note.isEnabled());
    activate();
    note.setFocus();
    QTest::keyClicks(&note, QStringLiteral("seen"));
    grid().setFocus();
    QCOMPARE(inProject("SELECT Notes FROM URLs WHERE Notes <> ''"), std::string("seen"));
    QTest::keyClick(&grid(), Qt::Key_Space);
    QCOMPARE(inProject("SELECT URL FROM URLs WHERE Tagged <> 0"), std::string(kPage));
    press(Qt::Key_B);
    QCOMPARE(inProject("SELECT Count(*) FROM URLs WHERE CacheFileRebuilt <> 0"), std::string("1"));
    // Each pane shows it.
    auto &panes = viewers();
    for (int place = 0; place < panes.count(); ++place) {
        QTest::mouseClick(panes.tabBar(), Qt::LeftButton, {},
                          panes.tabBar()->tabRect(place).center());
        QCOMPARE(panes.currentIndex(), place);
        QTest::qWait(30);
        QTRY_VERIFY(!m_desk->program.task.isOpen);
    }
    QVERIFY(child<QTreeWidget>(*m_form, "PropertiesGrid").topLevelItemCount() > 10);
    QVERIFY(child<QTableView>(*m_form, "AuditGrid").model()->rowCount() == 1);
}

void WalkTest::theRowMenuHasWhatConcernsTheCell() {
    import();
    choose(kPage);
    const int row = grid().currentIndex().row();
    const QStringList always = {QStringLiteral("actCopyCell"),
                                QStringLiteral("actCopyRows"),
                                QStringLiteral("actTag"),
                                QStringLiteral("actRebuild"),
                                QStringLiteral("actFilters"),
                                QStringLiteral("actExport"),
                                QStringLiteral("actFilterByHost"),
                                QStringLiteral("actRebuildPage"),
                                QStringLiteral("actRebuildExactly"),
                                QStringLiteral("actRebuildByClassic")};
    const QStringList ofUrl = rowMenu(row, UrlColumn::Value);
    for (const QString &name : always)
        QVERIFY2(ofUrl.contains(name), qPrintable(name));
    QVERIFY(!ofUrl.contains(QStringLiteral("actShowText")));
    for (const UrlColumn column :
         {UrlColumn::CacheFolder, UrlColumn::FileName, UrlColumn::FileRelativePath})
        QVERIFY(rowMenu(row, column).contains(QStringLiteral("actShowText")));
    QVERIFY(rowMenu(row, UrlColumn::Linked).contains(QStringLiteral("actShowLinks")));
    // Another row is ticked: this entry rebuilds its own all the same.
    exec("UPDATE URLs SET Tagged = 1");
    const QStringList ofRebuilt = rowMenu(row, UrlColumn::Rebuilt, "actRebuildPage");
    QVERIFY(!ofRebuilt.contains(QStringLiteral("actShowRebuilt")));
    QCOMPARE(inProject("SELECT Count(*) FROM URLs WHERE CacheFileRebuilt <> 0"), std::string("1"));
    QVERIFY(rowMenu(row, UrlColumn::Rebuilt).contains(QStringLiteral("actShowRebuilt")));
}

void WalkTest::theRowMenuFiltersByTheHost() {
    import();
    exec("UPDATE URLs SET Host = 'a&b' WHERE URL_ID = 1");
    trigger(*m_form, "actRefresh");
    grid().setCurrentUrl(UrlId{1});
    rowMenu(grid().currentIndex().row(), UrlColumn::Host, "actFilterByHost");
    QCOMPARE(rows(), 1);
    QCOMPARE(child<QLineEdit>(*m_form, "txtHostFilter").text(), QStringLiteral("a&b"));
    QVERIFY(child<QLabel>(*m_form, "labHostFilter").isVisible());
    rowMenu(0, UrlColumn::Host, "actAllHosts");
    QCOMPARE(rows(), 4);
}

void WalkTest::aDoubleClickOnARebuiltCellShowsThePage() {
    import();
    choose(kPage);
    const int row = grid().currentIndex().row();
    const auto doubleClick = [&](UrlColumn column) {
        click(row, column);
        QTest::mouseDClick(grid().viewport(), Qt::LeftButton, {}, placeOf(row, column));
    };
    const QString before = front();
    doubleClick(UrlColumn::Rebuilt);
    QCOMPARE(front(), before); // it isn't rebuilt yet
    trigger(*m_form, "actRebuild");
    doubleClick(UrlColumn::Rebuilt);
    QCOMPARE(front(), QStringLiteral("BrowserPane"));
    doubleClick(UrlColumn::FileName);
    QCOMPARE(front(), QStringLiteral("TextPane"));
}

void WalkTest::everyGridCopiesItsOwnCells() {
    import();
    trigger(*m_form, "actHosts");
    auto &hosts = child<QTableView>(*m_form, "HostGrid");
    QVERIFY(hosts.model()->rowCount() > 0);
    hosts.setCurrentIndex(hosts.model()->index(0, 0));
    hosts.setFocus();
    QTest::keyClick(&hosts, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), hosts.currentIndex().data().toString());
    QTest::keyClick(&hosts, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(QGuiApplication::clipboard()->text().startsWith(QStringLiteral("Host\tVisits\t")));
    bringUp("PropertiesPane");
    auto &properties = child<QTreeWidget>(*m_form, "PropertiesGrid");
    QTRY_VERIFY(properties.topLevelItemCount() > 0);
    properties.setCurrentItem(properties.topLevelItem(0), 1);
    properties.setFocus();
    QTest::keyClick(&properties, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), properties.topLevelItem(0)->text(1));
}

void WalkTest::theLayoutOutlivesTheRun() {
    import();
    child<QTabWidget>(*m_form, "dataTabs").setCurrentIndex(1);
    bringUp("HexPane");
    m_form->resize(760, 600); // fits on the display of tests
    child<QSplitter>(*m_form, "mainSplitter").setSizes({170, 260});
    const int upper = child<QSplitter>(*m_form, "mainSplitter").sizes().constFirst();
    child<QTreeWidget>(*m_form, "PropertiesGrid").header()->resizeSection(0, 217);
    QVERIFY(m_form->close());
    m_form.reset();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->show();
    m_form->takePath(m_desk->folder.path() / "case.nvp");
    QCOMPARE(child<QTabWidget>(*m_form, "dataTabs").currentIndex(), 1);
    QCOMPARE(front(), QStringLiteral("HexPane"));
    QCOMPARE(child<QSplitter>(*m_form, "mainSplitter").sizes().constFirst(), upper);
    QCOMPARE(child<QTreeWidget>(*m_form, "PropertiesGrid").header()->sectionSize(0), 217);
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::WalkTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "walk_test.moc"
