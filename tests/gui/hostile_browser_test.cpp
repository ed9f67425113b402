#include "gui/CachedSite.h"
#include "gui/HostilePages.h"
#include "platform/qt/PageGuard.h"
#include "platform/qt/QtText.h"
#include "ui/table/TableTab.h"
#include "ui/viewers/BrowserPane.h"

#include <QEventLoop>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTabWidget>
#include <QWebEngineSettings>
#include <QWebEngineView>

#include <algorithm>
#include <array>

// The Browser pane on pages that want out, in a process that could reach the network.
namespace nv {

using namespace test;

class HostileBrowserTest : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();

    void unguardedPagesAreHeard_data();
    void unguardedPagesAreHeard();
    void noElementReachesTheNetwork_data();
    void noElementReachesTheNetwork();
    void noClickReachesTheNetwork_data();
    void noClickReachesTheNetwork();
    void noElementShowsAFileOfElsewhere_data();
    void noElementShowsAFileOfElsewhere();
    void theHostsNameIsNotShown();
    void whatLiesBesideThePageIsShown();
    void aCachedPageOfAllElementsReachesNothing();

  private:
    QWebEngineView &view() { return child<QWebEngineView>(*m_pane, "browserView"); }
    /// Shows a page "page/index.html" in the pane.
    void show(const std::string &html);
    /// What the pane shows once the engine has drawn it.
    QImage shot();
    bool isWhite();

    std::unique_ptr<TempFolder> m_folder;
    std::unique_ptr<Listener> m_listener;
    std::unique_ptr<BrowserPane> m_pane;
};

namespace {

constexpr int kReaching = 150; ///< milliseconds in which a connection would have been made
constexpr int kDrawing = 150;  ///< milliseconds; the picture on screen is behind the page

/// An event loop of its own: the waiting of tests sleeps between events, which slows the engine
/// down by ten times.
void pause(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

bool isRed(QRgb point) {
    return qRed(point) > 200 && qGreen(point) < 60 && qBlue(point) < 60;
}

bool holds(const QImage &image, bool (*wanted)(QRgb)) {
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3)
            if (wanted(image.pixel(x, y)))
                return true;
    return false;
}

/// One page of all, but for what ends a page before its other elements are asked for.
std::string everything() {
    constexpr std::array<std::string_view, 3> kEnds = {"frameset", "policy", "refresh"};
    std::string all = "<html><body>Good morning";
    for (const HostileElement &element : kHostileElements)
        if (std::find(kEnds.begin(), kEnds.end(), element.name) == kEnds.end())
            all += element.html;
    return all + "</body></html> ";
}

void addElements() {
    QTest::addColumn<std::string>("html");
    QTest::addColumn<bool>("isCounted");
    for (const HostileElement &element : kHostileElements)
        QTest::newRow(element.name)
            << std::string(element.html) << (element.refusal == Refusal::counted);
}

} // namespace

void HostileBrowserTest::initTestCase() {
    m_pane = std::make_unique<BrowserPane>();
    m_pane->resize(800, 600);
    m_pane->show();
}

void HostileBrowserTest::cleanupTestCase() {
    m_pane.reset();
}

void HostileBrowserTest::init() {
    m_folder = std::make_unique<TempFolder>();
    m_folder->write("page/index.html", "");
    m_listener = std::make_unique<Listener>();
}

void HostileBrowserTest::cleanup() {
    m_pane->clear();
}

void HostileBrowserTest::show(const std::string &html) {
    QSignalSpy shown(m_pane.get(), &BrowserPane::pageShown);
    m_pane->showPage(m_folder->write("page/index.html", m_listener->in(html)), {});
    QVERIFY(shown.wait());
}

QImage HostileBrowserTest::shot() {
    pause(kDrawing);
    return view().grab().toImage();
}

bool HostileBrowserTest::isWhite() {
    return !holds(shot(), [](QRgb point) { return qGray(point) < 250; });
}

void HostileBrowserTest::unguardedPagesAreHeard_data() {
    QTest::addColumn<std::string>("html");
    // Not each of them works in today's engines, and old ones may come back.
    for (const HostileElement &element : kHostileElements)
        for (const char *name : {"img", "css import", "iframe", "object", "video", "track",
                                 "preload", "script", "form", "handlers", "remote script"})
            if (element.name == std::string(name))
                QTest::newRow(name) << std::string(element.html);
}

/// Otherwise silence would prove nothing.
void HostileBrowserTest::unguardedPagesAreHeard() {
    QFETCH(std::string, html);
    QWebEngineProfile profile;
    QWebEnginePage page(&profile);
    page.settings()->setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, true);
    page.settings()->setAttribute(QWebEngineSettings::PlaybackRequiresUserGesture, false);
    page.load(
        QUrl::fromLocalFile(pathToQt(m_folder->write("page/index.html", m_listener->in(html)))));
    QVERIFY(waitFor([this] { return m_listener->heard > 0; }));
}

void HostileBrowserTest::noElementReachesTheNetwork_data() {
    addElements();
}

void HostileBrowserTest::noElementReachesTheNetwork() {
    QFETCH(std::string, html);
    QFETCH(bool, isCounted);
    show(html);
    pause(kReaching);
    QCOMPARE(m_listener->heard, 0);
    if (!isCounted)
        return;
    QVERIFY(waitFor([this] { return m_pane->refused() > 0; }));
    QVERIFY(waitFor([this] {
        return child<QLabel>(*m_pane, "labRefused").text().contains(QStringLiteral(" refused: "));
    }));
}

void HostileBrowserTest::noClickReachesTheNetwork_data() {
    QTest::addColumn<std::string>("html");
    const auto add = [](const char *name, const std::string &attributes) {
        QTest::newRow(name) << "<body style='margin:0'><a style='display:block;height:400px;"
                               "font-size:90px' " +
                                   attributes + ">a</a>";
    };
    add("link", "href='@/a'");
    add("ping", "href='#here' ping='@/a'");
    add("window", "target=_blank href='@/a'");
    add("download", "download href='@/a'");
    add("javascript", "href=\"javascript:location='@/a'\"");
    add("data", "href=\"data:text/html,<img src='@/a'>\"");
    add("file", "href='file:///etc/hostname'");
    add("ftp", "href='ftp://127.0.0.1/a'");
    add("handler", "onclick=\"fetch('@/a')\" href='#here'");
    QTest::newRow("button") << std::string(
        "<body style='margin:0'><form action='@/a' method=post><button formaction='@/b' "
        "style='width:600px;height:400px'>a</button></form>");
}

void HostileBrowserTest::noClickReachesTheNetwork() {
    QFETCH(std::string, html);
    show(html);
    const QString before = child<QLineEdit>(*m_pane, "txtLocation").text();
    pause(kDrawing); // the engine takes clicks on what is drawn
    QTest::mouseClick(view().focusProxy(), Qt::LeftButton, {}, QPoint(40, 40));
    pause(kReaching);
    QCOMPARE(m_listener->heard, 0);
    QCOMPARE(child<QLineEdit>(*m_pane, "txtLocation").text(), before);
}

void HostileBrowserTest::noElementShowsAFileOfElsewhere_data() {
    QTest::addColumn<std::string>("html");
    for (const char *element : kOutsideElements)
        QTest::newRow(element) << "<body style='margin:0'>" + std::string(element);
}

void HostileBrowserTest::noElementShowsAFileOfElsewhere() {
    QFETCH(std::string, html);
    m_folder->write("red.html", "<body bgcolor=red>");
    m_folder->write("red.css", "body{background:red}");
    m_folder->write("red.gif", kRedGif);
    fs::create_symlink("../red.html", m_folder->path() / "page/link.html");
    show(html);
    QVERIFY(!holds(shot(), isRed));
    QVERIFY(m_pane->refused() > 0);
}

void HostileBrowserTest::theHostsNameIsNotShown() {
    show("<body style='margin:0'><iframe src='file:///etc/hostname' width=800 height=500 "
         "frameborder=0></iframe>");
    QVERIFY(isWhite());
    QCOMPARE(m_pane->refused(), 1U);
}

/// The same that is refused above, where it may be shown.
void HostileBrowserTest::whatLiesBesideThePageIsShown() {
    m_folder->write("page/red.html", "<body bgcolor=red>");
    show("<body style='margin:0'><iframe src='red.html' width=1024 height=768></iframe>");
    QVERIFY(holds(shot(), isRed));
    QCOMPARE(m_pane->refused(), 0U);
}

/// The whole way: a page of a suspect's cache, shown as it was kept and then rebuilt.
void HostileBrowserTest::aCachedPageOfAllElementsReachesNothing() {
    Desk desk;
    MainForm form(desk.program, desk.dialogs);
    form.resize(1200, 900);
    form.show();
    CachedSite(desk.folder.path() / "evidence")
        .add("http://host/page.html", "page[1].htm", m_listener->in(everything()))
        .open(desk, form);
    auto &pane = child<BrowserPane>(form, "BrowserPane");
    child<TableTab>(form, "TableTab").grid().setCurrentUrl(UrlId{1});
    child<QTabWidget>(form, "viewerTabs").setCurrentWidget(&pane);
    QTRY_VERIFY2(pane.refused() > 20, qPrintable(QString::number(pane.refused())));
    pause(kReaching);
    trigger(form, "actRebuild");
    QVERIFY(waitFor([&pane] {
        return child<QLabel>(pane, "labBrowserKind").text() == QStringLiteral("Rebuilt page");
    }));
    QTRY_VERIFY2(pane.refused() > 20, qPrintable(QString::number(pane.refused())));
    pause(3 * kReaching);
    QCOMPARE(m_listener->heard, 0);
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    // Without the lock on the network of these settings the guard stands alone.
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--disable-gpu --disable-dev-shm-usage");
    QApplication application(argc, argv);
    nv::HostileBrowserTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "hostile_browser_test.moc"
