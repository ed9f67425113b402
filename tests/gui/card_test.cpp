#include "db/marks/NamedTags.h"
#include "db/marks/RecordTags.h"
#include "gui/CachedSite.h"
#include "platform/qt/PageGuard.h"
#include "ui/table/TableTab.h"
#include "ui/viewers/BrowserPane.h"
#include "ui/viewers/HexGrid.h"

#include <QHeaderView>
#include <QKeySequence>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>
#include <SQLiteCpp/Database.h>

// The card of the record: what it tells of a value, its bytes, and that nothing moves while it is
// read.
namespace nv {

using namespace test;

class CardTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void bytesAreShownWithoutAsking_data();
    void bytesAreShownWithoutAsking();
    void whereThereAreNoBytesItIsSaid();
    void valuesOfAMissingFileHaveNoBytes();
    void aTagLeavesWhatIsRead();
    void aNoteLeavesWhatIsRead();
    void rowsThatAreSortedLeaveWhatIsRead();
    void aPageIsNotLoadedAgain();
    void anotherRecordIsShownFromItsStart();
    void withoutARowAllTabsAreDim();
    void eachKeyLeadsToOneControl();
    void aLowWindowHasRoomForEverything();
    void theCardScrollsToWhereTheKeysGo();

  private:
    template <class Pane>
    Pane &pane(const char *name) {
        return child<Pane>(*m_form, name);
    }
    QTabWidget &tabs() { return pane<QTabWidget>("viewerTabs"); }
    QTreeWidget &list() { return pane<QTreeWidget>("PropertiesGrid"); }
    HexGrid &grid() { return pane<HexGrid>("HexGrid"); }
    TableTab &table() { return pane<TableTab>("TableTab"); }
    SQLite::Database &project() { return m_desk->program.state.projectDB.connection(); }
    UrlId idOf(const std::string &condition) {
        return UrlId{
            project().execAndGet("SELECT min(URL_ID) FROM URLs WHERE " + condition).getInt64()};
    }
    void choose(UrlId id, const char *field) {
        table().grid().setCurrentUrl(id);
        QTest::qWait(30); // the card follows when the keys rest
        const QString name = QString::fromLatin1(field);
        QTRY_VERIFY(!list().findItems(name, Qt::MatchExactly).isEmpty());
        list().setCurrentItem(list().findItems(name, Qt::MatchExactly).first());
    }
    /// Empty while the card's words are shown.
    QString answer() {
        const auto &why = pane<QPlainTextEdit>("txtWhy");
        return why.isVisible() ? why.toPlainText() : QString();
    }
    std::string shownBytes() {
        const HexMatch chosen = grid().selection();
        const Bytes bytes = grid().source()->file().read(chosen.offset, chosen.length);
        return std::string(ByteView(bytes).raw());
    }
    void ask(const char *field) {
        choose(UrlId{1}, field);
        pane<QPushButton>("btnWhy").click();
        QTRY_VERIFY(answer().contains(QStringLiteral("Rule: ")));
    }
    /// In a long file, with bytes in the middle of it chosen.
    void goIntoTheFile() {
        table().grid().setCurrentUrl(UrlId{2});
        tabs().setCurrentWidget(&pane<QWidget>("HexPane"));
        QTRY_VERIFY(grid().source() && grid().source()->size() > 90'000);
        grid().select({70'000, 7});
        QVERIFY(grid().verticalScrollBar()->value() > 0);
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void CardTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 800);
    m_form->show();
    CachedSite(m_desk->folder.path() / "evidence")
        .add("http://host/a.html", "a[1].htm", "<html>one</html>")
        .add("http://host/long.txt", "long[1].txt", std::string(100'000, 'y'))
        .add("http://host/b.html", "b[1].htm", std::string(100'000, 'z'))
        .open(*m_desk, *m_form);
    NamedTags(project()).add({.tagID = 0, .name = "Seen", .color = {}, .position = 0, .note = {}});
    trigger(*m_form, "actRefresh");
    QApplication::setActiveWindow(m_form.get());
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
}

void CardTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void CardTest::bytesAreShownWithoutAsking_data() {
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("of a table") << "CacheType = 'Chrome Visit'"
                                << "URL" << QByteArray("http://");
    QTest::newRow("of a text") << "CacheType = 'Chrome Bookmark'"
                               << "WebPageTitle" << QByteArray("\"Tide tables\"");
}

void CardTest::bytesAreShownWithoutAsking() {
    QFETCH(QString, condition);
    QFETCH(QString, field);
    QFETCH(QByteArray, bytes);
    m_desk->folder.write(
        "more/Chrome/User Data/Default/Bookmarks",
        R"({"roots": {"bookmark_bar": {"type": "folder", "name": "bar", "children": [{"type": "url",
            "name": "Tide tables", "url": "http://tides.example/", "date_added":
            "12943324800123456"}]}}, "version": 1})");
    fs::create_directories(m_desk->folder.path() / "more/Chrome/User Data/Default");
    ChromeHistory history(m_desk->folder.path() / "more/Chrome/User Data/Default/History");
    addExamplePages(history);
    history.close();
    Program &program = m_desk->program;
    setRootPath(program, m_desk->folder.path());
    program.import.startingDirectory = (m_desk->folder.path() / "more").string();
    Unwatched nobody;
    program.import.historyFiles = scan(program.import, nobody, program.log).historyFiles;
    static_cast<void>(runImportJob(program, nobody, program.state.tempFolderPath));
    trigger(*m_form, "actRefresh");
    const UrlId id = idOf(condition.toStdString());
    QVERIFY(id != UrlId::none);
    choose(id, qPrintable(field));
    QVERIFY(pane<QPushButton>("btnBytes").isEnabled());
    QTest::mouseClick(&pane<QPushButton>("btnBytes"), Qt::LeftButton);
    QTRY_VERIFY2(grid().source() && grid().selection().length > 1,
                 qPrintable(pane<QPushButton>("btnBytes").toolTip()));
    QCOMPARE(shownBytes().substr(0, static_cast<std::size_t>(bytes.size())), bytes.toStdString());
    QVERIFY(!answer().contains(QStringLiteral("Rule: ")));
}

void CardTest::whereThereAreNoBytesItIsSaid() {
    auto &bytes = pane<QPushButton>("btnBytes");
    choose(UrlId{1}, "TimeAdded");
    QVERIFY(!bytes.isEnabled());
    QVERIFY2(bytes.toolTip().contains(QStringLiteral("clock of the machine that imported")),
             qPrintable(bytes.toolTip()));
    QCOMPARE(bytes.accessibleDescription(), bytes.toolTip());
    // What only the evidence can tell is told when it was read, and kept.
    choose(UrlId{1}, "Host");
    QVERIFY(bytes.isEnabled());
    bytes.click();
    QTRY_VERIFY(!bytes.isEnabled());
    QVERIFY2(bytes.toolTip().contains(QStringLiteral("part of URL")), qPrintable(bytes.toolTip()));
    choose(UrlId{1}, "URL");
    QVERIFY(bytes.isEnabled());
    QVERIFY(!bytes.toolTip().contains(QStringLiteral("part of URL")));
    choose(UrlId{1}, "Host");
    QVERIFY(!bytes.isEnabled());
}

void CardTest::valuesOfAMissingFileHaveNoBytes() {
    fs::remove(m_desk->folder.path() / "evidence" / "index.dat");
    choose(UrlId{1}, "ActionDateUTC");
    const auto &bytes = pane<QPushButton>("btnBytes");
    QVERIFY(!bytes.isEnabled());
    QVERIFY2(bytes.toolTip().contains(QStringLiteral("source file isn't there")),
             qPrintable(bytes.toolTip()));
}

void CardTest::aTagLeavesWhatIsRead() {
    goIntoTheFile();
    ask("ActionDateUTC");
    table().grid().setCurrentUrl(UrlId{2});
    goIntoTheFile();
    QTRY_VERIFY(answer().isEmpty()); // it was of another row
    choose(UrlId{2}, "ActionDateUTC");
    pane<QPushButton>("btnWhy").click();
    QTRY_VERIFY(answer().contains(QStringLiteral("Rule: ")));
    list().verticalScrollBar()->setValue(3);
    const auto tick = [this] {
        return list().findItems(QStringLiteral("Tagged"), Qt::MatchExactly).value(0)->text(1);
    };
    const QString before = tick();
    const QString told = answer();
    const int row = list().verticalScrollBar()->value();
    const int top = grid().verticalScrollBar()->value();
    table().grid().setFocus();
    QTest::keyClick(&table().grid(), Qt::Key_1);
    QTest::qWait(30);
    const auto tag = NamedTags(project()).list().front();
    QCOMPARE(RecordTags(project()).rowsOf(tag.tagID).size(), std::size_t{1});
    QTest::keyClick(&table().grid(), Qt::Key_Z, Qt::ControlModifier);
    QTest::qWait(30);
    QTest::keyClick(&table().grid(), Qt::Key_Space); // the tick
    QTRY_VERIFY(tick() != before);
    QCOMPARE(grid().selection().offset, std::uint64_t{70'000});
    QCOMPARE(grid().selection().length, std::uint64_t{7});
    QCOMPARE(grid().verticalScrollBar()->value(), top);
    QCOMPARE(answer(), told);
    QCOMPARE(list().verticalScrollBar()->value(), row);
}

void CardTest::aNoteLeavesWhatIsRead() {
    goIntoTheFile();
    tabs().setCurrentWidget(&pane<QWidget>("NotesPane"));
    auto &note = pane<QPlainTextEdit>("NotesText");
    QTRY_VERIFY(note.isEnabled());
    note.setFocus();
    QTest::keyClicks(&note, QStringLiteral("seen"));
    tabs().setCurrentWidget(&pane<QWidget>("HexPane"));
    table().grid().setFocus();
    QTRY_VERIFY(!list().findItems(QStringLiteral("Notes"), Qt::MatchExactly).isEmpty());
    QCOMPARE(grid().selection().offset, std::uint64_t{70'000});
    QVERIFY(tabs().tabToolTip(tabs().indexOf(&pane<QWidget>("NotesPane"))).isEmpty());
}

/// The rows come anew, the record stays.
void CardTest::rowsThatAreSortedLeaveWhatIsRead() {
    goIntoTheFile();
    const int top = grid().verticalScrollBar()->value();
    trigger(*m_form, "actRefresh");
    QTest::qWait(100);
    QCOMPARE(table().grid().currentUrl(), std::optional(UrlId{2}));
    QCOMPARE(grid().selection().offset, std::uint64_t{70'000});
    QCOMPARE(grid().verticalScrollBar()->value(), top);
}

void CardTest::aPageIsNotLoadedAgain() {
    auto &browser = pane<BrowserPane>("BrowserPane");
    table().grid().setCurrentUrl(UrlId{1});
    tabs().setCurrentWidget(&browser);
    QTRY_VERIFY(browser.page());
    const QSignalSpy left(&browser, &BrowserPane::pageLeft);
    trigger(*m_form, "actRefresh");
    QTest::keyClick(&table().grid(), Qt::Key_1);
    QTest::qWait(100);
    QCOMPARE(left.count(), 0);
    table().grid().setCurrentUrl(UrlId{3});
    QTRY_VERIFY(left.count() > 0);
}

void CardTest::anotherRecordIsShownFromItsStart() {
    goIntoTheFile();
    table().grid().setCurrentUrl(UrlId{3});
    QTRY_COMPARE(grid().cursor(), std::uint64_t{0});
    QTRY_COMPARE(shownBytes(), std::string("z"));
}

void CardTest::withoutARowAllTabsAreDim() {
    const auto isDim = [this](int place) {
        return tabs().tabBar()->tabTextColor(place).isValid() &&
               !tabs().tabToolTip(place).isEmpty();
    };
    const int hex = tabs().indexOf(&pane<QWidget>("HexPane"));
    QTRY_VERIFY(!isDim(hex));
    table().filterByHost(QStringLiteral("nothing.has.it"));
    QTRY_VERIFY(isDim(hex));
    for (int place = 0; place < tabs().count(); ++place)
        QVERIFY2(isDim(place), qPrintable(tabs().tabText(place)));
    QVERIFY(tabs().tabToolTip(hex).contains(QStringLiteral("Choose a row")));
    table().filterByHost({});
    QTRY_VERIFY(!isDim(hex));
}

/// A letter that two controls have leads to neither.
void CardTest::eachKeyLeadsToOneControl() {
    const auto lettersNow = [this] {
        QStringList letters;
        const auto add = [&letters](const QWidget &widget, const QString &text) {
            if (const QKeySequence key = QKeySequence::mnemonic(text);
                !key.isEmpty() && widget.isVisible())
                letters += key.toString();
        };
        for (const auto *button : m_form->findChildren<QAbstractButton *>())
            if (!qobject_cast<const QToolButton *>(button)) // those show the texts of commands
                add(*button, button->text());
        for (const auto *label : m_form->findChildren<QLabel *>())
            if (label->buddy())
                add(*label, label->text());
        for (const QAction *menu : m_form->menuBar()->actions())
            add(*m_form, menu->text());
        return letters;
    };
    for (const char *name :
         {"BrowserPane", "AuditPane", "LinksPane", "TextPane", "PicturePane", "HexPane"}) {
        table().grid().setCurrentUrl(UrlId{1});
        tabs().setCurrentWidget(&pane<QWidget>(name));
        QTest::qWait(30);
        for (const bool isSource : {true, false}) {
            pane<QPushButton>("btnHexSource").setChecked(isSource);
            QStringList letters = lettersNow();
            letters.sort();
            QVERIFY2(letters.removeDuplicates() == 0,
                     qPrintable(QString::fromLatin1(name) + u' ' + letters.join(u' ')));
        }
    }
}

/// 960 by 540 points are what a laptop has whose pixels are twice as small.
void CardTest::aLowWindowHasRoomForEverything() {
    pane<QAction>("actPlaces").setChecked(true);
    pane<QAction>("actTime").setChecked(true);
    m_form->resize(952, 508);
    QTest::qWait(50);
    QCOMPARE(m_form->size(), QSize(952, 508));
    const UrlGrid &rows = table().grid();
    const int row = rows.verticalHeader()->defaultSectionSize();
    QTRY_VERIFY2(rows.viewport()->height() >= 4 * row,
                 qPrintable(QString::number(rows.viewport()->height())));
    QVERIFY(!pane<QWidget>("cbTimeUnit").isVisible());
    auto &more = pane<QToolButton>("btnTimeChoices");
    QVERIFY(more.isVisible());
    more.click();
    QVERIFY(pane<QWidget>("cbTimeUnit").isVisible());
    more.click();
    auto &card = pane<QWidget>("CardPane");
    tabs().setCurrentWidget(&card);
    QTest::qWait(30);
    for (const char *name : {"btnWhy", "btnBytes", "txtPropertyFilter", "chkEmptyFields"}) {
        const auto &control = pane<QWidget>(name);
        QVERIFY2(control.isVisible(), name);
        QVERIFY2(card.rect().contains(QRect(control.mapTo(&card, QPoint()), control.size())), name);
        QVERIFY2(control.visibleRegion().boundingRect().size() == control.size(), name);
    }
    m_form->resize(1280, 1000);
    QTest::qWait(30);
    QVERIFY(pane<QWidget>("cbTimeUnit").isVisible());
    QVERIFY(!more.isVisible());
}

void CardTest::theCardScrollsToWhereTheKeysGo() {
    m_form->resize(952, 508);
    QTest::qWait(50);
    auto &card = pane<QWidget>("CardPane");
    tabs().setCurrentWidget(&card);
    QTRY_VERIFY(!list().findItems(QStringLiteral("ActionDateUTC"), Qt::MatchExactly).isEmpty());
    const auto &scroll = pane<QScrollArea>("cardScroll");
    QVERIFY(scroll.verticalScrollBar()->maximum() > 0);
    for (const char *name : {"txtPropertyValue", "cardText", "PropertiesGrid"}) {
        auto &part = pane<QWidget>(name);
        part.setFocus(Qt::TabFocusReason);
        const QRect place(part.mapTo(scroll.viewport(), QPoint()), part.size());
        QVERIFY2(scroll.viewport()->rect().intersects(place), name);
    }
    ask("ActionDateUTC");
    const auto &why = pane<QWidget>("txtWhy");
    QTRY_VERIFY(scroll.viewport()
                    ->rect()
                    .intersected(QRect(why.mapTo(scroll.viewport(), QPoint()), why.size()))
                    .height() > 2 * card.fontMetrics().lineSpacing());
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::CardTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "card_test.moc"
