#include "gui/CachedSite.h"
#include "platform/qt/PageGuard.h"
#include "ui/table/TableTab.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>

// From the row to what is read of it: its page by Enter, and why a value is as it is.
namespace nv {

using namespace test;

class ReadingTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void anAnswerMovesNothing();
    void enterLeadsIntoThePage();
    void enterSaysWhereNoPageIs();

  private:
    template <class Pane>
    Pane &pane(const char *name) {
        return child<Pane>(*m_form, name);
    }
    QTabWidget &tabs() { return pane<QTabWidget>("viewerTabs"); }
    QTreeWidget &list() { return pane<QTreeWidget>("PropertiesGrid"); }
    UrlGrid &rows() { return pane<TableTab>("TableTab").grid(); }
    QString answer() {
        const auto &why = pane<QPlainTextEdit>("txtWhy");
        return why.isVisible() ? why.toPlainText() : QString();
    }
    QRect place(const char *name) {
        const auto &widget = pane<QWidget>(name);
        return {widget.mapTo(m_form.get(), QPoint()), widget.size()};
    }
    void choose(const char *field) {
        const QString name = QString::fromLatin1(field);
        QTRY_VERIFY(!list().findItems(name, Qt::MatchExactly).isEmpty());
        list().setCurrentItem(list().findItems(name, Qt::MatchExactly).first());
    }
    void askWhy() {
        QTest::mouseClick(&pane<QPushButton>("btnWhy"), Qt::LeftButton);
        QTRY_VERIFY(answer().contains(QStringLiteral("Rule: ")));
    }
    void pressEnterOn(UrlId id) {
        rows().setCurrentUrl(id);
        rows().setFocus();
        QTest::keyClick(&rows(), Qt::Key_Return);
    }
    bool isFocusWithin(const char *name) {
        const QWidget *focus = m_form->focusWidget();
        return focus && pane<QWidget>(name).isAncestorOf(focus);
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void ReadingTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 800);
    m_form->show();
    CachedSite(m_desk->folder.path() / "evidence")
        .add("http://host/a.html", "a[1].htm", "<html><title>One</title>one</html>")
        .add("http://host/long.txt", "long[1].txt", std::string(2000, 'y'))
        .open(*m_desk, *m_form);
    m_desk->program.state.projectDB.connection().exec(
        "INSERT INTO URLs (URL, Host, CacheType) VALUES ('http://host/seen', 'host', 'CHROME "
        "HISTORY')");
    trigger(*m_form, "actRefresh");
    m_form->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
    rows().setCurrentUrl(UrlId{1});
}

void ReadingTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

/// It has lines to be read, and the value that was asked about stays in sight.
void ReadingTest::anAnswerMovesNothing() {
    choose("URL");
    list().scrollToItem(list().currentItem());
    const auto chosen = [this] { return list().visualItemRect(list().currentItem()); };
    const auto places = [&] {
        return QList<QRect>{place("btnWhy"), place("btnBytes"), place("PropertiesGrid"), chosen()};
    };
    const QList<QRect> before = places();
    askWhy();
    QCOMPARE(places(), before);
    QVERIFY(list().viewport()->rect().contains(chosen().center()));
    QVERIFY(answer().startsWith(QStringLiteral("URL: http://host/a.html\n")));
    if (const QString shots = qEnvironmentVariable("NV_SCREENSHOTS"); !shots.isEmpty())
        m_form->grab().save(shots + QStringLiteral("/card-why.png"));
    const auto &why = pane<QPlainTextEdit>("txtWhy");
    QVERIFY2(why.viewport()->height() >= 6 * why.fontMetrics().lineSpacing(),
             qPrintable(QString::number(why.viewport()->height())));
    QTest::mouseClick(&pane<QPushButton>("btnWhy"), Qt::LeftButton);
    QVERIFY(pane<QWidget>("cardText").isVisible() && !pane<QPushButton>("btnWhy").isChecked());
    askWhy();
    choose("Host");
    QVERIFY(pane<QWidget>("cardText").isVisible() && !pane<QPushButton>("btnWhy").isChecked());
}

/// Whatever is pinned, and the keys go there too.
void ReadingTest::enterLeadsIntoThePage() {
    tabs().setCurrentWidget(&pane<QWidget>("HexPane"));
    pressEnterOn(UrlId{1});
    QTRY_COMPARE(tabs().currentWidget(), &pane<QWidget>("BrowserPane"));
    QTRY_VERIFY(isFocusWithin("BrowserPane"));
    QVERIFY(!pane<QWidget>("browserView").accessibleName().isEmpty());
    pressEnterOn(UrlId{2});
    QTRY_COMPARE(tabs().currentWidget(), &pane<QWidget>("TextPane"));
    QTRY_VERIFY(isFocusWithin("TextPane"));
    QVERIFY(qobject_cast<QPlainTextEdit *>(m_form->focusWidget()));
}

void ReadingTest::enterSaysWhereNoPageIs() {
    QWidget *front = tabs().currentWidget();
    pressEnterOn(UrlId{3});
    QTRY_VERIFY(pane<QLabel>("labNotice").text().contains(QStringLiteral("no cached content")));
    QCOMPARE(tabs().currentWidget(), front);
    QCOMPARE(m_form->focusWidget(), &rows());
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::ReadingTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "reading_test.moc"
