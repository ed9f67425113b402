#include "gui/Desk.h"
#include "platform/qt/PageGuard.h"
#include "ui/frame/ViewerTabs.h"
#include "ui/reports/ReportForm.h"
#include "ui/table/TableTab.h"
#include "ui/viewers/ReportPane.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <QToolButton>
#include <SQLiteCpp/Database.h>

#include <algorithm>

// The examiner goes on while a report is being made.
namespace nv {

using namespace test;

class ReportWorkTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void theWindowGoesOnMeanwhile();
    void itIsOfTheProjectAsItWasThen();
    void stoppedNothingIsLeftOfIt();
    void closingTheProjectAsksAndStopsIt();
    void whoReadsOnIsNotLedAway();

  private:
    template <class Part>
    Part &part(const char *name) {
        return child<Part>(*m_form, name);
    }
    QAction &action(const char *name) { return part<QAction>(name); }
    SQLite::Database &project() { return m_desk->program.state.projectDB.connection(); }
    fs::path page() { return m_desk->program.state.tempFolderPath / "Report/index-history.htm"; }
    /// A report of all rows, which are many, has begun.
    void begin();

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void ReportWorkTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 1000);
    m_form->show();
    openExample(*m_desk, *m_form);
    project().exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 5000) "
                   "INSERT INTO URLs (URL, CacheType) SELECT 'http://host/' || i, 'IE Daily' "
                   "FROM n");
    trigger(*m_form, "actRefresh");
}

void ReportWorkTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void ReportWorkTest::begin() {
    whenShown<ReportForm>([](ReportForm &form) {
        child<QComboBox>(form, "cbReportType").setCurrentIndex(2);
        QTest::mouseClick(form.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok),
                          Qt::LeftButton);
    });
    trigger(*m_form, "actCreateReport");
    QVERIFY(part<QWidget>("ReportProgress").isVisible());
}

void ReportWorkTest::theWindowGoesOnMeanwhile() {
    QList<int> percents;
    connect(&part<QProgressBar>("barReportProgress"), &QProgressBar::valueChanged, this,
            [&percents](int percent) { percents += percent; });
    const QString hint = action("actSaveAs").toolTip();
    begin();
    QVERIFY(part<QTabWidget>("dataTabs").isEnabled());
    QVERIFY(action("actFilters").isEnabled());
    for (const char *name : {"actCreateReport", "actPublishReport", "actSaveAs"}) {
        QVERIFY2(!action(name).isEnabled(), name);
        QVERIFY2(action(name).toolTip().contains(QStringLiteral("is being made")), name);
    }
    trigger(*m_form, "actRefresh"); // which asks anew what can be done
    QVERIFY(!action("actCreateReport").isEnabled());
    auto &grid = part<TableTab>("TableTab").grid();
    grid.setCurrentUrl(UrlId{2});
    QTest::keyClick(&grid, Qt::Key_Space); // the tick
    QTRY_COMPARE(project().execAndGet("SELECT Tagged FROM URLs WHERE URL_ID = 2").getInt(), 1);
    waitForReport(*m_form);
    QVERIFY(fs::exists(page()));
    QVERIFY(std::ranges::is_sorted(percents));
    QVERIFY(!percents.isEmpty() && percents.last() > 50);
    QVERIFY(action("actCreateReport").isEnabled());
    QCOMPARE(action("actSaveAs").isEnabled(), true);
    QCOMPARE(action("actSaveAs").toolTip(), hint);
    const auto told = project().execAndGet(
        "SELECT count(*) FROM AuditTrail WHERE Action = 'Report' AND Detail LIKE '%report of%'");
    QCOMPARE(told.getInt(), 1);
}

void ReportWorkTest::itIsOfTheProjectAsItWasThen() {
    begin();
    project().exec("UPDATE URLs SET URL = 'http://later/' WHERE URL LIKE 'http://host/%'");
    waitForReport(*m_form);
    const Bytes bytes = readWhole(page());
    const std::string_view text = ByteView(bytes).raw();
    QVERIFY(text.find("http://host/1") != std::string_view::npos);
    QVERIFY(text.find("http://later/") == std::string_view::npos);
}

void ReportWorkTest::stoppedNothingIsLeftOfIt() {
    begin();
    part<QToolButton>("btnStopReportProgress").click();
    waitForReport(*m_form);
    QVERIFY(!fs::exists(page()));
    QVERIFY(part<QLabel>("labNotice").text().contains(QStringLiteral("cancelled")));
    QVERIFY(action("actCreateReport").isEnabled());
}

void ReportWorkTest::closingTheProjectAsksAndStopsIt() {
    begin();
    m_desk->examiner.script = {Answer::No};
    trigger(*m_form, "actClose");
    QCOMPARE(m_desk->examiner.heard.back(), std::string("report-in-making"));
    QVERIFY(m_desk->program.state.projectDB.isOpen());
    if (part<QWidget>("ReportProgress").isHidden())
        begin(); // the machine was quick
    m_desk->examiner.script = {Answer::Yes};
    trigger(*m_form, "actClose");
    QVERIFY(!m_desk->program.state.projectDB.isOpen());
    QVERIFY(part<QWidget>("ReportProgress").isHidden());
    QVERIFY(!fs::exists(page()));
}

void ReportWorkTest::whoReadsOnIsNotLedAway() {
    auto &tabs = part<ViewerTabs>("viewerTabs");
    begin();
    part<TableTab>("TableTab").grid().setCurrentUrl(UrlId{3});
    tabs.setCurrentWidget(&part<QWidget>("HexPane"));
    waitForReport(*m_form);
    QVERIFY(tabs.currentWidget() == &part<QWidget>("HexPane"));
    QVERIFY(part<QLabel>("labNotice").text().contains(QStringLiteral("is ready")));
    part<TableTab>("TableTab").grid().setFocus();
    begin();
    waitForReport(*m_form);
    QVERIFY(qobject_cast<ReportPane *>(tabs.currentWidget()) != nullptr);
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::ReportWorkTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "report_work_test.moc"
