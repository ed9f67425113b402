#include "gui/LimitedTable.h"
#include "gui/PlacesTree.h"
#include "ui/limits/TimeStrip.h"

#include <QListWidget>
#include <QMenu>
#include <QPushButton>

// The chips of all that limits the rows of the table.
namespace nv {

using namespace test;

class LimitsTest : public QObject {
    Q_OBJECT

  private slots:
    void init() { m_on = std::make_unique<LimitedTable>(); }
    void cleanup() { m_on.reset(); }

    void everyLimitIsAChip();
    void theCrossTakesALimitAway();
    void undoBringsLimitsBack();
    void typingIsOneStepOfUndo();
    void headingsLimitByValue();
    void headingsLimitByDate();
    void whatHidesAllSaysHowToShowIt();
    void undoInATextFieldIsTheFields();
    void theMarkOfAPlaceGoesWithItsLimit();
    void itLooksRight_data();
    void itLooksRight();

  private:
    std::unique_ptr<LimitedTable> m_on;
};

void LimitsTest::everyLimitIsAChip() {
    m_on->chooseHost(QStringLiteral("example"));
    QCOMPARE(m_on->chips(), QStringList{QStringLiteral("Limit: Host: example")});
    m_on->tab().chooseQuery(QStringLiteral("_Tagged Items"));
    QVERIFY(m_on->chip(QStringLiteral("Query: _Tagged Items")));
    m_on->tab().chooseQuery({});
    RecordFilters &filters = m_on->desk.program.state.filters;
    filters.enableFilters = true;
    filters.showCookies = false;
    filters.person = "mara";
    trigger(m_on->form, "actRefresh");
    QVERIFY(m_on->chip(QStringLiteral("Person: mara")));
    QVERIFY2(m_on->chip(QStringLiteral("Sources: History, Cache, Bookmarks")),
             qPrintable(m_on->chips().join(u'|')));
    filters.enableFilters = false;
    trigger(m_on->form, "actRefresh");
    m_on->enter(QStringLiteral("a.example"));
    QTRY_VERIFY(m_on->chip(QStringLiteral("Search: a.example")));
    QCOMPARE(m_on->chips().size(), 2);
    QCOMPARE(child<QLabel>(m_on->form, "labLimitCount").text(),
             QStringLiteral("1 of %1").arg(m_on->all));
    child<QToolButton>(m_on->form, "btnClearLimits").click();
    QTRY_COMPARE(m_on->rows(), m_on->all);
    QVERIFY(m_on->chips().isEmpty());
    QCOMPARE(m_on->box().text(), QString());
}

void LimitsTest::theCrossTakesALimitAway() {
    m_on->enter(QStringLiteral("example"));
    QTRY_VERIFY(m_on->chip(QStringLiteral("Search: example")));
    m_on->chooseHost(QStringLiteral("a.example"));
    QCOMPARE(m_on->rows(), 1);
    const int found = [this] {
        m_on->chip(QStringLiteral("Host: a.example"))->click();
        QApplication::processEvents();
        return m_on->rows();
    }();
    QVERIFY(found > 1);
    QCOMPARE(child<QLineEdit>(m_on->form, "txtHostFilter").text(), QString());
    RecordFilters &filters = m_on->desk.program.state.filters;
    filters.enableFilters = true;
    filters.showHistoryURLs = false;
    filters.browser = "Nobody's";
    trigger(m_on->form, "actRefresh");
    QCOMPARE(m_on->rows(), 0);
    m_on->chip(QStringLiteral("Browser: Nobody's"))->click();
    QApplication::processEvents();
    QVERIFY(filters.enableFilters && filters.browser.empty() && !filters.showHistoryURLs);
    m_on->chip(QStringLiteral("Sources"))->click();
    QApplication::processEvents();
    QVERIFY(!filters.enableFilters);
    QCOMPARE(m_on->rows(), found);
}

void LimitsTest::undoBringsLimitsBack() {
    auto *undo = m_on->form.findChild<QAction *>(QStringLiteral("actUndo"));
    auto *redo = m_on->form.findChild<QAction *>(QStringLiteral("actRedo"));
    QVERIFY(!undo->isEnabled() && !redo->isEnabled());
    m_on->chooseHost(QStringLiteral("a.example"));
    m_on->enter(QStringLiteral("nowhere"));
    QTRY_COMPARE(m_on->rows(), 0);
    undo->trigger();
    QCOMPARE(m_on->rows(), 1);
    QCOMPARE(m_on->box().text(), QString());
    undo->trigger();
    QCOMPARE(m_on->rows(), m_on->all);
    QVERIFY(!undo->isEnabled());
    QCOMPARE(child<QLineEdit>(m_on->form, "txtHostFilter").text(), QString());
    redo->trigger();
    QCOMPARE(m_on->rows(), 1);
    redo->trigger();
    QCOMPARE(m_on->rows(), 0);
    QCOMPARE(m_on->box().text(), QStringLiteral("nowhere"));
    QVERIFY(!redo->isEnabled());
    child<QToolButton>(m_on->form, "btnClearLimits").click();
    QTRY_COMPARE(m_on->rows(), m_on->all);
    undo->trigger();
    QCOMPARE(m_on->chips().size(), 2);
    trigger(m_on->form, "actClose");
    QVERIFY(!undo->isEnabled() && !redo->isEnabled());
}

void LimitsTest::typingIsOneStepOfUndo() {
    for (const QString &letters :
         {QStringLiteral("exa"), QStringLiteral("mple"), QStringLiteral("/zz")}) {
        m_on->type(letters);
        QTRY_VERIFY(m_on->chip(m_on->box().text()));
    }
    QTRY_COMPARE(m_on->rows(), 0);
    trigger(m_on->form, "actUndo");
    QCOMPARE(m_on->rows(), m_on->all);
    QVERIFY(!m_on->form.findChild<QAction *>(QStringLiteral("actUndo"))->isEnabled());
    m_on->chooseHost(QStringLiteral("a.example"));
    m_on->type(QStringLiteral("http"));
    QTRY_VERIFY(m_on->chip(QStringLiteral("http")));
    m_on->chip(QStringLiteral("Host"))->click(); // the box keeps the focus
    QTRY_VERIFY(m_on->rows() > 1);
    trigger(m_on->form, "actUndo");
    QCOMPARE(m_on->chips().size(), 2);
}

void LimitsTest::headingsLimitByValue() {
    QMenu menu;
    emit m_on->tab().headerMenuComesUp(menu, UrlColumn::Icon);
    QVERIFY2(menu.isEmpty(), "an icon is no value");
    emit m_on->tab().headerMenuComesUp(menu, UrlColumn::Host);
    auto *limit = menu.findChild<QAction *>(QStringLiteral("actLimitColumn"));
    auto *again = menu.findChild<QAction *>(QStringLiteral("actUnlimitColumn"));
    QVERIFY(limit && again && !again->isEnabled());
    const auto tickOnly = [](ColumnLimitForm &form, const QString &host) {
        child<QPushButton>(form, "btnValuesNone").click();
        auto &list = child<QListWidget>(form, "lstColumnValues");
        const auto found = list.findItems(host, Qt::MatchStartsWith);
        QCOMPARE(found.size(), 1);
        found.front()->setCheckState(Qt::Checked);
        form.accept();
    };
    onForm([&](ColumnLimitForm &form) { tickOnly(form, QStringLiteral("a.example  (1)")); });
    limit->trigger();
    QCOMPARE(m_on->rows(), 1);
    QCOMPARE(m_on->chips(), QStringList{QStringLiteral("Limit: Host: a.example")});
    onForm([&](ColumnLimitForm &form) {
        QVERIFY2(child<QListWidget>(form, "lstColumnValues").count() > 1,
                 "others can be ticked too");
        child<QPushButton>(form, "btnValuesAll").click();
        child<QLineEdit>(form, "txtColumnPart").setText(QStringLiteral("EXAMPLE"));
        form.accept();
    });
    limit->trigger();
    QVERIFY(m_on->rows() > 1);
    QVERIFY(m_on->chip(QStringLiteral("Host: contains EXAMPLE")));
    trigger(m_on->form, "actUndo");
    QCOMPARE(m_on->rows(), 1);
    m_on->chip(QStringLiteral("a.example"))->click();
    QTRY_COMPARE(m_on->rows(), m_on->all);
    QMenu ofVisits;
    emit m_on->tab().headerMenuComesUp(ofVisits, UrlColumn::Visits);
    onForm([&](ColumnLimitForm &form) {
        auto &from = child<QLineEdit>(form, "txtColumnFrom");
        from.setText(QStringLiteral("many"));
        form.accept();
        QVERIFY(form.isVisible());
        QVERIFY(child<QLabel>(form, "labColumnFault").isVisible());
        from.setText(QStringLiteral("100000"));
        form.accept();
    });
    ofVisits.findChild<QAction *>(QStringLiteral("actLimitColumn"))->trigger();
    QCOMPARE(m_on->rows(), 0);
    QVERIFY(m_on->chip(QStringLiteral("Visits: 100000 or more")));
}

void LimitsTest::headingsLimitByDate() {
    QMenu menu;
    emit m_on->tab().headerMenuComesUp(menu, UrlColumn::LocalDate);
    auto *limit = menu.findChild<QAction *>(QStringLiteral("actLimitColumn"));
    QVERIFY(limit);
    onForm([](ColumnLimitForm &form) {
        auto &from = child<QLineEdit>(form, "txtColumnFrom");
        auto &to = child<QLineEdit>(form, "txtColumnTo");
        QVERIFY(child<QLabel>(form, "labColumnZone").isVisible());
        QVERIFY2(!form.findChild<QListWidget *>(), "each date would be a value");
        from.setText(QStringLiteral("soon"));
        form.accept();
        QVERIFY(form.isVisible());
        from.setText(QStringLiteral("2011-03-02"));
        to.setText(QStringLiteral("2011-03-01"));
        form.accept();
        QVERIFY(form.isVisible());
        if (const QString folder = qEnvironmentVariable("NV_SCREENSHOTS"); !folder.isEmpty())
            form.grab().save(folder + QStringLiteral("/column-dates.png"));
        from.setText(QStringLiteral("2011-03-01"));
        form.accept();
        QVERIFY(!form.isVisible());
    });
    limit->trigger();
    QVERIFY(m_on->rows() > 0 && m_on->rows() < m_on->all);
    QVERIFY2(m_on->chip(QStringLiteral("2011-03-01 to 2011-03-01 (")),
             qPrintable(m_on->chips().join(u'|')));
    onForm([](ColumnLimitForm &form) {
        QCOMPARE(child<QLineEdit>(form, "txtColumnFrom").text(), QStringLiteral("2011-03-01"));
        child<QLineEdit>(form, "txtColumnFrom").clear();
        child<QLineEdit>(form, "txtColumnTo").setText(QStringLiteral("1999-01-01 12:00"));
        form.accept();
    });
    limit->trigger();
    QCOMPARE(m_on->rows(), 0);
    QVERIFY(m_on->chip(QStringLiteral("up to 1999-01-01 12:00")));
    trigger(m_on->form, "actUndo");
    QVERIFY(m_on->rows() > 0);
}

void LimitsTest::whatHidesAllSaysHowToShowIt() {
    m_on->enter(QStringLiteral("nowhere"));
    QTRY_COMPARE(m_on->rows(), 0);
    QVERIFY(child<QLabel>(m_on->form, "labEmpty").text().contains(QStringLiteral("limits above")));
    auto &showAll = child<QPushButton>(m_on->form, "btnEmptyShowAll");
    QVERIFY(showAll.isVisible());
    showAll.click();
    QTRY_COMPARE(m_on->rows(), m_on->all);
}

void LimitsTest::undoInATextFieldIsTheFields() {
    m_on->chooseHost(QStringLiteral("a.example"));
    m_on->type(QStringLiteral("ab"));
    QTest::keyClick(&m_on->box(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(m_on->box().text(), QString());
    QCOMPARE(m_on->rows(), 1);
}

void LimitsTest::theMarkOfAPlaceGoesWithItsLimit() {
    trigger(m_on->form, "actPlaces");
    auto &tree = child<QTreeView>(m_on->form, "PlacesTree");
    QTRY_VERIFY(tree.model()->rowCount() > 0);
    const auto marked = [&tree] {
        QStringList names;
        for (const QModelIndex &index : tree.selectionModel()->selectedRows())
            names += index.data().toString();
        return names;
    };
    const QModelIndex hosts = placeIn(tree, QStringLiteral("Hosts"));
    QVERIFY(tree.model()->rowCount(hosts) > 1);
    tree.expand(hosts);
    const QStringList one{tree.model()->index(0, 0, hosts).data().toString()};
    const QStringList other{tree.model()->index(1, 0, hosts).data().toString()};
    clickPlace(tree, one.front());
    clickPlace(tree, other.front());
    QCOMPARE(marked(), other);
    trigger(m_on->form, "actUndo");
    QCOMPARE(marked(), one);
    trigger(m_on->form, "actUndo");
    QCOMPARE(m_on->rows(), m_on->all);
    QCOMPARE(marked(), QStringList());
    trigger(m_on->form, "actRedo");
    QCOMPARE(marked(), one);
    trigger(m_on->form, "actClearLimits");
    QCOMPARE(marked(), QStringList());
    clickPlace(tree, other.front());
    m_on->chip(other.front())->click();
    QTRY_COMPARE(m_on->rows(), m_on->all);
    QCOMPARE(marked(), QStringList());
    clickPlace(tree, one.front());
    clickPlace(tree, other.front(), Qt::ControlModifier);
    clickPlace(tree, other.front(), Qt::ControlModifier);
    QCOMPARE(marked(), one);
    QTest::mouseClick(&child<QToolButton>(m_on->form, "btnAllPlaces"), Qt::LeftButton);
    QCOMPARE(marked(), QStringList());
}

void LimitsTest::itLooksRight_data() {
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("isDark");
    QTest::newRow("1280-light") << QSize(1280, 800) << false;
    QTest::newRow("1280-dark") << QSize(1280, 800) << true;
    QTest::newRow("960-light") << QSize(960, 540) << false;
    QTest::newRow("960-dark") << QSize(960, 540) << true;
}

/// NV_SCREENSHOTS keeps them to be looked at.
void LimitsTest::itLooksRight() {
    QFETCH(QSize, size);
    QFETCH(bool, isDark);
    trigger(m_on->form, isDark ? "actThemeDark" : "actThemeLight");
    m_on->form.resize(size);
    trigger(m_on->form, "actTime");
    auto &strip = child<TimeStrip>(m_on->form, "TimeStrip");
    std::size_t bar = strip.bars().count;
    while (bar > 0 && strip.bars().totalOf(--bar) == 0) {
    }
    QTest::mouseClick(&strip, Qt::LeftButton, {},
                      QPoint((strip.leftOf(bar) + strip.leftOf(bar + 1)) / 2, strip.height() / 2));
    m_on->chooseHost(QStringLiteral("example"));
    m_on->enter(QStringLiteral("example -low kind:history"));
    QTRY_VERIFY(m_on->rows() > 0 && m_on->chips().size() == 3);
    QTest::qWait(400);
    const QString place = qEnvironmentVariable("NV_SCREENSHOTS");
    const auto keep = [&](const char *state) {
        if (!place.isEmpty())
            m_on->form.grab().save(QStringLiteral("%1/search-%2-%3.png")
                                       .arg(place, QString::fromLatin1(QTest::currentDataTag()),
                                            QString::fromLatin1(state)));
    };
    keep("found");
    QCOMPARE(m_on->form.size(), size);
    auto &clear = child<QToolButton>(m_on->form, "btnClearLimits");
    QVERIFY(m_on->form.rect().contains(clear.mapTo(&m_on->form, clear.rect().bottomRight())));
    trigger(m_on->form, "actTime");
    m_on->enter(QStringLiteral("after:yesterday"));
    QTest::qWait(100);
    keep("wrong");
    onForm([&](ColumnLimitForm &form) {
        if (!place.isEmpty())
            form.grab().save(QStringLiteral("%1/search-%2-values.png")
                                 .arg(place, QString::fromLatin1(QTest::currentDataTag())));
        form.reject();
    });
    QMenu menu;
    emit m_on->tab().headerMenuComesUp(menu, UrlColumn::Host);
    menu.findChild<QAction *>(QStringLiteral("actLimitColumn"))->trigger();
    trigger(m_on->form, "actThemeSystem");
}

} // namespace nv

QTEST_MAIN(nv::LimitsTest)
#include "limits_test.moc"
