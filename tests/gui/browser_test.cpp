#include "gui/CachedSite.h"
#include "gui/HostilePages.h"
#include "platform/qt/PageGuard.h"
#include "platform/qt/QtText.h"
#include "ui/table/TableTab.h"
#include "ui/viewers/BrowserPane.h"
#include "ui/widgets/NoRow.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>
#include <QWebEngineView>
#include <SQLiteCpp/Database.h>

// The pane that shows cached pages, beside a listener that nothing may reach.
namespace nv {

using namespace test;

class BrowserTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void theCachedPageIsShownFromAFolderOfItsOwn();
    void requestsOutsideOfTheFolderAreRefusedAndCounted();
    void aClickOnALinkIsRefusedAndTold();
    void aLinkThatOpensAWindowIsTold();
    void linksWithinTheFolderOpenAndLeadBack();
    void theRebuiltPageIsShownWithItsParts();
    void anEarlierRunsRebuildIsBroughtBack();
    void aRebuildThatCantBeBroughtBackIsTold();
    void whatIsNoPageIsNotShown();
    void closingTheProjectBlanksThePane();
    void theLocationIsReadOnlyAndReachedByKeys();

  private:
    BrowserPane &pane() { return child<BrowserPane>(*m_form, "BrowserPane"); }
    QWebEngineView &view() { return child<QWebEngineView>(pane(), "browserView"); }
    QString label(const char *name) { return child<QLabel>(pane(), name).text(); }
    QString location() { return child<QLineEdit>(pane(), "txtLocation").text(); }
    /// Brings the record up in the pane.
    void show(int id);
    QString pageText();
    /// Clicks into the page's upper left corner, where its link is.
    void clickLink();
    fs::path tempFile(const char *name) { return m_desk->program.state.tempFolderPath / name; }

    std::unique_ptr<Listener> m_listener;
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void BrowserTest::init() {
    m_listener = std::make_unique<Listener>();
    const std::string live = m_listener->in("@");
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1200, 900);
    m_form->show();
    const std::string big = "display:block;height:400px;font-size:90px";
    CachedSite(m_desk->folder.path() / "evidence")
        .add("http://host/page.html", "page[1].htm",
             "<html><body>Good morning<img src=\"pic/logo.gif\" ><img src=\"" + live +
                 "/a.gif\" ></body></html> ")
        .add("http://host/pic/logo.gif", "logo[1].gif", "GIF89a")
        .add("http://host/link.html", "link[1].htm",
             "<html><body style='margin:0'><a style='" + big + "' href=\"" + live +
                 "/next\">live</a><link rel=stylesheet href=\"" + live +
                 "/b.css\"><script>document.body.innerHTML='script ran'</script></body></html> ")
        .add("http://host/window.html", "window[1].htm",
             "<html><body style='margin:0'><a target=_blank style='" + big + "' href=\"" + live +
                 "/next\">live</a></body></html> ")
        .add("http://host/part.html", "part[1].htm",
             "<html><body style='margin:0'><a style='" + big +
                 "' href=\"0000002.gif\">part</a><img src=\"pic/logo.gif\" ></body></html> ")
        .add("http://host/a.bin", "a[1].bin", std::string("\x01\x02\x00\x03", 4))
        .open(*m_desk, *m_form);
}

void BrowserTest::cleanup() {
    QCOMPARE(m_listener->heard, 0);
    m_form.reset();
    m_desk.reset();
}

void BrowserTest::show(int id) {
    QSignalSpy shown(&pane(), &BrowserPane::pageShown);
    child<TableTab>(*m_form, "TableTab").grid().setCurrentUrl(UrlId{id});
    child<QTabWidget>(*m_form, "viewerTabs").setCurrentWidget(&pane());
    waitFor([&] {
        return (shown.count() > 0 && !location().isEmpty()) ||
               label("labBrowserReason") != noRowText();
    });
}

QString BrowserTest::pageText() {
    std::optional<QString> text;
    view().page()->toPlainText([&text](const QString &all) { text = all; });
    waitFor([&text] { return text.has_value(); });
    return text.value_or(QString()).trimmed();
}

void BrowserTest::clickLink() {
    QTest::qWait(300); // the engine draws before it takes clicks
    QWidget *target = view().focusProxy();
    QVERIFY(target);
    QTest::mouseClick(target, Qt::LeftButton, {}, QPoint(40, 40));
}

void BrowserTest::theCachedPageIsShownFromAFolderOfItsOwn() {
    show(1);
    QCOMPARE(pageText(), QStringLiteral("Good morning"));
    QCOMPARE(label("labBrowserKind"), QStringLiteral("Cached content"));
    QCOMPARE(location(), QStringLiteral("http://host/page.html")); // the record's
    QCOMPARE(view().url().toLocalFile(), pathToQt(tempFile("0000001.VIEW") / "0000001.htm"));
}

void BrowserTest::requestsOutsideOfTheFolderAreRefusedAndCounted() {
    show(1);
    QVERIFY(waitFor([this] { return pane().refused() == 2; }));
    QVERIFY(waitFor([this] {
        return label("labRefused") == QStringLiteral("2 requests refused: this page asked for "
                                                     "things outside of its folder.");
    }));
}

void BrowserTest::aClickOnALinkIsRefusedAndTold() {
    show(3);
    QCOMPARE(pageText(), QStringLiteral("live")); // and no script has run
    const QString before = location();
    clickLink();
    const QString blocked = toQt(m_listener->in("URL BLOCKED: @/next"));
    QVERIFY(waitFor([&] { return child<QLabel>(*m_form, "labNotice").text() == blocked; }));
    QCOMPARE(location(), before);
    QCOMPARE(pageText(), QStringLiteral("live"));
}

void BrowserTest::aLinkThatOpensAWindowIsTold() {
    show(4);
    clickLink();
    QVERIFY(waitFor([this] {
        return child<QLabel>(*m_form, "labNotice").text().startsWith(QStringLiteral("URL BLOCKED"));
    }));
    QVERIFY(pane().refused() > 0);
}

void BrowserTest::linksWithinTheFolderOpenAndLeadBack() {
    child<TableTab>(*m_form, "TableTab").grid().setCurrentUrl(UrlId{5});
    trigger(*m_form, "actRebuild");
    show(5);
    const QString first = location();
    QVERIFY(!child<QPushButton>(pane(), "btnBrowserBack").isEnabled());
    clickLink();
    QVERIFY(
        waitFor([&] { return location() == QStringLiteral("0000002.gif, a file of the page"); }));
    QVERIFY(waitFor([this] { return child<QPushButton>(pane(), "btnBrowserBack").isEnabled(); }));
    QTest::mouseClick(&child<QPushButton>(pane(), "btnBrowserBack"), Qt::LeftButton);
    QVERIFY(waitFor([&] { return location() == first; }));
}

void BrowserTest::theRebuiltPageIsShownWithItsParts() {
    show(1);
    trigger(*m_form, "actRebuild");
    QVERIFY(waitFor([this] { return label("labBrowserKind") == QStringLiteral("Rebuilt page"); }));
    QVERIFY(waitFor([this] {
        return view().url().toLocalFile() == pathToQt(tempFile("0000001.NVR") / "0000001.htm");
    }));
    QVERIFY(waitFor([this] { return pageText() == QStringLiteral("Good morning"); }));
}

void BrowserTest::anEarlierRunsRebuildIsBroughtBack() {
    child<TableTab>(*m_form, "TableTab").grid().setCurrentUrl(UrlId{1});
    trigger(*m_form, "actRebuild");
    fs::remove_all(tempFile("0000001.NVR"));
    show(1);
    QCOMPARE(label("labBrowserKind"), QStringLiteral("Rebuilt page"));
    QVERIFY(fs::exists(tempFile("0000001.NVR") / "0000002.gif"));
}

void BrowserTest::aRebuildThatCantBeBroughtBackIsTold() {
    child<TableTab>(*m_form, "TableTab").grid().setCurrentUrl(UrlId{1});
    trigger(*m_form, "actRebuild");
    fs::remove_all(tempFile("0000001.NVR"));
    m_desk->program.state.projectDB.connection().exec(
        "UPDATE URLs SET IngredientIDs = '40000|a.gif|0040000.gif|' WHERE URL_ID = 1");
    m_desk->program.state.wideRecordIds = false;
    show(1);
    QCOMPARE(label("labBrowserKind"), QStringLiteral("Cached content"));
    QVERIFY(child<QLabel>(*m_form, "labNotice")
                .text()
                .contains(QStringLiteral("[BEYOND] WideRecordIds")));
    QVERIFY(!fs::exists(tempFile("0000001.NVR")));
}

void BrowserTest::whatIsNoPageIsNotShown() {
    show(6);
    QCOMPARE(label("labBrowserReason"),
             QStringLiteral("The cached content is neither a page, a picture nor text."));
    fs::remove(m_desk->folder.path() / "evidence" / "ABCDEFGH" / "page[1].htm");
    child<TableTab>(*m_form, "TableTab").grid().setCurrentUrl(UrlId{1});
    QVERIFY(waitFor([this] {
        return label("labBrowserReason") == QStringLiteral("This record has no cached content.");
    }));
    QVERIFY(location().isEmpty());
}

void BrowserTest::closingTheProjectBlanksThePane() {
    show(1);
    trigger(*m_form, "actClose");
    QVERIFY(location().isEmpty());
    QVERIFY(label("labRefused").isEmpty());
    QVERIFY(!view().isVisible());
}

void BrowserTest::theLocationIsReadOnlyAndReachedByKeys() {
    show(1);
    auto &text = child<QLineEdit>(pane(), "txtLocation");
    QVERIFY(text.isReadOnly());
    child<TableTab>(*m_form, "TableTab").grid().setFocus();
    for (int i = 0; i < 20 && m_form->focusWidget() != &text; ++i)
        QTest::keyClick(m_form->focusWidget(), Qt::Key_Tab);
    QCOMPARE(m_form->focusWidget(), &text);
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::BrowserTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "browser_test.moc"
