#include "gui/HostilePages.h"
#include "platform/qt/PageDrawEngine.h"
#include "platform/qt/PageGuard.h"
#include "platform/qt/QtText.h"
#include "support/TempFolder.h"

#include <QApplication>
#include <QImage>
#include <QTest>
#include <QWebEngineSettings>

#include <sys/stat.h>

namespace nv {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

using test::HostileElement;
using test::kHostileElements;
using test::kOutsideElements;
using test::kRedGif;
using test::Listener;
using test::Refusal;

/// The guard by itself, in a process that could reach the network.
class PageGuardTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        m_folder = std::make_unique<test::TempFolder>();
        m_listener = std::make_unique<Listener>();
    }
    void nothingIsLetThroughBeforeThereIsAPage();
    void onlyFilesOfThePagesFolderAreLetThrough();
    void linksOfTheFileSystemLeadNowhere();
    void aPipeIsNoFile();
    void theListenerHearsAnUnguardedPage();
    void noElementReachesTheNetwork_data();
    void noElementReachesTheNetwork();
    void noElementShowsAFileOfElsewhere_data();
    void noElementShowsAFileOfElsewhere();
    void scriptDoesNotRun();
    void filesBesideThePageAndDataAreShown();

  private:
    /// Draws a page "page/index.html" into the image.
    Drawn draw(const std::string &html) {
        const fs::path page = m_folder->write("page/index.html", m_listener->in(html));
        const fs::path target = m_folder->path() / "drawn.jpg";
        PageDrawEngine engine;
        const Drawn drawn = engine.draw({DrawJob::Kind::page, page, target, 320, 240}, 20s);
        m_image = QImage(pathToQt(target));
        return drawn;
    }
    QUrl url(const char *name) const {
        return QUrl::fromLocalFile(pathToQt(m_folder->path() / name));
    }
    bool isWhite() const { return qGray(m_image.pixel(160, 120)) > 250; }

    std::unique_ptr<test::TempFolder> m_folder;
    std::unique_ptr<Listener> m_listener;
    QImage m_image;
};

void PageGuardTest::nothingIsLetThroughBeforeThereIsAPage() {
    m_folder->write("page/index.html", "");
    QVERIFY(!PageGuard().lets(url("page/index.html")));
}

void PageGuardTest::onlyFilesOfThePagesFolderAreLetThrough() {
    PageGuard guard;
    m_folder->write("page-2/other.gif", "");
    m_folder->write("outside.gif", "");
    m_folder->write("page/parts/caf\xE9 #1.gif", "");
    m_folder->write("page/parts/a.gif", "");
    guard.protect(m_folder->write("page/index.html", ""));
    QVERIFY(guard.lets(url("page/index.html")));
    QVERIFY(guard.lets(url("page/parts/a.gif")));
    QVERIFY(guard.lets(QUrl(url("page/parts").toString() + QStringLiteral("/caf%E9%20%231.gif"))));
    QVERIFY(guard.lets(QUrl(QStringLiteral("data:text/plain,a"))));
    for (const char *name : {"page", "page/parts", "page-2/other.gif", "outside.gif",
                             "page/../outside.gif", "page/none.gif"})
        QVERIFY2(!guard.lets(url(name)), name);
    for (const char *text : {"file:///etc/hostname", "file:///", "http://127.0.0.1/", "qrc:/a",
                             "ftp://a/b", "ws://a/", "blob:http://a/b", "chrome://version", ""})
        QVERIFY2(!guard.lets(QUrl(QString::fromLatin1(text))), text);
    QUrl onServer = url("page/parts/a.gif");
    onServer.setHost(QStringLiteral("server"));
    QVERIFY(!guard.lets(onServer));
}

void PageGuardTest::linksOfTheFileSystemLeadNowhere() {
    PageGuard guard;
    m_folder->write("page/index.html", "");
    fs::create_symlink("/etc/hostname", m_folder->path() / "page/link.html");
    fs::create_directory_symlink("/etc", m_folder->path() / "page/links");
    fs::create_directory_symlink(m_folder->path() / "page", m_folder->path() / "alias");
    guard.protect(m_folder->path() / "alias/index.html");
    QVERIFY(guard.lets(url("alias/index.html")));
    QVERIFY(guard.lets(url("page/index.html")));
    QVERIFY(!guard.lets(url("page/link.html")));
    QVERIFY(!guard.lets(url("page/links/hostname")));
}

void PageGuardTest::aPipeIsNoFile() {
    PageGuard guard;
    guard.protect(m_folder->write("page/index.html", ""));
    QCOMPARE(::mkfifo((m_folder->path() / "page/pipe.gif").c_str(), 0600), 0);
    QVERIFY(!guard.lets(url("page/pipe.gif")));
}

void PageGuardTest::theListenerHearsAnUnguardedPage() {
    QWebEngineProfile profile;
    QWebEnginePage page(&profile);
    page.settings()->setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, true);
    page.load(QUrl::fromLocalFile(
        pathToQt(m_folder->write("page/index.html", m_listener->in("<img src='@/a.gif'>")))));
    QTRY_VERIFY(m_listener->heard > 0);
}

void PageGuardTest::noElementReachesTheNetwork_data() {
    QTest::addColumn<std::string>("html");
    QTest::addColumn<bool>("isCounted");
    for (const HostileElement &element : kHostileElements)
        QTest::newRow(element.name)
            << std::string(element.html) << (element.refusal == Refusal::counted);
}

void PageGuardTest::noElementReachesTheNetwork() {
    QFETCH(std::string, html);
    QFETCH(bool, isCounted);
    const Drawn drawn = draw(html);
    QVERIFY2(drawn.done, drawn.failure.c_str());
    QTest::qWait(200);
    QCOMPARE(m_listener->heard, 0);
    if (isCounted)
        QVERIFY(drawn.refusedRequests > 0);
}

void PageGuardTest::noElementShowsAFileOfElsewhere_data() {
    QTest::addColumn<std::string>("html");
    for (const char *element : kOutsideElements)
        QTest::newRow(element) << "<body style='margin:0'>" + std::string(element);
}

void PageGuardTest::noElementShowsAFileOfElsewhere() {
    QFETCH(std::string, html);
    m_folder->write("red.html", "<body bgcolor=red>");
    m_folder->write("red.css", "body{background:red}");
    m_folder->write("red.gif", kRedGif);
    m_folder->write("page/index.html", "");
    fs::create_symlink("../red.html", m_folder->path() / "page/link.html");
    const Drawn drawn = draw(html);
    QVERIFY2(drawn.done, drawn.failure.c_str());
    // A picture that is refused leaves the sign of a broken one.
    for (int x = 10; x < 320; x += 10)
        QVERIFY(qGreen(m_image.pixel(x, 120)) > 60);
    QVERIFY(drawn.refusedRequests > 0);
}

void PageGuardTest::scriptDoesNotRun() {
    QVERIFY(draw("<body><script>document.body.bgColor='red'</script>").done);
    QVERIFY(isWhite());
}

void PageGuardTest::filesBesideThePageAndDataAreShown() {
    m_folder->write("page/parts/green.html", "<body bgcolor=lime>");
    const Drawn framed = draw("<body style='margin:0'><iframe src='parts/green.html' width=1024 "
                              "height=768 frameborder=0></iframe>");
    QVERIFY(framed.done);
    QCOMPARE(framed.refusedRequests, 0U);
    QVERIFY(qGreen(m_image.pixel(160, 120)) > 240 && qRed(m_image.pixel(160, 120)) < 20);
    const Drawn styled =
        draw("<link rel=stylesheet href=\"data:text/css,body{background:blue}\"><p>a");
    QCOMPARE(styled.refusedRequests, 0U);
    QVERIFY(qBlue(m_image.pixel(160, 120)) > 240 && qRed(m_image.pixel(160, 120)) < 20);
}

} // namespace nv

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    nv::prepareWebEngine();
    // Without the lock on the network of these settings the guard stands alone.
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--disable-gpu --disable-dev-shm-usage");
    QApplication application(argc, argv);
    nv::PageGuardTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "page_guard_test.moc"
