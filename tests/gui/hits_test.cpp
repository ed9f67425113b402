#include "gui/CachedSite.h"
#include "gui/HostilePages.h"
#include "platform/qt/PageGuard.h"
#include "platform/qt/QtText.h"
#include "ui/table/TableTab.h"
#include "ui/viewers/BrowserHits.h"
#include "ui/viewers/BrowserPane.h"
#include "ui/viewers/HexGrid.h"
#include "ui/viewers/HexHitMarks.h"
#include "ui/viewers/PropertiesPane.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>
#include <QTextBlock>
#include <QTextEdit>
#include <QToolButton>
#include <QTreeWidget>
#include <QWebEngineView>
#include <SQLiteCpp/Database.h>

// Where a record has what the search looks for: marks, counts and ways in each viewer, beside a
// listener that nothing may reach.
namespace nv {

using namespace test;
using namespace std::string_literals;

/// The browser engine goes from hit to hit in a program of its own.
constexpr int kEngine = 20'000; // milliseconds

class HitsTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void aPageIsMarkedAndGoneThrough();
    void everySpellingInAPageIsGoneThrough();
    void anotherSearchAndNoneMarkThePageAnew();
    void bytesAreMarkedInEachEncoding();
    void aBigFileIsLookedThroughMeanwhileAndCanBeStopped();
    void theTextPaneCountsToo();
    void valuesOfTheCardAreMarkedAndGoneThrough();
    void wordsOfTheCardItselfAreNotMarked();
    void theRawAddressIsTold();
    void theWayLeadsOnToTheNextRow();

  private:
    void show(int id, const char *pane);
    void search(const QString &text);
    QString count() { return child<QLabel>(*m_form, "labHitCount").text(); }
    void next() { trigger(*m_form, "actNextHit"); }
    void previous() { trigger(*m_form, "actPreviousHit"); }
    UrlGrid &grid() { return child<TableTab>(*m_form, "TableTab").grid(); }
    HexGrid &hex() { return child<HexGrid>(*m_form, "HexGrid"); }
    /// Points of the pane in the colour of marks.
    static int marked(QWidget &widget, const QColor &ground);

    std::unique_ptr<Listener> m_listener;
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void HitsTest::init() {
    m_listener = std::make_unique<Listener>();
    const std::string live = m_listener->in("@");
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 900);
    m_form->show();
    std::string big(std::size_t{3} << 20, '.');
    big.replace(big.size() - 10, 4, "tide");
    CachedSite(m_desk->folder.path() / "evidence")
        .add("http://host/tide.html", "page[1].htm",
             "<html><body>Low <b>ti</b>de. Tide tables<img src=\"" + live +
                 "/a.gif\" ><p>ebb-7, "
                 "ebb-12 and EBB-7<p>TIDE<script>document.body.innerHTML='tide tide'</script>"
                 "</body></html> ")
        .add("http://host/tide.bin", "a[1].bin",
             "\x01\x02tide\x03\0t\0i\0d\0e\x04\x04"s + "t\0i\0d\0e\0"s + "TIDE\x05")
        .add("http://host/b/tide.bin", "b[1].bin", big)
        .add("http://host/ebb.html", "ebb[1].htm", "<html><body>ebb-7</body></html> ")
        .open(*m_desk, *m_form);
    QCOMPARE(grid().model()->rowCount(), 4);
}

void HitsTest::cleanup() {
    QCOMPARE(m_listener->heard, 0);
    m_form.reset();
    m_desk.reset();
}

void HitsTest::show(int id, const char *pane) {
    grid().setCurrentUrl(UrlId{id});
    child<QTabWidget>(*m_form, "viewerTabs").setCurrentWidget(&child<QWidget>(*m_form, pane));
}

void HitsTest::search(const QString &text) {
    auto &box = child<QLineEdit>(*m_form, "txtSearch");
    box.setFocus();
    box.setText(text);
    QTest::keyClick(&box, Qt::Key_Return);
    QVERIFY(waitFor([this] { return child<QLabel>(*m_form, "labSnippet").isVisible(); }));
}

int HitsTest::marked(QWidget &widget, const QColor &ground) {
    const QImage picture = widget.grab().toImage();
    int points = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            points += picture.pixelColor(x, y) == ground ? 1 : 0;
    return points;
}

void HitsTest::aPageIsMarkedAndGoneThrough() {
    search(QStringLiteral("tide"));
    show(1, "BrowserPane");
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Hit 1 of 3 in Browser"), kEngine);
    next();
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Hit 2 of 3 in Browser"), kEngine);
    next();
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Hit 3 of 3 in Browser"), kEngine);
    previous();
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Hit 2 of 3 in Browser"), kEngine);
    QCOMPARE(number(*grid().currentUrl()), 1);
}

void HitsTest::everySpellingInAPageIsGoneThrough() {
    search(QStringLiteral("/ebb-[0-9]+/ low"));
    show(1, "BrowserPane");
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Hit 1 of 4 in Browser"), kEngine);
    for (int hit = 2; hit <= 4; ++hit) {
        next();
        QTRY_VERIFY2_WITH_TIMEOUT(count().startsWith(QStringLiteral("Hit %1 of 4").arg(hit)),
                                  qPrintable(count()), kEngine);
    }
    for (int hit = 3; hit >= 1; --hit) {
        previous();
        QTRY_VERIFY2_WITH_TIMEOUT(!count().startsWith(QStringLiteral("Hit %1 of 4").arg(hit + 1)),
                                  qPrintable(count()), kEngine);
    }
}

void HitsTest::anotherSearchAndNoneMarkThePageAnew() {
    show(1, "BrowserPane");
    QSignalSpy shown(&child<BrowserPane>(*m_form, "BrowserPane"), &BrowserPane::pageShown);
    QVERIFY(waitFor([&] { return shown.count() > 0; }));
    search(QStringLiteral("ebb"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Hit 1 of 3 in Browser"), 20'000);
    search(QStringLiteral("tables"));
    QTRY_COMPARE(count(), QStringLiteral("Hit 1 of 1 in Browser"));
    // The search finds the row by its host, of which no page shows anything.
    search(QStringLiteral("host:host"));
    QTRY_COMPARE(count(), QString());
}

void HitsTest::bytesAreMarkedInEachEncoding() {
    search(QStringLiteral("tide"));
    show(2, "HexPane");
    QTRY_COMPARE(count(), QStringLiteral("4 hits in Hex"));
    QVERIFY(marked(*hex().viewport(), kHitGround) > 1000);
    const std::vector<HexMatch> places{{2, 4}, {7, 8}, {17, 8}, {25, 4}};
    for (std::size_t hit = 0; hit < places.size(); ++hit) {
        next();
        QCOMPARE(count(), QStringLiteral("Hit %1 of 4 in Hex").arg(hit + 1));
        QCOMPARE(hex().selection().offset, places[hit].offset);
        QCOMPARE(hex().selection().length, places[hit].length);
    }
    QVERIFY(marked(*hex().viewport(), kChosenHitGround) > 200);
    previous();
    QCOMPARE(hex().selection().offset, places[2].offset);
    search(QStringLiteral("host:host"));
    QTRY_COMPARE(count(), QString());
    QTRY_COMPARE(marked(*hex().viewport(), kHitGround), 0);
}

void HitsTest::aBigFileIsLookedThroughMeanwhileAndCanBeStopped() {
    search(QStringLiteral("tide"));
    show(3, "HexPane");
    QTRY_COMPARE(count(), QStringLiteral("1 hit in Hex"));
    // One that is asked for before it is found is gone to as soon as it is.
    auto *marks = m_form->findChild<HexHitMarks *>();
    QVERIFY(marks);
    emit hex().sourceChanged(); // as if the file had just been opened
    hex().goTo(0);
    QVERIFY(marks->count().isWorking);
    QVERIFY(child<QToolButton>(*m_form, "btnStopHits").isVisible());
    QCOMPARE(marks->goOn(true), HitStep::waits);
    QTRY_COMPARE(hex().selection().offset, (std::uint64_t{3} << 20) - 10);
    emit hex().sourceChanged();
    QTest::mouseClick(&child<QToolButton>(*m_form, "btnStopHits"), Qt::LeftButton);
    QVERIFY(!marks->count().isWorking);
    QVERIFY(marks->count().isMore);
    QVERIFY(!child<QToolButton>(*m_form, "btnStopHits").isVisible());
}

void HitsTest::theTextPaneCountsToo() {
    search(QStringLiteral("tide"));
    show(1, "TextPane");
    QTRY_COMPARE(count(), QStringLiteral("4 hits in Text")); // as written: two in the script
    next();
    QCOMPARE(count(), QStringLiteral("Hit 1 of 4 in Text"));
}

void HitsTest::wordsOfTheCardItselfAreNotMarked() {
    m_desk->program.state.projectDB.connection().exec(
        "UPDATE URLs SET WebPageTitle = 'A kind of date', User = 'kind' WHERE URL_ID = 1");
    search(QStringLiteral("kind"));
    grid().setCurrentUrl(UrlId{1});
    const auto &words = child<QTextEdit>(*m_form, "cardText");
    QTRY_VERIFY(words.toPlainText().startsWith(QStringLiteral("A kind of date")));
    QVERIFY(words.toPlainText().contains(QStringLiteral("\nKind\t")));
    const auto marked = [&words] {
        QStringList texts;
        for (const QTextEdit::ExtraSelection &mark : words.extraSelections())
            texts += mark.cursor.selectedText() + u' ' + mark.cursor.block().text();
        return texts;
    };
    const QStringList expected = {QStringLiteral("kind A kind of date"),
                                  QStringLiteral("kind User\tkind")};
    QTRY_COMPARE(marked(), expected);
}

void HitsTest::valuesOfTheCardAreMarkedAndGoneThrough() {
    search(QStringLiteral("tide.html"));
    grid().setCurrentUrl(UrlId{1});
    auto &list = child<QTreeWidget>(*m_form, "PropertiesGrid");
    QTRY_VERIFY(list.topLevelItemCount() > 3);
    int hits = 0;
    for (int place = 0; place < list.topLevelItemCount(); ++place) {
        const QTreeWidgetItem *item = list.topLevelItem(place);
        const bool isHit = item->text(1).contains(QStringLiteral("tide.html"));
        QCOMPARE(item->background(1).color() == kHitGround, isHit);
        hits += isHit ? 1 : 0;
    }
    QVERIFY(hits > 0);
    QVERIFY(!child<QTextEdit>(*m_form, "cardText").extraSelections().isEmpty());
    list.setCurrentItem(list.topLevelItem(0));
    m_form->activateWindow();
    list.setFocus();
    QTRY_COMPARE(count(), hits == 1 ? QStringLiteral("1 hit in the card's values")
                                    : QStringLiteral("%1 hits in the card's values").arg(hits));
    next();
    QVERIFY2(count().startsWith(QStringLiteral("Hit 1 of ")), qPrintable(count()));
    auto &whole = child<QPlainTextEdit>(*m_form, "txtPropertyValue");
    QCOMPARE(whole.textCursor().selectedText(), QStringLiteral("tide.html"));
    search(QStringLiteral("host:host"));
    QTRY_VERIFY(whole.extraSelections().isEmpty());
    QVERIFY(child<QTextEdit>(*m_form, "cardText").extraSelections().isEmpty());
}

/// The address of a row is cleaned up: a scheme that it lost stands in the raw one.
void HitsTest::theRawAddressIsTold() {
    grid().setCurrentUrl(UrlId{2}); // so that the card of the first row is made then
    m_desk->program.state.projectDB.connection().exec(
        "UPDATE URLs SET URLRawValue = 'view-source:' || URL WHERE URL_ID = 1");
    search(QStringLiteral("view-source"));
    QTRY_COMPARE(grid().model()->rowCount(), 1);
    grid().setCurrentUrl(UrlId{1});
    const auto &snippet = child<QLabel>(*m_form, "labSnippet");
    QTRY_VERIFY2(snippet.text().startsWith(QStringLiteral("<b>Raw address:</b> ")),
                 qPrintable(snippet.text()));
    const auto &card = child<QTextEdit>(*m_form, "cardText");
    QTRY_VERIFY2(card.toPlainText().contains(QStringLiteral("view-source:http://host/tide.html")),
                 qPrintable(card.toPlainText()));
    QTRY_VERIFY(!card.extraSelections().isEmpty());
}

void HitsTest::theWayLeadsOnToTheNextRow() {
    search(QStringLiteral("ebb"));
    QTRY_COMPARE(grid().model()->rowCount(), 2);
    grid().setCurrentIndex(grid().model()->index(0, 1));
    show(static_cast<int>(number(*grid().currentUrl())), "HexPane");
    const UrlId first = *grid().currentUrl();
    QTRY_VERIFY(count().endsWith(QStringLiteral("in Hex")));
    int steps = 0;
    while (*grid().currentUrl() == first && ++steps < 10)
        next();
    QVERIFY2(steps == 2 || steps == 4, qPrintable(QString::number(steps)));
    QTRY_VERIFY(count().endsWith(QStringLiteral("in Hex")));
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::HitsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "hits_test.moc"
