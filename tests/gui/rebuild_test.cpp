#include "gui/RebuildWindow.h"
#include "platform/qt/QtText.h"
#include "rebuild/Harvest.h"
#include "ui/gallery/GalleryTab.h"
#include "ui/table/TableTab.h"
#include "ui/viewers/AuditPane.h"
#include "ui/widgets/NoRow.h"

#include <QClipboard>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <SQLiteCpp/Database.h>

// Rebuilding from the window, and the audit of what was put in place of what.
namespace nv {

using namespace test;

constexpr const char *kPage = "<html><title>Inbox</title><img src=\"pic/logo.gif\" >"
                              "<img src=\"gone.gif\" ></html> ";

class RebuildTest : public QObject, RebuildWindow {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void theToolbarRebuildsTheCurrentRow();
    void anUntickedCurrentRowIsLeftAloneWhenOthersAreTicked();
    void rebuildDrawsTheThumbnailThatTheGalleryShows();
    void rebuildSaysHowManyTaggedPagesItTakes();
    void thisPageIsRebuiltWhateverIsTagged();
    void theGalleryLeavesARebuildAwayWhenItIsToldTo();
    void cancelLeavesTheRemainingRows();
    void rebuildIsOnAKeyAndNeedsAProject();
    void theStatusBarSaysWhyAPageIsNotRebuilt();
    void theNoticeGoesWithTheRow();
    void partsWithLargeIdsNameTheirSwitch();
    void theAuditShowsEachReference();
    void theAuditBringsBackTheFolderOfAnEarlierRun();
    void theAuditOfOtherRowsSaysWhyItIsEmpty();
    void theAuditIsReachedByKeys();
    void aLargeProjectAsksOnceAndTurnsTheSwitch();

  private:
    QString cell(int id, UrlColumn column) {
        const auto place = child<TableTab>(*m_form, "TableTab").table()->placeOf(UrlId{id});
        return grid()
            .model()
            ->index(static_cast<int>(place.value()), UrlModel::sectionOf(column))
            .data()
            .toString();
    }
    fs::path folderOf(const char *sid) {
        return m_desk->program.state.tempFolderPath / (std::string(sid) + ".NVR");
    }
    QString notice() { return child<QLabel>(*m_form, "labNotice").text(); }
    QString auditCell(int row, int column) {
        return audit().model()->index(row, column).data().toString();
    }
    void tick(int id) {
        project().exec("UPDATE URLs SET Tagged = 1 WHERE URL_ID = " + std::to_string(id));
        trigger(*m_form, "actRefresh");
    }
    void openAudit() {
        showAudit();
        QTest::qWait(20);
    }
};

void RebuildTest::init() {
    openSite([](CachedSite &site) {
        site.add("http://host/page.html", "page[1].htm", kPage)
            .add("http://host/pic/logo.gif", "logo[1].gif", "GIF89a")
            .add("http://host/second.html", "second[1].htm", kPage)
            .add("http://host/plain.html", "plain[1].htm", "<html><body>nothing</body></html> ");
    });
}

void RebuildTest::cleanup() {
    closeSite();
}

void RebuildTest::theToolbarRebuildsTheCurrentRow() {
    auto &toolBar = child<QToolBar>(*m_form, "toolBar");
    QWidget *button =
        toolBar.widgetForAction(m_form->findChild<QAction *>(QStringLiteral("actRebuild")));
    QCOMPARE(cell(1, UrlColumn::Rebuilt), QStringLiteral("No"));
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(cell(1, UrlColumn::Rebuilt), QStringLiteral("Yes"));
    QCOMPARE(cell(3, UrlColumn::Rebuilt), QStringLiteral("No"));
    QCOMPARE(cell(1, UrlColumn::TimeRebuilt), QStringLiteral("15-Jun-2011 12:00:00"));
    QCOMPARE(notice(), QStringLiteral("Record 1 was rebuilt: 1 reference replaced, 1 missing."));
    QVERIFY(fs::exists(folderOf("0000001") / "0000001.htm"));
    QVERIFY(fs::exists(folderOf("0000001") / "0000002.gif"));
    QVERIFY(!m_desk->program.task.isOpen);
}

void RebuildTest::anUntickedCurrentRowIsLeftAloneWhenOthersAreTicked() {
    tick(3);
    choose(1);
    trigger(*m_form, "actRebuild");
    QCOMPARE(cell(1, UrlColumn::Rebuilt), QStringLiteral("No"));
    QCOMPARE(cell(3, UrlColumn::Rebuilt), QStringLiteral("Yes"));
    QCOMPARE(cell(3, UrlColumn::TimeRebuilt), QStringLiteral("15-Jun-2011 12:00:00"));
    QVERIFY(cell(1, UrlColumn::TimeRebuilt).isEmpty());
}

void RebuildTest::rebuildDrawsTheThumbnailThatTheGalleryShows() {
    m_desk->program.state.redrawThumbIfPageRebuilt = true;
    auto &gallery = child<GalleryTab>(*m_form, "GalleryTab");
    child<QTabWidget>(*m_form, "dataTabs").setCurrentWidget(&gallery);
    auto &tiles = child<QListView>(gallery, "GalleryTiles");
    QCOMPARE(tiles.model()->rowCount(), 0);
    trigger(*m_form, "actRebuild");
    QCOMPARE(notice(), QStringLiteral("Record 1 was rebuilt: 1 reference replaced, 1 missing."));
    QVERIFY(fs::exists(folderOf("0000001") / "~0000001.thumbnail.jpg"));
    QVERIFY(!stored("ThumbnailMD5Hash", 1).empty());
    QCOMPARE(tiles.model()->rowCount(), 1);
}

void RebuildTest::rebuildSaysHowManyTaggedPagesItTakes() {
    const auto *action = m_form->findChild<QAction *>(QStringLiteral("actRebuild"));
    QCOMPARE(action->text(), QStringLiteral("&Rebuild"));
    tick(1);
    tick(3);
    QCOMPARE(action->text(), QStringLiteral("&Rebuild 2 Ticked"));
    choose(3);
    trigger(*m_form, "actTag");
    QCOMPARE(action->text(), QStringLiteral("&Rebuild 1 Ticked"));
    // Those that the table doesn't show are left alone.
    child<TableTab>(*m_form, "TableTab").filterByHost(QStringLiteral("elsewhere"));
    QCOMPARE(action->text(), QStringLiteral("&Rebuild"));
    child<TableTab>(*m_form, "TableTab").filterByHost({});
    QCOMPARE(action->text(), QStringLiteral("&Rebuild 1 Ticked"));
    trigger(*m_form, "actClose");
    QCOMPARE(action->text(), QStringLiteral("&Rebuild"));
}

void RebuildTest::thisPageIsRebuiltWhateverIsTagged() {
    tick(1);
    choose(3);
    trigger(*m_form, "actRebuildPage");
    QCOMPARE(stored("CacheFileRebuilt", 3), std::string("1"));
    QCOMPARE(stored("CacheFileRebuilt", 1), std::string("0"));
    trigger(*m_form, "actClose");
    QVERIFY(!m_form->findChild<QAction *>(QStringLiteral("actRebuildPage"))->isEnabled());
}

void RebuildTest::theGalleryLeavesARebuildAwayWhenItIsToldTo() {
    trigger(*m_form, "actRebuild");
    m_desk->program.state.disableAutoRebuildInHTMLGallery = true;
    auto &tabs = child<QTabWidget>(*m_form, "dataTabs");
    tabs.setCurrentWidget(&child<QWidget>(*m_form, "GalleryTab"));
    choose(4);
    openAudit();
    fs::remove_all(folderOf("0000001"));
    choose(1);
    const auto text = [this] { return child<QLabel>(*m_form, "labAudit").text(); };
    QVERIFY(waitFor([&] { return text().contains(QStringLiteral("the table does")); }));
    QVERIFY(!fs::exists(folderOf("0000001")));
    tabs.setCurrentIndex(0);
    QVERIFY(waitFor([this] { return audit().model()->rowCount() == 2; }));
    QVERIFY(fs::exists(folderOf("0000001")));
}

void RebuildTest::cancelLeavesTheRemainingRows() {
    for (const int id : {1, 3, 4})
        tick(id);
    QTimer poll;
    connect(&poll, &QTimer::timeout, this, [&] {
        if (child<QLabel>(m_desk->status, "labMsg1").text() !=
            QStringLiteral("REBUILDING WEB PAGES"))
            return;
        poll.stop();
        QTest::mouseClick(&child<QPushButton>(m_desk->status, "btnCancel"), Qt::LeftButton);
    });
    poll.start(0);
    trigger(*m_form, "actRebuild");
    QVERIFY2(notice().startsWith(QStringLiteral("Cancelled: 0 of 3")), qPrintable(notice()));
    QCOMPARE(cell(4, UrlColumn::Rebuilt), QStringLiteral("No"));
    trigger(*m_form, "actRebuild");
    QVERIFY2(notice().startsWith(QStringLiteral("2 of 3 pages rebuilt. 1 not: it holds no")),
             qPrintable(notice()));
}

void RebuildTest::rebuildIsOnAKeyAndNeedsAProject() {
    QAction *action = m_form->findChild<QAction *>(QStringLiteral("actRebuild"));
    QVERIFY(!action->shortcut().isEmpty());
    trigger(*m_form, "actClose");
    QVERIFY(!action->isEnabled());
}

void RebuildTest::theStatusBarSaysWhyAPageIsNotRebuilt() {
    choose(4);
    trigger(*m_form, "actRebuild");
    QCOMPARE(notice(), QStringLiteral("Record 4 was not rebuilt: it holds no reference that can "
                                      "be replaced."));
    fs::remove(m_desk->folder.path() / "evidence" / "ABCDEFGH" / "page[1].htm");
    choose(1);
    trigger(*m_form, "actRebuild");
    QCOMPARE(notice(), QStringLiteral("Record 1 was not rebuilt: its cached content is gone."));
    QVERIFY(child<QLabel>(*m_form, "labNotice").isVisible());
    QVERIFY(m_desk->examiner.heard.empty());
}

void RebuildTest::theNoticeGoesWithTheRow() {
    trigger(*m_form, "actRebuild");
    QVERIFY(!notice().isEmpty());
    choose(4);
    QVERIFY(notice().isEmpty());
    QVERIFY(child<QLabel>(*m_form, "labQuery").isVisible());
}

void RebuildTest::partsWithLargeIdsNameTheirSwitch() {
    project().exec("UPDATE URLs SET URL_ID = 40000 WHERE URL_ID = 2");
    trigger(*m_form, "actRefresh");
    m_desk->program.state.wideRecordIds = false;
    choose(1);
    trigger(*m_form, "actRebuild");
    QVERIFY2(notice().contains(QStringLiteral("[BEYOND] WideRecordIds")), qPrintable(notice()));
    openAudit();
    QVERIFY(waitFor([this] { return !child<QLabel>(*m_form, "labAudit").text().isEmpty(); }));
    const QString reason = child<QLabel>(*m_form, "labAudit").text();
    QVERIFY2(reason.startsWith(QStringLiteral("Error Loading Audit: ")), qPrintable(reason));
}

void RebuildTest::theAuditShowsEachReference() {
    trigger(*m_form, "actRebuild");
    openAudit();
    QVERIFY(waitFor([this] { return audit().model()->rowCount() == 2; }));
    QCOMPARE(child<QLabel>(*m_form, "labAudit").text(),
             QStringLiteral("References: 2. Replaced by a cached part: 1. Missing: 1."));
    QCOMPARE(auditCell(0, 0), QStringLiteral("1"));
    QCOMPARE(auditCell(0, 1), QStringLiteral("pic/logo.gif"));
    QCOMPARE(auditCell(0, 2), QStringLiteral("0000002.gif"));
    QCOMPARE(auditCell(0, 3), QStringLiteral("gif"));
    QCOMPARE(auditCell(0, 4), QStringLiteral("0000002.gif"));
    QCOMPARE(auditCell(1, 4), QStringLiteral("Missing or Invalid Tag"));
    QCOMPARE(auditCell(0, 5), QStringLiteral("1:1"));
    QCOMPARE(auditCell(0, 6), QStringLiteral("http://host/pic/logo.gif"));
    QCOMPARE(auditCell(0, 7), QString());
    QCOMPARE(auditCell(1, 5), QStringLiteral("0:0"));
    QVERIFY(!audit().model()->index(0, 4).data(Qt::ForegroundRole).isValid());
    QVERIFY(audit().model()->index(1, 4).data(Qt::ForegroundRole).isValid());
    QCOMPARE(audit().font().family(), QStringLiteral("Courier New"));
}

void RebuildTest::theAuditBringsBackTheFolderOfAnEarlierRun() {
    trigger(*m_form, "actRebuild");
    fs::remove_all(folderOf("0000001"));
    openAudit();
    QVERIFY(waitFor([this] { return audit().model()->rowCount() == 2; }));
    QCOMPARE(auditCell(0, 4), QStringLiteral("0000002.gif"));
    QVERIFY(fs::exists(folderOf("0000001") / "0000001.htm"));
}

void RebuildTest::theAuditOfOtherRowsSaysWhyItIsEmpty() {
    openAudit();
    const auto text = [this] { return child<QLabel>(*m_form, "labAudit").text(); };
    QVERIFY(waitFor([&] { return text().contains(QStringLiteral("not rebuilt")); }));
    QVERIFY(!audit().isVisible());
    trigger(*m_form, "actClose");
    QCOMPARE(text(), noRowText());
}

void RebuildTest::theAuditIsReachedByKeys() {
    trigger(*m_form, "actRebuild");
    openAudit();
    QVERIFY(waitFor([this] { return audit().model()->rowCount() == 2; }));
    auto &viewers = child<QTabWidget>(*m_form, "viewerTabs");
    grid().setFocus();
    for (int i = 0; i < 20 && m_form->focusWidget() != &audit(); ++i)
        QTest::keyClick(m_form->focusWidget(), Qt::Key_Tab);
    QCOMPARE(m_form->focusWidget(), &audit());
    QTest::keyClick(&audit(), Qt::Key_Down);
    QCOMPARE(audit().currentIndex().row(), 1);
    QTest::keyClick(&audit(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("gone.gif"));
    QVERIFY(viewers.focusPolicy() != Qt::NoFocus);
}

void RebuildTest::aLargeProjectAsksOnceAndTurnsTheSwitch() {
    Program &program = m_desk->program;
    const auto timesAsked = [this] {
        const auto &heard = m_desk->examiner.heard;
        return std::count(heard.begin(), heard.end(), "ids-beyond-narrow");
    };
    project().exec("UPDATE URLs SET URL_ID = 32768 WHERE URL_ID = 2");
    trigger(*m_form, "actClose");
    trigger(*m_form, "actOpen");
    QCOMPARE(timesAsked(), 0);
    program.state.wideRecordIds = false;
    trigger(*m_form, "actClose");
    m_desk->examiner.script = {Answer::Yes};
    trigger(*m_form, "actOpen");
    QCOMPARE(timesAsked(), 1);
    QVERIFY(program.state.wideRecordIds);
    QVERIFY(program.settings.readIniValue("BEYOND", "WideRecordIds", false));
    program.state.wideRecordIds = false;
    trigger(*m_form, "actClose");
    trigger(*m_form, "actOpen");
    QCOMPARE(timesAsked(), 1);
}

} // namespace nv

QTEST_MAIN(nv::RebuildTest)
#include "rebuild_test.moc"
