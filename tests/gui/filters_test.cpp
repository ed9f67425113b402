#include "gui/Desk.h"
#include "platform/qt/QtText.h"
#include "ui/gallery/GalleryTab.h"
#include "ui/limits/FilterForm.h"
#include "ui/limits/HostsPane.h"
#include "ui/table/TableTab.h"
#include "ui/widgets/TickHeader.h"

#include <QCheckBox>
#include <QContextMenuEvent>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <SQLiteCpp/Database.h>

// The filter dialog, the list of hosts, and what they do to the table.
namespace nv {

using namespace test;

class FiltersTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void theDialogHasABoxForEachFlagAndReturnsThem();
    void aRunStartsWithEverySourceAndShowAllTicked();
    void nothingButTheSwitchIsLiveWhileFiltersAreOff();
    void showAllGivesItsStateToEveryBox();
    void theDialogStaysWithoutADataSource();
    void cancelChangesNothing();
    void theFiltersHideRowsAndASignSaysSo();
    void filtersThatHideEverythingSayHowToChangeThem();
    void filtersSurviveOpeningAnotherProject();
    void theHostsStandInTheirOrder();
    void aTickedHeadingFiltersByTheHost();
    void withoutTheTickGoingToAHostReloadsNothing();
    void takingTheTickAwayTurnsTheFilterOffAtOnceButReloadsNothing();
    void theHostBoxAndTheListAgree();
    void aHostThatIsTypedCountsWithARefreshToo();
    void aHostHoldsForGalleryAndTable();
    void theHostFilterLastsUntilItIsTurnedOff();
    void theListGrowsWithAnImport();
    void aListingThatWasStoppedSaysSo();
    void aLongHostDoesntWidenTheWindow();

  private:
    TableTab &tab() { return child<TableTab>(*m_form, "TableTab"); }
    int rows() { return tab().grid().model()->rowCount(); }
    ProgramState &state() { return m_desk->program.state; }
    QLabel &sign(const char *name) { return child<QLabel>(*m_form, name); }
    HostsPane &hosts() { return child<HostsPane>(*m_form, "HostsPane"); }
    QTableView &hostGrid() { return child<QTableView>(*m_form, "HostGrid"); }
    TickHeader &header() { return child<TickHeader>(*m_form, "HostHeader"); }
    QLineEdit &box() { return child<QLineEdit>(*m_form, "txtHostFilter"); }
    QTabWidget &dataTabs() { return child<QTabWidget>(*m_form, "dataTabs"); }
    void clickTick() { QTest::mouseClick(header().viewport(), Qt::LeftButton, {}, {8, 8}); }
    void clickHost(const QString &host);
    QString hostAt(int row) { return hostGrid().model()->index(row, 0).data().toString(); }
    /// Confirms the dialog with these boxes ticked and no others.
    void filterBy(const QStringList &boxes);

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void FiltersTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1300, 800);
    m_form->show();
    openExample(*m_desk, *m_form);
}

void FiltersTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void FiltersTest::clickHost(const QString &host) {
    for (int row = 0; row < hostGrid().model()->rowCount(); ++row)
        if (hostAt(row) == host) {
            const QRect place = hostGrid().visualRect(hostGrid().model()->index(row, 0));
            QTest::mouseClick(hostGrid().viewport(), Qt::LeftButton, {}, place.center());
            return;
        }
    QFAIL(qPrintable(host + QStringLiteral(" isn't listed")));
}

void press(QDialog &form, QDialogButtonBox::StandardButton button) {
    QTest::mouseClick(form.findChild<QDialogButtonBox *>()->button(button), Qt::LeftButton);
}

void FiltersTest::filterBy(const QStringList &boxes) {
    whenShown<FilterForm>([&](FilterForm &form) {
        child<QCheckBox>(form, "chkShowAll").setChecked(false); // and all the others with it
        child<QCheckBox>(form, "chkEnableFilters").setChecked(true);
        for (QCheckBox *each : form.findChildren<QCheckBox *>())
            if (each->objectName() != QStringLiteral("chkEnableFilters") &&
                each->isChecked() != boxes.contains(each->objectName()))
                QTest::mouseClick(each, Qt::LeftButton, {}, {8, each->height() / 2});
        press(form, QDialogButtonBox::Ok);
    });
    trigger(*m_form, "actFilters");
}

void FiltersTest::theDialogHasABoxForEachFlagAndReturnsThem() {
    RecordFilters filters;
    filters.enableFilters = filters.showCookies = filters.showYouTube = true;
    FilterForm form(filters, m_desk->examiner);
    QVERIFY(form.filters() == filters);
    for (const FilterFlag &each : filterFlags()) {
        const QString name = QStringLiteral("chkS") + toQt(each.name).mid(1);
        auto *flagBox = form.findChild<QCheckBox *>(name);
        QVERIFY2(flagBox, qPrintable(name));
        QCOMPARE(flagBox->isChecked(), filters.*each.flag);
        QVERIFY(!flagBox->toolTip().isEmpty());
    }
}

void FiltersTest::aRunStartsWithEverySourceAndShowAllTicked() {
    whenShown<FilterForm>([](FilterForm &form) {
        for (const char *name : {"chkShowHistoryURLs", "chkShowCacheURLs", "chkShowCookies",
                                 "chkShowBookmarks", "chkShowAll"})
            QVERIFY2(child<QCheckBox>(form, name).isChecked(), name);
        QVERIFY(!child<QCheckBox>(form, "chkEnableFilters").isChecked());
        QVERIFY(!child<QCheckBox>(form, "chkShowGIF").isChecked());
        child<QCheckBox>(form, "chkEnableFilters").setChecked(true);
        press(form, QDialogButtonBox::Ok);
    });
    const int all = rows();
    trigger(*m_form, "actFilters");
    QCOMPARE(rows(), all);
}

void FiltersTest::nothingButTheSwitchIsLiveWhileFiltersAreOff() {
    FilterForm form({}, m_desk->examiner);
    form.show();
    auto &gif = child<QCheckBox>(form, "chkShowGIF");
    auto &enable = child<QCheckBox>(form, "chkEnableFilters");
    QVERIFY(!gif.isEnabled() && !child<QCheckBox>(form, "chkShowAll").isEnabled());
    QTest::mouseClick(&enable, Qt::LeftButton, {}, {8, enable.height() / 2});
    QVERIFY(gif.isEnabled() && child<QCheckBox>(form, "chkShowAll").isEnabled());
}

void FiltersTest::showAllGivesItsStateToEveryBox() {
    FilterForm form({}, m_desk->examiner);
    form.show();
    auto &all = child<QCheckBox>(form, "chkShowAll");
    child<QCheckBox>(form, "chkEnableFilters").setChecked(true);
    QTest::mouseClick(&all, Qt::LeftButton, {}, {8, all.height() / 2});
    for (const QCheckBox *each : form.findChildren<QCheckBox *>())
        QVERIFY2(each->isChecked(), qPrintable(each->objectName()));
    QTest::mouseClick(&all, Qt::LeftButton, {}, {8, all.height() / 2});
    QVERIFY2(form.filters() == RecordFilters(), "the switch goes off with the others");
}

void FiltersTest::theDialogStaysWithoutADataSource() {
    whenShown<FilterForm>([this](FilterForm &form) {
        child<QCheckBox>(form, "chkShowAll").setChecked(false);
        child<QCheckBox>(form, "chkEnableFilters").setChecked(true);
        child<QCheckBox>(form, "chkShowGIF").setChecked(true);
        press(form, QDialogButtonBox::Ok);
        QVERIFY(form.isVisible());
        QCOMPARE(m_desk->examiner.heard.back(), std::string("missing-record-type"));
        QVERIFY(!state().filters.enableFilters);
        child<QCheckBox>(form, "chkEnableFilters").setChecked(false);
        press(form, QDialogButtonBox::Ok);
    });
    trigger(*m_form, "actFilters");
    QVERIFY(state().filters.showGIF && !state().filters.enableFilters);
    const Message message = missingRecordType();
    QCOMPARE(message.title, std::string("Missing Record Type"));
    QCOMPARE(message.text, std::string("At least one DATA SOURCE option must be selected."));
}

void FiltersTest::cancelChangesNothing() {
    whenShown<FilterForm>([](FilterForm &form) {
        child<QCheckBox>(form, "chkEnableFilters").setChecked(true);
        child<QCheckBox>(form, "chkShowAll").setChecked(false);
        press(form, QDialogButtonBox::Cancel);
    });
    trigger(*m_form, "actFilters");
    QVERIFY(state().filters == firstFilters());
}

void FiltersTest::theFiltersHideRowsAndASignSaysSo() {
    QVERIFY(!sign("labFilters").isVisible());
    const int all = rows();
    state().projectDB.connection().exec("UPDATE URLs SET URLFileExt = 'gif' WHERE URL_ID = 1");
    filterBy({QStringLiteral("chkShowHistoryURLs"), QStringLiteral("chkShowGIF")});
    QCOMPARE(rows(), 1);
    QVERIFY(sign("labFilters").isVisible());
    QCOMPARE(sign("labFilters").text(),
             QStringLiteral("Filters on: %1 of %2 rows hidden").arg(all - 1).arg(all));
    filterBy({QStringLiteral("chkShowHistoryURLs"), QStringLiteral("chkShowAll")});
    whenShown<FilterForm>([](FilterForm &form) {
        child<QCheckBox>(form, "chkEnableFilters").setChecked(false);
        press(form, QDialogButtonBox::Ok);
    });
    trigger(*m_form, "actFilters");
    QCOMPARE(rows(), all);
    QVERIFY(!sign("labFilters").isVisible());
}

void FiltersTest::filtersThatHideEverythingSayHowToChangeThem() {
    const int all = rows();
    filterBy({QStringLiteral("chkShowCookies")});
    QCOMPARE(rows(), 0);
    QCOMPARE(child<QLabel>(*m_form, "labEmpty").text(),
             QStringLiteral("The filters hide all %1 records that the query and the host give.")
                 .arg(all));
    QVERIFY(!child<QPushButton>(*m_form, "btnEmptyShowAll").isVisible());
    whenShown<FilterForm>([](FilterForm &form) {
        child<QCheckBox>(form, "chkEnableFilters").setChecked(false);
        press(form, QDialogButtonBox::Ok);
    });
    QTest::mouseClick(&child<QPushButton>(*m_form, "btnEmptyFilters"), Qt::LeftButton);
    QCOMPARE(rows(), all);
}

void FiltersTest::filtersSurviveOpeningAnotherProject() {
    filterBy({QStringLiteral("chkShowCookies")});
    const RecordFilters chosen = state().filters;
    m_desk->dialogs.answer = m_desk->folder.path() / "other.nvp";
    trigger(*m_form, "actNew");
    QVERIFY(state().filters == chosen);
    QVERIFY(sign("labFilters").isVisible());
    trigger(*m_form, "actClose");
    QVERIFY(!sign("labFilters").isVisible());
}

void FiltersTest::theHostsStandInTheirOrder() {
    QVERIFY(!hosts().isVisible());
    trigger(*m_form, "actHosts");
    QVERIFY(hosts().isVisible());
    QVERIFY(hostGrid().model()->rowCount() > 2);
    QStringList names;
    for (int row = 0; row < hostGrid().model()->rowCount(); ++row)
        names += hostAt(row);
    QStringList sorted = names;
    sorted.sort(Qt::CaseInsensitive);
    QCOMPARE(names, sorted);
    state().projectDB.connection().exec("UPDATE URLs SET Visits = 1234 WHERE Host = 'b.example'");
    auto &menu = child<QMenu>(*m_form, "PopupMenuHosts");
    QCOMPARE(menu.actions().size(), 5); // and a line, and copying of a cell and of rows
    QCOMPARE(menu.actions().at(0)->text(), QStringLiteral("Hosts - By Name - Ascending"));
    QCOMPARE(menu.actions().at(1)->text(), QStringLiteral("Hosts - By Visits - Descending"));
    QVERIFY(!menu.isVisible());
    const QPoint place(20, 20);
    QContextMenuEvent ask(QContextMenuEvent::Mouse, place,
                          hostGrid().viewport()->mapToGlobal(place));
    QApplication::sendEvent(hostGrid().viewport(), &ask);
    QVERIFY(menu.isVisible());
    menu.close();
    menu.actions().at(1)->trigger();
    QCOMPARE(hostAt(0), QStringLiteral("b.example"));
    QVERIFY(!state().filterByHostEnabled);
}

void FiltersTest::aTickedHeadingFiltersByTheHost() {
    trigger(*m_form, "actHosts");
    QVERIFY2(header().isTicked(), "a click on a host shows it from the start");
    QVERIFY2(!state().filterByHostEnabled, "only a host turns it on");
    clickHost(QStringLiteral("a.example"));
    QVERIFY(state().filterByHostEnabled);
    QCOMPARE(state().filterByHostValue, std::string("a.example"));
    QCOMPARE(rows(), 1);
    QCOMPARE(box().text(), QStringLiteral("a.example"));
    QVERIFY(sign("labHostFilter").isVisible());
    QCOMPARE(sign("labHostFilter").text(), QStringLiteral("Host: a.example"));
    QTest::keyClick(&hostGrid(), Qt::Key_Down);
    QVERIFY(box().text() != QStringLiteral("a.example"));
    QCOMPARE(state().filterByHostValue, fromQt(box().text()));
}

void FiltersTest::withoutTheTickGoingToAHostReloadsNothing() {
    trigger(*m_form, "actHosts");
    const int all = rows();
    clickTick();
    clickHost(QStringLiteral("a.example"));
    QVERIFY(!state().filterByHostEnabled);
    QCOMPARE(rows(), all);
    QVERIFY(!sign("labHostFilter").isVisible());
}

void FiltersTest::takingTheTickAwayTurnsTheFilterOffAtOnceButReloadsNothing() {
    trigger(*m_form, "actHosts");
    const int all = rows();
    clickHost(QStringLiteral("a.example"));
    clickTick();
    QVERIFY(!state().filterByHostEnabled);
    QCOMPARE(rows(), 1);
    QCOMPARE(box().text(), QString());
    QCOMPARE(sign("labHostFilter").text(),
             QStringLiteral("Host: a.example, until the next refresh"));
    trigger(*m_form, "actRefresh");
    QCOMPARE(rows(), all);
    QVERIFY(!sign("labHostFilter").isVisible());
    clickTick();
    clickHost(QStringLiteral("a.example"));
    QVERIFY2(state().filterByHostEnabled, "the row that was chosen before counts as another one");
}

void FiltersTest::aHostThatIsTypedCountsWithARefreshToo() {
    QTest::keyClicks(&box(), QStringLiteral("a.example"));
    QVERIFY(!state().filterByHostEnabled);
    trigger(*m_form, "actRefresh");
    QCOMPARE(rows(), 1);
    QVERIFY(state().filterByHostEnabled);
    QCOMPARE(sign("labHostFilter").text(), QStringLiteral("Host: a.example"));
}

void FiltersTest::theHostBoxAndTheListAgree() {
    trigger(*m_form, "actHosts");
    const int all = rows();
    QTest::keyClicks(&box(), QStringLiteral(" a.ex "));
    QTest::keyClick(&box(), Qt::Key_Return);
    QCOMPARE(rows(), 1);
    QVERIFY(state().filterByHostEnabled && header().isTicked());
    QCOMPARE(state().filterByHostValue, std::string("a.ex"));
    QCOMPARE(child<QLineEdit>(*m_form, "txtGalleryHost").text(), QStringLiteral("a.ex"));
    box().clear();
    QCOMPARE(rows(), all);
    QVERIFY(!state().filterByHostEnabled);
    QVERIFY2(header().isTicked(), "the next click on a host shows it");
    QCOMPARE(child<QLineEdit>(*m_form, "txtGalleryHost").text(), QString());
    clickHost(QStringLiteral("a.example"));
    QCOMPARE(rows(), 1);
}

void FiltersTest::aHostHoldsForGalleryAndTable() {
    trigger(*m_form, "actHosts");
    dataTabs().setCurrentWidget(&child<GalleryTab>(*m_form, "GalleryTab"));
    clickHost(QStringLiteral("a.example"));
    QVERIFY2(rows() == 1, "the gallery shows no others than the table's rows");
    QCOMPARE(child<QLineEdit>(*m_form, "txtGalleryHost").text(), QStringLiteral("a.example"));
    dataTabs().setCurrentWidget(&tab());
    QVERIFY2(rows() == 1, "the table doesn't come up with the rows of another host");
}

void FiltersTest::theHostFilterLastsUntilItIsTurnedOff() {
    trigger(*m_form, "actHosts");
    clickHost(QStringLiteral("a.example"));
    trigger(*m_form, "actClose");
    QCOMPARE(hostGrid().model()->rowCount(), 0);
    m_form->takePath(m_desk->folder.path() / "case.nvp");
    QCOMPARE(rows(), 1);
    QVERIFY(sign("labHostFilter").isVisible());
    QVERIFY(hostGrid().model()->rowCount() > 0);
    const QModelIndex last = hostGrid().model()->index(hostGrid().model()->rowCount() - 1, 0);
    QCOMPARE(last.data(Qt::ToolTipRole), last.data()); // the whole name, however narrow the column
}

void FiltersTest::theListGrowsWithAnImport() {
    trigger(*m_form, "actHosts");
    const int before = hostGrid().model()->rowCount();
    state().projectDB.connection().exec("INSERT INTO URLs(Host) VALUES('zz.new.example')");
    tab().loadURLs();
    QCOMPARE(hostGrid().model()->rowCount(), before + 1);
}

void FiltersTest::aListingThatWasStoppedSaysSo() {
    trigger(*m_form, "actHosts");
    QVERIFY(sign("labHostsUnfinished").isHidden());
    hosts().setHosts({}, Walk::Cancelled);
    QVERIFY(sign("labHostsUnfinished").isVisible());
    trigger(*m_form, "actRefresh");
    QVERIFY(sign("labHostsUnfinished").isHidden());
    QVERIFY(hostGrid().model()->rowCount() > 0);
}

void FiltersTest::aLongHostDoesntWidenTheWindow() {
    const std::string host(255, 'w');
    state().projectDB.connection().exec("UPDATE URLs SET Host = '" + host + "'");
    const int width = m_form->width();
    box().setText(toQt(host));
    QTest::keyClick(&box(), Qt::Key_Return);
    QVERIFY(rows() > 0 && sign("labHostFilter").isVisible());
    QCOMPARE(m_form->width(), width);
    QVERIFY(sign("labHostFilter").width() < 500);
    QVERIFY(sign("labHostFilter").toolTip().contains(toQt(host)));
}

} // namespace nv

QTEST_MAIN(nv::FiltersTest)
#include "filters_test.moc"
