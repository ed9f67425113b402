#include "gui/RebuildWindow.h"
#include "platform/qt/QtText.h"
#include "ui/gallery/GalleryTab.h"
#include "ui/table/TableTab.h"
#include "ui/viewers/AuditModel.h"
#include "ui/viewers/AuditPane.h"
#include "ui/viewers/PartChoiceForm.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTreeWidget>
#include <SQLiteCpp/Database.h>

// Rebuilding exactly from the window: both methods in the menu, what the audit tells of it, and
// another part that the examiner chooses.
namespace nv {

using namespace test;

constexpr const char *kPage = "<html><title>Inbox</title><img src=\"pic/logo.gif\" >"
                              "<img src=\"pic/back.gif?v=2\" ><img src=\"gone.gif\" ></html> ";
constexpr int kLogo = 0;
constexpr int kBack = 1;
constexpr int kGone = 2;

class ExactRebuildTest : public QObject, RebuildWindow {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void bothMethodsAreInTheMenusAndTakeTheTaggedPages();
    void theSettingDecidesForTheCommandThatNamesNoMethod();
    void theAuditTellsRuleTimeAndHash();
    void theAuditIsThatOfTheMethod();
    void aPageWithoutReferencesIsNoFailure();
    void theAuditLeadsToTheRecord();
    void anotherPartIsChosenAndTakenBack();
    void aRecordOfAnyAddressCanBeTyped();
    void cancelChangesNothing();
    void theGallerySaysTheMethod();

  private:
    std::string method(int id) { return stored("RebuiltMethod", id); }
    AuditModel &model() { return *qobject_cast<AuditModel *>(audit().model()); }
    QString auditCell(int row, AuditModel::Column column) {
        for (int section = 0; section < model().columnCount(); ++section)
            if (model().columnAt(section) == column)
                return model().index(row, section).data().toString();
        return QStringLiteral("no such column");
    }
    void openAudit(int rows) {
        showAudit();
        QVERIFY(waitFor([&] { return model().rowCount() == rows; }));
    }
    void rebuildExactly() {
        trigger(*m_form, "actRebuildExactly");
        openAudit(3);
    }
    /// Opens the form for a row of the audit, and runs `act` on it.
    void answer(int row, const std::function<void(PartChoiceForm &)> &act) {
        audit().setCurrentIndex(model().index(row, 0));
        whenShown<PartChoiceForm>(act);
        child<QAction>(*m_form, "actChooseOtherPart").trigger();
        QTest::qWait(50);
    }
    static QTreeWidget &list(PartChoiceForm &form) { return child<QTreeWidget>(form, "lstParts"); }
    static void take(PartChoiceForm &form, const QString &record) {
        const auto items = list(form).findItems(record, Qt::MatchExactly, 0);
        QCOMPARE(items.size(), 1);
        list(form).setCurrentItem(items.front());
        form.accept();
    }
};

void ExactRebuildTest::init() {
    openSite([](CachedSite &site) {
        site.add("http://host/page.html", "page[1].htm", kPage)
            .add("http://host/pic/logo.gif", "logo[1].gif", "GIF89a")
            .add("http://host/pic/back.gif?v=1", "back[1].gif", "GIF89a 1")
            .add("http://host/plain.html", "plain[1].htm", "<html><body>nothing</body></html> ")
            .add("http://elsewhere/other.gif", "other[1].gif", "GIF89a other");
    });
}

void ExactRebuildTest::cleanup() {
    closeSite();
}

void ExactRebuildTest::bothMethodsAreInTheMenusAndTakeTheTaggedPages() {
    const QList<QAction *> tools = child<QMenu>(*m_form, "menuTools").actions();
    auto &exactly = child<QAction>(*m_form, "actRebuildExactly");
    auto &byClassic = child<QAction>(*m_form, "actRebuildByClassic");
    QVERIFY(tools.contains(&exactly) && tools.contains(&byClassic));
    trigger(*m_form, "actRebuildExactly");
    QCOMPARE(method(1), std::string("Cache, exact"));
    QCOMPARE(child<QLabel>(*m_form, "labNotice").text(),
             QStringLiteral("Record 1 was rebuilt exactly: 2 references replaced, 1 missing."));
    trigger(*m_form, "actRebuildByClassic");
    QCOMPARE(method(1), std::string("Cache"));
    project().exec("UPDATE URLs SET Tagged = 1 WHERE URL_ID IN (1, 4)");
    trigger(*m_form, "actRefresh");
    QCOMPARE(exactly.text(), QStringLiteral("Rebuild 2 Ticked E&xactly"));
    QCOMPARE(byClassic.text(), QStringLiteral("Rebuild 2 Ticked by Cla&ssic Rules"));
    choose(2);
    exactly.trigger();
    QCOMPARE(method(1), std::string("Cache, exact"));
    QCOMPARE(method(4), std::string("Cache, exact"));
    trigger(*m_form, "actClose");
    QVERIFY(!exactly.isEnabled() && !byClassic.isEnabled());
}

void ExactRebuildTest::theSettingDecidesForTheCommandThatNamesNoMethod() {
    trigger(*m_form, "actRebuild"); // an old cache
    QCOMPARE(method(1), std::string("Cache"));
    m_desk->program.state.rebuildMethod = "exact";
    trigger(*m_form, "actRebuild");
    QCOMPARE(method(1), std::string("Cache, exact"));
    m_desk->program.state.rebuildMethod = "classic";
    trigger(*m_form, "actRebuildPage");
    QCOMPARE(method(1), std::string("Cache"));
}

void ExactRebuildTest::theAuditTellsRuleTimeAndHash() {
    rebuildExactly();
    QCOMPARE(child<QLabel>(*m_form, "labAudit").text(),
             QStringLiteral("Rebuilt exactly. References: 3. Shown by a cached part: 2. Marked "
                            "places: 1. Of the parts, cached under another address: 1."));
    QCOMPARE(auditCell(kLogo, AuditModel::Element), QStringLiteral("img src"));
    QCOMPARE(auditCell(kLogo, AuditModel::Original), QStringLiteral("pic/logo.gif"));
    QCOMPARE(auditCell(kLogo, AuditModel::Address), QStringLiteral("http://host/pic/logo.gif"));
    QCOMPARE(auditCell(kLogo, AuditModel::State), QStringLiteral("0000002.gif"));
    QCOMPARE(auditCell(kLogo, AuditModel::Rule), QStringLiteral("exact address"));
    QCOMPARE(auditCell(kLogo, AuditModel::Record), QStringLiteral("2"));
    QCOMPARE(auditCell(kLogo, AuditModel::Time), QStringLiteral("2011-03-01T12:00:00Z"));
    QCOMPARE(auditCell(kLogo, AuditModel::Apart), QStringLiteral("same second"));
    QCOMPARE(auditCell(kLogo, AuditModel::Document), QStringLiteral("1"));
    QCOMPARE(auditCell(kLogo, AuditModel::Hash).size(), 64);
    QVERIFY(auditCell(kLogo, AuditModel::Cache).contains(QStringLiteral("index.dat")));
    QCOMPARE(auditCell(kBack, AuditModel::Rule), QStringLiteral("same path, other query"));
    QCOMPARE(auditCell(kBack, AuditModel::PartUrl), QStringLiteral("http://host/pic/back.gif?v=1"));
    QCOMPARE(auditCell(kGone, AuditModel::State), QStringLiteral("Marked place: not in any cache"));
    QVERIFY(auditCell(kGone, AuditModel::Record).isEmpty());
    if (const QString folder = qEnvironmentVariable("NV_SHOTS"); !folder.isEmpty()) {
        audit().scrollTo(model().index(0, model().columnCount() - 1));
        m_form->grab().save(folder + QStringLiteral("/audit-exact.png"));
    }
    const auto ink = [this](int row) { return model().index(row, 0).data(Qt::ForegroundRole); };
    QVERIFY(!ink(kLogo).isValid());
    QVERIFY(ink(kBack).isValid() && ink(kGone).isValid() && ink(kBack) != ink(kGone));
}

void ExactRebuildTest::theAuditIsThatOfTheMethod() {
    rebuildExactly();
    QCOMPARE(model().headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(),
             QStringLiteral("Element"));
    trigger(*m_form, "actRebuildByClassic");
    QVERIFY(waitFor([this] { return auditCell(0, AuditModel::Element) == "no such column"; }));
    QCOMPARE(model().headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(),
             QStringLiteral("Original Value"));
    QVERIFY(!child<QAction>(*m_form, "actChooseOtherPart").isEnabled());
    QVERIFY(!child<QAction>(*m_form, "actGoToDocument").isEnabled());
}

void ExactRebuildTest::aPageWithoutReferencesIsNoFailure() {
    choose(4);
    trigger(*m_form, "actRebuildExactly");
    QCOMPARE(method(4), std::string("Cache, exact"));
    auto &viewers = child<QTabWidget>(*m_form, "viewerTabs");
    viewers.setCurrentWidget(&child<AuditPane>(*m_form, "AuditPane"));
    QVERIFY(waitFor([this] {
        return child<QLabel>(*m_form, "labAudit").text() ==
               QStringLiteral("The page was rebuilt exactly. It names no parts.");
    }));
}

void ExactRebuildTest::theAuditLeadsToTheRecord() {
    rebuildExactly();
    audit().setCurrentIndex(model().index(kBack, 0));
    QTest::keyClick(&audit(), Qt::Key_Return);
    QCOMPARE(grid().currentUrl(), UrlId{3});
    choose(1);
    openAudit(3);
    audit().setCurrentIndex(model().index(kLogo, 0));
    child<QAction>(*m_form, "actGoToPart").trigger();
    QCOMPARE(grid().currentUrl(), UrlId{2});
    choose(1);
    openAudit(3);
    audit().setCurrentIndex(model().index(kGone, 0));
    QVERIFY(!child<QAction>(*m_form, "actGoToPart").isEnabled());
}

void ExactRebuildTest::anotherPartIsChosenAndTakenBack() {
    rebuildExactly();
    answer(kBack, [](PartChoiceForm &form) {
        QCOMPARE(list(form).topLevelItemCount(), 3);
        QCOMPARE(list(form).currentItem()->text(0), QStringLiteral("Automatic"));
        QCOMPARE(list(form).topLevelItem(1)->text(0), QStringLiteral("3"));
        QCOMPARE(list(form).topLevelItem(1)->text(1), QStringLiteral("same path, other query"));
        QVERIFY(child<QLabel>(form, "labPartQuestion")
                    .text()
                    .contains(QStringLiteral("http://host/pic/back.gif?v=2")));
        take(form, QStringLiteral("Nothing"));
    });
    QVERIFY(waitFor([this] {
        return auditCell(kBack, AuditModel::Rule) == QStringLiteral("left out by the examiner");
    }));
    QVERIFY(auditCell(kBack, AuditModel::Record).isEmpty());
    trigger(*m_form, "actRebuildExactly"); // it is kept
    QVERIFY(waitFor([this] { return model().rowCount() == 3; }));
    QCOMPARE(auditCell(kBack, AuditModel::Rule), QStringLiteral("left out by the examiner"));
    answer(kBack, [](PartChoiceForm &form) {
        QCOMPARE(list(form).currentItem()->text(0), QStringLiteral("Nothing"));
        take(form, QStringLiteral("Automatic"));
    });
    QVERIFY(waitFor([this] {
        return auditCell(kBack, AuditModel::Rule) == QStringLiteral("same path, other query");
    }));
}

void ExactRebuildTest::aRecordOfAnyAddressCanBeTyped() {
    rebuildExactly();
    answer(kGone, [](PartChoiceForm &form) {
        auto &other = child<QLineEdit>(form, "txtOtherPart");
        other.setText(QStringLiteral("77"));
        QVERIFY(!list(form).isEnabled());
        form.accept();
        QVERIFY(form.isVisible());
        QCOMPARE(child<QLabel>(form, "labPartProblem").text(),
                 QStringLiteral("The project has no record 77."));
        other.setText(QStringLiteral("5"));
        form.accept();
    });
    QVERIFY(waitFor([this] {
        return auditCell(kGone, AuditModel::Rule) == QStringLiteral("chosen by the examiner");
    }));
    QCOMPARE(auditCell(kGone, AuditModel::Record), QStringLiteral("5"));
    QCOMPARE(auditCell(kGone, AuditModel::PartUrl), QStringLiteral("http://elsewhere/other.gif"));
    QCOMPARE(project()
                 .execAndGet("SELECT Detail FROM AuditTrail WHERE Action = 'Choose Part'")
                 .getString(),
             std::string("record 1: record 5 stands for http://host/gone.gif"));
    answer(kGone, [](PartChoiceForm &form) {
        QCOMPARE(form.answer(), std::optional(UrlId{5}));
        form.reject();
    });
    // The table may leave that record out.
    child<TableTab>(*m_form, "TableTab").filterByHost(QStringLiteral("host"));
    choose(1);
    openAudit(3);
    audit().setCurrentIndex(model().index(kGone, 0));
    QVERIFY(m_desk->examiner.heard.empty());
    child<QAction>(*m_form, "actGoToPart").trigger();
    QCOMPARE(m_desk->examiner.heard, std::vector<std::string>{"part-record-unavailable"});
}

void ExactRebuildTest::cancelChangesNothing() {
    rebuildExactly();
    answer(kBack, [](PartChoiceForm &form) {
        list(form).setCurrentItem(list(form).topLevelItem(2));
        form.reject();
    });
    trigger(*m_form, "actRebuildExactly");
    QVERIFY(waitFor([this] { return model().rowCount() == 3; }));
    QCOMPARE(auditCell(kBack, AuditModel::Rule), QStringLiteral("same path, other query"));
}

void ExactRebuildTest::theGallerySaysTheMethod() {
    trigger(*m_form, "actRebuildExactly");
    project().exec("UPDATE URLs SET ThumbnailMD5Hash = 'x' WHERE URL_ID IN (1, 4)");
    auto &gallery = child<GalleryTab>(*m_form, "GalleryTab");
    child<QTabWidget>(*m_form, "dataTabs").setCurrentWidget(&gallery);
    auto &tiles = child<QListView>(gallery, "GalleryTiles");
    QVERIFY(waitFor([&] { return tiles.model()->rowCount() == 2; }));
    const auto toolTip = [&](int row) {
        const QString text = tiles.model()->index(row, 0).data(Qt::ToolTipRole).toString();
        return QString(text).replace(QChar(QChar::Nbsp), u' '); // as it is escaped
    };
    QVERIFY2(toolTip(0).contains(QStringLiteral("Rebuilt: Cache, exact")), qPrintable(toolTip(0)));
    QVERIFY(!toolTip(1).contains(QStringLiteral("Rebuilt")));
}

} // namespace nv

QTEST_MAIN(nv::ExactRebuildTest)
#include "exact_rebuild_test.moc"
