#include "db/project/ProjectFields.h"
#include "db/project/StoredQueries.h"
#include "gui/Desk.h"
#include "platform/qt/QtText.h"
#include "ui/queries/SQLQueryForm.h"
#include "ui/table/TableTab.h"
#include "ui/widgets/GrowingGrid.h"

#include <QClipboard>
#include <QComboBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

// The Query tab and the query dialog.
namespace nv {

using namespace test;

class QueryTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void theTabStandsBesideTheTable();
    void aGridBuildsValidatesAppliesAndIsUndone();
    void booleanFieldsOfferTruthValues();
    void rowsGoWithTheDeleteKey();
    void aWrongStatementLeavesTheTable();
    void aQueryIsSavedChosenAndDeleted();
    void theTablesOwnSelectorIsFollowed();
    void aQuickSortIsTheStatementAfterIt();
    void theDialogBuildsAStatement();
    void theDialogChecksTheName();
    void deadQueriesAreListedInClassic();
    void favoritesLeftTheToolbar();
    void favoritesAreANotice();
    void closingEmptiesTheTab();

  private:
    GrowingGrid &queryGrid() { return child<GrowingGrid>(*m_form, "QueryGrid"); }
    QPlainTextEdit &box() { return child<QPlainTextEdit>(*m_form, "txtSQLDef"); }
    QComboBox &selector() { return child<QComboBox>(*m_form, "cbQueries"); }
    int tableRows() { return child<TableTab>(*m_form, "TableTab").grid().model()->rowCount(); }
    QString shownQuery() { return child<QLabel>(*m_form, "labQuery").text(); }
    void click(const char *button) {
        QTest::mouseClick(&child<QToolButton>(*m_form, button), Qt::LeftButton);
    }
    void edit(GrowingGrid &grid, int row, int column);
    void choose(GrowingGrid &grid, int row, int column, const QString &text);
    void type(GrowingGrid &grid, int row, int column, const QString &text);
    void saveAs(const QString &name);
    std::string heard() {
        return m_desk->examiner.heard.empty() ? "" : m_desk->examiner.heard.back();
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void QueryTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1200, 800);
    m_form->show();
    openExample(*m_desk, *m_form);
    trigger(*m_form, "actQueryTab");
    m_desk->examiner.heard.clear();
}

void QueryTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

/// Opens the cell's editor by a click.
void QueryTest::edit(GrowingGrid &grid, int row, int column) {
    const QPoint place = grid.visualItemRect(grid.item(row, column)).center();
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, place);
}

void QueryTest::choose(GrowingGrid &grid, int row, int column, const QString &text) {
    edit(grid, row, column);
    auto *offered = grid.viewport()->findChild<QComboBox *>(QStringLiteral("cbCell"));
    QVERIFY(offered);
    const int place = offered->findText(text);
    QVERIFY2(place >= 0, qPrintable(text));
    while (offered->currentIndex() != place)
        QTest::keyClick(offered, offered->currentIndex() < place ? Qt::Key_Down : Qt::Key_Up);
    QTest::keyClick(offered, Qt::Key_Return);
    // The editor closes when the key's event is over.
    QTRY_VERIFY(!grid.viewport()->findChild<QComboBox *>(QStringLiteral("cbCell")));
    QCOMPARE(grid.item(row, column)->text(), text);
}

void QueryTest::type(GrowingGrid &grid, int row, int column, const QString &text) {
    edit(grid, row, column);
    auto *line = grid.viewport()->findChild<QLineEdit *>();
    QVERIFY(line);
    QTest::keyClicks(line, text);
    QTest::keyClick(line, Qt::Key_Return);
    QTRY_VERIFY(!grid.viewport()->findChild<QLineEdit *>());
    QCOMPARE(grid.item(row, column)->text(), text);
}

void QueryTest::saveAs(const QString &name) {
    whenShown<QInputDialog>([name](QInputDialog &dialog) {
        QTest::keyClicks(dialog.findChild<QLineEdit *>(), name);
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    click("btnSaveQuery");
}

void QueryTest::theTabStandsBesideTheTable() {
    auto &tabs = child<QTabWidget>(*m_form, "dataTabs");
    QCOMPARE(tabs.tabText(1), QStringLiteral("Query"));
    QCOMPARE(tabs.currentIndex(), 1);
    QCOMPARE(box().toPlainText(), toQt(kDefaultQueryText));
    QCOMPARE(queryGrid().rowCount(), 1);
    QCOMPARE(selector().findText(QStringLiteral("_DEFAULT")), -1);
    QVERIFY(selector().findText(QStringLiteral("Facebook")) >= 0);
}

void QueryTest::aGridBuildsValidatesAppliesAndIsUndone() {
    QCOMPARE(tableRows(), 6);
    choose(queryGrid(), 0, 0, QStringLiteral("Host"));
    choose(queryGrid(), 0, 1, QStringLiteral("contains"));
    type(queryGrid(), 0, 2, QStringLiteral("b.example"));
    QCOMPARE(queryGrid().rowCount(), 2); // the next blank row waits
    choose(child<GrowingGrid>(*m_form, "QuerySortGrid"), 0, 0, QStringLiteral("URL"));
    choose(child<GrowingGrid>(*m_form, "QuerySortGrid"), 0, 1, QStringLiteral("DESCENDING"));
    QCOMPARE(
        box().toPlainText(),
        QStringLiteral("SELECT * FROM URLs WHERE (Host LIKE '%b.example%')   ORDER BY URL DESC"));
    click("btnValidateSQL");
    QCOMPARE(heard(), std::string("statement-valid"));
    QCOMPARE(tableRows(), 6);
    click("btnApplyQuery");
    QCOMPARE(tableRows(), 1);
    click("btnUndoQuery");
    QCOMPARE(tableRows(), 6);
    QCOMPARE(box().toPlainText(), toQt(kDefaultQueryText));
    click("btnUndoQuery");
    QCOMPARE(tableRows(), 1);
    click("btnDefaultQuery");
    QCOMPARE(tableRows(), 6);
    QCOMPARE(selector().currentIndex(), -1);
    QCOMPARE(selector().placeholderText(), QStringLiteral("_DEFAULT"));
}

void QueryTest::booleanFieldsOfferTruthValues() {
    choose(queryGrid(), 0, 0, QStringLiteral("Tagged"));
    choose(queryGrid(), 0, 1, QStringLiteral("equals"));
    choose(queryGrid(), 0, 2, QStringLiteral("False"));
    choose(queryGrid(), 0, 3, QStringLiteral("AND"));
    QVERIFY(box().toPlainText().contains(QStringLiteral("(Tagged = False) AND ")));
    click("btnApplyQuery"); // the joining word joins nothing
    QCOMPARE(heard(), std::string("bad-definition"));
    choose(queryGrid(), 0, 3, QStringLiteral(" "));
    click("btnApplyQuery");
    QCOMPARE(tableRows(), 6);
}

void QueryTest::rowsGoWithTheDeleteKey() {
    choose(queryGrid(), 0, 0, QStringLiteral("Host"));
    choose(queryGrid(), 1, 0, QStringLiteral("URL"));
    QCOMPARE(queryGrid().rowCount(), 3);
    queryGrid().setCurrentCell(-1, -1);
    queryGrid().selectRow(0);
    queryGrid().setFocus();
    QTest::keyClick(&queryGrid(), Qt::Key_Delete);
    QCOMPARE(queryGrid().rowCount(), 2);
    QCOMPARE(queryGrid().item(0, 0)->text(), QStringLiteral("URL"));
    QCOMPARE(box().toPlainText(), QStringLiteral("SELECT * FROM URLs WHERE (URL = '')  "));
}

void QueryTest::aWrongStatementLeavesTheTable() {
    for (const char *bad : {"DELETE FROM URLs", "SELECT colour FROM URLs", ""}) {
        box().setPlainText(QString::fromLatin1(bad));
        click("btnApplyQuery");
        QCOMPARE(heard(), std::string("bad-definition"));
        click("btnValidateSQL");
        QCOMPARE(heard(), std::string("statement-invalid"));
        QCOMPARE(tableRows(), 6);
    }
    box().setPlainText(QStringLiteral("SELECT Host FROM URLs")); // valid, but no rows of the table
    click("btnApplyQuery");
    QCOMPARE(heard(), std::string("bad-definition"));
    QCOMPARE(tableRows(), 6);
    QCOMPARE(m_desk->program.state.currentSQLDef, std::string(kDefaultQueryText));
}

void QueryTest::aQueryIsSavedChosenAndDeleted() {
    box().setPlainText(QStringLiteral("SELECT * FROM URLs\nWHERE Host = 'b.example'"));
    saveAs(QStringLiteral("Mine"));
    QCOMPARE(selector().currentText(), QStringLiteral("Mine"));
    QCOMPARE(tableRows(), 1);
    QCOMPARE(shownQuery(), QStringLiteral("Query: Mine"));
    click("btnDefaultQuery");
    QCOMPARE(tableRows(), 6);
    QTest::keyClicks(&selector(), QStringLiteral("Mine"));
    emit selector().activated(selector().currentIndex());
    QCOMPARE(box().toPlainText(), QStringLiteral("SELECT * FROM URLs WHERE Host = 'b.example'"));
    QCOMPARE(tableRows(), 6); // not before Apply
    click("btnApplyQuery");
    QCOMPARE(tableRows(), 1);
    saveAs(QStringLiteral("_Mine"));
    QCOMPARE(heard(), std::string("reserved-query"));
    selector().setCurrentText(QStringLiteral("Mine"));
    m_desk->examiner.script = {Answer::No};
    click("btnDeleteQuery");
    QVERIFY(selector().findText(QStringLiteral("Mine")) >= 0);
    m_desk->examiner.script = {Answer::Yes};
    click("btnDeleteQuery");
    QCOMPARE(selector().findText(QStringLiteral("Mine")), -1);
    QCOMPARE(child<QComboBox>(*m_form, "cbActiveQuery").findText(QStringLiteral("Mine")), -1);
}

void QueryTest::theTablesOwnSelectorIsFollowed() {
    child<TableTab>(*m_form, "TableTab").chooseQuery(QStringLiteral("_Show Only History"));
    QVERIFY(box().toPlainText().contains(QStringLiteral("IsHistory = True")));
    QCOMPARE(selector().currentText(), QStringLiteral("_Show Only History"));
    QCOMPARE(m_desk->program.state.activeQueryName, std::string("_Show Only History"));
    click("btnUndoQuery");
    QCOMPARE(box().toPlainText(), toQt(kDefaultQueryText));
    QCOMPARE(shownQuery(), QStringLiteral("Query: Default"));
}

void QueryTest::aQuickSortIsTheStatementAfterIt() {
    const QList<QAction *> sorts = child<QMenu>(*m_form, "PopupMenuSortBy").actions();
    sorts.at(0)->trigger(); // its column isn't there
    QCOMPARE(heard(), std::string("load-urls-failed"));
    QCOMPARE(box().toPlainText(), toQt(kDefaultQueryText));
    sorts.at(4)->trigger();
    QCOMPARE(box().toPlainText(),
             QStringLiteral("SELECT * FROM URLs ORDER BY Visits DESC, ActionDateUTC ASC"));
    QCOMPARE(tableRows(), 6);
    click("btnUndoQuery");
    QCOMPARE(box().toPlainText(), toQt(kDefaultQueryText));
}

void QueryTest::theDialogBuildsAStatement() {
    whenShown<SQLQueryForm>([this](SQLQueryForm &form) {
        auto &fields = child<QListWidget>(form, "List1");
        QCOMPARE(fields.count(), fields.findItems(QStringLiteral("*"), Qt::MatchWildcard).size());
        fields.setCurrentItem(fields.findItems(QStringLiteral("Host"), Qt::MatchExactly).at(0));
        QTest::keyClicks(&child<QLineEdit>(form, "txtCondition"), QStringLiteral("b.ex"));
        QTest::keyClick(&child<QLineEdit>(form, "txtCondition"), Qt::Key_Return);
        const QString built = QStringLiteral("SELECT * FROM URLs WHERE Host LIKE  '%b.ex%'");
        QCOMPARE(child<QPlainTextEdit>(form, "SQLText").toPlainText(), built);
        QTest::mouseClick(&child<QPushButton>(form, "btnClipboard"), Qt::LeftButton);
        QCOMPARE(QGuiApplication::clipboard()->text(), built);
        QTest::mouseClick(&child<QPushButton>(form, "btnSampleSQL"), Qt::LeftButton);
        QCOMPARE(heard(), std::string("sample-statement"));
        QTest::mouseClick(&child<QPushButton>(form, "btnOkay"), Qt::LeftButton);
    });
    click("btnQueryForm");
    const std::string built = "SELECT * FROM URLs WHERE Host LIKE  '%b.ex%'";
    QCOMPARE(box().toPlainText(), toQt(built));
    QCOMPARE(m_desk->program.state.customQueryDef, built);
    QCOMPARE(tableRows(), 6);
    auto &project = m_desk->program.state.projectDB.connection();
    QCOMPARE(ProjectFields(project, m_desk->program.log).getDefault("QueryName"), built);
}

void QueryTest::theDialogChecksTheName() {
    whenShown<SQLQueryForm>([this](SQLQueryForm &form) {
        auto &name = child<QLineEdit>(form, "txtFavoriteName");
        name.setText(QStringLiteral("Top 5"));
        QTest::mouseClick(&child<QPushButton>(form, "btnOkay"), Qt::LeftButton);
        QCOMPARE(heard(), std::string("invalid-favorite-name"));
        QVERIFY(form.isVisible());
        name.setText(QStringLiteral("My all-time_list"));
        QTest::mouseClick(&child<QPushButton>(form, "btnClear"), Qt::LeftButton);
        QTest::mouseClick(&child<QPushButton>(form, "btnOkay"), Qt::LeftButton);
    });
    click("btnQueryForm");
    QCOMPARE(selector().currentText(), QStringLiteral("My all-time_list"));
    QCOMPARE(tableRows(), 6);
}

/// The query's own tab lists them all.
void QueryTest::deadQueriesAreListedInClassic() {
    const QString dead = QStringLiteral("Linked URLs");
    auto &box = child<QComboBox>(*m_form, "cbActiveQuery");
    auto &layouts = child<QComboBox>(*m_form, "cbLayout");
    QVERIFY(box.findText(dead) < 0);
    QVERIFY(box.findText(QStringLiteral("eBay")) > 0);
    QVERIFY(selector().findText(dead) >= 0);
    QVERIFY(box.toolTip().contains(QStringLiteral("Classic")));
    const int classic = layouts.findText(QStringLiteral("Classic"));
    QVERIFY(classic >= 0);
    layouts.setCurrentIndex(classic);
    emit layouts.activated(classic);
    QTRY_VERIFY(box.findText(dead) > 0);
}

void QueryTest::favoritesLeftTheToolbar() {
    for (const QToolBar *bar : m_form->findChildren<QToolBar *>())
        for (const QAction *action : bar->actions())
            QVERIFY(action->objectName() != QStringLiteral("actFavorites"));
}

void QueryTest::favoritesAreANotice() {
    trigger(*m_form, "actFavorites");
    QCOMPARE(heard(), std::string("favorites"));
    trigger(*m_form, "actClose");
    trigger(*m_form, "actFavorites"); // also without a project
    QCOMPARE(heard(), std::string("favorites"));
}

void QueryTest::closingEmptiesTheTab() {
    choose(queryGrid(), 0, 0, QStringLiteral("Host"));
    trigger(*m_form, "actClose");
    QCOMPARE(queryGrid().rowCount(), 1);
    QVERIFY(box().toPlainText().isEmpty());
    QCOMPARE(selector().count(), 0);
    QVERIFY(!child<QAction>(*m_form, "actApplyQuery").isEnabled());
}

} // namespace nv

QTEST_MAIN(nv::QueryTest)
#include "query_test.moc"
