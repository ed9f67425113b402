#include "base/Files.h"
#include "db/marks/NamedTags.h"
#include "db/marks/RecordTags.h"
#include "db/trail/CaseTrail.h"
#include "gui/FirstSteps.h"
#include "gui/LimitedTable.h"
#include "platform/qt/PageGuard.h"
#include "support/Places.h"
#include "ui/frame/CaseTrailForm.h"
#include "ui/limits/ColumnLimitForm.h"
#include "ui/limits/TimeStrip.h"
#include "ui/reports/ExportForm.h"
#include "ui/reports/RedactionForm.h"
#include "ui/reports/ReportForm.h"
#include "ui/tags/TagForm.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTreeView>
#include <QTreeWidget>
#include <SQLiteCpp/Database.h>
#include <nlohmann/json.hpp>

// From the first page to the report and the check of the trail: the way that an examiner goes with
// the example evidence, by keys wherever there are some.
namespace nv {

using namespace test;

class DeskWalkTest : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase();
    void cleanupTestCase();

    // In this order: each goes on where the one before has ended.
    void theFirstPageLeadsToRowsInFourSteps();
    void addressesAndDatesAreOnTheScreen();
    void lettersNarrowTheTable();
    void enterSearchesTheTextOfPages();
    void theNextHitIsGoneTo();
    void aSpanOfTimeIsChosen();
    void aPlaceIsChosen();
    void aHeadingIsLimited();
    void limitsAreUndoneAndCleared();
    void aRowGetsATagAndANote();
    void theCardSaysWhy();
    void aPageIsRebuilt();
    void aReportOfTheCaseLeavesAHostOut();
    void aTimelineIsHandedOver();
    void theTrailIsWhole();

  private:
    QString answerTo(const char *sql) {
        return QString::fromStdString(
            m_desk->program.state.projectDB.connection().execAndGet(sql).getString());
    }
    UrlGrid &grid() { return child<TableTab>(*m_form, "TableTab").grid(); }
    int rows() { return grid().model()->rowCount(); }
    QLineEdit &box() { return child<QLineEdit>(*m_form, "txtSearch"); }
    void activate() {
        m_form->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
    }
    /// A key of the window, which goes to the active one only.
    void press(const QKeyCombination &keys) {
        if (!m_form->isActiveWindow())
            activate();
        QWidget *focus = m_form->focusWidget() ? m_form->focusWidget() : m_form.get();
        QTest::keyClick(focus, keys.key(), keys.keyboardModifiers());
    }
    void focusRow(int row) {
        m_form->activateWindow();
        grid().setFocus();
        grid().setCurrentIndex(grid().model()->index(row, UrlModel::sectionOf(UrlColumn::Value)));
    }
    void goTo(const QString &id) {
        grid().setCurrentUrl(UrlId{id.toLongLong()});
        QTest::qWait(50); // what shows the row before is emptied
    }
    void bringUp(const char *pane) {
        child<QTabWidget>(*m_form, "viewerTabs").setCurrentWidget(&child<QWidget>(*m_form, pane));
    }
    QStringList chips() {
        QStringList texts;
        for (auto *each : m_form->findChildren<QToolButton *>())
            if (each->isVisible() && each->objectName().startsWith(QStringLiteral("btnChip")))
                texts += each->accessibleName();
        return texts;
    }
    fs::path out(const char *name) { return m_desk->folder.path() / name; }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
    int m_all = 0;
};

void DeskWalkTest::initTestCase() {
    m_desk = std::make_unique<Desk>();
    m_desk->program.state.redrawThumbIfPageRebuilt = false; // starting to draw takes a second
    rememberFlag(m_desk->program.settings, "ShowPlaces", true);
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 800);
    m_form->show();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get())); // keys of commands need that
}

void DeskWalkTest::cleanupTestCase() {
    m_form.reset();
    m_desk.reset();
}

void DeskWalkTest::theFirstPageLeadsToRowsInFourSteps() {
    const fs::path evidence = out("seized");
    fs::copy(docsFolder().parent_path() / "examples" / "evidence", evidence,
             fs::copy_options::recursive);
    QVERIFY(child<QWidget>(*m_form, "WelcomePage").isVisible());
    activate();
    const int steps = stepsToRows(*m_desk, *m_form, evidence);
    m_all = rows();
    QVERIFY2(m_all > 600, qPrintable(QString::number(m_all)));
    QVERIFY(!child<QWidget>(*m_form, "WelcomePage").isVisible());
    QVERIFY(grid().isVisible());
    QCOMPARE(m_desk->program.state.projectDBPath, out("seized 2011-06-15.nvp"));
    constexpr int kMostSteps = 4;
    QVERIFY2(steps <= kMostSteps, qPrintable(QString::number(steps)));
}

/// Without any choice, at the size of a small screen.
void DeskWalkTest::addressesAndDatesAreOnTheScreen() {
    const auto isOnScreen = [this](UrlColumn column) {
        const int section = UrlModel::sectionOf(column);
        const QRect cell = grid().visualRect(grid().model()->index(0, section));
        return !grid().isColumnHidden(section) && cell.left() >= 0 &&
               cell.left() < grid().viewport()->width();
    };
    QVERIFY(isOnScreen(UrlColumn::Value));
    QVERIFY(isOnScreen(UrlColumn::LocalDate) || isOnScreen(UrlColumn::ActionDateLocal));
    focusRow(0);
    QTRY_VERIFY(!child<QTextEdit>(*m_form, "cardText").toPlainText().isEmpty());
}

void DeskWalkTest::lettersNarrowTheTable() {
    press(Qt::CTRL | Qt::Key_F);
    QVERIFY(m_form->focusWidget() == &box());
    QTest::keyClicks(&box(), QStringLiteral("story"));
    QTRY_VERIFY(rows() > 0 && rows() < m_all);
    QVERIFY2(chips().join(u'|').contains(QStringLiteral("Search in values: story")),
             qPrintable(chips().join(u'|')));
}

void DeskWalkTest::enterSearchesTheTextOfPages() {
    const int values = rows();
    QTest::keyClick(&box(), Qt::Key_Return);
    QTRY_VERIFY(chips().join(u'|').contains(QStringLiteral("Search: story")));
    QTRY_VERIFY(rows() >= values);
    QTRY_VERIFY(!child<QLabel>(*m_form, "labSnippet").text().isEmpty());
}

void DeskWalkTest::theNextHitIsGoneTo() {
    QTest::keyClick(&box(), Qt::Key_Down);
    QVERIFY(m_form->focusWidget() == &grid());
    focusRow(0);
    bringUp("TextPane");
    auto &count = child<QLabel>(*m_form, "labHitCount");
    for (int row = 0; row < rows() && count.text().isEmpty(); ++row) {
        focusRow(row);
        QTest::qWait(30);
    }
    QTRY_VERIFY2(count.text().endsWith(QStringLiteral("in Text")), qPrintable(count.text()));
    press(Qt::Key_F8);
    QVERIFY2(count.text().startsWith(QStringLiteral("Hit 1 of ")), qPrintable(count.text()));
    const auto row = grid().currentUrl();
    for (int hit = 0; hit < 3000 && grid().currentUrl() == row && chips().size() == 1; ++hit)
        trigger(*m_form, "actNextHit");
    QVERIFY(grid().currentUrl() != row || rows() == 1);
    press(Qt::CTRL | Qt::Key_F);
    QTest::keyClick(&box(), Qt::Key_Escape);
    QTRY_COMPARE(rows(), m_all);
}

void DeskWalkTest::aSpanOfTimeIsChosen() {
    press(Qt::CTRL | Qt::SHIFT | Qt::Key_T);
    auto &strip = child<TimeStrip>(*m_form, "TimeStrip");
    if (!strip.isVisible())
        trigger(*m_form, "actTime");
    QTRY_VERIFY(strip.isVisible() && strip.bars().count > 0);
    strip.setFocus();
    QTest::keyClick(&strip, Qt::Key_End);
    QTest::keyClick(&strip, Qt::Key_Return);
    QTRY_VERIFY2(rows() > 0 && rows() < m_all, qPrintable(QString::number(rows())));
    QCOMPARE(chips().size(), 1);
}

void DeskWalkTest::aPlaceIsChosen() {
    trigger(*m_form, "actClearLimits");
    QTRY_COMPARE(rows(), m_all);
    auto &tree = child<QTreeView>(*m_form, "PlacesTree");
    QTRY_VERIFY(tree.isVisible() && tree.model()->rowCount() > 0);
    tree.setFocus();
    tree.setCurrentIndex(tree.model()->index(0, 0));
    for (int step = 0; step < 20 && rows() == m_all; ++step) {
        QTest::keyClick(&tree, Qt::Key_Right);
        QTest::keyClick(&tree, Qt::Key_Down);
        QTest::keyClick(&tree, Qt::Key_Return);
        QTest::qWait(10);
    }
    QVERIFY(rows() > 0 && rows() < m_all);
    QCOMPARE(chips().size(), 1);
}

void DeskWalkTest::aHeadingIsLimited() {
    const int before = rows();
    QMenu menu;
    emit child<TableTab>(*m_form, "TableTab").headerMenuComesUp(menu, UrlColumn::Host);
    auto *limit = menu.findChild<QAction *>(QStringLiteral("actLimitColumn"));
    QVERIFY(limit);
    auto *timer = new QTimer(qApp); // the dialog comes once the values are counted
    connect(timer, &QTimer::timeout, timer, [timer] {
        auto *form = qobject_cast<ColumnLimitForm *>(QApplication::activeModalWidget());
        if (!form)
            return;
        timer->stop();
        timer->deleteLater();
        QTest::keyClick(&child<QPushButton>(*form, "btnValuesNone"), Qt::Key_Space);
        auto &list = child<QListWidget>(*form, "lstColumnValues");
        list.setFocus();
        list.setCurrentRow(0);
        QTest::keyClick(&list, Qt::Key_Space);
        QTest::keyClick(form, Qt::Key_Return);
        if (form->isVisible())
            form->reject(); // nothing waits for it for ever
    });
    timer->start(10);
    limit->trigger();
    QVERIFY2(rows() > 0 && rows() <= before, qPrintable(QString::number(rows())));
    QCOMPARE(chips().size(), 2);
}

void DeskWalkTest::limitsAreUndoneAndCleared() {
    const int limited = rows();
    press(Qt::CTRL | Qt::Key_Z);
    QTRY_COMPARE(chips().size(), 1);
    trigger(*m_form, "actRedo");
    QTRY_COMPARE(chips().size(), 2);
    QCOMPARE(rows(), limited);
    auto &clear = child<QToolButton>(*m_form, "btnClearLimits");
    clear.setFocus();
    QTest::keyClick(&clear, Qt::Key_Space);
    QTRY_COMPARE(rows(), m_all);
    QVERIFY(chips().isEmpty());
}

void DeskWalkTest::aRowGetsATagAndANote() {
    SQLite::Database &project = m_desk->program.state.projectDB.connection();
    focusRow(0);
    auto &menu = child<QMenu>(*m_form, "menuTags");
    emit menu.aboutToShow();
    whenShown<TagForm>([](TagForm &form) {
        auto &name = child<QLineEdit>(form, "txtTagName");
        QTest::keyClicks(&name, QStringLiteral("Important"));
        QTest::keyClick(&name, Qt::Key_Return);
        if (form.isVisible())
            form.reject(); // nothing waits for it for ever
    });
    child<QAction>(menu, "actNewTag").trigger();
    focusRow(1);
    press(Qt::Key_1);
    const auto tag = NamedTags(project).find("Important");
    QVERIFY(tag);
    QCOMPARE(RecordTags(project).rowsOf(tag->tagID).size(), std::size_t{2});
    press(Qt::Key_1);
    QCOMPARE(RecordTags(project).rowsOf(tag->tagID).size(), std::size_t{1});
    auto &viewers = child<QTabWidget>(*m_form, "viewerTabs");
    const int pane = viewers.indexOf(&child<QWidget>(*m_form, "NotesPane"));
    press(Qt::ALT | Qt::Key(Qt::Key_1 + pane));
    auto &note = child<QPlainTextEdit>(*m_form, "NotesText");
    QVERIFY(note.isEnabled() && note.hasFocus());
    QTest::keyClicks(&note, QStringLiteral("ask mara"));
    grid().setFocus();
    QCOMPARE(answerTo("SELECT Notes FROM URLs WHERE Notes LIKE 'ask%'"),
             QStringLiteral("ask mara"));
}

void DeskWalkTest::theCardSaysWhy() {
    goTo(answerTo("SELECT min(URL_ID) FROM URLs WHERE CacheType LIKE 'Chrome Visit'"));
    auto &list = child<QTreeWidget>(*m_form, "PropertiesGrid");
    const auto found = [&list] {
        return list.findItems(QStringLiteral("ActionDateUTC"), Qt::MatchExactly);
    };
    QTRY_COMPARE(found().size(), 1);
    list.setCurrentItem(found().first());
    QTest::keyClick(&child<QPushButton>(*m_form, "btnWhy"), Qt::Key_Space);
    const auto &answer = child<QPlainTextEdit>(*m_form, "txtWhy");
    QTRY_VERIFY2(answer.toPlainText().contains(QStringLiteral("Rule: ")),
                 qPrintable(answer.toPlainText()));
    QVERIFY(answer.toPlainText().contains(QStringLiteral("SHA-256"), Qt::CaseInsensitive));
}

void DeskWalkTest::aPageIsRebuilt() {
    goTo(answerTo("SELECT min(URL_ID) FROM URLs WHERE CacheFileExists <> 0 AND IsWebPage <> 0"));
    QVERIFY(grid().currentUrl());
    press(Qt::CTRL | Qt::Key_B);
    QTRY_COMPARE(answerTo("SELECT CAST(Count(*) AS TEXT) FROM URLs WHERE CacheFileRebuilt <> 0"),
                 QStringLiteral("1"));
    bringUp("BrowserPane");
    const auto &kind = child<QLabel>(child<QWidget>(*m_form, "BrowserPane"), "labBrowserKind");
    QTRY_VERIFY2_WITH_TIMEOUT(kind.text().contains(QStringLiteral("ebuilt")),
                              qPrintable(kind.text()), 20'000);
}

void DeskWalkTest::aReportOfTheCaseLeavesAHostOut() {
    const QString host = answerTo(
        "SELECT Host FROM URLs WHERE Host LIKE '%.%' GROUP BY Host ORDER BY Count(*) DESC LIMIT 1");
    QVERIFY(!host.isEmpty());
    whenShown<ReportForm>([host](ReportForm &form) {
        child<QComboBox>(form, "cbReportType").setCurrentIndex(3);
        whenShown<RedactionForm>([host](RedactionForm &redactions) {
            QTest::keyClicks(&child<QPlainTextEdit>(redactions, "txtRedactions"),
                             QStringLiteral("leave out host=") + host);
            redactions.accept();
            QVERIFY2(!redactions.isVisible(),
                     qPrintable(child<QLabel>(redactions, "labRedactionFault").text()));
        });
        QTest::keyClick(&child<QPushButton>(form, "btnRedact"), Qt::Key_Space);
        form.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
    });
    trigger(*m_form, "actCreateReport");
    waitForReport(*m_form);
    const fs::path made = m_desk->program.state.tempFolderPath / "CaseReport";
    QVERIFY(fs::exists(made / "index.htm"));
    const std::string without = fromQt(QStringLiteral("://%1/").arg(host));
    for (const auto &entry : fs::recursive_directory_iterator(made))
        if (entry.is_regular_file())
            QVERIFY2(!ByteView(readWhole(entry.path())).find(without), entry.path().c_str());
}

void DeskWalkTest::aTimelineIsHandedOver() {
    const fs::path file = out("events.jsonl");
    whenShown<ExportForm>([file](ExportForm &dialog) {
        child<QComboBox>(dialog, "cbFormat")
            .setCurrentIndex(static_cast<int>(ExportFormat::timesketch));
        auto &name = child<QLineEdit>(dialog, "txtOutputFilename");
        name.clear();
        QTest::keyClicks(&name, pathToQt(file));
        dialog.accept();
    });
    trigger(*m_form, "actExport");
    const Bytes bytes = readWhole(file);
    const std::string_view text = ByteView(bytes).raw();
    QVERIFY(!text.empty());
    const auto event = nlohmann::json::parse(text.substr(0, text.find('\n')));
    QCOMPARE(event.at("source_short").get<std::string>(), std::string("WEBHIST"));
    QVERIFY(std::ranges::count(text, '\n') > m_all);
}

void DeskWalkTest::theTrailIsWhole() {
    QStringList actions;
    whenShown<CaseTrailForm>([&](CaseTrailForm &form) {
        QTest::keyClick(&child<QPushButton>(form, "btnVerify"), Qt::Key_Space);
        auto &list = child<QTreeWidget>(form, "lstTrail");
        for (int row = 0; row < list.topLevelItemCount(); ++row)
            actions += list.topLevelItem(row)->text(1);
        form.reject();
    });
    trigger(*m_form, "actCaseTrail");
    QCOMPARE(m_desk->examiner.heard.back(), std::string("sources-verified"));
    for (const char *action : {"Import", "Tag", "Note", "Report", "Export", "Verif"})
        QVERIFY2(actions.join(u'|').contains(QLatin1String(action)),
                 qPrintable(actions.join(u'|')));
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::DeskWalkTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "desk_walk_test.moc"
