#include "gui/CachedSite.h"
#include "gui/PlacesTree.h"
#include "gui/Shot.h"
#include "platform/qt/PageGuard.h"
#include "platform/qt/QtText.h"
#include "ui/frame/ViewerTabs.h"
#include "ui/limits/PlacesPane.h"
#include "ui/table/TableTab.h"

#include <QBuffer>
#include <QCheckBox>
#include <QClipboard>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QSplitter>
#include <QTabBar>
#include <QTest>
#include <QTextEdit>
#include <QToolButton>
#include <QTreeView>
#include <QTreeWidget>
#include <SQLiteCpp/Database.h>

// What stands around the table: the trees of places, the card of the record and the viewers.
namespace nv {

using namespace test;

class PlacesTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void theTreesCountTheRows();
    void aTextThatNoPlaceHasIsSaid();
    void aClickShowsTheRowsOfAPlaceOnly();
    void ctrlAddsAndTakesAway();
    void keysChooseToo();
    void theMenuLeavesOutAndTicks();
    void aBoxFindsPlaces();
    void theListOfHostsStandsInTheirPlace();
    void aNewProjectHasNoLimit();
    void theCardSaysWhatTheRecordIs();
    void emptyValuesAreHiddenAndABoxFiltersThem();
    void theViewerThatFitsComesUp();
    void whoeverGoesToATabPinsIt();
    void tabsWithNothingAreDim();
    void aPaneGetsAWindowOfItsOwn();
    void thePanesTakeTheWholeWindow();
    void cardAndViewersStandAsTheWindowHasRoom();
    void theBrowserPaneShowsTheRecordsAddress();
    void rowsAreCopiedInOtherForms();

  private:
    PlacesPane &pane() { return child<PlacesPane>(*m_form, "PlacesPane"); }
    QTreeView &tree() { return child<QTreeView>(*m_form, "PlacesTree"); }
    TableTab &tab() { return child<TableTab>(*m_form, "TableTab"); }
    ViewerTabs &viewers() { return child<ViewerTabs>(*m_form, "viewerTabs"); }
    int rows() { return tab().grid().model()->rowCount(); }
    void goTo(int id) {
        tab().grid().setCurrentUrl(UrlId{id});
        QTest::qWait(30);
    }
    QModelIndex placeOf(const QString &name) { return placeIn(tree(), name); }
    void click(const QString &name, Qt::KeyboardModifiers keys = Qt::NoModifier) {
        clickPlace(tree(), name, keys);
    }
    void choose(const QString &name, const char *action) {
        const QModelIndex index = placeOf(name);
        tree().scrollTo(index);
        emit tree().customContextMenuRequested(tree().visualRect(index).center());
        auto &menu = child<QMenu>(*m_form, "PopupMenuPlaces");
        child<QAction>(menu, action).trigger();
        menu.close();
        QTest::qWait(10);
    }
    QString records(const QString &name) {
        return placeOf(name).siblingAtColumn(PlacesModel::kRecords).data().toString();
    }
    QString cardText() { return child<QTextEdit>(*m_form, "cardText").toPlainText(); }
    QString front() { return viewers().currentWidget()->objectName(); }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void PlacesTest::init() {
    QByteArray png;
    QBuffer buffer(&png);
    QImage picture(300, 100, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    QVERIFY(picture.save(&buffer, "PNG"));
    m_desk = std::make_unique<Desk>();
    rememberFlag(m_desk->program.settings, "ShowPlaces", true);
    rememberFlag(m_desk->program.settings, "PinViewer", false);
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 820);
    m_form->show();
    CachedSite(m_desk->folder.path() / "evidence")
        .add("http://www.harbour.example/tide.html?q=low+water&t=1299006630", "a[1].htm",
             "<html><title>Tide tables</title>page</html>")
        .add("http://img.harbour.example/b.png", "b[1].png", png.toStdString())
        .add("http://forum.other.example/c.js", "c[1].js", "var c;")
        .add("http://forum.other.example/gone.html", "gone[1].htm", "x")
        .open(*m_desk, *m_form);
    QApplication::setActiveWindow(m_form.get());
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
    QTRY_COMPARE(tree().model()->rowCount(), 4);
}

void PlacesTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void PlacesTest::theTreesCountTheRows() {
    QCOMPARE(rows(), 4);
    QCOMPARE(records(QStringLiteral("harbour.example")), QStringLiteral("2"));
    QCOMPARE(records(QStringLiteral("img.harbour.example")), QStringLiteral("1"));
    QCOMPARE(records(QStringLiteral("other.example")), QStringLiteral("2"));
    QCOMPARE(records(QStringLiteral("IE CACHE")), QStringLiteral("4"));
    QCOMPARE(records(QStringLiteral("Evidence")), QString());
    QTRY_VERIFY(child<QLabel>(pane(), "labPlacesNote").isHidden());
    shot(*m_form, QStringLiteral("places-wide"));
}

/// An empty tree says why it is empty.
void PlacesTest::aTextThatNoPlaceHasIsSaid() {
    auto &filter = child<QLineEdit>(pane(), "txtPlaceFilter");
    auto &none = child<QLabel>(pane(), "labNoPlace");
    QVERIFY(none.isHidden());
    filter.setText(QStringLiteral("nowhere"));
    QVERIFY(none.isVisible());
    QVERIFY(none.text().contains(QStringLiteral("Clear the box")));
    filter.clear();
    QVERIFY(none.isHidden());
}

void PlacesTest::aClickShowsTheRowsOfAPlaceOnly() {
    click(QStringLiteral("harbour.example"));
    QCOMPARE(rows(), 2);
    QCOMPARE(child<QLabel>(pane(), "labPlaces").text(), QStringLiteral("Only harbour.example"));
    QVERIFY(placeOf(QStringLiteral("harbour.example")).data(Qt::FontRole).value<QFont>().bold());
    tree().expandAll();
    click(QStringLiteral("img.harbour.example"));
    QCOMPARE(rows(), 1);
    shot(*m_form, QStringLiteral("places-limited"));
    QTest::mouseClick(&child<QToolButton>(pane(), "btnAllPlaces"), Qt::LeftButton);
    QCOMPARE(rows(), 4);
    QVERIFY(child<QLabel>(pane(), "labPlaces").isHidden());
}

void PlacesTest::ctrlAddsAndTakesAway() {
    tree().expandAll();
    click(QStringLiteral("img.harbour.example"));
    click(QStringLiteral("other.example"), Qt::ControlModifier);
    QCOMPARE(rows(), 3);
    click(QStringLiteral("img.harbour.example"), Qt::ControlModifier);
    QCOMPARE(rows(), 2);
    click(QStringLiteral("other.example"), Qt::ControlModifier);
    QCOMPARE(rows(), 4);
}

void PlacesTest::keysChooseToo() {
    tree().setFocus();
    tree().setCurrentIndex(placeOf(QStringLiteral("other.example")));
    QTest::keyClick(&tree(), Qt::Key_Return);
    QCOMPARE(rows(), 2);
    tree().setCurrentIndex(placeOf(QStringLiteral("harbour.example")));
    QTest::keyClick(&tree(), Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(rows(), 4);
    const QModelIndex heading = placeOf(QStringLiteral("Kinds"));
    const bool wasOpen = tree().isExpanded(heading);
    tree().setCurrentIndex(heading);
    QTest::keyClick(&tree(), Qt::Key_Return);
    QCOMPARE(tree().isExpanded(heading), !wasOpen);
}

void PlacesTest::theMenuLeavesOutAndTicks() {
    choose(QStringLiteral("other.example"), "actWithoutPlace");
    QCOMPARE(rows(), 2);
    QCOMPARE(child<QLabel>(pane(), "labPlaces").text(), QStringLiteral("Without other.example"));
    choose(QStringLiteral("harbour.example"), "actTickPlace");
    const auto tagged = [this] {
        return m_desk->program.state.projectDB.connection()
            .execAndGet("SELECT count(*) FROM URLs WHERE Tagged <> 0")
            .getInt();
    };
    QCOMPARE(tagged(), 2);
    choose(QStringLiteral("harbour.example"), "actUntickPlace");
    QCOMPARE(tagged(), 0);
    choose(QStringLiteral("other.example"), "actOnlyPlace");
    QCOMPARE(rows(), 2);
    choose(QStringLiteral("harbour.example"), "actAddPlace");
    QCOMPARE(rows(), 4);
}

void PlacesTest::aBoxFindsPlaces() {
    child<QLineEdit>(pane(), "txtPlaceFilter").setText(QStringLiteral("IMG"));
    QVERIFY(placeOf(QStringLiteral("img.harbour.example")).isValid());
    QVERIFY(placeOf(QStringLiteral("harbour.example")).isValid());
    QVERIFY(!placeOf(QStringLiteral("other.example")).isValid());
    click(QStringLiteral("img.harbour.example"));
    QCOMPARE(rows(), 1);
}

void PlacesTest::theListOfHostsStandsInTheirPlace() {
    click(QStringLiteral("harbour.example"));
    QCOMPARE(rows(), 2);
    trigger(*m_form, "actHosts");
    QVERIFY(!pane().isVisible());
    QVERIFY(child<QWidget>(*m_form, "HostsPane").isVisible());
    QCOMPARE(rows(), 2); // its chip says so
    trigger(*m_form, "actClearLimits");
    QCOMPARE(rows(), 4);
    trigger(*m_form, "actPlaces");
    QVERIFY(pane().isVisible());
    QVERIFY(!child<QWidget>(*m_form, "HostsPane").isVisible());
}

void PlacesTest::aNewProjectHasNoLimit() {
    click(QStringLiteral("harbour.example"));
    trigger(*m_form, "actClose");
    QCOMPARE(tree().model()->rowCount(), 0);
    m_form->takePath(m_desk->folder.path() / "case.nvp");
    QTRY_COMPARE(tree().model()->rowCount(), 4);
    QCOMPARE(rows(), 4);
    QVERIFY(pane().choice().isEmpty());
}

void PlacesTest::theCardSaysWhatTheRecordIs() {
    goTo(1);
    QTRY_VERIFY(cardText().startsWith(QStringLiteral("Tide tables")));
    const QString text = cardText();
    QVERIFY(text.contains(QStringLiteral("http://www.harbour.example/tide.html?q=low+water")));
    QVERIFY(text.contains(QStringLiteral(" UTC")));
    QVERIFY(text.contains(QStringLiteral("Internet Explorer")));
    QVERIFY2(text.contains(QStringLiteral("index.dat, offset")), qPrintable(text));
    QVERIFY(child<QTextEdit>(*m_form, "cardText").isReadOnly());
    shot(*m_form, QStringLiteral("places-card"));
    trigger(*m_form, "actClose");
    QVERIFY(cardText().isEmpty());
}

void PlacesTest::emptyValuesAreHiddenAndABoxFiltersThem() {
    goTo(1);
    auto &list = child<QTreeWidget>(*m_form, "PropertiesGrid");
    QTRY_VERIFY(list.topLevelItemCount() > 10);
    const int filled = list.topLevelItemCount();
    child<QCheckBox>(*m_form, "chkEmptyFields").click();
    QVERIFY(list.topLevelItemCount() > filled);
    child<QLineEdit>(*m_form, "txtPropertyFilter").setText(QStringLiteral("url > "));
    QCOMPARE(list.topLevelItemCount(), 3);
    QCOMPARE(list.topLevelItem(2)->text(1),
             QStringLiteral("2011-03-01 19:10:30 UTC [Unix time in seconds]"));
    goTo(2);
    QTRY_COMPARE(list.topLevelItemCount(), 0);
    child<QLineEdit>(*m_form, "txtPropertyFilter").clear();
    QVERIFY(list.topLevelItemCount() > filled);
}

void PlacesTest::theViewerThatFitsComesUp() {
    goTo(2);
    QCOMPARE(front(), QStringLiteral("PicturePane"));
    goTo(3);
    QCOMPARE(front(), QStringLiteral("TextPane"));
    goTo(1);
    QCOMPARE(front(), QStringLiteral("BrowserPane"));
    QVERIFY(!viewers().isPinned());
}

void PlacesTest::whoeverGoesToATabPinsIt() {
    goTo(2);
    QTest::keyClick(m_form.get(), Qt::Key_6, Qt::AltModifier);
    QCOMPARE(front(), QStringLiteral("HexPane"));
    QVERIFY(viewers().isPinned());
    goTo(3);
    QCOMPARE(front(), QStringLiteral("HexPane"));
    child<QToolButton>(viewers(), "btnViewerPin").click();
    QCOMPARE(front(), QStringLiteral("TextPane"));
}

void PlacesTest::tabsWithNothingAreDim() {
    goTo(2);
    const auto isDim = [this](const char *name) {
        for (int place = 0; place < viewers().count(); ++place)
            if (viewers().widget(place)->objectName() == QLatin1String(name))
                return viewers().tabBar()->tabTextColor(place).isValid() &&
                       !viewers().tabToolTip(place).isEmpty();
        return false;
    };
    QVERIFY(!isDim("PicturePane"));
    QVERIFY(!isDim("HexPane"));
    QVERIFY(isDim("TextPane"));
    QVERIFY(isDim("AuditPane"));
    QVERIFY(!isDim("NotesPane")); // a note can be written
    goTo(3);
    QVERIFY(isDim("PicturePane"));
    QVERIFY(!isDim("TextPane"));
}

void PlacesTest::aPaneGetsAWindowOfItsOwn() {
    goTo(3);
    QCOMPARE(front(), QStringLiteral("TextPane"));
    const int all = viewers().count();
    viewers().detachFront();
    auto &own = child<QWidget>(*m_form, "PaneWindow");
    QVERIFY(own.isVisible());
    QVERIFY(own.isWindow());
    QCOMPARE(viewers().count(), all - 1);
    auto *text = own.findChild<QWidget *>(QStringLiteral("TextPane"));
    QVERIFY(text && text->isVisible());
    goTo(1); // it goes on showing the current record
    QTRY_VERIFY(m_desk->program.state.viewer.textContent.find("page") != std::string::npos);
    own.close();
    QCOMPARE(viewers().count(), all);
    QVERIFY(viewers().indexOf(text) >= 0);
}

void PlacesTest::thePanesTakeTheWholeWindow() {
    auto &data = child<QWidget>(*m_form, "dataArea");
    QTest::keyClick(m_form.get(), Qt::Key_F11);
    QVERIFY(!data.isVisible());
    QVERIFY(!child<QWidget>(*m_form, "CardPane").isVisible());
    QVERIFY(viewers().isVisible());
    QTest::keyClick(m_form.get(), Qt::Key_F11);
    QVERIFY(data.isVisible());
    QVERIFY(child<QWidget>(*m_form, "CardPane").isVisible());
}

void PlacesTest::cardAndViewersStandAsTheWindowHasRoom() {
    auto &area = child<QSplitter>(*m_form, "recordSplitter");
    auto &card = child<QWidget>(*m_form, "CardPane");
    const auto resize = [this](int width, int height) {
        m_form->resize(width, height);
        QTest::qWait(50);
    };
    QCOMPARE(area.orientation(), Qt::Horizontal);
    resize(1000, 1000);
    QCOMPARE(area.orientation(), Qt::Vertical);
    QVERIFY(card.isVisible());
    shot(*m_form, QStringLiteral("places-high"));
    resize(960, 540);
    QCOMPARE(m_form->size(), QSize(960, 540));
    QCOMPARE(viewers().indexOf(&card), 0);
    QCOMPARE(front(), QStringLiteral("CardPane"));
    goTo(1);
    QTRY_VERIFY(cardText().startsWith(QStringLiteral("Tide tables")));
    QCOMPARE(front(), QStringLiteral("CardPane")); // who reads the card goes on reading
    shot(*m_form, QStringLiteral("places-small"));
    resize(1280, 820);
    QCOMPARE(viewers().indexOf(&card), -1);
    QVERIFY(card.isVisible());
    QTRY_VERIFY(cardText().startsWith(QStringLiteral("Tide tables")));
}

void PlacesTest::theBrowserPaneShowsTheRecordsAddress() {
    goTo(1);
    auto &browser = child<QWidget>(*m_form, "BrowserPane");
    QTRY_COMPARE_WITH_TIMEOUT(
        child<QLineEdit>(browser, "txtLocation").text(),
        QStringLiteral("http://www.harbour.example/tide.html?q=low+water&t=1299006630"), 20'000);
    shot(*m_form, QStringLiteral("places-page"));
}

void PlacesTest::rowsAreCopiedInOtherForms() {
    goTo(1);
    const auto copied = [this](const char *action) {
        trigger(*m_form, action);
        return QGuiApplication::clipboard()->text();
    };
    QVERIFY(copied("actCopyCsv").contains(QStringLiteral("www.harbour.example")));
    QVERIFY(copied("actCopyMarkdown").startsWith(QStringLiteral("| ")));
    QVERIFY(copied("actCopyJson").startsWith(QStringLiteral("[\n{")));
    QCOMPARE(copied("actCopyDefanged"),
             QStringLiteral("hxxp://www[.]harbour[.]example/tide.html?q=low+water&t=1299006630"));
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::PlacesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "places_test.moc"
