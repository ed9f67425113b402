#include "app/program/Zones.h"
#include "db/marks/NamedTags.h"
#include "gui/LimitedTable.h"
#include "gui/Shot.h"
#include "ui/search/HitCountsForm.h"
#include "ui/viewers/HitMarks.h"

#include <QComboBox>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTreeWidget>
#include <SQLiteCpp/Database.h>

// The search above the table.
namespace nv {

using namespace test;

class SearchTest : public QObject {
    Q_OBJECT

  private slots:
    void init() { m_on = std::make_unique<LimitedTable>(); }
    void cleanup() { m_on.reset(); }

    void lettersNarrowTheTableAsTheyAreTyped();
    void halfAWordLeavesTheExaminersRow();
    void twoLettersAreTooFew();
    void enterLooksThroughPagesToo();
    void aWrongExpressionIsToldBesideTheBox();
    void countsNarrowFurther();
    void allThatWasFoundCanBeChosen();
    void namesAreOfferedAsTheyAreWritten();
    void keysTakeAnOfferedName();
    void tagsThatCameLaterAreOffered();
    void aNameThatNoRowHasIsToldBelowTheBox();
    void aWrongDateIsToldWithItsPlace();
    void datesGoByTheZoneThatTheChipNames();
    void enterInTheEmptyBoxNamesAllOperators();
    void theHitIsShownAndTheNextOneGoneTo();
    void marksStandInTheTextOfAPage();
    void controlFLeadsToTheBoxAndEscapeOut();
    void rowsThatComeLaterAreFoundToo();
    void aResultIsKeptAsAQuery();
    void closingTheProjectEndsTheSearch();

  private:
    QLabel &message() { return child<QLabel>(m_on->form, "labSearchMessage"); }
    QTreeWidget &names() { return child<QTreeWidget>(m_on->form, "lstSearchNames"); }
    QStringList offered() {
        QStringList lines;
        for (int row = 0; names().isVisible() && row < names().topLevelItemCount(); ++row)
            lines += names().topLevelItem(row)->text(0) + u' ' + names().topLevelItem(row)->text(1);
        return lines;
    }
    QLabel &advice() { return child<QLabel>(m_on->form, "labSearchAdvice"); }
    QString snippet() { return child<QLabel>(m_on->form, "labSnippet").text(); }

    std::unique_ptr<LimitedTable> m_on;
};

void SearchTest::lettersNarrowTheTableAsTheyAreTyped() {
    m_on->type(QStringLiteral("a.ex"));
    QTRY_COMPARE(m_on->rows(), 1);
    QVERIFY(m_on->tab().table()->cell(0, UrlColumn::Value).find("a.example") != std::string::npos);
    QVERIFY2(m_on->box().hasFocus() || m_on->form.focusWidget() == &m_on->box(),
             "letters go on into the box");
    QTest::keyClicks(&m_on->box(), QStringLiteral("zzz"));
    QTRY_COMPARE(m_on->rows(), 0);
    QVERIFY(std::filesystem::exists(m_on->desk.folder.path() / "case.nvp.search"));
    m_on->box().clear();
    QTRY_COMPARE(m_on->rows(), m_on->all);
    QVERIFY(m_on->chips().isEmpty());
}

/// Half a word may be found in rows in the middle; the whole is found in all.
void SearchTest::halfAWordLeavesTheExaminersRow() {
    m_on->project().exec(
        "WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 200) INSERT INTO URLs "
        "(URL, Host, CacheType, ActionDateUTC) SELECT 'http://' || CASE i WHEN 100 THEN "
        "'befriended' ELSE 'row' || i END || '.test/', 'row.test', 'IE Cache', 40730.5 + i FROM n");
    trigger(m_on->form, "actRefresh");
    m_on->form.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_on->form));
    UrlGrid &grid = m_on->tab().grid();
    const int all = m_on->rows();
    for (const int row : {0, 150}) {
        m_on->box().clear();
        QTRY_COMPARE(m_on->rows(), all);
        grid.setFocus();
        grid.setCurrentUrl(m_on->tab().table()->idAt(static_cast<std::size_t>(row)));
        const auto own = grid.currentUrl();
        m_on->type(QStringLiteral("bef"));
        QTRY_COMPARE(m_on->rows(), 1);
        QVERIFY(grid.currentUrl() != own);
        m_on->type(QStringLiteral("ore:2030-01-01"));
        QTest::keyClick(&m_on->box(), Qt::Key_Return);
        QTRY_VERIFY(m_on->rows() >= 200);
        QCOMPARE(grid.currentUrl(), own);
        QTRY_COMPARE(grid.rowAt(0) == 0, row == 0);
    }
    // Who goes to the rows takes the one that stands there.
    m_on->box().clear();
    m_on->type(QStringLiteral("befr"));
    QTRY_COMPARE(m_on->rows(), 1);
    const auto found = grid.currentUrl();
    m_on->form.activateWindow();
    grid.setFocus();
    QTRY_VERIFY(grid.hasFocus());
    m_on->box().selectAll();
    m_on->type(QStringLiteral("test"));
    QTRY_VERIFY(m_on->rows() >= 200);
    QCOMPARE(grid.currentUrl(), found);
}

void SearchTest::twoLettersAreTooFew() {
    m_on->type(QStringLiteral("a."));
    QTRY_VERIFY(message().text().contains(QStringLiteral("Three letters")));
    QCOMPARE(m_on->rows(), m_on->all);
    QTest::keyClick(&m_on->box(), Qt::Key_Return);
    QTRY_COMPARE(message().text(), QString());
    QVERIFY(!m_on->chips().isEmpty());
}

void SearchTest::enterLooksThroughPagesToo() {
    m_on->project().exec("UPDATE URLs SET MetaData = 'HTTP/1.1 200 OK' || char(13, 10) || "
                         "'X-Needle: harbour' WHERE URL_ID = 2");
    m_on->type(QStringLiteral("harbour"));
    QTRY_COMPARE(m_on->rows(), 0);
    QTest::keyClick(&m_on->box(), Qt::Key_Return);
    QTRY_COMPARE(m_on->rows(), 1);
    QTRY_VERIFY2(snippet().contains(QStringLiteral("Headers")), qPrintable(snippet()));
}

void SearchTest::aWrongExpressionIsToldBesideTheBox() {
    m_on->enter(QStringLiteral("/a(/"));
    QTRY_VERIFY(!message().text().isEmpty() && message().isVisible());
    QCOMPARE(m_on->rows(), m_on->all);
    QVERIFY(m_on->desk.examiner.heard.empty());
    m_on->enter(QStringLiteral("after:yesterday"));
    QVERIFY2(message().text().contains(QStringLiteral("2011-03-01")), qPrintable(message().text()));
    m_on->enter(QStringLiteral("/a.ex/"));
    QTRY_COMPARE(m_on->rows(), 1);
    QCOMPARE(message().text(), QString());
}

void SearchTest::countsNarrowFurther() {
    m_on->enter(QStringLiteral("example"));
    QTRY_VERIFY(m_on->rows() > 1 && m_on->rows() <= m_on->all);
    auto &hits = child<QToolButton>(m_on->form, "btnSearchHits");
    QTRY_VERIFY(hits.isEnabled());
    QAction *one = nullptr;
    for (QAction *entry : hits.menu()->actions())
        if (entry->text().startsWith(QStringLiteral("a.example")))
            one = entry;
    QVERIFY(one);
    QVERIFY(one->text().endsWith(QStringLiteral("\t1")));
    one->trigger();
    QCOMPARE(m_on->box().text(), QStringLiteral("example host:\"a.example\""));
    QTRY_COMPARE(m_on->rows(), 1);
}

/// The menu shows the first few alone; the list has them all.
void SearchTest::allThatWasFoundCanBeChosen() {
    m_on->project().exec(
        "WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 40) INSERT "
        "INTO URLs (URL, Host, CacheType) SELECT 'http://h' || i || '.test/tide', "
        "'h' || i || '.test', 'IE Cache' FROM n");
    trigger(m_on->form, "actRefresh");
    m_on->enter(QStringLiteral("tide"));
    QTRY_COMPARE(m_on->rows(), 40);
    auto &hits = child<QToolButton>(m_on->form, "btnSearchHits");
    QAction *all = nullptr;
    const auto find = [&] {
        for (QAction *entry : hits.menu()->actions())
            if (entry->text() == QStringLiteral("All 40..."))
                all = entry;
        return all != nullptr;
    };
    QTRY_VERIFY(find());
    QVERIFY(all->isEnabled());
    whenShown<HitCountsForm>([](HitCountsForm &form) {
        auto &list = child<QTreeWidget>(form, "lstHitNames");
        QCOMPARE(list.topLevelItemCount(), 40);
        child<QLineEdit>(form, "txtHitName").setText(QStringLiteral("H37"));
        QVERIFY(!form.chosen());
        int shown = 0;
        for (int row = 0; row < 40; ++row)
            if (QTreeWidgetItem *item = list.topLevelItem(row); !item->isHidden()) {
                ++shown;
                list.setCurrentItem(item);
            }
        QCOMPARE(shown, 1);
        form.accept();
    });
    all->trigger();
    QCOMPARE(m_on->box().text(), QStringLiteral("tide host:\"h37.test\""));
    QTRY_COMPARE(m_on->rows(), 1);
}

void SearchTest::namesAreOfferedAsTheyAreWritten() {
    QApplication::setActiveWindow(&m_on->form);
    QVERIFY(QTest::qWaitForWindowActive(&m_on->form));
    m_on->type(QStringLiteral("tide"));
    QVERIFY(names().isHidden());
    m_on->type(QStringLiteral(" host:"));
    QTRY_VERIFY(offered().contains(QStringLiteral("a.example 1")));
    m_on->type(QStringLiteral("b.EX"));
    QTRY_COMPARE(offered(), QStringList({QStringLiteral("b.example 1")}));
    QVERIFY(m_on->form.rect().contains(names().geometry()));
    QVERIFY(names().y() >= m_on->box().mapTo(&m_on->form, QPoint(0, 0)).y());
    emit names().itemClicked(names().topLevelItem(0), 0);
    QTRY_COMPARE(m_on->box().text(), QStringLiteral("tide host:b.example "));
    QVERIFY(names().isHidden());
    m_on->type(QStringLiteral("kind:"));
    QTRY_VERIFY(offered().size() > 2);
    QCOMPARE(offered().front().section(u' ', 0, 0), QStringLiteral("history"));
    m_on->tab().grid().setFocus();
    QVERIFY(names().isHidden());
}

void SearchTest::keysTakeAnOfferedName() {
    m_on->type(QStringLiteral("browser:inter"));
    QTRY_COMPARE(offered().size(), 1);
    QTest::keyClick(&m_on->box(), Qt::Key_Down);
    QTest::keyClick(&m_on->box(), Qt::Key_Return);
    QCOMPARE(m_on->box().text(), QStringLiteral("browser:\"Internet Explorer\" "));
    QTRY_VERIFY(m_on->rows() > 0 && m_on->rows() < m_on->all);
    m_on->box().clear();
    m_on->type(QStringLiteral("kind:h"));
    QTRY_VERIFY(!offered().isEmpty());
    // Whoever goes on without choosing means what stands there.
    QTest::keyClick(&m_on->box(), Qt::Key_Return);
    QCOMPARE(m_on->box().text(), QStringLiteral("kind:h"));
    QVERIFY(names().isHidden());
    m_on->type(QStringLiteral("i"));
    QTRY_VERIFY(!offered().isEmpty());
    QTest::keyClick(&m_on->box(), Qt::Key_Escape);
    QVERIFY(names().isHidden());
    QCOMPARE(m_on->box().text(), QStringLiteral("kind:hi"));
}

void SearchTest::tagsThatCameLaterAreOffered() {
    m_on->type(QStringLiteral("tag:"));
    QTest::qWait(50);
    QVERIFY(names().isHidden());
    NamedTags(m_on->project())
        .add({.tagID = 0, .name = "For \"ada\"", .color = {}, .position = 0, .note = {}});
    m_on->type(QStringLiteral("for"));
    QTRY_COMPARE(offered(), QStringList({QStringLiteral("For \"ada\" 0")}));
    emit names().itemClicked(names().topLevelItem(0), 0);
    QTRY_COMPARE(m_on->box().text(), QStringLiteral("tag:\"For \"\"ada\"\"\" "));
}

void SearchTest::aNameThatNoRowHasIsToldBelowTheBox() {
    QVERIFY(advice().isHidden());
    m_on->enter(QStringLiteral("kind:foo"));
    QTRY_VERIFY(advice().isVisible());
    QVERIFY2(advice().text().startsWith(QStringLiteral("No row is of kind \"foo\"; there are: ")),
             qPrintable(advice().text()));
    QCOMPARE(m_on->rows(), 0);
    m_on->enter(QStringLiteral("host:a.example"));
    QTRY_COMPARE(m_on->rows(), 1);
    QVERIFY(advice().isHidden());
    m_on->enter(QStringLiteral("example -tag:nosuch"));
    QTRY_VERIFY(advice().text().contains(QStringLiteral("the project has no tags")));
    m_on->box().clear();
    QTRY_VERIFY(advice().isHidden());
}

void SearchTest::aWrongDateIsToldWithItsPlace() {
    m_on->type(QStringLiteral("tide before:2011-13"));
    QTRY_VERIFY2(message().text().startsWith(QStringLiteral("letter 13: \"before:2011-13\"")),
                 qPrintable(message().text()));
    QVERIFY(message().isVisible());
    m_on->box().clear();
    m_on->type(QStringLiteral("/a[/ tide"));
    QTRY_VERIFY2(message().text().startsWith(QStringLiteral("letter 1: the expression /a[/")),
                 qPrintable(message().text()));
}

void SearchTest::datesGoByTheZoneThatTheChipNames() {
    m_on->project().exec("UPDATE URLs SET ActionDateUTC = NULL");
    // 23:30 of the day before in UTC is past midnight in Berlin.
    m_on->project().exec("UPDATE URLs SET ActionDateUTC = julianday('2011-02-28 23:30:00') - "
                         "2415018.5 WHERE URL_ID = 1");
    Program &program = m_on->desk.program;
    program.state.gmtZone.exact = exactZoneNamed(program, "Europe/Berlin");
    trigger(m_on->form, "actRefresh");
    m_on->enter(QStringLiteral("after:2011-03-01"));
    QTRY_COMPARE(m_on->rows(), 1);
    QVERIFY2(m_on->chip(QStringLiteral("after:2011-03-01 (dates by Europe/Berlin)")),
             qPrintable(m_on->chips().join(u'|')));
    shot(m_on->form, QStringLiteral("search-zone"));
    program.state.gmtZone.exact = exactZoneNamed(program, "UTC");
    trigger(m_on->form, "actRefresh");
    QTRY_COMPARE(m_on->rows(), 0);
    QVERIFY(m_on->chip(QStringLiteral("(dates by UTC)")));
}

void SearchTest::enterInTheEmptyBoxNamesAllOperators() {
    m_on->enter({});
    for (const char *word : {"\"a phrase\"", "-without", "*part*", "host:", "browser:", "kind:",
                             "tag:", "hashset:", "after:", "before:", "/expression/"})
        QVERIFY2(message().text().contains(QLatin1String(word)), word);
    QVERIFY2(message().height() < 3 * message().fontMetrics().lineSpacing(), "two lines at most");
    m_on->type(QStringLiteral("a"));
    QTRY_VERIFY(!message().text().contains(QStringLiteral("hashset:")));
}

void SearchTest::theHitIsShownAndTheNextOneGoneTo() {
    m_on->enter(QStringLiteral("example"));
    QTRY_VERIFY(snippet().contains(QStringLiteral(">example</span>")));
    const auto first = m_on->tab().grid().currentUrl();
    trigger(m_on->form, "actNextHit");
    QVERIFY(m_on->tab().grid().currentUrl() != first);
    trigger(m_on->form, "actPreviousHit");
    QVERIFY(m_on->tab().grid().currentUrl() == first);
    trigger(m_on->form, "actPreviousHit");
    QVERIFY(child<QLabel>(m_on->form, "labNotice").text().contains(QStringLiteral("first hit")));
}

void SearchTest::marksStandInTheTextOfAPage() {
    QPlainTextEdit text;
    HitMarks marks(text, text, QStringLiteral("Text"));
    text.setPlainText(QString::fromUtf8("Gr\xC3\xBC\xC3\x9F"
                                        "e: tide \xF0\x9F\x8C\x8A tide"));
    marks.take({std::make_shared<HitFinder>(RowMatch(parseSearch("tide"))), {}});
    QCOMPARE(text.extraSelections().size(), 2);
    QVERIFY(!marks.count().at);
    QCOMPARE(marks.goOn(true), HitStep::gone);
    QCOMPARE(text.textCursor().selectedText(), QStringLiteral("tide"));
    const int first = text.textCursor().position();
    QCOMPARE(marks.goOn(true), HitStep::gone);
    QCOMPARE(text.textCursor().selectedText(), QStringLiteral("tide"));
    QVERIFY(text.textCursor().position() > first);
    QCOMPARE(marks.count().at, std::optional<std::size_t>(1));
    QCOMPARE(marks.goOn(true), HitStep::none);
    QCOMPARE(marks.goOn(false), HitStep::gone);
    QCOMPARE(text.textCursor().position(), first);
    text.setPlainText(QStringLiteral("nothing"));
    QCOMPARE(marks.count().all, std::size_t{0});
}

void SearchTest::controlFLeadsToTheBoxAndEscapeOut() {
    QVERIFY(m_on->form.findChild<QAction *>(QStringLiteral("actSearch"))->shortcut() ==
            QKeySequence(QKeySequence::Find));
    trigger(m_on->form, "actSearch");
    QVERIFY(m_on->form.focusWidget() == &m_on->box());
    m_on->type(QStringLiteral("a.example"));
    QTRY_COMPARE(m_on->rows(), 1);
    QTest::keyClick(&m_on->box(), Qt::Key_Escape);
    QTRY_COMPARE(m_on->rows(), m_on->all);
    QTest::keyClick(&m_on->box(), Qt::Key_Escape);
    QVERIFY(m_on->form.focusWidget() == &m_on->tab().grid());
}

void SearchTest::rowsThatComeLaterAreFoundToo() {
    m_on->enter(QStringLiteral("a.example"));
    QTRY_COMPARE(m_on->rows(), 1);
    m_on->project().exec(
        "INSERT INTO URLs (URL, Host) VALUES ('http://a.example/later', 'a.example')");
    trigger(m_on->form, "actRefresh");
    QTRY_COMPARE(m_on->rows(), 2);
}

void SearchTest::aResultIsKeptAsAQuery() {
    m_on->enter(QStringLiteral("a.example"));
    QTRY_COMPARE(m_on->rows(), 1);
    QAction *keep = nullptr;
    QTRY_VERIFY((keep = m_on->form.findChild<QAction *>(QStringLiteral("actKeepResult"))));
    QTimer::singleShot(0, qApp, [] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        dialog->findChild<QLineEdit *>()->setText(QStringLiteral("Harbour"));
        dialog->accept();
    });
    keep->trigger();
    QVERIFY(child<QComboBox>(m_on->form, "cbActiveQuery").findText(QStringLiteral("Harbour")) > 0);
    QCOMPARE(m_on->project().execAndGet("SELECT count(*) FROM SearchResults").getInt(), 1);
}

void SearchTest::closingTheProjectEndsTheSearch() {
    m_on->enter(QStringLiteral("a.example"));
    QTRY_COMPARE(m_on->rows(), 1);
    m_on->enter(QStringLiteral("example"));
    trigger(m_on->form, "actClose");
    QCOMPARE(m_on->box().text(), QString());
    QVERIFY(!m_on->box().isEnabled());
    QVERIFY(m_on->chips().isEmpty());
    m_on->form.takePath(m_on->desk.folder.path() / "case.nvp");
    QCOMPARE(m_on->rows(), m_on->all);
    m_on->enter(QStringLiteral("a.example"));
    QTRY_COMPARE(m_on->rows(), 1);
}

} // namespace nv

QTEST_MAIN(nv::SearchTest)
#include "search_test.moc"
