#include "base/Files.h"
#include "gui/HostilePages.h"
#include "platform/qt/PageGuard.h"
#include "platform/qt/QtText.h"
#include "reports/pages/PartsInside.h"
#include "reports/pages/SafePage.h"
#include "support/TempFolder.h"

#ifndef Q_MOC_RUN // which takes quotes within raw texts for ends of texts
#include "support/HostileWays.h"
#endif

#include <QApplication>
#include <QEventLoop>
#include <QTest>
#include <QTimer>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineSettings>
#include <QWebEngineView>

// Pages that leave the program, in a browser that lets everything through: what they hold is all
// that keeps them from the network and from files of elsewhere.
namespace nv {

using namespace test;

class GuardedPagesTest : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase();
    void cleanupTestCase();
    void theWaysAreWays();
    void nothingIsAskedFor_data() { addPages(); }
    void nothingIsAskedFor();
    void nothingOfElsewhereIsShown_data() { addPages(); }
    void nothingOfElsewhereIsShown();
    void whatLiesBesideThePageIsShown();

  private:
    static void addPages();
    enum class Left { unguarded, asFolder, asFile };
    /// Shows "page/0000001.htm" in the browser, as it left the program.
    void show(const TempFolder &folder, const std::string &html, Left how);
    void showWithRedParts(const std::string &html, Left how);
    bool showsRed();

    std::unique_ptr<QWebEngineProfile> m_profile;
    std::unique_ptr<QWebEngineView> m_view;
};

namespace {

constexpr int kReaching = 100; ///< milliseconds in which a connection would have been made

void pause(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

std::string withAddress(const std::string &html, const std::string &address) {
    return replaceAll(replaceAll(html, "@", address), "%", "@");
}

void writeRedFiles(const TempFolder &folder, const std::string &prefix) {
    folder.write(prefix + "red.gif", kRedGif);
    folder.write(prefix + "red.html", "<body bgcolor=red>");
    folder.write(prefix + "red.css", "*{background:red}");
    folder.write(prefix + "red.svg",
                 "<svg xmlns='http://www.w3.org/2000/svg'><rect id='a' fill='red' width='99' "
                 "height='99'/></svg>");
}

} // namespace

void GuardedPagesTest::initTestCase() {
    m_profile = std::make_unique<QWebEngineProfile>();
    m_view = std::make_unique<QWebEngineView>();
    m_view->setPage(new QWebEnginePage(m_profile.get(), m_view.get()));
    for (const auto attribute : {QWebEngineSettings::LocalContentCanAccessRemoteUrls,
                                 QWebEngineSettings::LocalContentCanAccessFileUrls})
        m_view->settings()->setAttribute(attribute, true);
    m_view->settings()->setAttribute(QWebEngineSettings::PlaybackRequiresUserGesture, false);
    m_view->resize(400, 300);
    m_view->show();
}

void GuardedPagesTest::cleanupTestCase() {
    m_view.reset();
    m_profile.reset();
}

void GuardedPagesTest::addPages() {
    QTest::addColumn<std::string>("html");
    for (const HostileWay &way : kHostileWays)
        QTest::newRow(std::string(way.name).c_str()) << std::string(way.html);
    for (const HostileElement &element : kHostileElements)
        QTest::newRow((std::string("element ") + element.name).c_str())
            << std::string(element.html);
}

void GuardedPagesTest::show(const TempFolder &folder, const std::string &html, Left how) {
    auto page = folder.write("page/0000001.htm", "<body style='margin:0'>" + html);
    if (how != Left::unguarded)
        guardFolder(page);
    if (how == Left::asFile)
        page = folder.write("file/0000001.html", singlePage(page).value());
    QEventLoop loop;
    connect(m_view->page(), &QWebEnginePage::loadFinished, &loop, &QEventLoop::quit);
    QTimer::singleShot(2000, &loop, &QEventLoop::quit);
    m_view->load(QUrl::fromLocalFile(pathToQt(page)));
    loop.exec();
    pause(kReaching);
}

bool GuardedPagesTest::showsRed() {
    const QImage image = m_view->grab().toImage();
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3)
            if (const QRgb point = image.pixel(x, y);
                qRed(point) > 200 && qGreen(point) < 60 && qBlue(point) < 60)
                return true;
    return false;
}

/// Otherwise silence would prove nothing. Not each works in today's engines, and old ones may come
/// back.
void GuardedPagesTest::theWaysAreWays() {
    int heard = 0;
    for (const HostileWay &way : kHostileWays) {
        const TempFolder folder;
        const Listener listener;
        show(folder, listener.in(std::string(way.html)), Left::unguarded);
        heard += listener.heard > 0 ? 1 : 0;
    }
    qInfo("%d of %zu ways reach the listener unguarded", heard, kHostileWays.size());
    QVERIFY(heard >= 40);
}

void GuardedPagesTest::nothingIsAskedFor() {
    QFETCH(std::string, html);
    for (const Left how : {Left::asFolder, Left::asFile}) {
        const TempFolder folder;
        const Listener listener;
        show(folder, listener.in(html), how);
        QCOMPARE(listener.heard, 0);
    }
}

void GuardedPagesTest::nothingOfElsewhereIsShown() {
    QFETCH(std::string, html);
    for (const Left how : {Left::asFolder, Left::asFile}) {
        const TempFolder folder;
        writeRedFiles(folder, "");
        show(folder, withAddress(html, ".."), how);
        QVERIFY(!showsRed());
    }
}

void GuardedPagesTest::showWithRedParts(const std::string &html, Left how) {
    const TempFolder folder;
    folder.write("page/0000002.gif", kRedGif);
    folder.write("page/0000003.css", "p{background:url(0000002.gif)}");
    folder.write("page/0000004.htm", "<body bgcolor=red>");
    folder.write("page/0000005.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='99' "
                                     "height='99'><rect fill='red' width='99' height='99'/></svg>");
    folder.write("page/0000006.htm", "<iframe src=0000007.htm></iframe>");
    folder.write("page/0000007.htm", "<img src=0000002.gif width=99 height=99>");
    folder.write("page/0000008.css", "@import '0000003.css';");
    show(folder, html, how);
}

void GuardedPagesTest::whatLiesBesideThePageIsShown() {
    for (const char *html :
         {"<img src=0000002.gif width=99 height=99>", "<body background=0000002.gif>",
          "<link rel=stylesheet href=0000003.css><p>a",
          "<style>p{background:u\\72l(0000002.gif)}</style><p>a",
          "<iframe src=0000004.htm></iframe>", "<img src=0000005.svg>",
          "<iframe src='data:text/html,<body bgcolor=red>'></iframe>",
          "<style>@import '0000003.css';</style><p>a", "<iframe src=0000006.htm></iframe>",
          "<link rel=stylesheet href=0000008.css><p>a",
          "<img srcset='0000002.gif 1x' width=99 height=99>",
          "<picture><source srcset=0000002.gif><img width=99 height=99></picture>"})
        for (const Left how : {Left::asFolder, Left::asFile}) {
            showWithRedParts(html, how);
            QVERIFY2(showsRed(), html);
        }
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    // An ordinary browser, but for what it draws with.
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--disable-gpu --disable-dev-shm-usage");
    QApplication application(argc, argv);
    nv::GuardedPagesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "guarded_pages_test.moc"
