#include "gui/Desk.h"
#include "platform/qt/QtText.h"
#include "ui/table/ColumnsForm.h"
#include "ui/table/TableTab.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>
#include <SQLiteCpp/Database.h>

// The Table tab and the properties beside it.
namespace nv {

using namespace test;

class TableTabTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void spaceTicksAllSelectedRows();
    void aTickShowsInTheStatusBarAtOnce();
    void copiedRowsAreTheShownColumnsWithHeadings();
    void aCopiedCellIsOneLine();
    void findGoesRoundFromRowToRow();
    void findSaysWhenThereIsNothing();
    void findLooksBehindWhatACellShows();
    void escapeClosesTheFindBar();
    void quickQueriesAreInTheMenuAndChooseRows();
    void aQueryWithoutRowsSaysWhatToDo();
    void theRecordStaysChosenOrTheFirstRowIs();
    void anEmptyProjectOffersToImport();
    void theFailingSortsStandInTheMenu();
    void propertiesShowAllColumnsAndTheWholeText();
    void hostileTextIsShownWithStandIns();
    void theColumnsDialogSearchesMovesAndStartsAnew();
    void columnsWithoutHeadingsHaveNames();

  private:
    TableTab &tab() { return child<TableTab>(*m_form, "TableTab"); }
    UrlGrid &grid() { return tab().grid(); }
    SQLite::Database &project() { return m_desk->program.state.projectDB.connection(); }
    QString cell(int row, UrlColumn column) {
        return grid().model()->index(row, UrlModel::sectionOf(column)).data().toString();
    }
    int rowWith(const QString &text);
    /// The layout that shows all columns.
    void chooseClassic();

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void TableTabTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1200, 800);
    m_form->show();
    openExample(*m_desk, *m_form);
}

void TableTabTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

int TableTabTest::rowWith(const QString &text) {
    for (int row = 0; row < grid().model()->rowCount(); ++row)
        if (cell(row, UrlColumn::Value).contains(text))
            return row;
    return -1;
}

void TableTabTest::chooseClassic() {
    auto &layouts = child<QComboBox>(*m_form, "cbLayout");
    layouts.setCurrentText(QStringLiteral("Classic"));
    emit layouts.activated(layouts.currentIndex());
}

void TableTabTest::spaceTicksAllSelectedRows() {
    grid().selectAll();
    QTest::keyClick(&grid(), Qt::Key_Space);
    QCOMPARE(project().execAndGet("SELECT count(*) FROM URLs WHERE Tagged = 1").getInt(), 6);
    QCOMPARE(child<QLabel>(*m_form, "labTagged").text(), QStringLiteral("Ticked: 6"));
    QTest::keyClick(&grid(), Qt::Key_Space);
    QCOMPARE(project().execAndGet("SELECT count(*) FROM URLs WHERE Tagged = 1").getInt(), 0);
}

void TableTabTest::aTickShowsInTheStatusBarAtOnce() {
    QTest::keyClick(&grid(), Qt::Key_Space);
    QCOMPARE(child<QLabel>(*m_form, "labTagged").text(), QStringLiteral("Ticked: 1"));
    trigger(*m_form, "actTag");
    QCOMPARE(child<QLabel>(*m_form, "labTagged").text(), QStringLiteral("Ticked: 0"));
}

void TableTabTest::copiedRowsAreTheShownColumnsWithHeadings() {
    chooseClassic();
    for (const UrlColumnFacts &facts : kUrlColumns)
        if (facts.column != UrlColumn::Value && facts.column != UrlColumn::Action)
            grid().hideColumn(facts.column);
    grid().selectRow(rowWith(QStringLiteral("a.example")));
    trigger(*m_form, "actCopyRows");
    QCOMPARE(QApplication::clipboard()->text(),
             QStringLiteral("Action\tURL\nVisited\thttp://a.example/\n"));
}

void TableTabTest::aCopiedCellIsOneLine() {
    project().exec("UPDATE URLs SET MetaData = 'HTTP/1.1 200 OK' || char(13, 10) || "
                   "'X:' || char(9) || '1'");
    trigger(*m_form, "actRefresh");
    const int section = UrlModel::sectionOf(UrlColumn::HttpMetadata);
    grid().setCurrentIndex(grid().model()->index(0, section));
    trigger(*m_form, "actCopyCell");
    const QString copied = QApplication::clipboard()->text();
    QVERIFY(copied.startsWith(QStringLiteral("HTTP/1.1 200 OK")));
    QVERIFY(!copied.contains(u'\n') && !copied.contains(u'\t'));
}

void TableTabTest::findGoesRoundFromRowToRow() {
    trigger(*m_form, "actFind");
    auto &text = child<QLineEdit>(*m_form, "txtFind");
    QVERIFY(text.hasFocus() || m_form->focusWidget() == &text);
    QTest::keyClicks(&text, QStringLiteral("B.EXAMPLE"));
    QTest::keyClick(&text, Qt::Key_Return);
    const int row = rowWith(QStringLiteral("//b.example"));
    QCOMPARE(grid().currentIndex().row(), row);
    trigger(*m_form, "actFindNext");
    QCOMPARE(grid().currentIndex().row(), row);
}

void TableTabTest::findSaysWhenThereIsNothing() {
    trigger(*m_form, "actFind");
    child<QLineEdit>(*m_form, "txtFind").setText(QStringLiteral("no such text"));
    QTest::mouseClick(&child<QPushButton>(*m_form, "btnFindNext"), Qt::LeftButton);
    QCOMPARE(child<QLabel>(*m_form, "labFindResult").text(), QStringLiteral("Not found"));
}

void TableTabTest::findLooksBehindWhatACellShows() {
    project().exec("UPDATE URLs SET MetaData = printf('%.*c', 1000, 'x') || 'needle' "
                   "WHERE URL_ID = 2");
    chooseClassic();
    trigger(*m_form, "actRefresh");
    trigger(*m_form, "actFind");
    auto &text = child<QLineEdit>(*m_form, "txtFind");
    text.setText(QStringLiteral("NEEDLE"));
    QTest::keyClick(&text, Qt::Key_Return);
    QCOMPARE(child<QLabel>(*m_form, "labFindResult").text(), QString());
    QCOMPARE(grid().currentIndex().column(), UrlModel::sectionOf(UrlColumn::HttpMetadata));
    QCOMPARE(cell(grid().currentIndex().row(), UrlColumn::Id), QStringLiteral("2"));
}

void TableTabTest::escapeClosesTheFindBar() {
    trigger(*m_form, "actFind");
    QTest::keyClick(&child<QLineEdit>(*m_form, "txtFind"), Qt::Key_Escape);
    QVERIFY(!child<QWidget>(*m_form, "FindBar").isVisible());
}

void TableTabTest::quickQueriesAreInTheMenuAndChooseRows() {
    const QList<QAction *> actions = child<QMenu>(*m_form, "menuQuickQuery").actions();
    QStringList texts;
    for (const QAction *action : actions)
        texts += action->text();
    QVERIFY(texts.contains(QStringLiteral("Show Only Webpages")));
    QTest::keyClick(&grid(), Qt::Key_Space);
    actions.at(texts.indexOf(QStringLiteral("Tagged Items")))->trigger();
    QCOMPARE(grid().model()->rowCount(), 1);
    QCOMPARE(child<QLabel>(*m_form, "labQuery").text(), QStringLiteral("Query: _Tagged Items"));
    actions.constFirst()->trigger();
    QCOMPARE(grid().model()->rowCount(), 6);
}

void TableTabTest::aQueryWithoutRowsSaysWhatToDo() {
    tab().chooseQuery(QStringLiteral("_Tagged Items"));
    QVERIFY(!grid().isVisible());
    QVERIFY(child<QLabel>(*m_form, "labEmpty").text().contains(QStringLiteral("No record")));
    QTest::mouseClick(&child<QPushButton>(*m_form, "btnEmptyShowAll"), Qt::LeftButton);
    QVERIFY(grid().isVisible());
    QCOMPARE(grid().model()->rowCount(), 6);
}

void TableTabTest::theRecordStaysChosenOrTheFirstRowIs() {
    const auto hostOf = [this](std::size_t place) {
        return toQt(tab().table()->cell(place, UrlColumn::Host));
    };
    QStringList hosts;
    for (std::size_t place = 0; place < 6; ++place)
        hosts += hostOf(place);
    const UrlId last = tab().table()->idAt(5);
    grid().setCurrentUrl(last);
    auto &host = child<QLineEdit>(*m_form, "txtHostFilter");
    host.setText(hosts.at(5));
    QTest::keyClick(&host, Qt::Key_Return);
    QVERIFY(grid().currentUrl() == last);
    host.setText(hosts.at(5) == hosts.at(0) ? hosts.at(1) : hosts.at(0));
    QTest::keyClick(&host, Qt::Key_Return);
    QVERIFY(!tab().table()->placeOf(last));
    QVERIFY(grid().currentUrl() == tab().table()->idAt(0));
    QTRY_VERIFY(child<QTreeWidget>(*m_form, "PropertiesGrid").topLevelItemCount() > 0);
}

void TableTabTest::anEmptyProjectOffersToImport() {
    project().exec("DELETE FROM URLs");
    trigger(*m_form, "actRefresh");
    auto &empty = child<QWidget>(*m_form, "EmptyPage");
    QVERIFY(child<QPushButton>(empty, "btnStepFolder").isVisible());
    QVERIFY(!child<QPushButton>(empty, "btnStepCheck").isEnabled());
    QVERIFY(!child<QPushButton>(*m_form, "btnEmptyShowAll").isVisible());
}

void TableTabTest::theFailingSortsStandInTheMenu() {
    const QList<QAction *> sorts = child<QMenu>(*m_form, "PopupMenuSortBy").actions();
    QCOMPARE(sorts.size(), 7);
    sorts.constFirst()->trigger();
    QCOMPARE(m_desk->examiner.heard.back(), std::string("load-urls-failed"));
    QCOMPARE(grid().model()->rowCount(), 6);
    m_desk->examiner.heard.clear();
    sorts.at(2)->trigger();
    QVERIFY(m_desk->examiner.heard.empty());
}

void TableTabTest::propertiesShowAllColumnsAndTheWholeText() {
    const std::string url = "http://long.example/" + std::string(2000, 'x');
    project().exec("UPDATE URLs SET URL = '" + url + "'");
    trigger(*m_form, "actRefresh");
    child<QCheckBox>(*m_form, "chkEmptyFields").setChecked(true);
    auto &list = child<QTreeWidget>(*m_form, "PropertiesGrid");
    QTRY_COMPARE(list.topLevelItemCount(), 77); // the fields of a record but "Typed"
    QCOMPARE(list.currentItem()->text(0), QStringLiteral("URL"));
    QTRY_COMPARE(child<QPlainTextEdit>(*m_form, "txtPropertyValue").toPlainText(), toQt(url));
    QVERIFY(list.currentItem()->text(1).size() < 400);
    trigger(*m_form, "actClose");
    QCOMPARE(list.topLevelItemCount(), 0);
}

void TableTabTest::hostileTextIsShownWithStandIns() {
    project().exec("UPDATE URLs SET URL = 'http://x/' || char(8238) || 'gpj.exe' || char(10) || "
                   "'<img src=\"http://y/\">'");
    trigger(*m_form, "actRefresh");
    QVERIFY(cell(0, UrlColumn::Value).contains(QStringLiteral("<U+202E>")));
    QVERIFY(!cell(0, UrlColumn::Value).contains(u'\n'));
    const auto &whole = child<QPlainTextEdit>(*m_form, "txtPropertyValue");
    QTRY_VERIFY(whole.toPlainText().contains(QStringLiteral("<U+202E>gpj.exe\n<img src")));
}

void TableTabTest::theColumnsDialogSearchesMovesAndStartsAnew() {
    TableLayout layout;
    layout.setHidden(UrlColumn::Host, true);
    ColumnsForm form(layout, TableLayout());
    auto &list = child<QListWidget>(form, "lstColumns");
    QTest::keyClicks(&child<QLineEdit>(form, "txtColumnSearch"), QStringLiteral("host"));
    int shown = 0;
    for (int row = 0; row < list.count(); ++row)
        shown += list.item(row)->isHidden() ? 0 : 1;
    QCOMPARE(shown, 1);
    QTest::mouseClick(&child<QPushButton>(form, "btnColumnsAll"), Qt::LeftButton);
    QVERIFY(!form.tableLayout().hidden(UrlColumn::Host));
    QVERIFY(form.tableLayout().hidden(UrlColumn::KeywordFlag));

    list.setCurrentRow(UrlModel::sectionOf(UrlColumn::Host));
    QTest::mouseClick(&child<QPushButton>(form, "btnColumnUp"), Qt::LeftButton);
    QCOMPARE(form.tableLayout().position(UrlColumn::Host),
             UrlModel::sectionOf(UrlColumn::Host) - 1);
    QTest::mouseClick(&child<QPushButton>(form, "btnColumnsDefault"), Qt::LeftButton);
    QCOMPARE(form.tableLayout().position(UrlColumn::Host), UrlModel::sectionOf(UrlColumn::Host));
}

void TableTabTest::columnsWithoutHeadingsHaveNames() {
    for (const UrlColumnFacts &facts : kTableColumns)
        QVERIFY2(!columnTitle(facts.column).isEmpty(), std::string(facts.key).c_str());
}

} // namespace nv

QTEST_MAIN(nv::TableTabTest)
#include "table_tab_test.moc"
