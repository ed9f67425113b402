#include "gui/Desk.h"
#include "ui/views/GalleryTab.h"

#include <QBuffer>
#include <QCheckBox>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>
#include <SQLiteCpp/SQLiteCpp.h>

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

  private:
    GalleryTab &gallery() { return child<GalleryTab>(*m_form, "GalleryTab"); }
    QAbstractItemModel &tiles() { return *child<QListView>(*m_form, "GalleryTiles").model(); }
    SQLite::Database &project() { return m_desk->program.state.projectDB.connection(); }
    void press(const char *name) {
        QTest::mouseClick(&child<QPushButton>(*m_form, name), Qt::LeftButton);
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

} // namespace nv

QTEST_MAIN(nv::GalleryTest)
#include "gallery_test.moc"
