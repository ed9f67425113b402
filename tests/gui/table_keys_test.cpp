#include "db/marks/RecordTags.h"
#include "gui/LimitedTable.h"
#include "ui/import/ZoneForm.h"
#include "ui/limits/ColumnLimitForm.h"

#include <QHeaderView>
#include <QListWidget>
#include <QMenu>
#include <SQLiteCpp/Database.h>

// The table by keys alone: its row stays in sight, its columns hold what they show, and the limits
// above it are gone to and taken away.
namespace nv {

using namespace test;

class TableKeysTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup() { m_on.reset(); }

    void theRowStaysInSightWhenLimitsGo();
    void theRowStaysInSightWhenTheTableGetsSmaller();
    void aZoneWithLongerNamesWidensTheDates();
    void aTagWidensItsColumn();
    void aRareValueWidensItsColumnOnceItIsSeen();
    void aWidthOfTheExaminersStays();
    void hostsAndTitlesAreWholeBesideAFewLongAddresses();
    void controlLLeadsToTheChips();
    void withoutChipsControlLSaysSo();
    void chipsAreWholeWhereThereIsRoom();
    void altDownLimitsByTheColumnOfTheCell();
    void altUpOpensTheMenuOfTheHeading();
    void theCurrentCellIsSeen();
    void anEmptiedSearchBoxHasNoCross();
    void enterInTheEmptySearchBoxSaysWhatToType();

  private:
    static constexpr int kMore = 500;      ///< rows beside those of the example
    static constexpr int kUnmeasured = 60; ///< place of a row that no width is measured by

    UrlGrid &grid() { return m_on->tab().grid(); }
    QHeaderView &header() { return *grid().horizontalHeader(); }
    QWidget *focus() { return m_on->form.focusWidget(); }
    bool isInSight() {
        const QRect cell = grid().visualRect(grid().currentIndex());
        return cell.top() >= 0 && cell.bottom() < grid().viewport()->height();
    }
    int width(UrlColumn column) { return header().sectionSize(UrlModel::sectionOf(column)); }
    QModelIndex cell(int row, UrlColumn column) {
        return grid().model()->index(row, UrlModel::sectionOf(column));
    }
    /// That the cell needs, as its delegate says.
    int needs(const QModelIndex &cell) {
        QStyleOptionViewItem option;
        option.initFrom(&grid());
        return grid().itemDelegateForIndex(cell)->sizeHint(option, cell).width();
    }
    void goTo(int row) { grid().setCurrentIndex(cell(row, UrlColumn::Host)); }
    void press(Qt::Key key, Qt::KeyboardModifiers with = {}) {
        QTest::keyClick(focus(), key, with);
    }
    void chooseZone(const char *name) {
        whenShown<ZoneForm>([name](ZoneForm &dialog) {
            QTest::keyClicks(&child<QLineEdit>(dialog, "txtFindZone"), name);
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
        trigger(m_on->form, "actTimeZone");
    }
    /// Of the box for search: 1 while it is shown.
    double crossOfSearch() {
        for (auto *each : m_on->box().findChildren<QToolButton *>())
            if (each->defaultAction() &&
                each->defaultAction()->objectName() == QStringLiteral("_q_qlineeditclearaction"))
                return each->property("opacity").toDouble();
        return -1;
    }
    QString notice() { return child<QLabel>(m_on->form, "labNotice").text(); }

    std::unique_ptr<LimitedTable> m_on;
};

void TableKeysTest::init() {
    m_on = std::make_unique<LimitedTable>();
    m_on->project().exec(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
        std::to_string(kMore) +
        ") INSERT INTO URLs (URL, Host, CacheType, ActionDateUTC) SELECT "
        "'http://row' || i || '.example/', 'row' || i || '.example', 'CHROME HISTORY', "
        "40730.5 + i FROM n"); // from July on, when clocks are an hour ahead
    trigger(m_on->form, "actRefresh");
    QCOMPARE(m_on->rows(), m_on->all + kMore);
    m_on->form.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_on->form));
    grid().setFocus();
}

void TableKeysTest::theRowStaysInSightWhenLimitsGo() {
    const auto clearAll = [this] { trigger(m_on->form, "actClearLimits"); };
    const auto undo = [this] { trigger(m_on->form, "actUndo"); };
    const auto takeChip = [this] { m_on->chip(QStringLiteral("Host"))->click(); };
    for (const std::function<void()> &show :
         {std::function<void()>(clearAll), std::function<void()>(undo),
          std::function<void()>(takeChip)}) {
        m_on->chooseHost(QStringLiteral("row399"));
        QCOMPARE(m_on->rows(), 1);
        const auto current = grid().currentUrl();
        QVERIFY(current);
        show();
        QTRY_COMPARE(m_on->rows(), m_on->all + kMore);
        QVERIFY(grid().currentUrl() == current);
        QVERIFY(grid().currentIndex().row() > 100);
        QTRY_VERIFY(isInSight());
    }
    m_on->type(QStringLiteral("row388"));
    QTRY_COMPARE(m_on->rows(), 1);
    const auto current = grid().currentUrl();
    QTest::keyClick(&m_on->box(), Qt::Key_Escape);
    QTRY_COMPARE(m_on->rows(), m_on->all + kMore);
    QVERIFY(grid().currentUrl() == current);
    QTRY_VERIFY(isInSight());
}

void TableKeysTest::theRowStaysInSightWhenTheTableGetsSmaller() {
    goTo(300); // where it comes in at the lower edge
    QVERIFY(isInSight());
    const int before = grid().viewport()->height();
    trigger(m_on->form, "actTime");
    QTRY_VERIFY(grid().viewport()->height() < before);
    QTRY_VERIFY(isInSight());
    QCOMPARE(grid().currentIndex().row(), 300);
}

void TableKeysTest::aZoneWithLongerNamesWidensTheDates() {
    chooseZone("kolkata");
    trigger(m_on->form, "actLayoutFit");
    goTo(200);
    const QModelIndex date = cell(200, UrlColumn::LocalDate);
    QVERIFY2(date.data().toString().endsWith(QStringLiteral(" IST")),
             qPrintable(date.data().toString()));
    const int before = width(UrlColumn::LocalDate);
    chooseZone("berlin");
    const QString summer = cell(10, UrlColumn::LocalDate).data().toString();
    QVERIFY2(summer.endsWith(QStringLiteral(" CEST")), qPrintable(summer));
    for (int each = 0; each < 20; ++each)
        QVERIFY2(width(UrlColumn::LocalDate) >= needs(cell(each, UrlColumn::LocalDate)),
                 qPrintable(cell(each, UrlColumn::LocalDate).data().toString()));
    QVERIFY(width(UrlColumn::LocalDate) > before);
}

void TableKeysTest::aTagWidensItsColumn() {
    NamedTags(m_on->project()).add({0, "Seized on the second of March", "#3a7d44", 1, {}});
    trigger(m_on->form, "actRefresh");
    goTo(kUnmeasured);
    const int before = width(UrlColumn::TagNames);
    press(Qt::Key_1);
    const QModelIndex tagged = cell(kUnmeasured, UrlColumn::TagNames);
    QVERIFY(tagged.data().toString().startsWith(QStringLiteral("Seized")));
    QTRY_VERIFY(width(UrlColumn::TagNames) >= needs(tagged));
    QVERIFY(width(UrlColumn::TagNames) > before);
}

void TableKeysTest::aRareValueWidensItsColumnOnceItIsSeen() {
    const auto id = m_on->tab().table()->idAt(kUnmeasured);
    m_on->project().exec("UPDATE URLs SET Browser = 'Chromium family, an uncommon build', "
                         "CacheType = 'CHROME CACHE REMNANT' WHERE URL_ID = " +
                         std::to_string(number(id)));
    trigger(m_on->form, "actRefresh");
    trigger(m_on->form, "actLayoutFit");
    QVERIFY(width(UrlColumn::Browser) < needs(cell(kUnmeasured, UrlColumn::Browser)));
    goTo(kUnmeasured);
    for (const UrlColumn column : {UrlColumn::Browser, UrlColumn::Type})
        QTRY_VERIFY(width(column) >= needs(cell(kUnmeasured, column)));
    const int wide = width(UrlColumn::Browser);
    goTo(0);
    QApplication::processEvents();
    QCOMPARE(width(UrlColumn::Browser), wide); // columns don't go to and fro
}

void TableKeysTest::aWidthOfTheExaminersStays() {
    m_on->project().exec("UPDATE URLs SET Browser = 'Chromium family, an uncommon build'");
    constexpr int kByHand = 61; // pixels
    header().resizeSection(UrlModel::sectionOf(UrlColumn::Browser), kByHand);
    trigger(m_on->form, "actRefresh");
    goTo(kUnmeasured);
    chooseZone("berlin");
    QApplication::processEvents();
    QVERIFY(needs(cell(kUnmeasured, UrlColumn::Browser)) > kByHand);
    QVERIFY(std::abs(width(UrlColumn::Browser) - kByHand) <= 1); // in twips
}

void TableKeysTest::hostsAndTitlesAreWholeBesideAFewLongAddresses() {
    m_on->project().exec(
        "UPDATE URLs SET Host = 'www.harbour-news.example', WebPageTitle = 'Lanternpost: Inbox "
        "(12)', Browser = 'Internet Explorer', CacheType = 'IE CACHE', Person = 'mara', User = "
        "'mara', Status = 'URL, typed', URL = 'http://www.harbour-news.example/story28.html' || "
        "CASE WHEN URL_ID % 20 = 0 THEN '?' || hex(zeroblob(60)) ELSE '' END");
    trigger(m_on->form, "actRefresh");
    m_on->form.resize(3000, 900);
    trigger(m_on->form, "actLayoutFit");
    QTRY_COMPARE(header().length(), grid().viewport()->width());
    // Room for all but the addresses of a few rows.
    constexpr int kSpare = 40; // pixels
    const int given = width(UrlColumn::Value) - needs(cell(0, UrlColumn::Value)) - kSpare;
    QVERIFY2(given > 0, qPrintable(QString::number(given)));
    const int wide = grid().viewport()->width();
    m_on->form.resize(m_on->form.width() - given, 900);
    QTRY_COMPARE(grid().viewport()->width(), wide - given);
    QTRY_COMPARE(header().length(), wide - given);
    for (const UrlColumn column : {UrlColumn::Host, UrlColumn::WebpageTitle, UrlColumn::Value})
        QVERIFY2(width(column) >= needs(cell(0, column)),
                 qPrintable(QString::number(width(column))));
}

void TableKeysTest::controlLLeadsToTheChips() {
    QCOMPARE(child<QAction>(m_on->form, "actChips").shortcut(), QKeySequence(Qt::CTRL | Qt::Key_L));
    QVERIFY(child<QAction>(m_on->form, "actColumns").shortcut() !=
            QKeySequence(Qt::CTRL | Qt::Key_L));
    m_on->chooseHost(QStringLiteral("example"));
    m_on->tab().chooseQuery(QStringLiteral("_Tagged Items"));
    m_on->tab().chooseQuery({});
    m_on->enter(QStringLiteral("row"));
    QTRY_COMPARE(m_on->chips().size(), 2);
    grid().setFocus();
    trigger(m_on->form, "actChips");
    QCOMPARE(focus(), m_on->chip(QStringLiteral("Host")));
    press(Qt::Key_Right);
    QCOMPARE(focus(), m_on->chip(QStringLiteral("Search")));
    press(Qt::Key_End);
    QCOMPARE(focus(), &child<QToolButton>(m_on->form, "btnClearLimits"));
    press(Qt::Key_Right); // nothing is after it
    press(Qt::Key_Home);
    QCOMPARE(focus(), m_on->chip(QStringLiteral("Host")));
    press(Qt::Key_Left);
    QCOMPARE(focus(), m_on->chip(QStringLiteral("Host")));
    press(Qt::Key_Escape);
    QCOMPARE(focus(), &grid());
    QCOMPARE(m_on->chips().size(), 2);
    trigger(m_on->form, "actChips");
    press(Qt::Key_Delete);
    QTRY_COMPARE(m_on->chips().size(), 1);
    QTRY_COMPARE(focus(), m_on->chip(QStringLiteral("Search")));
    press(Qt::Key_Space);
    QTRY_VERIFY(m_on->chips().isEmpty());
    QTRY_COMPARE(focus(), &grid());
}

void TableKeysTest::withoutChipsControlLSaysSo() {
    trigger(m_on->form, "actChips");
    QVERIFY2(notice().contains(QStringLiteral("No limit")), qPrintable(notice()));
    QCOMPARE(focus(), &grid());
    trigger(m_on->form, "actClose");
    QVERIFY(!child<QAction>(m_on->form, "actChips").isEnabled());
}

void TableKeysTest::chipsAreWholeWhereThereIsRoom() {
    const QString host = QStringLiteral("a-name-that-is-longer-than-most.of-an.example");
    m_on->chooseHost(host);
    QTRY_COMPARE(m_on->chips().size(), 1);
    QToolButton *chip = m_on->chip(host);
    QTRY_VERIFY(chip->width() >= chip->sizeHint().width());
    const int line = chip->height();
    m_on->enter(
        QStringLiteral("\"a phrase of more words than a line has room for beside a host\""));
    QTRY_COMPARE(m_on->chips().size(), 2);
    m_on->form.resize(960, 540);
    auto &bar = child<QWidget>(m_on->form, "chips");
    const auto fit = [&] {
        for (auto *each : {m_on->chip(host), m_on->chip(QStringLiteral("phrase"))})
            if (!bar.rect().contains(each->geometry()))
                return false;
        return true;
    };
    QTRY_VERIFY(m_on->form.width() == 960 && fit());
    QVERIFY2(bar.height() < 3 * line, "they get narrower before they take more lines");
}

void TableKeysTest::altDownLimitsByTheColumnOfTheCell() {
    auto &action = child<QAction>(m_on->form, "actLimitCurrentColumn");
    QCOMPARE(action.shortcut(), QKeySequence(Qt::ALT | Qt::Key_Down));
    QCOMPARE(action.shortcutContext(), Qt::WidgetShortcut); // boxes with choices have it too
    QVERIFY(grid().actions().contains(&action));
    grid().setCurrentIndex(cell(0, UrlColumn::Icon));
    action.trigger();
    QVERIFY2(notice().contains(QStringLiteral("\"Icon\"")), qPrintable(notice()));
    grid().setCurrentIndex(cell(0, UrlColumn::Host));
    auto *timer = new QTimer(qApp);
    connect(timer, &QTimer::timeout, timer, [timer] {
        auto *form = qobject_cast<ColumnLimitForm *>(QApplication::activeModalWidget());
        if (!form)
            return;
        timer->stop();
        timer->deleteLater();
        QVERIFY(form->findChild<QListWidget *>(QStringLiteral("lstColumnValues")));
        child<QLineEdit>(*form, "txtColumnPart").setText(QStringLiteral("row12"));
        form->accept();
    });
    timer->start(10);
    action.trigger();
    QCOMPARE(m_on->rows(), 11); // row12, row120 to row129
    QVERIFY(m_on->chip(QStringLiteral("Host: contains row12")));
}

void TableKeysTest::altUpOpensTheMenuOfTheHeading() {
    grid().setCurrentIndex(cell(0, UrlColumn::Host));
    bool isShown = false;
    QTimer::singleShot(0, qApp, [&] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu);
        isShown = menu->findChild<QAction *>(QStringLiteral("actLimitColumn")) != nullptr;
        menu->setActiveAction(menu->actions().value(1)); // Sort Descending
        QTest::keyClick(menu, Qt::Key_Return);
    });
    press(Qt::Key_Up, Qt::AltModifier);
    QVERIFY(isShown);
    QCOMPARE(cell(0, UrlColumn::Host).data().toString(), QStringLiteral("www.example.org"));
}

void TableKeysTest::theCurrentCellIsSeen() {
    goTo(2);
    QTRY_VERIFY(grid().hasFocus());
    const auto edgeOf = [this](UrlColumn column) {
        const QImage image = grid().viewport()->grab().toImage();
        const QRect place = grid().visualRect(cell(2, column));
        return image.pixelColor(place.center().x(), place.top() + 1);
    };
    QCOMPARE(edgeOf(UrlColumn::Host), grid().palette().color(QPalette::HighlightedText));
    QVERIFY(edgeOf(UrlColumn::Browser) != edgeOf(UrlColumn::Host));
    press(Qt::Key_Left);
    QVERIFY(edgeOf(UrlColumn::Host) != grid().palette().color(QPalette::HighlightedText));
}

void TableKeysTest::anEmptiedSearchBoxHasNoCross() {
    m_on->enter(QStringLiteral("row12"));
    QTRY_VERIFY(m_on->chip(QStringLiteral("Search")));
    QTRY_COMPARE(crossOfSearch(), 1.0);
    m_on->chip(QStringLiteral("Search"))->click();
    QTRY_COMPARE(m_on->box().text(), QString());
    QTRY_COMPARE(crossOfSearch(), 0.0);
    trigger(m_on->form, "actUndo");
    QCOMPARE(m_on->box().text(), QStringLiteral("row12"));
    QTRY_COMPARE(crossOfSearch(), 1.0);
}

void TableKeysTest::enterInTheEmptySearchBoxSaysWhatToType() {
    auto &message = child<QLabel>(m_on->form, "labSearchMessage");
    trigger(m_on->form, "actSearch");
    press(Qt::Key_Return);
    QVERIFY(message.isVisible());
    QVERIFY2(message.text().contains(QStringLiteral("host:")), qPrintable(message.text()));
    QCOMPARE(m_on->box().accessibleDescription(), message.text());
    QCOMPARE(m_on->rows(), m_on->all + kMore);
    press(Qt::Key_Escape);
    QCOMPARE(focus(), &grid());
    QVERIFY(!message.isVisible());
}

} // namespace nv

QTEST_MAIN(nv::TableKeysTest)
#include "table_keys_test.moc"
