#include "db/marks/RecordTags.h"
#include "gui/Desk.h"
#include "ui/gallery/GalleryTab.h"

#include <QBuffer>
#include <QCheckBox>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>
#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>

// The gallery as an examiner uses it, with thumbnails that the test draws.
namespace nv {

using namespace test;

class GalleryTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup() {
        m_form.reset();
        m_desk.reset();
    }
    void tilesHaveCaptionAndThumbnail();
    void aTickIsWrittenToTheProject();
    void aClickOnTheTickAndSpaceFlipIt();
    void shapeAndSizeNarrowTheTiles();
    void theSizeBoxesSayWhatTheNextProjectShows();
    void aTickCountsInTheTable();
    void pagesTurn();
    void refreshOfTheSameIsTold();
    void aTileLeadsToItsRow();
    void withoutThumbnailsItSaysWhatToDo();
    void eachLimitOfTheTableHoldsHere_data();
    void eachLimitOfTheTableHoldsHere();
    void aHostThatIsEnteredHereLimitsTheTableToo();

  private:
    GalleryTab &gallery() { return child<GalleryTab>(*m_form, "GalleryTab"); }
    QAbstractItemModel &tiles() { return *child<QListView>(*m_form, "GalleryTiles").model(); }
    SQLite::Database &project() { return m_desk->program.state.projectDB.connection(); }
    void press(const char *name) {
        QTest::mouseClick(&child<QPushButton>(*m_form, name), Qt::LeftButton);
    }
    /// On all pages.
    int shown() {
        if (auto &last = child<QPushButton>(*m_form, "btnLast"); last.isEnabled())
            last.click();
        const QString page = child<QLabel>(*m_form, "labGalleryPage").text();
        return tiles().rowCount() + 2 * std::max(page.section(u' ', -1).toInt() - 1, 0);
    }
    /// Rows of the table that are drawn.
    int drawnInTable() {
        const RowIds &ids = child<TableTab>(*m_form, "TableTab").table()->ids();
        return static_cast<int>(std::ranges::count_if(ids, [](int id) { return id <= 3; }));
    }
    void draw(int id, int width, int height);

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void GalleryTest::draw(int id, int width, int height) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImage image(60, 45, QImage::Format_RGB32);
    image.fill(Qt::red);
    image.save(&buffer, "BMP");
    SQLite::Statement update(project(),
                             "UPDATE URLs SET ThumbnailBLOB = ?, ThumbnailMD5Hash = 'x', IsPicture "
                             "= 1, CacheFileExists = 1, PictureWidth = ?, PictureHeight = ?, "
                             "PARDValue = ? WHERE URL_ID = ?");
    update.bind(1, bytes.constData(), static_cast<int>(bytes.size()));
    update.bind(2, width);
    update.bind(3, height);
    update.bind(4, pardValue(width, height));
    update.bind(5, id);
    update.exec();
}

void GalleryTest::init() {
    m_desk = std::make_unique<Desk>();
    m_desk->program.state.galleryRecordsPerPage = 2;
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1200, 800);
    m_form->show();
    openExample(*m_desk, *m_form);
    draw(1, 400, 300);
    draw(2, 100, 100);
    draw(3, 468, 60);
    trigger(*m_form, "actRefresh");
    child<QTabWidget>(*m_form, "dataTabs").setCurrentWidget(&child<QWidget>(*m_form, "GalleryTab"));
}

void GalleryTest::tilesHaveCaptionAndThumbnail() {
    QCOMPARE(tiles().rowCount(), 2);
    const QModelIndex first = tiles().index(0, 0);
    QVERIFY(first.data().toString().startsWith(QStringLiteral("ID #000000")));
    const auto thumbnail = first.data(Qt::DecorationRole).value<QPixmap>();
    QCOMPARE(thumbnail.toImage().pixelColor(5, 5), QColor(Qt::red));
}

void GalleryTest::aTickIsWrittenToTheProject() {
    const QModelIndex first = tiles().index(0, 0);
    QVERIFY(tiles().setData(first, Qt::Checked, Qt::CheckStateRole));
    QCOMPARE(project().execAndGet("SELECT count(*) FROM URLs WHERE Tagged").getInt(), 1);
    QCOMPARE(first.data(Qt::CheckStateRole).toInt(), static_cast<int>(Qt::Checked));
}

void GalleryTest::aClickOnTheTickAndSpaceFlipIt() {
    auto &view = child<QListView>(*m_form, "GalleryTiles");
    const QModelIndex first = tiles().index(0, 0);
    const auto isTicked = [&] { return first.data(Qt::CheckStateRole).toInt() == Qt::Checked; };
    const QRect tile = view.visualRect(first);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, tile.bottomLeft() + QPoint(22, -16));
    QVERIFY(isTicked());
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, tile.center());
    QVERIFY(isTicked()); // beside the tick a click only goes to the tile
    QTest::keyClick(&view, Qt::Key_Space);
    QVERIFY(!isTicked());
    QCOMPARE(project().execAndGet("SELECT count(*) FROM URLs WHERE Tagged").getInt(), 0);
}

void GalleryTest::shapeAndSizeNarrowTheTiles() {
    QVERIFY(!child<QSpinBox>(*m_form, "spnFrom").isEnabled());
    child<QCheckBox>(*m_form, "chkPARD").click();
    QCOMPARE(tiles().rowCount(), 1); // 400 by 300 is the only photograph
    QVERIFY(tiles().index(0, 0).data().toString().endsWith(u'1'));
    child<QCheckBox>(*m_form, "chkSmall").click();
    QCOMPARE(tiles().rowCount(), 0);
    QVERIFY(child<QLabel>(*m_form, "labGalleryEmpty").isVisible());
}

void GalleryTest::theSizeBoxesSayWhatTheNextProjectShows() {
    child<QCheckBox>(*m_form, "chkPARD").click();
    child<QCheckBox>(*m_form, "chkSmall").click();
    QCOMPARE(tiles().rowCount(), 0); // the only photograph is of middle size
    trigger(*m_form, "actClose");
    trigger(*m_form, "actOpen");
    child<QTabWidget>(*m_form, "dataTabs").setCurrentWidget(&child<QWidget>(*m_form, "GalleryTab"));
    QVERIFY(child<QCheckBox>(*m_form, "chkSmall").isChecked());
    QCOMPARE(tiles().rowCount(), 0);
    child<QCheckBox>(*m_form, "chkSmall").click();
    QCOMPARE(tiles().rowCount(), 1);
}

void GalleryTest::aTickCountsInTheTable() {
    const auto &table = child<TableTab>(*m_form, "TableTab");
    QVERIFY(tiles().setData(tiles().index(0, 0), Qt::Checked, Qt::CheckStateRole));
    QCOMPARE(table.taggedCount(), 1);
    QCOMPARE(table.shownTaggedCount(), 1);
}

void GalleryTest::pagesTurn() {
    QCOMPARE(child<QLabel>(*m_form, "labGalleryPage").text(), QStringLiteral("Page 1 of 2"));
    press("btnNextPage");
    QCOMPARE(child<QLabel>(*m_form, "labGalleryPage").text(), QStringLiteral("Page 2 of 2"));
    QCOMPARE(tiles().rowCount(), 1);
    QVERIFY(!child<QPushButton>(*m_form, "btnLast").isEnabled());
    press("btnFirst");
    QCOMPARE(tiles().rowCount(), 2);
}

void GalleryTest::refreshOfTheSameIsTold() {
    press("btnRefreshGallery");
    QCOMPARE(m_desk->examiner.heard.back(), std::string("gallery-not-changed"));
}

void GalleryTest::aTileLeadsToItsRow() {
    auto &view = child<QListView>(*m_form, "GalleryTiles");
    view.setCurrentIndex(tiles().index(1, 0));
    const qint64 id = static_cast<GalleryModel &>(tiles()).idAt(tiles().index(1, 0));
    const auto &table = child<TableTab>(*m_form, "TableTab").grid();
    QCOMPARE(number(*table.currentUrl()), id);
}

void GalleryTest::withoutThumbnailsItSaysWhatToDo() {
    project().exec("UPDATE URLs SET ThumbnailMD5Hash = ''");
    gallery().setDirty();
    QCOMPARE(tiles().rowCount(), 0);
    QVERIFY(child<QLabel>(*m_form, "labGalleryEmpty")
                .text()
                .contains(QStringLiteral("The button below draws")));
}

void GalleryTest::eachLimitOfTheTableHoldsHere_data() {
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("left"); // of three
    int limit = 0;
    QTest::newRow("search") << limit++ << 1;
    QTest::newRow("time") << limit++ << 0;
    QTest::newRow("tag") << limit++ << 2;
    QTest::newRow("hash sets") << limit++ << 2;
    QTest::newRow("place") << limit++ << 1;
    QTest::newRow("column") << limit++ << 1;
    QTest::newRow("filters") << limit++ << 0;
    QTest::newRow("query") << limit++ << 1;
}

void GalleryTest::eachLimitOfTheTableHoldsHere() {
    QFETCH(int, limit);
    QFETCH(int, left);
    project().exec("UPDATE URLs SET Host = 'host' || URL_ID || '.example', Tagged = URL_ID = 3");
    project().exec("INSERT INTO RecordFacts VALUES (1, 'hashset_known', 'library', 'MD5')");
    const NamedTag tag = NamedTags(project()).add(
        {.tagID = 0, .name = "Important", .color = {}, .position = 0, .note = {}});
    Unwatched nobody;
    QVERIFY(RecordTags(project()).set(tag.tagID, RowIds{1, 3}, {}, nobody));
    auto &table = child<TableTab>(*m_form, "TableTab");
    trigger(*m_form, "actRefresh");
    QCOMPARE(shown(), 3);
    QVERIFY(child<QLabel>(*m_form, "labGalleryLimits").isHidden());
    const std::vector<std::function<void(UrlTable &)>> limits = {
        [](UrlTable &rows) {
            rows.ofSearch = std::make_shared<FoundIds>(FoundIds{2, 5});
        },
        [](UrlTable &rows) {
            rows.time = TimeLimit{Date(), Date::fromDays(1)};
        },
        [&](UrlTable &rows) {
            rows.tags = TagLimit{{tag.tagID}, false};
        },
        [](UrlTable &rows) { rows.hashSets.withoutKnown = true; },
        [](UrlTable &rows) {
            rows.places.only = {{{{PlaceField::Host, "host2.example"}}}};
        },
        [](UrlTable &rows) {
            rows.byColumn = {{.column = UrlColumn::Host, .oneOf = {{"host1.example"}}}};
        }};
    const auto place = static_cast<std::size_t>(limit);
    if (place < limits.size()) {
        limits[place](*table.table());
        table.narrow();
    } else if (place == limits.size()) {
        RecordFilters &filters = m_desk->program.state.filters;
        filters.enableFilters = true;
        filters.showHistoryURLs = false;
        trigger(*m_form, "actRefresh");
    } else {
        table.chooseQuery(QStringLiteral("_Tagged Items"));
    }
    QCOMPARE(drawnInTable(), left);
    QCOMPARE(shown(), left);
    if (const QString folder = qEnvironmentVariable("NV_SHOTS"); !folder.isEmpty())
        m_form->grab().save(folder + QStringLiteral("/gallery-by-%1.png").arg(limit));
    const auto &said = child<QLabel>(*m_form, "labGalleryLimits");
    QVERIFY2(said.isVisible() || place < 2, "of these two their boxes know by themselves");
}

void GalleryTest::aHostThatIsEnteredHereLimitsTheTableToo() {
    project().exec("UPDATE URLs SET Host = 'host' || URL_ID || '.example'");
    trigger(*m_form, "actRefresh");
    auto &box = child<QLineEdit>(*m_form, "txtGalleryHost");
    box.setText(QStringLiteral("host2"));
    QTest::keyClick(&box, Qt::Key_Return);
    QCOMPARE(shown(), 1);
    QCOMPARE(child<TableTab>(*m_form, "TableTab").table()->rowCount(), std::size_t{1});
    box.setText(QStringLiteral("host3"));
    QTest::keyClick(&box, Qt::Key_Return);
    QCOMPARE(shown(), 1);
    QCOMPARE(drawnInTable(), 1);
    trigger(*m_form, "actUndo");
    QCOMPARE(box.text(), QStringLiteral("host2"));
    trigger(*m_form, "actClearLimits");
    QCOMPARE(shown(), 3);
    QCOMPARE(box.text(), QString());
}

} // namespace nv

QTEST_MAIN(nv::GalleryTest)
#include "gallery_test.moc"
