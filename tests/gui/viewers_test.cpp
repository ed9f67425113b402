#include "gui/CachedSite.h"
#include "platform/qt/PageGuard.h"
#include "platform/qt/QtText.h"
#include "support/builders/ExifJpeg.h"
#include "ui/table/TableTab.h"
#include "ui/viewers/BrowserPane.h"
#include "ui/viewers/HexGrid.h"
#include "ui/viewers/HexPane.h"
#include "ui/viewers/NotesPane.h"
#include "ui/viewers/PicturePane.h"
#include "ui/viewers/ReportPane.h"
#include "ui/viewers/TextPane.h"
#include "ui/widgets/ShownSigns.h"

#include <QBuffer>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QElapsedTimer>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRawFont>
#include <QSplitter>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>
#include <SQLiteCpp/Database.h>

// The panes of one record: text, picture, bytes, note, properties, and the last report.
namespace nv {

using namespace test;

class ViewersTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void textIsShownInItsCharsetAndFound();
    void aLongTextIsCutAndTold();
    void aTextOfOneLongLineIsShownSoon();
    void aPictureIsFittedAndZoomed();
    void whatIsNoPictureIsTold();
    void headersAreShownInFontsOfDebian();
    void bytesAreShownFoundAndCopied();
    void theSourceFileIsShownAtTheRecordsOffset();
    void aNoteIsStoredWhenTheBoxIsLeft();
    void aNoteIsStoredWhenAnotherRowIsChosen();
    void aNoteIsStoredWhenTheProjectCloses();
    void aNoteOfARowThatIsGoneIsTold();
    void propertiesHaveWhatTheCameraWrote();
    void aPropertySaysWhyItIsSo();
    void aMissingFileLeavesThePanesBlankWithTheReason();
    void theLastReportIsShown();
    void theReportsLiveLinksAreBlocked();

  private:
    template <class Pane>
    Pane &pane(const char *name) {
        return child<Pane>(*m_form, name);
    }
    QTabWidget &tabs() { return child<QTabWidget>(*m_form, "viewerTabs"); }
    /// Brings the record up in the pane.
    void show(int id, const char *name) {
        child<TableTab>(*m_form, "TableTab").grid().setCurrentUrl(UrlId{id});
        tabs().setCurrentWidget(&pane<QWidget>(name));
        QTest::qWait(30);
    }
    QString shownIn(const char *paneName, const char *label) {
        return child<QLabel>(pane<QWidget>(paneName), label).text();
    }
    QString typeInto(const char *name, const QString &text) {
        auto &line = pane<QLineEdit>(name);
        line.clear();
        QTest::keyClicks(&line, text);
        return line.text();
    }
    std::string note(int id) {
        return m_desk->program.state.projectDB.connection()
            .execAndGet("SELECT COALESCE(Notes, '') FROM URLs WHERE URL_ID = " + std::to_string(id))
            .getString();
    }
    void typeNote(int id, const QString &text) {
        show(id, "NotesPane");
        auto &box = pane<QPlainTextEdit>("NotesText");
        QTRY_VERIFY(box.isEnabled());
        box.setFocus();
        QTest::keyClicks(&box, text);
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void ViewersTest::init() {
    QByteArray png;
    QBuffer buffer(&png);
    QImage picture(3000, 1000, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    QVERIFY(picture.save(&buffer, "PNG"));
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1200, 900);
    m_form->show();
    CachedSite(m_desk->folder.path() / "evidence")
        .add("http://host/a.html", "a[1].htm",
             "<html><meta charset=utf-8>caf\xC3\xA9 one\tcaf\xC3\xA9 two \xE2\x80\xAE</html>")
        .add("http://host/b.png", "b[1].png", png.toStdString())
        .add("http://host/c.jpg", "c[1].jpg", ExifJpeg().ascii(0x010F, "Acme").bytes())
        .add("http://host/gone.html", "gone[1].htm", "x")
        .add("http://host/long.txt", "long[1].txt", std::string(std::size_t{3} << 20, 'y'))
        .open(*m_desk, *m_form);
    fs::remove(m_desk->folder.path() / "evidence" / "ABCDEFGH" / "gone[1].htm");
    // The status window of the import had the focus.
    QApplication::setActiveWindow(m_form.get());
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
}

void ViewersTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void ViewersTest::textIsShownInItsCharsetAndFound() {
    show(1, "TextPane");
    auto &text = pane<QPlainTextEdit>("txtContent");
    QTRY_VERIFY(text.toPlainText().contains(QStringLiteral("café one\tcafé two <U+202E>")));
    QCOMPARE(shownIn("TextPane", "labCharset"), QStringLiteral("utf-8 (meta tag)"));
    QVERIFY(!m_desk->program.state.viewer.textContent.empty());
    text.setFocus();
    QTest::keyClick(&text, Qt::Key_F, Qt::ControlModifier);
    QVERIFY(pane<QLineEdit>("txtFindInText").hasFocus());
    typeInto("txtFindInText", QStringLiteral("CAF"));
    QTest::keyClick(&pane<QLineEdit>("txtFindInText"), Qt::Key_Return);
    const int first = text.textCursor().selectionStart();
    QTest::mouseClick(&pane<QPushButton>("btnFindInText"), Qt::LeftButton);
    QVERIFY(text.textCursor().selectionStart() > first);
    QTest::keyClick(&text, Qt::Key_F3);
    QCOMPARE(text.textCursor().selectionStart(), first);
    QCOMPARE(shownIn("TextPane", "labTextResult"), QStringLiteral("From the top."));
    pane<QCheckBox>("chkTextCase").click();
    QTest::keyClick(&pane<QLineEdit>("txtFindInText"), Qt::Key_Return);
    QCOMPARE(shownIn("TextPane", "labTextResult"), QStringLiteral("Not found."));
    QCOMPARE(text.lineWrapMode(), QPlainTextEdit::WidgetWidth);
    pane<QCheckBox>("chkWrap").click();
    QCOMPARE(text.lineWrapMode(), QPlainTextEdit::NoWrap);
}

void ViewersTest::aLongTextIsCutAndTold() {
    show(5, "TextPane");
    QTRY_COMPARE(shownIn("TextPane", "labViewerNotice"),
                 QStringLiteral("Only the first 2097152 of 3145728 bytes are shown."));
}

void ViewersTest::aTextOfOneLongLineIsShownSoon() {
    QElapsedTimer timer;
    timer.start();
    show(5, "TextPane");
    QTRY_VERIFY(!pane<QPlainTextEdit>("txtContent").toPlainText().isEmpty());
    QVERIFY2(timer.elapsed() < 4000, qPrintable(QString::number(timer.elapsed())));
}

void ViewersTest::aPictureIsFittedAndZoomed() {
    show(2, "PicturePane");
    auto &picture = pane<PicturePane>("PicturePane");
    QTRY_VERIFY(shownIn("PicturePane", "labPictureSize").startsWith(QStringLiteral("3000 × 1000")));
    QVERIFY(picture.zoom() < 1);
    QVERIFY(pane<QLabel>("labPicture").width() <= picture.width());
    QVERIFY(!m_desk->program.state.viewer.picturePath.empty());
    pane<QCheckBox>("chkNoResizePicture").click();
    QCOMPARE(picture.zoom(), 1.0);
    QCOMPARE(pane<QLabel>("labPicture").size(), QSize(3000, 1000));
    QVERIFY(m_desk->program.state.noResizePicture);
    QTest::mouseClick(&pane<QPushButton>("btnZoomIn"), Qt::LeftButton);
    QVERIFY(picture.zoom() > 1);
    QTest::mouseClick(&pane<QPushButton>("btnZoomOut"), Qt::LeftButton);
    QTest::mouseClick(&pane<QPushButton>("btnZoomOut"), Qt::LeftButton);
    QVERIFY(picture.zoom() < 1);
    QVERIFY(!fs::exists(m_desk->program.state.tempFolderPath / "~picture.bmp"));
}

void ViewersTest::headersAreShownInFontsOfDebian() {
    const QString shown =
        shownSigns(QStringLiteral("HTTP/1.1 200 OK\u240D\u240AServer:\u2409a\u240Ab\u240D"
                                  "c\u2401d\u2421e\u2400"));
    QCOMPARE(shown, QStringLiteral("HTTP/1.1 200 OK\u21B5Server:\u21E5a\u21B5b\u21B5c<U+0001>d"
                                   "<U+007F>e<U+0000>"));
    QCOMPARE(shownSigns(QStringLiteral("caf\u00e9")), QStringLiteral("caf\u00e9"));
    for (const char *family : {"DejaVu Sans", "DejaVu Sans Mono"}) {
        const QRawFont font = QRawFont::fromFont(QFont(QString::fromLatin1(family)));
        if (font.familyName() != QLatin1String(family))
            QSKIP("fonts-dejavu-core isn't here");
        for (const QChar each : shown)
            QVERIFY2(font.supportsCharacter(each), qPrintable(QString(each)));
    }
    m_desk->program.state.projectDB.connection().exec(
        "UPDATE URLs SET MetaData = 'HTTP/1.1 200 OK' || char(13, 10) || 'Server: a'");
    trigger(*m_form, "actRefresh");
    const QAbstractItemModel &rows = *child<TableTab>(*m_form, "TableTab").grid().model();
    int column = 0;
    while (column < rows.columnCount() &&
           rows.headerData(column, Qt::Horizontal).toString() != QStringLiteral("HTTP MetaData"))
        ++column;
    QCOMPARE(rows.index(0, column).data().toString(),
             QStringLiteral("HTTP/1.1 200 OK\u21B5Server: a"));
}

void ViewersTest::whatIsNoPictureIsTold() {
    show(1, "PicturePane");
    QTRY_VERIFY(shownIn("PicturePane", "labViewerReason")
                    .startsWith(QStringLiteral("The cached content can't be shown as a picture.")));
}

void ViewersTest::bytesAreShownFoundAndCopied() {
    show(1, "HexPane");
    auto &grid = pane<HexGrid>("HexGrid");
    QTRY_VERIFY(grid.source());
    typeInto("txtFindInHex", QStringLiteral("CAFÉ"));
    QTest::keyClick(&pane<QLineEdit>("txtFindInHex"), Qt::Key_Return);
    QCOMPARE(grid.selection().offset, 26U);
    QCOMPARE(grid.selectedText(), QStringLiteral("63 61 66 C3 A9"));
    QTest::mouseClick(&pane<QPushButton>("btnFindInHex"), Qt::LeftButton);
    QCOMPARE(grid.selection().offset, 36U);
    grid.setFocus();
    QTest::keyClick(&grid, Qt::Key_F3);
    QCOMPARE(grid.selection().offset, 26U);
    QCOMPARE(shownIn("HexPane", "labViewerNotice"), QStringLiteral("Found from the top."));
    QTest::keyClick(&grid, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("63 61 66 C3 A9"));
    pane<QComboBox>("cbHexKind").setCurrentIndex(2);
    typeInto("txtFindInHex", QStringLiteral("3C 68 7"));
    QTest::keyClick(&pane<QLineEdit>("txtFindInHex"), Qt::Key_Return);
    QVERIFY(shownIn("HexPane", "labViewerNotice").startsWith(QStringLiteral("Bytes are given")));
    typeInto("txtFindInHex", QStringLiteral("3C 68 74"));
    QTest::keyClick(&pane<QLineEdit>("txtFindInHex"), Qt::Key_Return);
    QCOMPARE(grid.selection().offset, 0U);
    typeInto("txtFindInHex", QStringLiteral("3C"));
    QTest::keyClick(&pane<QLineEdit>("txtFindInHex"), Qt::Key_Return);
    QCOMPARE(grid.selection().offset, 6U); // not the match with the cursor once more
    typeInto("txtHexOffset", QStringLiteral("0x1A"));
    QTest::keyClick(&pane<QLineEdit>("txtHexOffset"), Qt::Key_Return);
    QCOMPARE(grid.cursor(), 26U);
    QTest::keyClick(&grid, Qt::Key_Down);
    QCOMPARE(grid.cursor(), 42U);
    QTest::keyClick(&grid, Qt::Key_Home, Qt::ControlModifier);
    QTest::keyClick(&grid, Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(grid.selectedText(), QStringLiteral("3C 68"));
    QTest::keyClick(&grid, Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(grid.cursor() + 1, grid.source()->size());
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, QPoint(2, 2));
    QCOMPARE(grid.cursor(), 0U);
}

void ViewersTest::theSourceFileIsShownAtTheRecordsOffset() {
    show(1, "HexPane");
    auto &grid = pane<HexGrid>("HexGrid");
    QTRY_VERIFY(grid.source());
    QTest::mouseClick(&pane<QPushButton>("btnHexSource"), Qt::LeftButton);
    QTRY_COMPARE(grid.source()->file().path().filename(), fs::path("index.dat"));
    QVERIFY(grid.cursor() > 0);
    const Bytes bytes = grid.source()->file().read(grid.cursor(), 4);
    QCOMPARE(std::string(ByteView(bytes).raw()), std::string("URL "));
    QTest::mouseClick(&pane<QPushButton>("btnHexSource"), Qt::LeftButton);
    QTRY_COMPARE(grid.source()->file().path().filename(), fs::path("a[1].htm"));
}

void ViewersTest::aNoteIsStoredWhenTheBoxIsLeft() {
    typeNote(1, QStringLiteral("seen"));
    QCOMPARE(note(1), std::string());
    auto &box = pane<QPlainTextEdit>("NotesText");
    QTest::keyClick(&box, Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(box.toPlainText() != QStringLiteral("seen"));
    QTest::keyClick(&box, Qt::Key_Y, Qt::ControlModifier);
    child<TableTab>(*m_form, "TableTab").grid().setFocus();
    QCOMPARE(note(1), fromQt(box.toPlainText()));
    QCOMPARE(shownIn("NotesPane", "labNotesDate"),
             QStringLiteral("Last changed: 2011-06-15 12:00:00 [UTC]"));
}

void ViewersTest::aNoteIsStoredWhenAnotherRowIsChosen() {
    typeNote(1, QStringLiteral("first"));
    show(2, "NotesPane");
    QTRY_COMPARE(note(1), std::string("first"));
    auto &box = pane<QPlainTextEdit>("NotesText");
    QCOMPARE(box.toPlainText(), QString());
    show(1, "NotesPane");
    QTRY_COMPARE(box.toPlainText(), QStringLiteral("first"));
    QCOMPARE(note(2), std::string());
}

void ViewersTest::aNoteIsStoredWhenTheProjectCloses() {
    typeNote(1, QStringLiteral("last word"));
    trigger(*m_form, "actClose");
    QVERIFY(!pane<QPlainTextEdit>("NotesText").isEnabled());
    SQLite::Database project((m_desk->folder.path() / "case.nvp").string());
    QCOMPARE(project.execAndGet("SELECT Notes FROM URLs WHERE URL_ID = 1").getString(),
             std::string("last word"));
}

void ViewersTest::aNoteOfARowThatIsGoneIsTold() {
    typeNote(1, QStringLiteral("late"));
    m_desk->program.state.projectDB.connection().exec(
        "PRAGMA foreign_keys = 0; DELETE FROM URLs WHERE URL_ID = 1");
    child<TableTab>(*m_form, "TableTab").grid().setFocus();
    QVERIFY(!m_desk->examiner.heard.empty());
    QCOMPARE(m_desk->examiner.heard.back(), std::string("url-unavailable"));
    QCOMPARE(shownIn("NotesPane", "labNotesDate"), QStringLiteral("This note is not stored."));
}

void ViewersTest::propertiesHaveWhatTheCameraWrote() {
    pane<QCheckBox>("chkEmptyFields").setChecked(true);
    show(3, "PropertiesPane");
    auto &list = pane<QTreeWidget>("PropertiesGrid");
    QTRY_COMPARE(list.topLevelItemCount(), 78);
    QTreeWidgetItem *last = list.topLevelItem(77);
    QCOMPARE(last->text(0), QStringLiteral("EXIF-EquipMake"));
    list.scrollToItem(last);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(last).center());
    QCOMPARE(pane<QPlainTextEdit>("txtPropertyValue").toPlainText(), QStringLiteral("Acme"));
    show(1, "PropertiesPane");
    QTRY_COMPARE(list.topLevelItemCount(), 77);
}

/// From a value to its origin, and on to its bytes.
void ViewersTest::aPropertySaysWhyItIsSo() {
    show(1, "PropertiesPane");
    auto &list = pane<QTreeWidget>("PropertiesGrid");
    QTRY_VERIFY(!list.findItems(QStringLiteral("ActionDateUTC"), Qt::MatchExactly).isEmpty());
    auto &why = pane<QPushButton>("btnWhy");
    auto &bytes = pane<QPushButton>("btnBytes");
    const auto found = list.findItems(QStringLiteral("ActionDateUTC"), Qt::MatchExactly);
    list.setCurrentItem(found.value(0));
    QVERIFY(why.isEnabled());
    QVERIFY(bytes.isEnabled());
    QTest::mouseClick(&why, Qt::LeftButton);
    auto &answer = pane<QPlainTextEdit>("txtWhy");
    QTRY_VERIFY(answer.toPlainText().contains(QStringLiteral("Rule: ")));
    QVERIFY2(answer.toPlainText().contains(QStringLiteral("FILETIME")),
             qPrintable(answer.toPlainText()));
    QVERIFY(bytes.isEnabled());
    pane<QWidget>("btnViewerPin").setProperty("checked", false);
    QTest::mouseClick(&bytes, Qt::LeftButton);
    QVERIFY(!pane<QWidget>("btnViewerPin").property("checked").toBool());
    QTRY_VERIFY(pane<HexGrid>("HexGrid").source());
    QTRY_COMPARE(pane<HexGrid>("HexGrid").selection().length, std::uint64_t{8});
}

void ViewersTest::aMissingFileLeavesThePanesBlankWithTheReason() {
    for (const char *name : {"TextPane", "PicturePane"}) {
        show(4, name);
        QTRY_VERIFY(shownIn(name, "labViewerReason").contains(QStringLiteral("gone[1].htm")));
    }
    show(4, "HexPane");
    QTRY_VERIFY(shownIn("HexPane", "labViewerNotice").contains(QStringLiteral("gone[1].htm")));
    QVERIFY(!pane<HexGrid>("HexGrid").source());
    QVERIFY(pane<QPushButton>("btnHexSource").isEnabled());
    QVERIFY(m_desk->program.state.viewer.hexFilePath.empty());
}

void ViewersTest::theLastReportIsShown() {
    show(1, "ReportPane");
    auto &browser = pane<BrowserPane>("ReportBrowser");
    auto &reason = child<QLabel>(browser, "labBrowserReason");
    QTRY_VERIFY(reason.text().startsWith(QStringLiteral("No report has been made")));
    const fs::path report = m_desk->folder.write("report/index-cache.htm", "<html>Findings</html>");
    m_desk->program.state.viewer.reportURL = report.string();
    show(2, "ReportPane");
    QTRY_VERIFY(child<QLineEdit>(browser, "txtLocation")
                    .text()
                    .endsWith(QStringLiteral("index-cache.htm")));
    trigger(*m_form, "actClose");
    QVERIFY(reason.text().startsWith(QStringLiteral("No report has been made")));
}

void ViewersTest::theReportsLiveLinksAreBlocked() {
    const fs::path report = m_desk->folder.write(
        "report/index-cache.htm", "<html><img src='http://127.0.0.1:9/a.gif'></html>");
    m_desk->program.state.viewer.reportURL = report.string();
    show(1, "ReportPane");
    auto &browser = pane<BrowserPane>("ReportBrowser");
    QTRY_COMPARE(browser.refused(), 1U);
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::ViewersTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "viewers_test.moc"
