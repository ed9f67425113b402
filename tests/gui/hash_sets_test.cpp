#include "app/program/ProjectHold.h"
#include "db/marks/RecordTags.h"
#include "gui/LimitedTable.h"
#include "gui/PlacesTree.h"
#include "support/builders/IndexDat.h"
#include "ui/frame/Theme.h"
#include "ui/import/ImportForm.h"
#include "ui/limits/FilterForm.h"
#include "ui/limits/HashSetForm.h"
#include "ui/limits/HashSetsForm.h"
#include "ui/limits/PlacesPane.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeView>
#include <QTreeWidget>
#include <SQLiteCpp/Database.h>

// Hash sets in the window: their dialog, the chips, and the tree among the places.
namespace nv {

using namespace test;

class HashSetsTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup() { m_on.reset(); }

    void aSetIsMadeMatchedAndRemoved();
    void aMatchSaysWhatItCouldNotCompare();
    void whatMakesNoSetIsTold();
    void knownFilesAreHiddenAndComeBack();
    void placesCountSetsAndLimit();
    void theFiltersOfferTagsAndSets();
    void setsAreMadeWithoutAProject();
    void theWizardLooksIntoThem();
    void aProjectThatIsReadOnlySaysWhy();
    void saveAsKeepsWhatWasFound();
    void itLooksRight_data();
    void itLooksRight();

  private:
    /// Runs `act` on the dialog of hash sets.
    void inForm(const std::function<void(HashSetsForm &)> &act) {
        whenShown<HashSetsForm>([act](HashSetsForm &form) {
            act(form);
            if (form.isVisible())
                form.reject();
        });
        trigger(m_on->form, "actHashSets");
    }
    /// Makes a set through the dialogs.
    void add(HashSetsForm &form, const std::string &name, bool notable, const std::string &list) {
        m_on->desk.dialogs.lists = {m_on->desk.folder.write("lists/" + name + ".md5", list)};
        whenShown<HashSetForm>([&](HashSetForm &order) {
            QVERIFY2(!child<QDialogButtonBox>(order, "").button(QDialogButtonBox::Ok)->isEnabled(),
                     "nothing is chosen yet");
            child<QPushButton>(order, "btnChooseHashLists").click();
            child<QRadioButton>(order, notable ? "optHashSetNotable" : "optHashSetKnown").click();
            order.accept();
        });
        child<QPushButton>(form, "btnAddHashSet").click();
    }
    static QTreeWidget &list(HashSetsForm &form) { return child<QTreeWidget>(form, "lstHashSets"); }
    static QStringList lineOf(HashSetsForm &form, const QString &name) {
        const auto found = list(form).findItems(name, Qt::MatchExactly);
        QStringList cells;
        for (int column = 0; !found.isEmpty() && column < 4; ++column)
            cells += found.front()->text(column);
        return cells;
    }
    QTreeView &tree() { return child<QTreeView>(m_on->form, "PlacesTree"); }
    QModelIndex placeOf(const QString &name) { return placeIn(tree(), name); }
    void click(const QString &name, Qt::KeyboardModifiers keys = Qt::NoModifier) {
        clickPlace(tree(), name, keys);
    }
    void matchBoth() {
        inForm([this](HashSetsForm &form) {
            add(form, "library", false, m_hashes.at(0) + "\n" + m_hashes.at(1) + "\n");
            add(form, "cases", true, m_hashes.at(1) + "\n");
            child<QPushButton>(form, "btnMatchHashSets").click();
        });
    }

    std::unique_ptr<LimitedTable> m_on;
    std::vector<std::string> m_hashes; ///< of rows 1 and 2
};

void HashSetsTest::init() {
    m_on = std::make_unique<LimitedTable>();
    m_hashes = {"900150983cd24fb0d6963f7d28e17f72", "d41d8cd98f00b204e9800998ecf8427e"};
    for (std::size_t row = 0; row < m_hashes.size(); ++row)
        m_on->project().exec("INSERT INTO RecordFacts VALUES (" + std::to_string(row + 1) +
                             ", 'content_md5', '" + m_hashes[row] + "', NULL)");
}

void HashSetsTest::aSetIsMadeMatchedAndRemoved() {
    m_on->desk.examiner.script = {Answer::No, Answer::Yes};
    inForm([this](HashSetsForm &form) {
        QVERIFY(child<QLabel>(form, "labNoHashSets").isVisible());
        QVERIFY(!child<QPushButton>(form, "btnMatchHashSets").isEnabled());
        add(form, "library", false, m_hashes.at(0) + "\n" + m_hashes.at(1) + "\nno hash\n");
        QVERIFY(child<QLabel>(form, "labHashSetsNote").text().contains(QStringLiteral("line 3")));
        QCOMPARE(lineOf(form, QStringLiteral("library")),
                 (QStringList{QStringLiteral("library"), QStringLiteral("known"),
                              QStringLiteral("2"), QStringLiteral("0")}));
        child<QPushButton>(form, "btnMatchHashSets").click();
        QCOMPARE(lineOf(form, QStringLiteral("library")).at(3), QStringLiteral("2"));
        const QString told = child<QLabel>(form, "labHashSetsNote").text();
        QVERIFY2(told.startsWith(QStringLiteral("Compared: 2 of %1 records, those with a hash. "
                                                "Found in a set: 2.")
                                     .arg(m_on->all)),
                 qPrintable(told));
        QVERIFY2(told.endsWith(QStringLiteral("library (known): 2 records")), qPrintable(told));
        auto &remove = child<QPushButton>(form, "btnRemoveHashSet");
        remove.click();
        QVERIFY2(remove.isEnabled(), "the answer was no");
        remove.click();
        QCOMPARE(lineOf(form, QStringLiteral("library")).at(2), QString());
        QVERIFY(!remove.isEnabled() && !child<QPushButton>(form, "btnMatchHashSets").isEnabled());
        child<QPushButton>(form, "btnHashSetRows").click();
        QVERIFY(!form.isVisible());
    });
    QTRY_COMPARE(m_on->rows(), 2);
    QVERIFY(m_on->chip(QStringLiteral("In hash set: library")));
    QCOMPARE(m_on->project()
                 .execAndGet("SELECT count(*) FROM AuditTrail WHERE Action = 'Hash Set'")
                 .getInt(),
             1);
}

void HashSetsTest::aMatchSaysWhatItCouldNotCompare() {
    m_on->project().exec("DELETE FROM RecordFacts WHERE Name LIKE 'content%'");
    m_on->project().exec("UPDATE URLs SET CacheFileExists = 1 WHERE URL_ID = 1");
    inForm([this](HashSetsForm &form) {
        add(form, "cases", true, m_hashes.at(0) + "\n");
        child<QPushButton>(form, "btnMatchHashSets").click();
        const QString told = child<QLabel>(form, "labHashSetsNote").text();
        QVERIFY2(told.startsWith(QStringLiteral("Nothing was compared: of ")), qPrintable(told));
        QVERIFY2(told.contains(QStringLiteral("hash sets\" ticked in the wizard")),
                 qPrintable(told));
        QVERIFY2(told.contains(QStringLiteral("nothing to hash: ")), qPrintable(told));
        QVERIFY2(told.endsWith(QStringLiteral("cases (notable): 0 records")), qPrintable(told));
        if (const QString shots = qEnvironmentVariable("NV_SHOTS"); !shots.isEmpty())
            form.grab().save(shots + QStringLiteral("/hash-sets-nothing.png"));
    });
}

void HashSetsTest::whatMakesNoSetIsTold() {
    inForm([this](HashSetsForm &form) {
        add(form, "text", false, "not a hash\n");
        QCOMPARE(list(form).topLevelItemCount(), 0);
        QCOMPARE(m_on->desk.examiner.heard.back(), std::string("no-hash-found"));
        add(form, "cases", true, m_hashes.at(0) + "\n");
        m_on->desk.examiner.script = {Answer::No};
        add(form, "cases", false, m_hashes.at(0) + "\n");
        QCOMPARE(lineOf(form, QStringLiteral("cases")).at(1), QStringLiteral("notable"));
        QCOMPARE(m_on->desk.examiner.heard.back(), std::string("replace-hash-set"));
    });
}

void HashSetsTest::knownFilesAreHiddenAndComeBack() {
    matchBoth();
    auto *hide = m_on->form.findChild<QAction *>(QStringLiteral("actHideKnown"));
    QVERIFY(hide->isEnabled() && !hide->isChecked());
    hide->trigger();
    QCOMPARE(m_on->rows(), m_on->all - 1); // the other is notable too
    QCOMPARE(m_on->chips(), QStringList{QStringLiteral("Limit: Known files hidden")});
    trigger(m_on->form, "actUndo");
    QCOMPARE(m_on->rows(), m_on->all);
    QVERIFY(!hide->isChecked());
    trigger(m_on->form, "actRedo");
    QVERIFY(hide->isChecked());
    m_on->chip(QStringLiteral("Known files hidden"))->click();
    QTRY_COMPARE(m_on->rows(), m_on->all);
    QVERIFY(!hide->isChecked());
    hide->trigger();
    trigger(m_on->form, "actClose");
    QVERIFY(!hide->isChecked() && !hide->isEnabled());
}

void HashSetsTest::placesCountSetsAndLimit() {
    trigger(m_on->form, "actPlaces");
    QTRY_COMPARE(tree().model()->rowCount(), 4);
    matchBoth();
    QTRY_COMPARE(tree().model()->rowCount(), 5);
    tree().expandAll();
    const auto records = [this](const char *name) {
        return placeOf(QLatin1String(name))
            .siblingAtColumn(PlacesModel::kRecords)
            .data()
            .toString();
    };
    QCOMPARE(records("notable"), QStringLiteral("1"));
    QCOMPARE(records("library"), QStringLiteral("2"));
    click(QStringLiteral("library"));
    QCOMPARE(m_on->rows(), 2);
    QVERIFY(placeOf(QStringLiteral("library")).data(Qt::FontRole).value<QFont>().bold());
    click(QStringLiteral("notable"));
    QCOMPARE(m_on->rows(), 1);
    click(QStringLiteral("library"), Qt::ControlModifier);
    QCOMPARE(m_on->rows(), 2);
    QVERIFY(m_on->chip(QStringLiteral("In hash set: any notable set or library")));
    tree().setCurrentIndex(placeOf(QStringLiteral("known")));
    emit tree().customContextMenuRequested(
        tree().visualRect(placeOf(QStringLiteral("known"))).center());
    child<QAction>(child<QMenu>(m_on->form, "PopupMenuPlaces"), "actWithoutPlace").trigger();
    child<QMenu>(m_on->form, "PopupMenuPlaces").close();
    QTRY_COMPARE(m_on->rows(), 1);
    QCOMPARE(m_on->chips().size(), 2);
    QVERIFY(placeOf(QStringLiteral("known")).data(Qt::FontRole).value<QFont>().strikeOut());
    child<QToolButton>(m_on->form, "btnClearLimits").click();
    QTRY_COMPARE(m_on->rows(), m_on->all);
}

void HashSetsTest::theFiltersOfferTagsAndSets() {
    matchBoth();
    NamedTags tags(m_on->project());
    const NamedTag tag =
        tags.add({.tagID = 0, .name = "Important", .color = {}, .position = 0, .note = {}});
    Unwatched nobody;
    QVERIFY(RecordTags(m_on->project()).set(tag.tagID, RowIds{1, 3}, {}, nobody));
    trigger(m_on->form, "actRefresh");
    whenShown<FilterForm>([](FilterForm &form) {
        auto &named = child<QComboBox>(form, "cbNamedTag");
        QCOMPARE(named.currentIndex(), 0);
        named.setCurrentIndex(named.findText(QStringLiteral("Important")));
        form.accept();
    });
    trigger(m_on->form, "actFilters");
    QCOMPARE(m_on->rows(), 2);
    QVERIFY(m_on->chip(QStringLiteral("Tag: Important")));
    whenShown<FilterForm>([](FilterForm &form) {
        QCOMPARE(child<QComboBox>(form, "cbNamedTag").currentText(), QStringLiteral("Important"));
        auto &sets = child<QComboBox>(form, "cbHashSet");
        sets.setCurrentIndex(sets.findText(QStringLiteral("library")));
        form.accept();
    });
    trigger(m_on->form, "actFilters");
    QCOMPARE(m_on->rows(), 1);
    QCOMPARE(m_on->chips().size(), 2);
    whenShown<FilterForm>([](FilterForm &form) {
        QCOMPARE(child<QComboBox>(form, "cbHashSet").currentText(), QStringLiteral("library"));
        child<QComboBox>(form, "cbNamedTag").setCurrentIndex(0);
        child<QComboBox>(form, "cbHashSet").setCurrentIndex(0);
        child<QCheckBox>(form, "chkHideKnown").click();
        form.accept();
    });
    trigger(m_on->form, "actFilters");
    QCOMPARE(m_on->rows(), m_on->all - 1);
    QCOMPARE(m_on->chips(), QStringList{QStringLiteral("Limit: Known files hidden")});
    trigger(m_on->form, "actUndo");
    QCOMPARE(m_on->rows(), 1);
}

void HashSetsTest::setsAreMadeWithoutAProject() {
    trigger(m_on->form, "actClose");
    inForm([this](HashSetsForm &form) {
        QVERIFY(child<QLabel>(form, "labHashSetsWhy").isVisible());
        add(form, "cases", true, m_hashes.at(0) + "\n");
        QVERIFY(!child<QPushButton>(form, "btnMatchHashSets").isEnabled());
        QCOMPARE(lineOf(form, QStringLiteral("cases")).at(3), QString());
    });
}

void HashSetsTest::aProjectThatIsReadOnlySaysWhy() {
    matchBoth();
    trigger(m_on->form, "actClose");
    const fs::path project = m_on->desk.folder.path() / "case.nvp";
    const ProjectHold other(project, Front::window, m_on->desk.clock);
    m_on->desk.examiner.script = {Answer::Yes};
    m_on->desk.dialogs.answer = project;
    trigger(m_on->form, "actOpen");
    QVERIFY(m_on->desk.program.state.projectDB.isReadOnly());
    inForm([](HashSetsForm &form) {
        QVERIFY(child<QLabel>(form, "labHashSetsWhy").text().contains(QStringLiteral("reading")));
        QVERIFY(!child<QPushButton>(form, "btnMatchHashSets").isEnabled());
        QCOMPARE(lineOf(form, QStringLiteral("library")).at(3), QStringLiteral("2"));
    });
}

void HashSetsTest::saveAsKeepsWhatWasFound() {
    matchBoth();
    m_on->desk.dialogs.answer = m_on->desk.folder.path() / "copy.nvp";
    trigger(m_on->form, "actSaveAs");
    m_on->form.findChild<QAction *>(QStringLiteral("actHideKnown"))->trigger();
    QTRY_COMPARE(m_on->rows(), m_on->all - 1);
    UrlTable &table = *m_on->tab().table();
    QCOMPARE(table.cell(*table.placeOf(UrlId{2}), UrlColumn::HashSets),
             std::string("notable: cases; known: library"));
}

/// Classic content has no hash unless an import looks into the sets.
void HashSetsTest::theWizardLooksIntoThem() {
    const fs::path cache = m_on->desk.folder.path() / "evidence2";
    fs::create_directories(cache);
    IndexDat index;
    index.folder("ABCDEFGH");
    index.add({.url = "http://a.example/known.txt",
               .secondDate = fileTime(2011, 3, 1, 12),
               .fileSize = 3,
               .folder = 0,
               .fileName = "known.txt"});
    m_on->desk.folder.write("evidence2/index.dat", index.bytes());
    m_on->desk.folder.write("evidence2/ABCDEFGH/known.txt", "abc");
    const auto inWizard = [this](const std::function<void(ImportForm &, QCheckBox &)> &act) {
        whenShown<ImportForm>([&act](ImportForm &wizard) {
            act(wizard, child<QCheckBox>(wizard, "chkHashSetsWhileImporting"));
            wizard.reject();
        });
        trigger(m_on->form, "actImport");
    };
    inWizard([](ImportForm &, QCheckBox &box) {
        QVERIFY(!box.isEnabled() && !box.isChecked());
        QVERIFY(box.toolTip().contains(QStringLiteral("no hash set")));
    });
    inForm([this](HashSetsForm &form) { add(form, "cases", true, m_hashes.at(0) + "\n"); });
    inWizard([&cache](ImportForm &wizard, QCheckBox &box) {
        QVERIFY(box.isEnabled() && !box.isChecked());
        box.click();
        child<QLineEdit>(wizard, "txtStartingDirectory").setText(pathToQt(cache));
        auto &next = child<QPushButton>(wizard, "btnNext");
        next.click();
        next.click();
        QCOMPARE(next.text(), QStringLiteral("Finished"));
        next.click();
    });
    QCOMPARE(m_on->project()
                 .execAndGet("SELECT count(*) FROM URLs JOIN RecordFacts USING (URL_ID) WHERE "
                             "Name = 'hashset_notable' AND URL LIKE '%known.txt'")
                 .getInt(),
             1);
    inWizard([](ImportForm &, QCheckBox &box) { QVERIFY2(box.isChecked(), "it is remembered"); });
    inForm([this](HashSetsForm &form) {
        m_on->desk.examiner.script = {Answer::Yes};
        list(form).setCurrentItem(list(form).topLevelItem(0));
        child<QPushButton>(form, "btnRemoveHashSet").click();
    });
    inWizard([](ImportForm &, QCheckBox &box) { QVERIFY(!box.isEnabled() && !box.isChecked()); });
    QVERIFY2(m_on->desk.program.settings.readIniValue("BEYOND", "HashSetsWhileImporting", false),
             "a choice that wasn't offered isn't changed");
}

void HashSetsTest::itLooksRight_data() {
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void HashSetsTest::itLooksRight() {
    const QString folder = qEnvironmentVariable("NV_SHOTS");
    if (folder.isEmpty())
        QSKIP("NV_SHOTS names no folder for pictures");
    QFETCH(bool, dark);
    applyTheme(dark ? Theme::Dark : Theme::Light);
    const QString end =
        (dark ? QStringLiteral("-dark") : QStringLiteral("-light")) + QStringLiteral(".png");
    trigger(m_on->form, "actPlaces");
    inForm([&](HashSetsForm &form) {
        form.grab().save(folder + QStringLiteral("/hash-sets-empty") + end);
        add(form, "library", false, m_hashes.at(0) + "\n" + m_hashes.at(1) + "\nno hash\n");
        add(form, "cases of this year", true, m_hashes.at(1) + "\n");
        child<QPushButton>(form, "btnMatchHashSets").click();
        form.grab().save(folder + QStringLiteral("/hash-sets") + end);
        whenShown<HashSetForm>([&](HashSetForm &order) {
            order.grab().save(folder + QStringLiteral("/hash-set-new") + end);
            child<QPushButton>(order, "btnChooseHashLists").click();
            order.grab().save(folder + QStringLiteral("/hash-set-chosen") + end);
            order.reject();
        });
        child<QPushButton>(form, "btnAddHashSet").click();
    });
    QTRY_COMPARE(tree().model()->rowCount(), 5);
    tree().expandAll();
    m_on->form.findChild<QAction *>(QStringLiteral("actHideKnown"))->trigger();
    QTest::qWait(50);
    m_on->form.grab().save(folder + QStringLiteral("/hash-sets-window") + end);
    QTimer::singleShot(0, qApp, [&] {
        auto *filters = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        filters->grab().save(folder + QStringLiteral("/hash-sets-filters") + end);
        filters->reject();
    });
    trigger(m_on->form, "actFilters");
    m_on->form.resize(960, 540);
    QTest::qWait(50);
    m_on->form.grab().save(folder + QStringLiteral("/hash-sets-window-small") + end);
    applyTheme(Theme::System);
}

} // namespace nv

QTEST_MAIN(nv::HashSetsTest)
#include "hash_sets_test.moc"
