#include "gui/CachedSite.h"
#include "platform/qt/PageGuard.h"
#include "ui/gallery/GalleryTab.h"

#include <QBuffer>
#include <QImage>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <SQLiteCpp/SQLiteCpp.h>

// Thumbnails that are drawn while the examiner goes on.
namespace nv {

using namespace test;

namespace {

constexpr int kPictures = 12;

std::string pngOf(int width) {
    QByteArray png;
    QBuffer buffer(&png);
    QImage picture(width, 1000, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    picture.save(&buffer, "PNG");
    return png.toStdString();
}

} // namespace

class BackgroundThumbnailsTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup() {
        m_form.reset();
        m_desk.reset();
    }
    void theRestIsDrawnWhileTheExaminerGoesOn();
    void whatIsDrawnStaysWhenItIsStopped();
    void closingTheProjectEndsIt();
    void theyAreCountedWhenAProjectOpensAfterTheGallery();

  private:
    QPushButton &button() { return child<QPushButton>(*m_form, "btnMakeThumbnails"); }
    QString said() { return child<QLabel>(*m_form, "labGalleryDrawn").text(); }
    int drawn() {
        return m_desk->program.state.projectDB.connection()
            .execAndGet("SELECT count(*) FROM URLs WHERE length(ThumbnailBLOB) > 0")
            .getInt();
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void BackgroundThumbnailsTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1200, 800);
    m_form->show();
    CachedSite site(m_desk->folder.path() / "evidence");
    for (int i = 0; i < kPictures; ++i)
        site.add("http://host/" + std::to_string(i) + ".png", std::to_string(i) + ".png",
                 pngOf(800 + i));
    site.add("http://host/broken.png", "broken.png", "\x89PNG\r\n\x1A\n and no more");
    site.add("http://host/page.html", "page.html", "<html><body bgcolor=red>a page</body></html>");
    site.open(*m_desk, *m_form);
    child<QTabWidget>(*m_form, "dataTabs").setCurrentWidget(&child<QWidget>(*m_form, "GalleryTab"));
}

void BackgroundThumbnailsTest::theRestIsDrawnWhileTheExaminerGoesOn() {
    QCOMPARE(said(), QStringLiteral("0 of 14 drawn"));
    QCOMPARE(button().text(), QStringLiteral("Make Thumbnails"));
    button().click();
    QCOMPARE(button().text(), QStringLiteral("Stop Drawing"));
    QVERIFY(!m_desk->status.isVisible());
    // The project is worked with meanwhile: a tick, another tab.
    trigger(*m_form, "actTag");
    QVERIFY(waitFor([this] { return button().text() != QStringLiteral("Stop Drawing"); }));
    QCOMPARE(drawn(), kPictures + 1);
    QCOMPARE(said(), QStringLiteral("13 of 14 drawn"));
    QCOMPARE(button().text(), QStringLiteral("Draw the Rest"));
    QVERIFY(button().isEnabled());
    QCOMPARE(child<QListView>(*m_form, "GalleryTiles").model()->rowCount(), kPictures + 1);
    QVERIFY(m_desk->examiner.heard.empty());
}

void BackgroundThumbnailsTest::whatIsDrawnStaysWhenItIsStopped() {
    button().click();
    QVERIFY(waitFor([this] { return drawn() >= 2; }));
    button().click();
    const int before = drawn();
    QVERIFY(before < kPictures);
    QVERIFY(button().text() == QStringLiteral("Draw the Rest"));
    QTest::qWait(300);
    QCOMPARE(drawn(), before);
    QCOMPARE(said(), QStringLiteral("%1 of 14 drawn").arg(before));
}

void BackgroundThumbnailsTest::closingTheProjectEndsIt() {
    button().click();
    QVERIFY(waitFor([this] { return drawn() >= 1; }));
    trigger(*m_form, "actClose");
    QTest::qWait(300);
    QVERIFY(m_desk->examiner.heard.empty());
    for (const auto &left :
         std::filesystem::directory_iterator(m_desk->program.state.tempFolderPath))
        QVERIFY2(left.path().filename() != "~background", "its scratch folder stays");
}

void BackgroundThumbnailsTest::theyAreCountedWhenAProjectOpensAfterTheGallery() {
    trigger(*m_form, "actClose");
    trigger(*m_form, "actOpen"); // the dialog still answers with the project
    QVERIFY(waitFor([this] { return said() == QStringLiteral("0 of 14 drawn"); }));
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::BackgroundThumbnailsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "background_thumbnails_test.moc"
