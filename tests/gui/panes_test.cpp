#include "gui/Desk.h"
#include "ui/frame/Theme.h"
#include "ui/viewers/CardPane.h"
#include "ui/viewers/HexGrid.h"
#include "ui/viewers/HexPane.h"
#include "ui/viewers/NotesPane.h"
#include "ui/viewers/PropertiesPane.h"

#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextEdit>

#include <map>

// Panes of one record without a project: what can't be read, written or copied whole.
namespace nv {

using namespace test;

class PanesTest : public QObject {
    Q_OBJECT

  private slots:
    void aSearchInABigFileIsCancelled();
    void aCopyThatIsCutIsTold();
    void aSearchThatFailsIsNotTakenForOneWithoutAFind();
    void aNoteThatCouldntBeStoredComesAgain();
    void theCardGoesWithTheTheme();

  private:
    TempFolder folder;
};

void PanesTest::aSearchInABigFileIsCancelled() {
    const fs::path big = folder.write("big", "");
    fs::resize_file(big, std::uintmax_t{40} << 30);
    MemoryLog log;
    const RunTask cancelled = [](const TaskHeading &, const auto &work) {
        CancelAfter task(1);
        work(task);
    };
    HexPane hex(cancelled, log);
    hex.resize(900, 300);
    hex.show();
    hex.showFile(big, 0);
    auto &grid = child<HexGrid>(hex, "HexGrid");
    QTest::keyClick(&grid, Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(grid.cursor() + 1, std::uint64_t{40} << 30);
    QTest::keyClick(&grid, Qt::Key_Home, Qt::ControlModifier);
    child<QLineEdit>(hex, "txtFindInHex").setText(QStringLiteral("x"));
    QTest::mouseClick(&child<QPushButton>(hex, "btnFindInHex"), Qt::LeftButton);
    QCOMPARE(child<QLabel>(hex, "labViewerNotice").text(),
             QStringLiteral("The search was cancelled."));
}

void PanesTest::aCopyThatIsCutIsTold() {
    MemoryLog log;
    HexPane hex([](const TaskHeading &, const auto &) {}, log);
    hex.show();
    hex.showFile(folder.write("big", std::string((1 << 20) + 5, 'x')), 0);
    auto &grid = child<HexGrid>(hex, "HexGrid");
    QTest::keyClick(&grid, Qt::Key_End, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(&grid, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text().size(), (1 << 20) * 3 - 1);
    QCOMPARE(child<QLabel>(hex, "labViewerNotice").text(),
             QStringLiteral("Only the first %L1 of %L2 chosen bytes were copied.")
                 .arg(1 << 20)
                 .arg((1 << 20) + 5));
}

void PanesTest::aSearchThatFailsIsNotTakenForOneWithoutAFind() {
    MemoryLog log;
    HexPane hex([](const TaskHeading &, const auto &) {}, log); // fails before it reads
    hex.showFile(folder.write("file", "bytes"), 0);
    child<QLineEdit>(hex, "txtFindInHex").setText(QStringLiteral("y"));
    QTest::mouseClick(&child<QPushButton>(hex, "btnFindInHex"), Qt::LeftButton);
    QCOMPARE(child<QLabel>(hex, "labViewerNotice").text(),
             QStringLiteral("The file could not be searched."));
}

void PanesTest::aNoteThatCouldntBeStoredComesAgain() {
    std::map<UrlId, std::string> stored{{UrlId{1}, "old"}, {UrlId{2}, ""}};
    bool isFull = true;
    int told = 0;
    NotesPane notes({[&](UrlId id) {
                         return Note{stored[id], {}};
                     },
                     [&](UrlId id, const std::string &text) {
                         if (isFull)
                             return NoteOutcome{NoteStored::failed, "the disk is full"};
                         stored[id] = text;
                         return NoteOutcome{};
                     },
                     [](Date) { return std::string(); }, [&](const Message &) { ++told; }});
    auto &text = child<QPlainTextEdit>(notes, "NotesText");
    notes.showRecord(UrlId{1});
    QTest::keyClicks(&text, QStringLiteral("new "));
    notes.showRecord(UrlId{2});
    QCOMPARE(told, 1);
    QCOMPARE(text.toPlainText(), QString());
    notes.showRecord(UrlId{1});
    QCOMPARE(text.toPlainText(), QStringLiteral("new old"));
    QCOMPARE(child<QLabel>(notes, "labNotesDate").text(),
             QStringLiteral("This note is not stored."));
    isFull = false;
    notes.showRecord(UrlId{2});
    QCOMPARE(stored[UrlId{1}], std::string("new old"));
    isFull = true;
    QTest::keyClicks(&text, QStringLiteral("x"));
    notes.clear();
    notes.forgetUnstored();
    notes.showRecord(UrlId{2});
    QCOMPARE(text.toPlainText(), QString());
}

/// The frames of a theme reach the text after the pane around it has changed.
void PanesTest::theCardGoesWithTheTheme() {
    auto *properties = new PropertiesPane([](UrlId) { return std::vector<Property>(); });
    CardPane card(
        [](UrlId) {
            return RecordCard{"Tides", "", {{"Browser", "Chrome"}}};
        },
        *properties);
    card.show();
    card.showRecord(UrlId{1});
    const auto &text = child<QTextEdit>(card, "cardText");
    for (const Theme theme : {Theme::Dark, Theme::Light, Theme::Dark, Theme::System}) {
        applyTheme(theme);
        QTextCursor label(text.document()->lastBlock());
        label.movePosition(QTextCursor::NextCharacter);
        QCOMPARE(label.charFormat().foreground().color().rgb(),
                 text.palette().color(QPalette::Text).rgb());
    }
}

} // namespace nv

QTEST_MAIN(nv::PanesTest)
#include "panes_test.moc"
