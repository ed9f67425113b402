#include "base/Text.h"
#include "platform/qt/PageDrawEngine.h"
#include "platform/qt/PageGuard.h"
#include "platform/qt/QtText.h"
#include "support/TempFolder.h"

#include <QApplication>
#include <QImage>
#include <QTcpServer>
#include <QTest>
#include <fmt/format.h>

#include <sys/stat.h>

namespace nv {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

/// Tells every connection that anything tries to make.
class Listener {
  public:
    Listener() {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            ++heard;
            delete m_server.nextPendingConnection();
        });
        m_server.listen(QHostAddress::LocalHost);
    }
    /// `text` with the listener's address for each "@", and "@" for each "%".
    std::string in(const std::string &text) const {
        return replaceAll(
            replaceAll(text, "@", fmt::format("http://127.0.0.1:{}", m_server.serverPort())), "%",
            "@");
    }

    int heard = 0;

  private:
    QTcpServer m_server;
};

} // namespace

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

void PageGuardTest::noElementReachesTheNetwork_data() {
    QTest::addColumn<std::string>("html");
    QTest::addColumn<bool>("isCounted"); // hints and scripts don't even become requests
    const auto add = [](const char *name, const char *html, bool isCounted = true) {
        QTest::newRow(name) << std::string(html) << isCounted;
    };
    add("img", "<img src='@/a.gif'>");
    add("srcset", "<img srcset='@/a.gif 1x, @/b.gif 2x'>");
    add("background", "<body background='@/a.gif'>");
    add("css import", "<style>%import url(@/a.css); %import '@/b.css';</style>");
    add("css link", "<link rel=stylesheet href='@/a.css'>");
    add("css image", "<div style='background:url(@/a.gif)'>a</div>");
    add("font", "<style>%font-face{font-family:f;src:url(@/f.woff)}p{font-family:f}</style><p>a");
    add("base", "<base href='@/'><img src='a.gif'>");
    add("iframe", "<iframe src='@/a.html'></iframe>");
    add("srcdoc", "<iframe srcdoc=\"<img src='@/a.gif'>\"></iframe>");
    add("data frame", "<iframe src=\"data:text/html,<img src='@/a.gif'>\"></iframe>");
    add("frameset", "<frameset><frame src='@/a.html'></frameset>");
    add("object", "<object data='@/a.html'></object>");
    add("svg image", "<svg><image href='@/a.svg' width=9 height=9 /></svg>");
    add("svg file", "<svg><use href='@/a.svg#x' /></svg>");
    add("video", "<video src='@/a.mp4' autoplay poster='@/a.gif'></video>");
    add("input", "<input type=image src='@/a.gif'>");
    add("refresh", "<meta http-equiv=refresh content='0;url=@/a.html'>");
    add("embed", "<embed src='@/a.swf'>", false);
    add("icon", "<link rel=icon href='@/favicon.ico'>", false);
    add("dns-prefetch", "<link rel=dns-prefetch href='@/'>", false);
    add("preconnect", "<link rel=preconnect href='@/'><link rel=preconnect href='@' crossorigin>",
        false);
    add("prefetch", "<link rel=prefetch href='@/a.html'><link rel=preload as=image href='@/a'>",
        false);
    add("prerender", "<link rel=prerender href='@/a.html'><link rel=next href='@/b.html'>", false);
    add("manifest", "<link rel=manifest href='@/a.json'>", false);
    add("ping", "<a ping='@/' href='@/a.html'>a</a>", false);
    add("script",
        "<script>new WebSocket('ws:'+'@'.slice(5)); fetch('@/'); "
        "new Image().src='@/';location='@/'</script>",
        false);
    add("handlers", "<body onload=\"fetch('@/')\"><img src=x onerror=\"fetch('@/')\">", false);
    add("remote script", "<script src='@/a.js'></script>", false);
    add("policy",
        "<meta http-equiv=Content-Security-Policy "
        "content=\"img-src 'none'; report-uri @/\"><img src='a.gif'>",
        false);
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
    const char *const body = "<body style='margin:0'>";
    for (const char *element :
         {"<iframe src='../red.html' width=1024 height=768 frameborder=0></iframe>",
          "<object data='../red.html' width=1024 height=768></object>",
          "<embed src='../red.html' width=1024 height=768>",
          "<iframe src='link.html' width=1024 height=768 frameborder=0></iframe>",
          "<link rel=stylesheet href='../red.css'><p>a",
          "<meta http-equiv=refresh content='0;url=../red.html'>",
          "<base href='../'><iframe src='red.html' width=1024 height=768 frameborder=0></iframe>"})
        QTest::newRow(element) << body + std::string(element);
}

void PageGuardTest::noElementShowsAFileOfElsewhere() {
    QFETCH(std::string, html);
    m_folder->write("red.html", "<body bgcolor=red>");
    m_folder->write("red.css", "body{background:red}");
    m_folder->write("page/index.html", "");
    fs::create_symlink("../red.html", m_folder->path() / "page/link.html");
    const Drawn drawn = draw(html);
    QVERIFY2(drawn.done, drawn.failure.c_str());
    QVERIFY(isWhite());
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
    QApplication application(argc, argv);
    nv::PageGuardTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "page_guard_test.moc"
