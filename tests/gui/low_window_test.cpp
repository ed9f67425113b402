#include "gui/CachedSite.h"
#include "platform/qt/PageGuard.h"
#include "ui/table/TableTab.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QSplitter>

#include <array>

// The heights of the window's parts, where a screen has 800 points, or not many more.
namespace nv {

using namespace test;

class LowWindowTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void theTableKeepsSixRows_data();
    void theTableKeepsSixRows();
    void aSearchMovesNothing();
    void theLineStaysWhereTheExaminerPutsIt();

  private:
    UrlGrid &grid() { return child<TableTab>(*m_form, "TableTab").grid(); }
    int rowsInSight() {
        return grid().viewport()->height() / grid().verticalHeader()->defaultSectionSize();
    }
    QSplitter &halves() { return child<QSplitter>(*m_form, "mainSplitter"); }
    void search(const QString &text) {
        auto &box = child<QLineEdit>(*m_form, "txtSearch");
        box.setFocus();
        box.setText(text);
        QTest::keyClick(&box, Qt::Key_Return);
        QTRY_VERIFY_WITH_TIMEOUT(child<QLabel>(*m_form, "labSnippet").isVisible(), 20'000);
        QTest::qWait(50);
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void LowWindowTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1272, 768); // within its frame
    m_form->show();
    CachedSite site(m_desk->folder.path() / "evidence");
    for (int page = 0; page < 20; ++page) {
        const std::string name = "page" + std::to_string(page) + "[1].htm";
        site.add("http://host/" + name, name, "<html><title>tide</title></html>");
    }
    site.open(*m_desk, *m_form);
    child<QAction>(*m_form, "actPlaces").setChecked(true);
    child<QAction>(*m_form, "actTime").setChecked(true);
    QTest::qWait(50);
}

void LowWindowTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void LowWindowTest::theTableKeepsSixRows_data() {
    QTest::addColumn<int>("height");
    for (const int height : std::array{768, 939, 941})
        QTest::addRow("%d", height) << height;
}

void LowWindowTest::theTableKeepsSixRows() {
    QFETCH(int, height);
    m_form->resize(1272, height);
    search(QStringLiteral("host"));
    QTRY_VERIFY2(rowsInSight() >= 6, qPrintable(QString::number(rowsInSight())));
    QCOMPARE(child<QWidget>(*m_form, "cbTimeUnit").isVisible(), height > 940);
}

/// What shows the record stays where it is read.
void LowWindowTest::aSearchMovesNothing() {
    const QList<int> before = halves().sizes();
    search(QStringLiteral("host"));
    QCOMPARE(halves().sizes(), before);
}

void LowWindowTest::theLineStaysWhereTheExaminerPutsIt() {
    QWidget &line = *halves().handle(1);
    const QPoint at = line.rect().center();
    QTest::mousePress(&line, Qt::LeftButton, {}, at);
    QTest::mouseMove(&line, at - QPoint(0, 60));
    QTest::mouseRelease(&line, Qt::LeftButton, {}, at);
    const QList<int> before = halves().sizes();
    QVERIFY(rowsInSight() < 6);
    trigger(*m_form, "actRefresh");
    QTest::qWait(50);
    QCOMPARE(halves().sizes(), before);
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::LowWindowTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "low_window_test.moc"
