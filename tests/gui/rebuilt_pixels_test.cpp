#include "platform/qt/PageDrawEngine.h"
#include "platform/qt/PageGuard.h"
#include "platform/qt/QtText.h"
#include "support/ImportedSite.h"

#include <QApplication>
#include <QBuffer>
#include <QImage>
#include <QTest>

#include <algorithm>
#include <array>

// Rebuilt pages beside the site that they come from, point by point.
namespace nv {

namespace fs = std::filesystem;
using test::ImportedSite;
using test::SiteCache;
using test::SiteItem;
using test::WebSite;

namespace {

constexpr std::string_view kHome = "http://www.tide-tables.example/";
constexpr std::string_view kSheetPicture = "pics/wave.png";
constexpr std::string_view kInset = "inset.html";
/// Large enough to be seen in the drawing if it is missing.
constexpr int kSeen = 500; // points

/// Breaks stand only where they show as nothing: rebuilding takes them out.
std::string page() {
    return "<html><head><title>Tide tables</title>\r\n"
           "<link rel=\"stylesheet\" href=\"style/main.css\" >\r\n"
           "<style>.sea { background: url(pics/sea.png) }</style></head>\r\n"
           "<body background=\"pics/paper.png\" >\r\n"
           "<h1>Tides of the week</h1><p class=\"wave\" >High water 06:14 and 18:40</p>\r\n"
           "<img src=\"pics/harbour.png\" alt=\"harbour\" ><img src='pics/boats.png' >"
           "<img src=pics/gulls.png >\r\n"
           "<table><tr><td background=\"pics/sand.png\" width=\"200\" height=\"90\" >Sand</td>"
           "<td class=\"sea\" width=\"200\" height=\"90\" >Sea</td></tr></table>\r\n"
           "<input type=\"image\" src=\"pics/button.png\" >"
           "<iframe src=\"frame.html\" width=\"300\" height=\"120\" ></iframe>\r\n"
           "</body></html>\r\n";
}

std::string sheet() {
    return "h1 { color: navy; font-size: 40px; }\r\n"
           ".wave { background: url('../pics/wave.png'); height: 80px; width: 900px; }\r\n"
           "img { border: 3px solid green; }\r\n";
}

/// Like no other of the site: its colours come from its name.
std::string picture(std::string_view name) {
    QImage image(160, 100, QImage::Format_RGB32);
    const unsigned seed =
        qChecksum(QByteArrayView(name.data(), static_cast<qsizetype>(name.size())));
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixelColor(x, y,
                                QColor::fromHsv(static_cast<int>(seed % 360),
                                                80 + (x / 20 + y / 20) % 2 * 160, 120 + y));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

/// Item names below `kHome`, in the order of the site.
constexpr std::array<std::string_view, 7> kPictures = {
    "pics/sea.png",   "pics/paper.png", "pics/harbour.png", "pics/boats.png",
    "pics/gulls.png", "pics/sand.png",  "pics/button.png"};

SiteItem item(std::string_view name, std::string_view type, std::string body) {
    return {std::string(kHome).append(name), std::string(type), std::move(body)};
}

/// A frame brings its text and colours. Its pictures would be parts of another page, which is
/// rebuilt by itself, as the inset is.
WebSite drawnSite() {
    WebSite site = {
        item("index.html", "text/html", page()),
        item("frame.html", "text/html",
             "<html><body bgcolor=\"#FFE0A0\" ><h2>Moon</h2><table bgcolor=\"teal\" width=\"200\" >"
             "<tr><td>new</td></tr></table></body></html>\r\n"),
        item(kInset, "text/html",
             "<html><body bgcolor=\"#C0D0E0\" ><img src=\"pics/boats.png\" ></body></html>\r\n"),
        item("style/main.css", "text/css", sheet()),
        item(kSheetPicture, "image/png", picture(kSheetPicture))};
    for (const std::string_view name : kPictures)
        site.push_back(item(name, "image/png", picture(name)));
    return site;
}

std::string nameOf(const SiteItem &item) {
    return item.url.substr(kHome.size());
}

/// Of two drawings of the same size.
int differing(const QImage &one, const QImage &other) {
    int points = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            points += one.pixel(x, y) != other.pixel(x, y);
    return points;
}

} // namespace

class RebuiltPixelsTest : public QObject {
    Q_OBJECT

  private slots:
    void init() { m_folder = std::make_unique<test::TempFolder>(); }

    void eachPartIsSeenInTheDrawing_data();
    void eachPartIsSeenInTheDrawing();
    void theRebuiltPageLooksLikeItsSource_data() { addCaches(); }
    void theRebuiltPageLooksLikeItsSource();
    void aLaterSessionShowsTheSame_data() { addCaches(); }
    void aLaterSessionShowsTheSame();
    void aFrameByItselfLooksLikeItsSource_data() { addCaches(); }
    void aFrameByItselfLooksLikeItsSource();
    void onlyWhatWasClearedIsMissing_data() { addCaches(); }
    void onlyWhatWasClearedIsMissing();
    void lineBreaksAreGoneFromTheRebuiltPage();

  private:
    static void addCaches();
    /// The page of the site as it lay on the server, without one of its files.
    QImage drawSource(std::string_view page, std::string_view without = {});
    QImage drawRebuilt(ImportedSite &site, UrlId id) {
        return draw(site.temp / (sidOf(id) + ".NVR") / (sidOf(id) + ".htm"));
    }
    /// At its full size, which no scaling blurs; two drawings of the same points are the same
    /// bytes, so nothing needs to be allowed for.
    QImage draw(const fs::path &page);
    /// Style sheets of these bring no pictures: their records know no file name to look for.
    static bool hasSheetPicture(SiteCache cache) {
        return cache != SiteCache::safari && cache != SiteCache::opera;
    }
    QImage expected(SiteCache cache) {
        return drawSource("index.html", hasSheetPicture(cache) ? "" : kSheetPicture);
    }

    std::unique_ptr<test::TempFolder> m_folder;
    PageDrawEngine m_engine;
};

void RebuiltPixelsTest::addCaches() {
    QTest::addColumn<SiteCache>("cache");
    QTest::newRow("Internet Explorer") << SiteCache::internetExplorer;
    QTest::newRow("Firefox") << SiteCache::firefox;
    QTest::newRow("Chrome") << SiteCache::chrome;
    QTest::newRow("Safari") << SiteCache::safari;
    QTest::newRow("Opera") << SiteCache::opera;
}

QImage RebuiltPixelsTest::draw(const fs::path &page) {
    const fs::path target = m_folder->path() / "drawn.jpg";
    const Drawn drawn = m_engine.draw({DrawJob::Kind::page, page, target, 1024, 768},
                                      std::chrono::milliseconds(30'000));
    if (!drawn.done)
        qWarning("%s", drawn.failure.c_str());
    return drawn.done ? QImage(pathToQt(target)) : QImage();
}

QImage RebuiltPixelsTest::drawSource(std::string_view page, std::string_view without) {
    fs::remove_all(m_folder->path() / "source");
    for (const SiteItem &item : drawnSite())
        if (nameOf(item) != without)
            m_folder->write("source/" + nameOf(item), item.body);
    return draw(m_folder->path() / "source" / page);
}

void RebuiltPixelsTest::eachPartIsSeenInTheDrawing_data() {
    QTest::addColumn<std::string>("name");
    for (const SiteItem &item : drawnSite())
        if (nameOf(item) != "index.html" && nameOf(item) != kInset)
            QTest::newRow(nameOf(item).c_str()) << nameOf(item);
}

/// Otherwise equal drawings would prove nothing.
void RebuiltPixelsTest::eachPartIsSeenInTheDrawing() {
    QFETCH(std::string, name);
    const QImage whole = drawSource("index.html");
    QCOMPARE(whole.size(), QSize(1024, 768));
    QVERIFY(differing(whole, drawSource("index.html", name)) > kSeen);
}

void RebuiltPixelsTest::theRebuiltPageLooksLikeItsSource() {
    QFETCH(SiteCache, cache);
    ImportedSite site(drawnSite(), cache);
    const UrlId id = site.idOf(std::string(kHome) + "index.html");
    QVERIFY(site.rebuild(id));
    const QImage rebuilt = drawRebuilt(site, id);
    QCOMPARE(rebuilt.size(), QSize(1024, 768));
    QCOMPARE(differing(rebuilt, expected(cache)), 0);
}

void RebuiltPixelsTest::aLaterSessionShowsTheSame() {
    QFETCH(SiteCache, cache);
    ImportedSite site(drawnSite(), cache);
    const UrlId id = site.idOf(std::string(kHome) + "index.html");
    QVERIFY(site.rebuild(id));
    QVERIFY(site.harvestLater(id));
    QCOMPARE(differing(drawRebuilt(site, id), expected(cache)), 0);
}

void RebuiltPixelsTest::aFrameByItselfLooksLikeItsSource() {
    QFETCH(SiteCache, cache);
    ImportedSite site(drawnSite(), cache);
    const UrlId id = site.idOf(std::string(kHome).append(kInset));
    QVERIFY(site.rebuild(id));
    const QImage source = drawSource(kInset);
    QVERIFY(differing(source, drawSource(kInset, "pics/boats.png")) > kSeen);
    QCOMPARE(differing(drawRebuilt(site, id), source), 0);
}

void RebuiltPixelsTest::onlyWhatWasClearedIsMissing() {
    QFETCH(SiteCache, cache);
    WebSite all = drawnSite();
    const auto gone = std::find_if(all.begin(), all.end(), [](const SiteItem &item) {
        return nameOf(item) == "pics/harbour.png";
    });
    gone->isCleared = true;
    std::rotate(gone, gone + 1, all.end()); // the builders want it last
    ImportedSite site(all, cache);
    const UrlId id = site.idOf(std::string(kHome) + "index.html");
    QVERIFY(site.rebuild(id));
    fs::remove_all(m_folder->path() / "source");
    for (const SiteItem &item : drawnSite())
        if (nameOf(item) != "pics/harbour.png" &&
            (hasSheetPicture(cache) || nameOf(item) != kSheetPicture))
            m_folder->write("source/" + nameOf(item), item.body);
    QCOMPARE(differing(drawRebuilt(site, id), draw(m_folder->path() / "source/index.html")), 0);
}

/// Words that only a break held apart run together, in every cache alike.
void RebuiltPixelsTest::lineBreaksAreGoneFromTheRebuiltPage() {
    WebSite site = drawnSite();
    site.front().body = "<html><body>High\r\nwater<img src=\"pics/boats.png\" ></body></html>\r\n";
    ImportedSite imported(site, SiteCache::chrome);
    const UrlId id = imported.idOf(site.front().url);
    QVERIFY(imported.rebuild(id));
    m_folder->write("source/pics/boats.png", picture("pics/boats.png"));
    const fs::path joined = m_folder->write("source/index.html", "<html><body>Highwater<img "
                                                                 "src=\"pics/boats.png\" >");
    QCOMPARE(differing(drawRebuilt(imported, id), draw(joined)), 0);
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::RebuiltPixelsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "rebuilt_pixels_test.moc"
