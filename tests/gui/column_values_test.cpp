#include "gui/LimitedTable.h"
#include "ui/limits/ColumnLimitForm.h"

#include <QListWidget>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QScopeGuard>
#include <QSignalSpy>

// The values of a heading while they are counted.
namespace nv {

using namespace test;

namespace {

/// What is listed, an unticked one in brackets.
QStringList listed(ColumnLimitForm &form) {
    auto &list = child<QListWidget>(form, "lstColumnValues");
    QStringList texts;
    for (int row = 0; row < list.count(); ++row) {
        const QString text = list.item(row)->text();
        const bool isTicked = list.item(row)->checkState() == Qt::Checked;
        texts += isTicked ? text : QStringLiteral("[%1]").arg(text);
    }
    return texts;
}

QString text(const QString &value, qint64 rows) {
    return QStringLiteral("%1  (%2)").arg(value, QLocale().toString(rows));
}

void untick(ColumnLimitForm &form, const QString &value) {
    const auto found =
        child<QListWidget>(form, "lstColumnValues").findItems(value, Qt::MatchStartsWith);
    QCOMPARE(found.size(), 1);
    found.front()->setCheckState(Qt::Unchecked);
}

} // namespace

class ColumnValuesTest : public QObject {
    Q_OBJECT

  private slots:
    void valuesAreSeenWhileTheyAreCounted();
    void whatIsNotCountedIsNotHidden();
    void valuesOfManyRowsAreCountedBesideTheDialog();
    void addressesAreShownAsTheyAre();
};

void ColumnValuesTest::valuesAreSeenWhileTheyAreCounted() {
    const TimeZone zone{Date::fromDays(40'000)};
    ColumnLimitForm form({}, {.column = UrlColumn::Host}, QStringLiteral("Host"), {zone, false});
    form.show();
    auto &counting = child<QWidget>(form, "columnCounting");
    QVERIFY(!counting.isVisible());
    form.startCounting(50'000);
    QVERIFY(counting.isVisible());
    form.showCounted({{{"a", 9'000}, {"b", 1'000}}, false}, 10'000);
    form.showProgress(20);
    QCOMPARE(child<QProgressBar>(form, "barColumnCounted").value(), 20);
    QCOMPARE(listed(form),
             QStringList({text(QStringLiteral("a"), 9'000), text(QStringLiteral("b"), 1'000)}));
    QVERIFY(child<QLabel>(form, "labColumnCounted").text().contains(QLocale().toString(10'000)));
    untick(form, QStringLiteral("a"));
    form.showCounted({{{"c", 11'000}, {"a", 9'000}}, true}, 20'000);
    QCOMPARE(listed(form),
             QStringList({text(QStringLiteral("c"), 11'000),
                          QStringLiteral("[%1]").arg(text(QStringLiteral("a"), 9'000))}));
    QVERIFY(child<QLabel>(form, "labColumnOthers").isVisible());
    form.showCounted({{{"c", 31'000}}, true}, 40'000);
    QVERIFY2(listed(form).contains(QStringLiteral("[%1]").arg(text(QStringLiteral("a"), 9'000))),
             "what was chosen stays");
    form.endCounting({{{"c", 40'000}, {"a", 9'000}, {"b", 1'000}}, false}, {});
    QCOMPARE(listed(form),
             QStringList({text(QStringLiteral("c"), 40'000),
                          QStringLiteral("[%1]").arg(text(QStringLiteral("a"), 9'000)),
                          text(QStringLiteral("b"), 1'000)}));
    QVERIFY(!counting.isVisible() && !child<QLabel>(form, "labColumnOthers").isVisible());
    const std::vector<std::string> wanted = {"c", "b"};
    QVERIFY(form.limit() && form.limit()->oneOf == wanted);
    form.accept();
    QVERIFY(!form.isVisible());
}

void ColumnValuesTest::whatIsNotCountedIsNotHidden() {
    const TimeZone zone{Date::fromDays(40'000)};
    ColumnLimitForm form({}, {.column = UrlColumn::Host}, QStringLiteral("Host"), {zone, false});
    form.show();
    form.startCounting(50'000);
    form.showCounted({{{"a", 9'000}, {"b", 1'000}}, false}, 10'000);
    untick(form, QStringLiteral("a"));
    form.accept();
    QVERIFY2(form.isVisible(), "all but one value, of which more may come");
    QVERIFY(child<QLabel>(form, "labColumnFault").isVisible());
    QSignalSpy stopped(&form, &ColumnLimitForm::countingStopped);
    child<QPushButton>(form, "btnStopCounting").click();
    QCOMPARE(stopped.count(), 1);
    QVERIFY(child<QLabel>(form, "labColumnCounted")
                .text()
                .contains(QStringLiteral("first ") + QLocale().toString(10'000)));
    form.accept();
    QVERIFY(form.isVisible());
    child<QPushButton>(form, "btnValuesNone").click();
    child<QListWidget>(form, "lstColumnValues").item(1)->setCheckState(Qt::Checked);
    form.accept();
    QVERIFY2(!form.isVisible(), "a value that is wanted can be chosen as soon as it is seen");
    QVERIFY(form.limit() && form.limit()->oneOf == std::vector<std::string>{"b"});
}

void ColumnValuesTest::valuesOfManyRowsAreCountedBesideTheDialog() {
    const auto on = std::make_unique<LimitedTable>();
    on->project().exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "
                       "220000) INSERT INTO URLs (URL, WebPageTitle) SELECT 'http://many/' || i, "
                       "CASE WHEN i < 7 THEN 'rare' ELSE 'often ' || (i % 3) END FROM n");
    trigger(on->form, "actRefresh");
    QCOMPARE(on->rows(), on->all + 220'000);
    QMenu menu;
    emit on->tab().headerMenuComesUp(menu, UrlColumn::WebpageTitle);
    QStringList seen;
    onForm([&](ColumnLimitForm &form) {
        // Failing, this leaves the dialog closed too.
        const auto close = qScopeGuard([&] {
            if (form.isVisible())
                form.reject();
        });
        QTRY_VERIFY_WITH_TIMEOUT(!child<QWidget>(form, "columnCounting").isVisible(), 60'000);
        seen = listed(form);
        child<QPushButton>(form, "btnValuesNone").click();
        const auto rare = child<QListWidget>(form, "lstColumnValues")
                              .findItems(QStringLiteral("rare"), Qt::MatchStartsWith);
        QCOMPARE(rare.size(), 1);
        rare.front()->setCheckState(Qt::Checked);
        form.accept();
    });
    menu.findChild<QAction *>(QStringLiteral("actLimitColumn"))->trigger();
    for (const QString &value :
         {text(QStringLiteral("often 0"), 73'331), text(QStringLiteral("often 1"), 73'332),
          text(QStringLiteral("often 2"), 73'331), text(QStringLiteral("rare"), 6)})
        QVERIFY2(seen.contains(value), qPrintable(seen.join(u'|').left(500)));
    QCOMPARE(on->rows(), 6);
    on->chip(QStringLiteral("rare"))->click();
    QTRY_COMPARE(on->rows(), on->all + 220'000);
    // A dialog that is closed ends the counting.
    QMenu again;
    emit on->tab().headerMenuComesUp(again, UrlColumn::Value);
    onForm([](ColumnLimitForm &form) { form.reject(); });
    again.findChild<QAction *>(QStringLiteral("actLimitColumn"))->trigger();
    QCOMPARE(on->rows(), on->all + 220'000);
}

void ColumnValuesTest::addressesAreShownAsTheyAre() {
    const TimeZone zone{Date::fromDays(40'000)};
    const ColumnLimitForm form({{{"http://a/%2Fb%20c%1", 5}}, false}, {.column = UrlColumn::Value},
                               QStringLiteral("URL"), {zone, false});
    QCOMPARE(form.findChild<QListWidget *>()->item(0)->text(),
             text(QStringLiteral("http://a/%2Fb%20c%1"), 5));
}

} // namespace nv

QTEST_MAIN(nv::ColumnValuesTest)
#include "column_values_test.moc"
