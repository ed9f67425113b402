#include "gui/Desk.h"
#include "platform/qt/PageGuard.h"
#include "ui/limits/HostsPane.h"
#include "ui/table/EmptyPage.h"
#include "ui/table/TableTab.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QTabWidget>

// What is empty says why, and what can be done.
namespace nv {

using namespace test;

class EmptyPanesTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void panesWithoutARowSayWhatToDo();
    void theTabOfNotesIsNotDimWhereTheyCanBeWritten();
    void theTableSaysWhatToDo();
    void aListWithoutHostsSaysWhy();

  private:
    QTabWidget &tabs() { return child<QTabWidget>(*m_form, "viewerTabs"); }
    QWidget &pane(const char *name) { return child<QWidget>(*m_form, name); }
    TableTab &table() { return child<TableTab>(*m_form, "TableTab"); }
    static bool saysWhatToDo(const QWidget &pane);

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void EmptyPanesTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 800);
    m_form->show();
    openExample(*m_desk, *m_form);
}

void EmptyPanesTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

bool EmptyPanesTest::saysWhatToDo(const QWidget &pane) {
    const QString beginning = QStringLiteral("Choose a row");
    for (const QLabel *label : pane.findChildren<QLabel *>())
        if (label->isVisible() && label->text().startsWith(beginning))
            return true;
    for (const auto *text : pane.findChildren<QPlainTextEdit *>())
        if (text->isVisible() && text->placeholderText().startsWith(beginning))
            return true;
    return false;
}

void EmptyPanesTest::panesWithoutARowSayWhatToDo() {
    table().filterByHost(QStringLiteral("nothing.has.it"));
    for (const char *name : {"BrowserPane", "AuditPane", "LinksPane", "TextPane", "PicturePane",
                             "HexPane", "NotesPane"}) {
        tabs().setCurrentWidget(&pane(name));
        QTest::qWait(10);
        QVERIFY2(saysWhatToDo(pane(name)), name);
    }
    table().filterByHost({});
    tabs().setCurrentWidget(&pane("NotesPane"));
    QTRY_VERIFY(!saysWhatToDo(pane("NotesPane")));
}

/// The others are dim where they have nothing for the record.
void EmptyPanesTest::theTabOfNotesIsNotDimWhereTheyCanBeWritten() {
    const auto placeOf = [this](const char *name) { return tabs().indexOf(&pane(name)); };
    QVERIFY(tabs().tabBar()->tabTextColor(placeOf("AuditPane")).isValid());
    QVERIFY(!tabs().tabBar()->tabTextColor(placeOf("NotesPane")).isValid());
    QVERIFY(tabs().tabToolTip(placeOf("NotesPane")).contains(QStringLiteral("write one")));
    m_desk->program.state.projectDB.connection().exec("UPDATE URLs SET Notes = 'seen'");
    table().grid().setCurrentUrl(UrlId{2});
    table().grid().setCurrentUrl(UrlId{1});
    QTRY_VERIFY(tabs().tabToolTip(placeOf("NotesPane")).isEmpty());
}

void EmptyPanesTest::theTableSaysWhatToDo() {
    EmptyPage page;
    for (const EmptyState state :
         {EmptyState::NotLoaded, EmptyState::Cancelled, EmptyState::Failed}) {
        page.showState(state);
        QVERIFY(child<QLabel>(page, "labEmpty").text().contains(QStringLiteral("Refresh (F5)")));
    }
    page.showState(EmptyState::NoMatches);
    QVERIFY(child<QLabel>(page, "labEmpty").text().contains(QStringLiteral("another query")));
}

void EmptyPanesTest::aListWithoutHostsSaysWhy() {
    HostsPane hosts;
    hosts.setHosts({}, Walk::Finished);
    auto &text = child<QLabel>(hosts, "labHostsUnfinished");
    QVERIFY(!text.isHidden());
    QVERIFY(text.text().contains(QStringLiteral("nothing is imported")));
    HostRow row;
    row.host = "a.example";
    hosts.setHosts({row}, Walk::Finished);
    QVERIFY(text.isHidden());
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::EmptyPanesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "empty_panes_test.moc"
