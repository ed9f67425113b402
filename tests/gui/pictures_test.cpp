#include "gui/CachedSite.h"
#include "platform/qt/PageGuard.h"
#include "ui/parts/PictureFeed.h"
#include "ui/table/TableTab.h"
#include "ui/table/UrlGrid.h"
#include "ui/viewers/PicturePane.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QImage>
#include <QLabel>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include <algorithm>

// The Picture pane while the examiner goes through the rows.
namespace nv {

using namespace test;

namespace {

constexpr int kPresses = 12;
constexpr int kFirstWidth = 1500; ///< pixels; each picture is one wider than the one before it

std::string pngOf(int width) {
    QByteArray png;
    QBuffer buffer(&png);
    QImage picture(width, 1000, QImage::Format_RGB32);
    picture.fill(Qt::darkBlue);
    picture.save(&buffer, "PNG");
    return png.toStdString();
}

int filesOf(const fs::path &folder, const std::string &beginning) {
    return static_cast<int>(std::ranges::count_if(
        fs::directory_iterator(folder), [&](const fs::directory_entry &entry) {
            return entry.path().filename().string().starts_with(beginning);
        }));
}

} // namespace

class PicturesTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void anArrowKeyHeldDownGoesThroughTheRows();
    void theNextRowsAreDrawnAhead();
    void aPictureOfARowThatIsLeftIsNotShown();

  private:
    UrlGrid &grid() { return child<TableTab>(*m_form, "TableTab").grid(); }
    fs::path scratch() { return m_desk->program.state.tempFolderPath; }
    QString facts() { return child<QLabel>(*m_form, "labPictureSize").text(); }
    /// Whether the pane has the picture of the current row.
    bool showsCurrent() {
        const int width = kFirstWidth + static_cast<int>(number(*grid().currentUrl())) - 1;
        return facts().startsWith(QStringLiteral("%1 × 1000 ").arg(width));
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void PicturesTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1200, 900);
    m_form->show();
    CachedSite site(m_desk->folder.path() / "evidence");
    for (int i = 0; i <= kPresses; ++i)
        site.add("http://host/" + std::to_string(i) + ".png", std::to_string(i) + ".png",
                 pngOf(kFirstWidth + i));
    site.open(*m_desk, *m_form);
    QApplication::setActiveWindow(m_form.get());
    grid().setCurrentIndex(grid().model()->index(0, grid().currentIndex().column()));
    child<QTabWidget>(*m_form, "viewerTabs")
        .setCurrentWidget(&child<PicturePane>(*m_form, "PicturePane"));
    QVERIFY(waitFor([this] { return showsCurrent(); }));
    grid().setFocus();
}

void PicturesTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void PicturesTest::anArrowKeyHeldDownGoesThroughTheRows() {
    bool wasLocked = false;
    QTimer watch;
    connect(&watch, &QTimer::timeout, this,
            [&] { wasLocked |= m_desk->status.isVisible() || !grid().isEnabled(); });
    watch.start(5);
    qint64 slowest = 0;
    for (int press = 1; press <= kPresses; ++press) {
        QElapsedTimer since;
        since.start();
        QTest::keyClick(&grid(), Qt::Key_Down);
        QCOMPARE(grid().currentIndex().row(), press);
        QTest::qWait(100);
        slowest = std::max(slowest, since.elapsed() - 100);
    }
    QVERIFY2(slowest < 200, qPrintable(QString::number(slowest)));
    QVERIFY(!wasLocked);
    QVERIFY(waitFor([this] { return showsCurrent(); }));
    trigger(*m_form, "actClose");
    QCOMPARE(filesOf(scratch(), "~picture-"), 0);
    QCOMPARE(filesOf(scratch(), "draw-"), 0);
}

void PicturesTest::theNextRowsAreDrawnAhead() {
    // The process of the first picture is there, and draws two more.
    QCOMPARE(filesOf(scratch(), "draw-"), 1);
    auto &feed = *m_form->findChild<PictureFeed *>();
    const auto second = static_cast<std::int64_t>(number(*grid().currentUrl()) + 1);
    QVERIFY(waitFor([&] { return feed.has(UrlId{second}) && feed.has(UrlId{second + 1}); }));
    QCOMPARE(filesOf(scratch(), "~picture-"), 0);
    for (int press = 0; press < 2; ++press) {
        QTest::keyClick(&grid(), Qt::Key_Down);
        QTest::qWait(20);
        QVERIFY2(showsCurrent(), qPrintable(facts()));
    }
    QTest::keyClick(&grid(), Qt::Key_Up); // what was seen is kept
    QTest::qWait(20);
    QVERIFY2(showsCurrent(), qPrintable(facts()));
}

void PicturesTest::aPictureOfARowThatIsLeftIsNotShown() {
    grid().setCurrentIndex(grid().model()->index(8, grid().currentIndex().column()));
    QTest::qWait(5);
    grid().setCurrentIndex(grid().model()->index(11, grid().currentIndex().column()));
    QVERIFY(waitFor([this] { return showsCurrent(); }));
    QTest::qWait(500);
    QVERIFY2(showsCurrent(), qPrintable(facts()));
    child<QTabWidget>(*m_form, "viewerTabs").setCurrentIndex(0);
    QTest::qWait(200);
    QVERIFY(m_form->findChild<PicturePane *>()->isHidden());
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::PicturesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "pictures_test.moc"
