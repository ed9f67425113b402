#include "gui/CachedSite.h"
#include "platform/qt/PageGuard.h"
#include "platform/qt/QtText.h"
#include "support/builders/ChromiumCache.h"
#include "ui/table/TableTab.h"
#include "ui/viewers/HexGrid.h"

#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <SQLiteCpp/Database.h>

// The bytes of a record where its evidence lies now.
namespace nv {

using namespace test;

class MovedEvidenceTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void itsNewPlaceCanBeChosen();
    void aCacheThatIsAFolderShowsWhereTheRecordLies();

  private:
    template <class Part>
    Part &part(const char *name) {
        return child<Part>(*m_form, name);
    }
    HexGrid &grid() { return part<HexGrid>("HexGrid"); }
    fs::path shown() { return grid().source() ? grid().source()->file().path() : fs::path(); }
    void import(const fs::path &folder);
    void showSourceOf(UrlId id);

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void MovedEvidenceTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 1000);
    m_form->show();
    CachedSite(m_desk->folder.path() / "evidence")
        .add("http://host/a.html", "a[1].htm", "<html>one</html>")
        .add("http://host/b.html", "b[1].htm", "<html>two</html>")
        .open(*m_desk, *m_form);
}

void MovedEvidenceTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void MovedEvidenceTest::import(const fs::path &folder) {
    Program &program = m_desk->program;
    program.import.startingDirectory = folder.string();
    Unwatched nobody;
    program.import.historyFiles = scan(program.import, nobody, program.log).historyFiles;
    static_cast<void>(runImportJob(program, nobody, program.state.tempFolderPath));
    trigger(*m_form, "actRefresh");
}

void MovedEvidenceTest::showSourceOf(UrlId id) {
    part<QTabWidget>("viewerTabs").setCurrentWidget(&part<QWidget>("HexPane"));
    part<QPushButton>("btnHexSource").setChecked(true);
    part<TableTab>("TableTab").grid().setCurrentUrl(id);
}

void MovedEvidenceTest::itsNewPlaceCanBeChosen() {
    const fs::path then = m_desk->folder.path() / "evidence";
    const fs::path now = m_desk->folder.path() / "moved";
    showSourceOf(UrlId{1});
    QTRY_COMPARE(shown(), then / "index.dat");
    QVERIFY(!part<QPushButton>("btnHexEvidence").isVisible());
    fs::rename(then, now);
    showSourceOf(UrlId{2});
    auto &offer = part<QPushButton>("btnHexEvidence");
    QTRY_VERIFY(offer.isVisible());
    QVERIFY(shown().empty());
    const QString why = child<QLabel>(part<QWidget>("HexPane"), "labViewerNotice").text();
    QVERIFY2(why.contains(pathToQt(then / "index.dat")), qPrintable(why));
    QVERIFY2(why.contains(QStringLiteral("base folder")), qPrintable(why));
    m_desk->dialogs.answer = now;
    offer.click();
    QTRY_COMPARE(shown(), now / "index.dat");
    QVERIFY(!offer.isVisible());
}

/// The folder has no bytes of its own, and "isn't there" would be wrong.
void MovedEvidenceTest::aCacheThatIsAFolderShowsWhereTheRecordLies() {
    const fs::path folder = m_desk->folder.path() / "evidence/Cache/Cache_Data";
    SimpleCacheFiles()
        .add(0x1122334455667788,
             "1/0/_dk_https://quay.example https://quay.example https://quay.example/a.txt",
             ChromiumAnswer().bytes(), "body of a")
        .write(folder);
    import(folder.parent_path());
    const auto id = m_desk->program.state.projectDB.connection()
                        .execAndGet("SELECT max(URL_ID) FROM URLs WHERE URL LIKE '%quay%'")
                        .getInt64();
    QVERIFY(id > 2);
    showSourceOf(UrlId{id});
    QTRY_COMPARE(shown(), folder / SimpleCacheFiles::name(0x1122334455667788, '0'));
    QVERIFY(grid().cursor() > 0);
    QVERIFY(!part<QPushButton>("btnHexEvidence").isVisible());
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::MovedEvidenceTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "moved_evidence_test.moc"
