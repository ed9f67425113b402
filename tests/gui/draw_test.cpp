#include "platform/ChildProcess.h"
#include "platform/posix/DrawProgram.h"
#include "platform/posix/SheetFile.h"
#include "platform/qt/QtText.h"
#include "support/TempFolder.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTcpServer>
#include <QTest>
#include <fmt/format.h>

namespace nv {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

/// The drawing program itself, on files that the test makes.
class DrawTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        m_folder = std::make_unique<test::TempFolder>();
        m_jobs.clear();
    }
    void picturesOfAllFormatsBecomeBitmapsInProportion();
    void aSmallPictureStaysSmall();
    void anExtremeShapeKeepsItsSmallerSide();
    void theFormatIsSeenInTheContent();
    void whatIsClearBecomesWhite();
    void aPhotographIsTurnedAsItsCameraSays();
    void aSheetShowsItsPicturesAndCaptions();
    void aSheetThatIsNoneFailsAlone();
    void damagedPicturesFailAlone();
    void aHugePictureIsMeasuredAndNotDrawn();
    void aVectorPictureIsRefused();
    void anOldTargetNeverPassesForADrawing();
    void aPageIsDrawnAsItLooks();
    void aPageThatPaintsLateIsWaitedFor();
    void pagesAndPicturesMayBeMixed();
    void aHostilePageReachesNothing();
    void aPageThatNeverEndsTimesOutAlone();
    void aPageThatExhaustsTheEngineFailsAlone();
    void aPageThatIsNotThereFailsAlone();
    void drawingStopsWhenItIsNoLongerWanted();

  private:
    fs::path target(std::size_t job) const {
        return m_folder->path() / fmt::format("target{}", job);
    }
    void add(DrawJob::Kind kind, const fs::path &source) {
        m_jobs.push_back({kind, source, target(m_jobs.size()), 320, 240});
    }
    void addPicture(const QImage &picture, const char *format) {
        const fs::path source = m_folder->path() / fmt::format("picture{}", m_jobs.size());
        QVERIFY(picture.save(pathToQt(source), format));
        add(DrawJob::Kind::picture, source);
    }
    void addPicture(std::string_view bytes) {
        add(DrawJob::Kind::picture,
            m_folder->write(fmt::format("picture{}", m_jobs.size()), bytes));
    }
    void addPage(std::string_view html) {
        add(DrawJob::Kind::page,
            m_folder->write(fmt::format("page{}/index.html", m_jobs.size()), html));
    }
    std::vector<Drawn> draw(std::chrono::seconds timeout = 30s) {
        std::vector<Drawn> all;
        DrawProgram(companionProgram("norvelane-draw"), m_folder->path())
            .draw(
                m_jobs, timeout,
                [&](std::size_t, const Drawn &drawn) {
                    all.push_back(drawn);
                    return true;
                },
                [] {
                    QCoreApplication::processEvents();
                    return true;
                });
        return all;
    }
    QImage drawing(std::size_t job) const { return QImage(pathToQt(target(job))); }

    std::unique_ptr<test::TempFolder> m_folder;
    std::vector<DrawJob> m_jobs;
};

namespace {

QImage plain(int width, int height, Qt::GlobalColor colour) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

QByteArray bytesOf(const QImage &image, const char *format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, format);
    return bytes;
}

std::string_view viewOf(const QByteArray &bytes) {
    return {bytes.data(), static_cast<std::size_t>(bytes.size())};
}

/// A picture of 2 by 1, red and blue: the tool that makes others writes no such file.
constexpr std::string_view
    kGif("GIF89a\2\0\1\0\x80\0\0\xFF\0\0\0\0\xFF,\0\0\0\0\2\0\1\0\0\2\2D\n\0;", 35);

bool isNear(QRgb pixel, QColor colour) {
    return std::abs(qRed(pixel) - colour.red()) < 12 &&
           std::abs(qGreen(pixel) - colour.green()) < 12 &&
           std::abs(qBlue(pixel) - colour.blue()) < 12;
}

} // namespace

void DrawTest::picturesOfAllFormatsBecomeBitmapsInProportion() {
    for (const char *format : {"jpg", "png", "bmp", "webp", "tiff"})
        addPicture(plain(800, 200, Qt::red), format);
    const auto all = draw();
    QCOMPARE(all.size(), 5U);
    for (std::size_t job = 0; job < all.size(); ++job) {
        QVERIFY2(all[job].done, all[job].failure.c_str());
        QCOMPARE(all[job].pictureWidth, 800);
        QCOMPARE(all[job].pictureHeight, 200);
        QFile file(pathToQt(target(job)));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.read(2), QByteArray("BM"));
        QCOMPARE(drawing(job).size(), QSize(320, 80));
        QVERIFY(isNear(drawing(job).pixel(160, 40), Qt::red));
    }
}

void DrawTest::aSmallPictureStaysSmall() {
    addPicture(kGif);
    const auto all = draw();
    QVERIFY2(all[0].done, all[0].failure.c_str());
    QCOMPARE(all[0].pictureWidth, 2);
    QCOMPARE(drawing(0).size(), QSize(2, 1));
    QCOMPARE(drawing(0).pixelColor(0, 0), QColor(Qt::red));
    QCOMPARE(drawing(0).pixelColor(1, 0), QColor(Qt::blue));
}

void DrawTest::anExtremeShapeKeepsItsSmallerSide() {
    addPicture(plain(3000, 1, Qt::blue), "png");
    QVERIFY(draw()[0].done);
    QCOMPARE(drawing(0).size(), QSize(320, 1));
}

void DrawTest::theFormatIsSeenInTheContent() {
    add(DrawJob::Kind::picture,
        m_folder->write("named.jpg", viewOf(bytesOf(plain(640, 480, Qt::blue), "png"))));
    QVERIFY(draw()[0].done);
    QVERIFY(isNear(drawing(0).pixel(9, 9), Qt::blue));
}

void DrawTest::whatIsClearBecomesWhite() {
    QImage clear(50, 50, QImage::Format_ARGB32);
    clear.fill(Qt::transparent);
    addPicture(clear, "png");
    QVERIFY(draw()[0].done);
    QCOMPARE(drawing(0).pixelColor(25, 25), QColor(Qt::white));
}

void DrawTest::aPhotographIsTurnedAsItsCameraSays() {
    QImage lying = plain(400, 200, Qt::blue);
    QPainter(&lying).fillRect(0, 0, 200, 200, Qt::red);
    // The left side is the top: to be turned clockwise by a quarter.
    const QByteArray exif("\xFF\xE1\0\x22"
                          "Exif\0\0II*\0\x08\0\0\0\1\0\x12\1\3\0\1\0\0\0\6\0\0\0\0\0\0\0",
                          36);
    addPicture(viewOf(bytesOf(lying, "jpg").insert(2, exif)));
    addPicture(lying, "jpg");
    const auto all = draw();
    QVERIFY2(all[0].done, all[0].failure.c_str());
    QCOMPARE(drawing(0).size(), QSize(120, 240));
    QVERIFY(isNear(drawing(0).pixel(60, 40), Qt::red));
    QVERIFY(isNear(drawing(0).pixel(60, 200), Qt::blue));
    QCOMPARE(drawing(1).size(), QSize(320, 160));
    for (const Drawn &drawn : all) { // as stored: P.A.R.D. is computed of it
        QCOMPARE(drawn.pictureWidth, 400);
        QCOMPARE(drawn.pictureHeight, 200);
    }
}

void DrawTest::aSheetShowsItsPicturesAndCaptions() {
    SheetFile sheet{"Gallery", {"Page 1 of 1"}, {}};
    for (int i = 0; i < 6; ++i)
        sheet.tiles.push_back({{"ID #000000" + std::to_string(i), "http://host/"}, i == 1});
    m_folder->write("sheet/0", viewOf(bytesOf(plain(640, 480, Qt::blue), "jpg")));
    m_folder->write("sheet/1", "no picture at all");
    add(DrawJob::Kind::sheet, m_folder->write("sheet/sheet", textOf(sheet)));
    const auto all = draw();
    QVERIFY2(all[0].done, all[0].failure.c_str());
    const QImage drawn = drawing(0);
    QCOMPARE(drawn.width(), 24 * 2 + 4 * 336 + 3 * 10); // four columns
    const auto holds = [&drawn](const QRect &part, QColor colour) {
        for (int y = part.top(); y <= part.bottom(); ++y)
            for (int x = part.left(); x <= part.right(); ++x)
                if (isNear(drawn.pixel(x, y), colour))
                    return true;
        return false;
    };
    const int half = drawn.height() / 2;
    QVERIFY(holds({24, 0, 336, half}, Qt::blue));
    QVERIFY(holds({24, 0, 336, half}, Qt::black)); // letters
    QVERIFY(!holds({370, 0, 336, half}, Qt::blue));
    QVERIFY(holds({370, 0, 336, half}, QColor(0xB3, 0, 0))); // the mark
    QVERIFY(!holds({0, half + 60, drawn.width(), half - 60}, QColor(0xB3, 0, 0)));
}

void DrawTest::aSheetThatIsNoneFailsAlone() {
    for (const char *text : {"", "[]", "{\"tiles\":[1]}", "{\"tiles\":[], \"title\":7}"})
        add(DrawJob::Kind::sheet, m_folder->write("sheet" + std::to_string(m_jobs.size()), text));
    SheetFile large;
    large.tiles.resize(kMostSheetTiles + 1);
    add(DrawJob::Kind::sheet, m_folder->write("large", textOf(large)));
    const auto all = draw();
    for (const std::size_t job : {0U, 1U, 2U, 4U})
        QCOMPARE(all[job].failure, std::string("The file is no contact sheet."));
    QVERIFY2(all[3].done, all[3].failure.c_str()); // without tiles and title
}

void DrawTest::damagedPicturesFailAlone() {
    const QByteArray png = bytesOf(plain(640, 480, Qt::blue), "png");
    addPicture("");
    addPicture("no picture at all");
    addPicture(viewOf(png.left(30)));
    addPicture(viewOf(png.left(png.size() / 2)));
    addPicture(viewOf(bytesOf(plain(640, 480, Qt::red), "jpg").left(20)));
    addPicture(kGif.substr(0, 20));
    addPicture(viewOf(bytesOf(plain(64, 64, Qt::red), "bmp").left(40)));
    add(DrawJob::Kind::picture, m_folder->path() / "none.png");
    add(DrawJob::Kind::picture, m_folder->path());
    addPicture(viewOf(png));
    const auto all = draw();
    QCOMPARE(all.size(), 10U);
    for (std::size_t job = 0; job < 9; ++job) {
        QVERIFY2(!all[job].done, std::to_string(job).c_str());
        QVERIFY(!all[job].failure.empty());
        QVERIFY(!fs::exists(target(job)));
    }
    QCOMPARE(all[3].pictureWidth, 640); // its size can still be told
    QVERIFY(all[9].done);
}

void DrawTest::aHugePictureIsMeasuredAndNotDrawn() {
    QByteArray png = bytesOf(plain(8, 8, Qt::blue), "png");
    png.replace(16, 8, QByteArray::fromHex("00007fff00007fff"));
    // The checksum of the head is part of what a sound picture has.
    png.replace(29, 4, QByteArray::fromHex("c690916a"));
    addPicture(viewOf(png));
    QByteArray bmp = bytesOf(plain(8, 8, Qt::blue), "bmp");
    bmp.replace(18, 8, QByteArray::fromHex("ff7f0000ff7f0000"));
    addPicture(viewOf(bmp));
    addPicture(kGif);
    const auto all = draw();
    QVERIFY(!all[0].done && !all[1].done && all[2].done);
    QCOMPARE(all[0].pictureWidth, 0x7FFF);
    QCOMPARE(all[0].failure, std::string("The picture has too many pixels to be drawn."));
}

void DrawTest::aVectorPictureIsRefused() {
    addPicture("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'><image "
               "href='file:///etc/hostname' width='9' height='9'/></svg>");
    const auto all = draw();
    QCOMPARE(all[0].failure, std::string("The file is no picture that can be drawn."));
}

void DrawTest::anOldTargetNeverPassesForADrawing() {
    addPicture("garbage");
    m_folder->write("target0", "an older drawing");
    QVERIFY(!draw()[0].done);
    QVERIFY(!fs::exists(target(0)));
}

void DrawTest::aPageThatPaintsLateIsWaitedFor() {
    addPage("<style>@keyframes late { to { background: red } } body { background: white; "
            "animation: late 0s linear .2s forwards }</style><body>&nbsp;");
    addPage("<body bgcolor=white>");
    const auto all = draw();
    QVERIFY2(all[0].done, all[0].failure.c_str());
    QVERIFY(isNear(drawing(0).pixel(160, 120), Qt::red));
    QVERIFY2(all[1].done, all[1].failure.c_str());
    QVERIFY(isNear(drawing(1).pixel(160, 120), Qt::white));
}

void DrawTest::aPageIsDrawnAsItLooks() {
    for (int i = 0; i < 3; ++i)
        addPage("<body style='margin:0'><table width='100%' height=768 cellspacing=0><tr>"
                "<td bgcolor=red>&nbsp;<td bgcolor=blue>&nbsp;</table>");
    const auto all = draw();
    for (std::size_t job = 0; job < 3; ++job) {
        QVERIFY2(all[job].done, all[job].failure.c_str());
        QCOMPARE(all[job].refusedRequests, 0U);
        QFile file(pathToQt(target(job)));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.read(2), QByteArray("\xFF\xD8"));
        QCOMPARE(drawing(job).size(), QSize(320, 240));
        QVERIFY(isNear(drawing(job).pixel(60, 120), Qt::red));
        QVERIFY(isNear(drawing(job).pixel(260, 120), Qt::blue));
    }
}

void DrawTest::pagesAndPicturesMayBeMixed() {
    addPage("<body bgcolor=red>");
    addPicture(plain(3000, 2000, Qt::blue), "jpg");
    addPage("<body bgcolor=blue>");
    const auto all = draw();
    QVERIFY(all[0].done && all[1].done && all[2].done);
    QVERIFY(isNear(drawing(0).pixel(160, 120), Qt::red));
    QVERIFY(isNear(drawing(1).pixel(160, 120), Qt::blue));
    QVERIFY(isNear(drawing(2).pixel(160, 120), Qt::blue));
}

void DrawTest::aHostilePageReachesNothing() {
    QTcpServer server;
    int heard = 0;
    connect(&server, &QTcpServer::newConnection, this, [&heard] { ++heard; });
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const std::string at = fmt::format("http://127.0.0.1:{}/", server.serverPort());
    addPage(fmt::format(
        "<link rel=preconnect href='{0}'><link rel=dns-prefetch href='{0}'><img src='{0}a.gif'>"
        "<style>@import url({0}a.css);</style><iframe src='file:///etc/hostname'></iframe>"
        "<iframe src='{0}'></iframe><object data='{0}'></object><embed src='{0}a.swf'>"
        "<svg><image href='{0}a.svg' width=9 height=9 /></svg>"
        "<script>new WebSocket('ws:' + '{0}'.slice(5)); fetch('{0}')</script>"
        "<meta http-equiv=refresh content='0;url={0}'>",
        at));
    const auto all = draw();
    QVERIFY2(all[0].done, all[0].failure.c_str());
    QVERIFY(all[0].refusedRequests >= 5);
    QTest::qWait(200);
    QCOMPARE(heard, 0);
}

void DrawTest::aPageThatNeverEndsTimesOutAlone() {
    // Each group shows the one before ten times: a hundred million squares in all.
    std::string endless = "<svg><defs><g id=a0><rect width=1 height=1 /></g>";
    for (int i = 1; i < 9; ++i) {
        endless += fmt::format("<g id=a{}>", i);
        for (int use = 0; use < 10; ++use)
            endless += fmt::format("<use href='#a{}' />", i - 1);
        endless += "</g>";
    }
    addPage("<body bgcolor=red>");
    addPage(endless + "</defs><use href='#a8' /></svg>");
    addPage("<body bgcolor=blue>");
    const auto all = draw(5s);
    QCOMPARE(all.size(), 3U);
    QVERIFY(all[0].done);
    QCOMPARE(all[1].failure, std::string("The page was not ready within 5 seconds."));
    QVERIFY2(all[2].done, all[2].failure.c_str());
    QVERIFY(isNear(drawing(2).pixel(160, 120), Qt::blue));
}

void DrawTest::aPageThatExhaustsTheEngineFailsAlone() {
    std::string deep;
    for (int i = 0; i < 4000; ++i)
        deep += "<table><tr><td>";
    addPage(deep);
    addPage("<body bgcolor=blue>");
    const auto all = draw();
    QVERIFY(all[0].done != !all[0].failure.empty());
    QVERIFY2(all[1].done, all[1].failure.c_str());
    QVERIFY(isNear(drawing(1).pixel(160, 120), Qt::blue));
}

void DrawTest::aPageThatIsNotThereFailsAlone() {
    add(DrawJob::Kind::page, m_folder->path() / "none.html");
    add(DrawJob::Kind::page, m_folder->path());
    addPage("<body bgcolor=blue>");
    const auto all = draw();
    QVERIFY(!all[0].failure.empty() && !all[1].failure.empty());
    QVERIFY(all[2].done);
}

void DrawTest::drawingStopsWhenItIsNoLongerWanted() {
    for (int i = 0; i < 50; ++i)
        addPage("<body bgcolor=red>");
    std::size_t taken = 0;
    DrawProgram(companionProgram("norvelane-draw"), m_folder->path())
        .draw(
            m_jobs, 30s, [&](std::size_t, const Drawn &) { return ++taken < 2; },
            [] { return true; });
    QCOMPARE(taken, 2U);
}

} // namespace nv

QTEST_GUILESS_MAIN(nv::DrawTest)
#include "draw_test.moc"
