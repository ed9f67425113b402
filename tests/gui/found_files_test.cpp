// What was found is shown by its places before it is imported, and the zone is asked.
#include "app/program/Zones.h"
#include "gui/Desk.h"
#include "ui/import/FoundFilesModel.h"
#include "ui/import/ImportForm.h"
#include "ui/import/WizardTask.h"
#include "ui/table/TableTab.h"
#include "views/overview/FoundTree.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTreeView>
#include <SQLiteCpp/SQLiteCpp.h>

namespace nv {

using namespace test;

class FoundFilesTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();
    void theTreeGoesFromEvidenceToFiles();
    void aTickOnAPlaceIsOneOnItsFiles();
    void someTicksAreAPartialOne();
    void whatIsNotReadYetHasNoTick();
    void spaceTicksByKey();
    void whatIsUntickedIsNotImported();
    void aHundredThousandFilesTickQuickly();
    void theSearchTellsHowItGoesOn();
    void theZoneOfANewProjectIsAsked();
    void theZoneOfALaterImportIsOnlyShown();

  private:
    /// Two people on one disk, with one file of a format that isn't read yet.
    fs::path makeDisk();
    /// Scans it in the wizard, which is looked at, and imports or not.
    void check(const fs::path &evidence, const std::function<void(ImportForm &)> &look,
               bool imports);
    static FoundFilesModel &modelOf(ImportForm &wizard) {
        return *wizard.findChild<FoundFilesModel *>();
    }
    /// The line of that name, wherever it is.
    static QModelIndex named(const QAbstractItemModel &model, const QString &name,
                             const QModelIndex &below = {});
    std::string inProject(const std::string &sql) {
        return m_desk->program.state.projectDB.connection().execAndGet(sql).getString();
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void FoundFilesTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->show();
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
}

void FoundFilesTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

fs::path FoundFilesTest::makeDisk() {
    for (const char *user : {"ada", "bob"}) {
        const std::string local = std::string("disk/Users/") + user + "/AppData/Local/Microsoft/";
        IndexDat index;
        index.add({.url = std::string("Visited: ") + user + "@http://a.example/",
                   .secondDate = fileTime(2011, 3, 1, 12)});
        m_desk->folder.write(local + "Windows/History/History.IE5/index.dat", index.bytes());
        m_desk->folder.write(local + "Edge/User Data/Default/Sessions/Session_1", "SNSS");
    }
    return m_desk->folder.path() / "disk";
}

void FoundFilesTest::check(const fs::path &evidence, const std::function<void(ImportForm &)> &look,
                           bool imports) {
    whenShown<ImportForm>([&](ImportForm &wizard) {
        child<QLineEdit>(wizard, "txtStartingDirectory")
            .setText(QString::fromStdString(evidence.string()));
        auto &next = child<QPushButton>(wizard, "btnNext");
        next.click();
        look(wizard);
        if (!imports)
            return wizard.reject();
        next.click();
        next.click();
    });
    trigger(*m_form, "actImport");
}

QModelIndex FoundFilesTest::named(const QAbstractItemModel &model, const QString &name,
                                  const QModelIndex &below) {
    for (int row = 0; row < model.rowCount(below); ++row) {
        const QModelIndex index = model.index(row, 0, below);
        if (index.data().toString() == name)
            return index;
        if (const QModelIndex found = named(model, name, index); found.isValid())
            return found;
    }
    return {};
}

void FoundFilesTest::theTreeGoesFromEvidenceToFiles() {
    check(
        makeDisk(),
        [](ImportForm &wizard) {
            const FoundFilesModel &model = modelOf(wizard);
            QStringList names;
            QModelIndex at = named(model, QStringLiteral("index.dat"));
            QVERIFY(model.isFile(at));
            QVERIFY(at.siblingAtColumn(FoundFilesModel::Path).data().toString().contains("/ada/"));
            for (; at.isValid(); at = at.parent())
                names.prepend(at.data().toString());
            QCOMPARE(names.mid(1),
                     (QStringList{QStringLiteral("ada"), QStringLiteral("Internet Explorer"),
                                  QStringLiteral("IE History"), QStringLiteral("index.dat")}));
            QVERIFY(names.first().endsWith(QStringLiteral("/disk")));
            auto &tree = child<QTreeView>(wizard, "ImportGrid");
            const QModelIndex kind = named(model, QStringLiteral("IE History"));
            QVERIFY(tree.isExpanded(kind.parent()));
            QVERIFY(!tree.isExpanded(kind));
            const QModelIndex ada = named(model, QStringLiteral("ada"));
            QCOMPARE(ada.siblingAtColumn(FoundFilesModel::Files).data().toString(),
                     QStringLiteral("2"));
            QCOMPARE(ada.data(Qt::AccessibleTextRole).toString(), QStringLiteral("Person: ada"));
        },
        false);
}

void FoundFilesTest::aTickOnAPlaceIsOneOnItsFiles() {
    check(
        makeDisk(),
        [](ImportForm &wizard) {
            FoundFilesModel &model = modelOf(wizard);
            const auto &total = child<QLabel>(wizard, "labFoundTotal");
            QVERIFY(total.text().startsWith(QStringLiteral("To be imported: 2 of 4 files, ")));
            QVERIFY(total.text().contains(QStringLiteral("not read yet, and only named")));
            const QModelIndex all = model.index(0, 0);
            QVERIFY(model.setData(all, Qt::Unchecked, Qt::CheckStateRole));
            QCOMPARE(model.chosen().files, std::size_t{0});
            QCOMPARE(total.text().left(29), QStringLiteral("To be imported: 0 of 4 files,"));
            QVERIFY(!child<QPushButton>(wizard, "btnNext").isEnabled());
            QVERIFY(model.setData(all, Qt::Checked, Qt::CheckStateRole));
            QCOMPARE(model.chosen().files, std::size_t{2});
        },
        false);
}

void FoundFilesTest::someTicksAreAPartialOne() {
    check(
        makeDisk(),
        [](ImportForm &wizard) {
            FoundFilesModel &model = modelOf(wizard);
            const QModelIndex ada = named(model, QStringLiteral("ada"));
            QSignalSpy told(&model, &QAbstractItemModel::dataChanged);
            model.setData(ada, Qt::Unchecked, Qt::CheckStateRole);
            QCOMPARE(named(model, QStringLiteral("index.dat")).data(Qt::CheckStateRole).toInt(),
                     int(Qt::Unchecked));
            QCOMPARE(ada.parent().data(Qt::CheckStateRole).toInt(), int(Qt::PartiallyChecked));
            QVERIFY(told.count() >= 3); // below it, itself, above it
            model.setData(ada.parent(), Qt::Checked, Qt::CheckStateRole);
            QCOMPARE(ada.data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        },
        false);
}

void FoundFilesTest::whatIsNotReadYetHasNoTick() {
    check(
        makeDisk(),
        [](ImportForm &wizard) {
            FoundFilesModel &model = modelOf(wizard);
            const QModelIndex session = named(model, QStringLiteral("Chromium session"));
            QVERIFY(session.isValid());
            QVERIFY(!session.data(Qt::CheckStateRole).isValid());
            QVERIFY(!model.setData(session, Qt::Checked, Qt::CheckStateRole));
            QCOMPARE(session.siblingAtColumn(FoundFilesModel::Note).data().toString(),
                     QStringLiteral("not read yet"));
            QCOMPARE(model.index(0, FoundFilesModel::Note).data().toString(),
                     QStringLiteral("2 not read yet"));
        },
        false);
}

void FoundFilesTest::spaceTicksByKey() {
    check(
        makeDisk(),
        [](ImportForm &wizard) {
            FoundFilesModel &model = modelOf(wizard);
            auto &tree = child<QTreeView>(wizard, "ImportGrid");
            tree.setFocus();
            QCOMPARE(tree.currentIndex(), model.index(0, 0));
            QTest::keyClick(&tree, Qt::Key_Down);
            QCOMPARE(tree.currentIndex(), named(model, QStringLiteral("ada")));
            QTest::keyClick(&tree, Qt::Key_Space);
            QCOMPARE(model.chosen().files, std::size_t{1});
            QTest::keyClick(&tree, Qt::Key_Space);
            QCOMPARE(model.chosen().files, std::size_t{2});
        },
        false);
}

void FoundFilesTest::whatIsUntickedIsNotImported() {
    check(
        makeDisk(),
        [](ImportForm &wizard) {
            FoundFilesModel &model = modelOf(wizard);
            model.setData(named(model, QStringLiteral("bob")), Qt::Unchecked, Qt::CheckStateRole);
        },
        true);
    QCOMPARE(inProject("SELECT group_concat(DISTINCT Person) FROM URLs"), std::string("ada"));
    QCOMPARE(inProject("SELECT count(*) FROM SourceFiles WHERE Successful = 1"), std::string("1"));
}

void FoundFilesTest::aHundredThousandFilesTickQuickly() {
    HistoryFiles files;
    for (int i = 0; i < 100'000; ++i) {
        HistoryFile file;
        file.fullPath = "/disk/Users/u" + std::to_string(i % 20) + "/pages/" + std::to_string(i);
        file.fileName = std::to_string(i);
        file.historyFileType = HistoryFileType::simpleHTML;
        file.fileSize = 10;
        files.add(file);
    }
    FoundTree tree;
    Unwatched task;
    MemoryLog log;
    QCOMPARE(groupFound(files, {{.path = "/disk"}}, task, log, tree), Walk::Finished);
    QElapsedTimer clock;
    clock.start();
    FoundFilesModel model;
    model.setFiles(files, tree);
    QTreeView view;
    view.setUniformRowHeights(true);
    view.setModel(&model);
    view.expandAll();
    QVERIFY(model.setData(model.index(0, 0), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(model.chosen().files, std::size_t{0});
    QVERIFY(model.setData(model.index(0, 0), Qt::Checked, Qt::CheckStateRole));
    QCOMPARE(model.chosen().bytes, std::uint64_t{1'000'000});
    model.setData(named(model, QStringLiteral("7")), Qt::Unchecked, Qt::CheckStateRole);
    model.prune(files);
    QCOMPARE(files.count(), std::size_t{99'999});
    QVERIFY2(clock.elapsed() < 20'000, "a development build on a busy machine");
}

/// Nobody knows how many folders there are before they were listed.
void FoundFilesTest::theSearchTellsHowItGoesOn() {
    constexpr int kPump = 60; // milliseconds: longer than the step of its texts
    double now = 100;
    WizardTask task([&now] { return now; });
    QCOMPARE(task.pace(), QStringLiteral("0:00 elapsed"));
    TaskStep step;
    step.bottomCounter = 250;
    task.show(step);
    for (int second = 0; second < 75; second += 5) {
        now = 100 + second;
        QTest::qWait(second < 15 ? kPump : 1);
        QVERIFY(task.advance(0));
    }
    now = 175;
    QCOMPARE(task.pace(), QStringLiteral("250 files seen, 1:15 elapsed"));
    for (int percent = 1; percent <= 20; ++percent) {
        now += 1;
        QTest::qWait(kPump);
        QVERIFY(task.advance(percent / 100.0));
    }
    QVERIFY2(task.pace().startsWith(QStringLiteral("250 files seen, about 1 minute")),
             qPrintable(task.pace()));
    QVERIFY(task.pace().endsWith(QStringLiteral("left")));
    check(
        makeDisk(),
        [](ImportForm &wizard) { QVERIFY(!child<QLabel>(wizard, "labScanPace").isVisible()); },
        false);
}

void FoundFilesTest::theZoneOfANewProjectIsAsked() {
    const fs::path disk = makeDisk();
    m_desk->folder.write("disk/etc/timezone", "Asia/Kathmandu\n");
    check(
        disk,
        [](ImportForm &wizard) {
            auto &asked = child<QComboBox>(wizard, "cbImportZone");
            QVERIFY(asked.isVisible());
            QVERIFY(child<QLabel>(wizard, "labZoneQuestion").isVisible());
            QCOMPARE(asked.currentText(), QStringLiteral("Asia/Kathmandu (named by the evidence)"));
            QVERIFY(child<QLabel>(wizard, "labZoneMeaning")
                        .text()
                        .contains(QStringLiteral("12:00 UTC is 17:45 (+0545)")));
            asked.setFocus();
            asked.setCurrentIndex(asked.findData(QStringLiteral("UTC")));
            emit asked.activated(asked.currentIndex());
            QCOMPARE(child<QLabel>(wizard, "labImportZone").text(),
                     QStringLiteral("Times are shown in: UTC"));
            QVERIFY(child<QLabel>(wizard, "labZoneMeaning")
                        .text()
                        .contains(QStringLiteral("12:00 UTC is 12:00 (UTC)")));
        },
        true);
    QCOMPARE(zoneKey(m_desk->program.state.gmtZone), std::string("UTC"));
}

void FoundFilesTest::theZoneOfALaterImportIsOnlyShown() {
    const fs::path disk = makeDisk();
    check(
        disk, [](ImportForm &) {}, true);
    check(
        disk,
        [](ImportForm &wizard) {
            QVERIFY(!child<QComboBox>(wizard, "cbImportZone").isVisible());
            QVERIFY(child<QLabel>(wizard, "labImportZone").isVisible());
            QVERIFY(child<QPushButton>(wizard, "btnChooseZone").isVisible());
        },
        false);
}

} // namespace nv

QTEST_MAIN(nv::FoundFilesTest)
#include "found_files_test.moc"
