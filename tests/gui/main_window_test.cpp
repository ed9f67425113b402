#include "app/jobs/ImportClaim.h"
#include "app/project/Project.h"
#include "db/project/ProjectFields.h"
#include "gui/Desk.h"
#include "ui/frame/CaseTrailForm.h"
#include "ui/import/FoundFilesModel.h"
#include "ui/import/ImportForm.h"
#include "ui/table/ColumnsForm.h"
#include "ui/table/TableTab.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <QWindow>
#include <SQLiteCpp/SQLiteCpp.h>

// The window as an examiner uses it: with clicks and keys, on evidence that the test makes.
namespace nv {

namespace fs = std::filesystem;
using namespace test;

class MainWindowTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        m_desk = std::make_unique<Desk>();
        m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
        m_form->resize(1200, 800);
        m_form->show();
    }
    void cleanup() {
        m_form.reset();
        m_desk.reset();
    }

    void withoutAProjectTheWindowSaysWhatToDo();
    void theWizardImportsWithClicks();
    void aProjectAmongTheEvidenceGetsNoImport();
    void anImportBesideAnotherIsRefused();
    void theWizardMakesThumbnailsWhenItsBoxIsTicked();
    void theWizardKeepsTheChoiceOfTheClassicRules();
    void theWizardRefusesAFolderThatIsNotThere();
    void anUntickedFileIsNotRead();
    void cancelWorksAboveTheWizard();
    void aClickOnAHeadingSorts();
    void spaceAndClickTick();
    void theLayoutOutlivesCloseAndOpen();
    void theColumnsDialogHidesAColumn();
    void textsOfEvidenceAreNeverMarkup();
    void theHostBoxNarrowsTheRows();
    void sortsThatFailAreToldAndKeepTheRows();
    void theCaseTrailTellsOfTheImport();
    void exitAsks();

  private:
    void importEvidence();
    UrlGrid &grid() { return child<TableTab>(*m_form, "TableTab").grid(); }
    QString cell(int row, UrlColumn column) {
        return grid().model()->index(row, UrlModel::sectionOf(column)).data().toString();
    }
    std::string inProject(const std::string &sql) {
        return m_desk->program.state.projectDB.connection().execAndGet(sql).getString();
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void MainWindowTest::withoutAProjectTheWindowSaysWhatToDo() {
    QVERIFY(!child<QLabel>(*m_form, "labWelcomeHint").text().isEmpty());
    QVERIFY(m_form->findChild<QAction *>(QStringLiteral("actNew"))->isEnabled());
    QCOMPARE(m_form->windowTitle(), QStringLiteral("Norvelane"));
}

static FoundFilesModel &foundFiles(ImportForm &wizard) {
    return *wizard.findChild<FoundFilesModel *>();
}

/// The folder that the wizard's first step asks for.
static void startAt(ImportForm &wizard, const fs::path &evidence) {
    child<QLineEdit>(wizard, "txtStartingDirectory")
        .setText(QString::fromStdString(evidence.string()));
}

void MainWindowTest::importEvidence() {
    const fs::path evidence = makeEvidence(m_desk->folder);
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    whenShown<ImportForm>([evidence](ImportForm &wizard) {
        startAt(wizard, evidence);
        auto &next = child<QPushButton>(wizard, "btnNext");
        QCOMPARE(next.text(), QStringLiteral("Next >>"));
        QTest::mouseClick(&next, Qt::LeftButton);
        QCOMPARE(foundFiles(wizard).found(), std::size_t{3});
        QCOMPARE(next.text(), QStringLiteral("&Import >>"));
        QTest::mouseClick(&next, Qt::LeftButton);
        QCOMPARE(next.text(), QStringLiteral("Finished"));
        QVERIFY(child<QPlainTextEdit>(wizard, "txtSummary")
                    .toPlainText()
                    .contains(QStringLiteral("not read yet")));
        QTest::mouseClick(&next, Qt::LeftButton);
    });
    trigger(*m_form, "actImport");
}

void MainWindowTest::theWizardImportsWithClicks() {
    importEvidence();
    QCOMPARE(grid().model()->rowCount(), 6);
    QCOMPARE(inProject("SELECT count(*) FROM URLs"), std::string("6"));
    QCOMPARE(inProject("SELECT count(*) FROM SourceFiles WHERE Successful = 1"), std::string("2"));
    QVERIFY(!m_desk->program.task.isOpen);
}

void MainWindowTest::aProjectAmongTheEvidenceGetsNoImport() {
    const fs::path evidence = makeEvidence(m_desk->folder);
    m_desk->dialogs.answer = evidence / "case.nvp";
    trigger(*m_form, "actNew"); // which can't know what will be imported
    whenShown<ImportForm>([this, evidence](ImportForm &wizard) {
        startAt(wizard, evidence);
        QTest::mouseClick(&child<QPushButton>(wizard, "btnNext"), Qt::LeftButton);
        QCOMPARE(m_desk->examiner.heard.back(), std::string("lies-in-evidence"));
        QCOMPARE(foundFiles(wizard).found(), std::size_t{0});
        QTest::mouseClick(&child<QPushButton>(wizard, "btnCancel"), Qt::LeftButton);
    });
    trigger(*m_form, "actImport");
    QCOMPARE(inProject("SELECT count(*) FROM URLs"), std::string("0"));
}

void MainWindowTest::anImportBesideAnotherIsRefused() {
    const fs::path evidence = makeEvidence(m_desk->folder);
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    whenShown<ImportForm>([this, evidence](ImportForm &wizard) {
        startAt(wizard, evidence);
        auto &next = child<QPushButton>(wizard, "btnNext");
        QTest::mouseClick(&next, Qt::LeftButton);
        const ImportClaim other(m_desk->folder.path() / "case.nvp");
        QTest::mouseClick(&next, Qt::LeftButton);
        QCOMPARE(m_desk->examiner.heard.back(), std::string("import-failed"));
        QTest::mouseClick(&next, Qt::LeftButton);
    });
    trigger(*m_form, "actImport");
    QCOMPARE(inProject("SELECT count(*) FROM URLs"), std::string("0"));
    QVERIFY(m_desk->program.state.rootPath.empty()); // the other import's base stands
}

void MainWindowTest::theWizardMakesThumbnailsWhenItsBoxIsTicked() {
    Program &program = m_desk->program;
    const fs::path evidence = makeEvidence(m_desk->folder);
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    whenShown<ImportForm>([evidence](ImportForm &wizard) {
        auto &box = child<QCheckBox>(wizard, "chkThumbnailsWhileImporting");
        QVERIFY(!box.isChecked()); // the setting is off
        QVERIFY(box.toolTip().contains(QStringLiteral("slower")));
        QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(10, box.height() / 2));
        QVERIFY(box.isChecked());
        startAt(wizard, evidence);
        QTest::mouseClick(&child<QPushButton>(wizard, "btnNext"), Qt::LeftButton);
        QTest::mouseClick(&child<QPushButton>(wizard, "btnCancel"), Qt::LeftButton);
    });
    trigger(*m_form, "actImport");
    QVERIFY(program.import.makeThumbnails);
    QVERIFY(program.settings.readIniValue("BEYOND", "ThumbnailsWhileImporting", false));
    whenShown<ImportForm>([](ImportForm &wizard) {
        QVERIFY(child<QCheckBox>(wizard, "chkThumbnailsWhileImporting").isChecked());
        QTest::mouseClick(&child<QPushButton>(wizard, "btnCancel"), Qt::LeftButton);
    });
    trigger(*m_form, "actImport");
}

void MainWindowTest::theWizardKeepsTheChoiceOfTheClassicRules() {
    Program &program = m_desk->program;
    const fs::path evidence = makeEvidence(m_desk->folder);
    m_desk->folder.write("evidence/Default/Local Storage/leveldb/CURRENT", "MANIFEST-000001");
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    const auto filesWith = [&](bool classic) {
        int files = 0;
        whenShown<ImportForm>([&](ImportForm &wizard) {
            auto &box = child<QCheckBox>(wizard, "chkClassicOnly");
            QVERIFY(!box.toolTip().isEmpty());
            if (box.isChecked() != classic)
                QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(10, box.height() / 2));
            startAt(wizard, evidence);
            QTest::mouseClick(&child<QPushButton>(wizard, "btnNext"), Qt::LeftButton);
            files = static_cast<int>(foundFiles(wizard).found());
            QTest::mouseClick(&child<QPushButton>(wizard, "btnCancel"), Qt::LeftButton);
        });
        trigger(*m_form, "actImport");
        return files;
    };
    QVERIFY(!program.import.classicOnly); // the setting is off
    QCOMPARE(filesWith(false), 4);
    QCOMPARE(filesWith(true), 3);
    QVERIFY(program.import.classicOnly);
    QVERIFY(program.settings.readIniValue("BEYOND", "ClassicOnly", false));
}

void MainWindowTest::theWizardRefusesAFolderThatIsNotThere() {
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    whenShown<ImportForm>([](ImportForm &wizard) {
        auto &next = child<QPushButton>(wizard, "btnNext");
        child<QLineEdit>(wizard, "txtStartingDirectory").clear();
        QTest::mouseClick(&next, Qt::LeftButton);
        child<QLineEdit>(wizard, "txtStartingDirectory").setText(QStringLiteral("/nowhere"));
        QTest::mouseClick(&next, Qt::LeftButton);
        QTest::mouseClick(&child<QPushButton>(wizard, "btnCancel"), Qt::LeftButton);
    });
    trigger(*m_form, "actImport");
    QCOMPARE(m_desk->examiner.heard,
             (std::vector<std::string>{"starting-directory-missing", "starting-directory-gone"}));
}

void MainWindowTest::anUntickedFileIsNotRead() {
    const fs::path evidence = makeEvidence(m_desk->folder);
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    whenShown<ImportForm>([evidence](ImportForm &wizard) {
        startAt(wizard, evidence);
        auto &next = child<QPushButton>(wizard, "btnNext");
        QTest::mouseClick(&next, Qt::LeftButton);
        FoundFilesModel &files = foundFiles(wizard);
        QModelIndex file = files.index(0, 0);
        while (!files.isFile(file))
            file = files.index(0, 0, file);
        QVERIFY(files.setData(file, Qt::Unchecked, Qt::CheckStateRole));
        QTest::mouseClick(&next, Qt::LeftButton);
        QTest::mouseClick(&next, Qt::LeftButton);
    });
    trigger(*m_form, "actImport");
    QCOMPARE(inProject("SELECT count(*) FROM SourceFiles"), std::string("2")); // of three
}

void MainWindowTest::cancelWorksAboveTheWizard() {
    test::IndexDat index(1024, 0);
    test::IndexRecord record;
    for (int i = 0; i < 60'000; ++i) {
        record.url = "Visited: mara@http://host.example/" + std::to_string(i);
        index.add(record);
    }
    const fs::path evidence = m_desk->folder.write("many/index.dat", index.bytes()).parent_path();
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    whenShown<ImportForm>([this, evidence](ImportForm &wizard) {
        startAt(wizard, evidence);
        auto &next = child<QPushButton>(wizard, "btnNext");
        QTest::mouseClick(&next, Qt::LeftButton);
        // Through the window and not the button: so a dialog that blocks it is noticed.
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, &wizard, [this, &poll] {
            if (!m_desk->status.isVisible() || m_desk->program.task.topPercent < 1)
                return;
            poll.stop();
            auto &cancel = child<QPushButton>(m_desk->status, "btnCancel");
            QTest::mouseClick(m_desk->status.windowHandle(), Qt::LeftButton, {},
                              cancel.mapTo(&m_desk->status, cancel.rect().center()));
        });
        poll.start(5);
        QTest::mouseClick(&next, Qt::LeftButton);
        QTest::mouseClick(&next, Qt::LeftButton);
    });
    trigger(*m_form, "actImport");
    const int rows = std::stoi(inProject("SELECT count(*) FROM URLs"));
    QVERIFY2(rows > 0 && rows < 60'000, qPrintable(QString::number(rows)));
    QCOMPARE(grid().model()->rowCount(), rows);
}

void MainWindowTest::aClickOnAHeadingSorts() {
    importEvidence();
    QHeaderView *header = grid().horizontalHeader();
    const int section = UrlModel::sectionOf(UrlColumn::Value);
    grid().scrollTo(grid().model()->index(0, section));
    const auto clickHeading = [&] {
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          {header->sectionViewportPosition(section) + 20, header->height() / 2});
    };
    clickHeading();
    const QString first = cell(0, UrlColumn::Value);
    const QString last = cell(5, UrlColumn::Value);
    QVERIFY(first.compare(last, Qt::CaseInsensitive) < 0);
    clickHeading();
    QCOMPARE(cell(0, UrlColumn::Value), last);
    QCOMPARE(cell(5, UrlColumn::Value), first);
}

void MainWindowTest::spaceAndClickTick() {
    importEvidence();
    grid().setCurrentIndex(grid().model()->index(0, UrlModel::sectionOf(UrlColumn::Tag)));
    grid().setFocus();
    QTest::keyClick(&grid(), Qt::Key_Space);
    QCOMPARE(inProject("SELECT count(*) FROM URLs WHERE Tagged = 1"), std::string("1"));
    const QModelIndex second = grid().model()->index(1, UrlModel::sectionOf(UrlColumn::Tag));
    QTest::mouseClick(grid().viewport(), Qt::LeftButton, {},
                      grid().visualRect(second).topLeft() + QPoint(10, 10));
    QCOMPARE(inProject("SELECT count(*) FROM URLs WHERE Tagged = 1"), std::string("2"));
    QCOMPARE(second.data(Qt::CheckStateRole).toInt(), static_cast<int>(Qt::Checked));
}

void MainWindowTest::theLayoutOutlivesCloseAndOpen() {
    importEvidence();
    grid().hideColumn(UrlColumn::Visits);
    QHeaderView *header = grid().horizontalHeader();
    header->moveSection(header->visualIndex(UrlModel::sectionOf(UrlColumn::Host)), 1);
    header->resizeSection(UrlModel::sectionOf(UrlColumn::Host), 333);
    trigger(*m_form, "actClose");
    QCOMPARE(grid().model()->rowCount(), 0);
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actOpen");
    QVERIFY(header->isSectionHidden(UrlModel::sectionOf(UrlColumn::Visits)));
    QCOMPARE(header->visualIndex(UrlModel::sectionOf(UrlColumn::Host)), 1);
    QVERIFY(std::abs(header->sectionSize(UrlModel::sectionOf(UrlColumn::Host)) - 333) <= 2);
    QCOMPARE(grid().model()->rowCount(), 6);
}

void MainWindowTest::theColumnsDialogHidesAColumn() {
    importEvidence();
    whenShown<ColumnsForm>([](ColumnsForm &form) {
        auto &list = child<QListWidget>(form, "lstColumns");
        for (int row = 0; row < list.count(); ++row)
            if (list.item(row)->text() == QStringLiteral("Host"))
                list.item(row)->setCheckState(Qt::Unchecked);
        form.accept();
    });
    trigger(*m_form, "actColumns");
    QVERIFY(grid().horizontalHeader()->isSectionHidden(UrlModel::sectionOf(UrlColumn::Host)));
}

void MainWindowTest::textsOfEvidenceAreNeverMarkup() {
    importEvidence();
    int found = -1;
    for (int row = 0; row < 6; ++row)
        if (cell(row, UrlColumn::Value).contains(QStringLiteral("<b>bold</b>")))
            found = row;
    QVERIFY(found >= 0);
    const QModelIndex index = grid().model()->index(found, UrlModel::sectionOf(UrlColumn::Value));
    const QString tip = index.data(Qt::ToolTipRole).toString();
    QVERIFY(!Qt::mightBeRichText(tip) || tip.contains(QStringLiteral("&lt;b&gt;")));
    for (QLabel *label : m_form->findChildren<QLabel *>())
        QVERIFY2(label->textFormat() != Qt::AutoText || !Qt::mightBeRichText(label->text()),
                 qPrintable(label->objectName()));
}

void MainWindowTest::theHostBoxNarrowsTheRows() {
    importEvidence();
    auto &host = child<QLineEdit>(*m_form, "txtHostFilter");
    host.setFocus();
    QTest::keyClicks(&host, QStringLiteral("a.example"));
    QTest::keyClick(&host, Qt::Key_Return);
    QCOMPARE(grid().model()->rowCount(), 1);
    host.clear();
    QTest::keyClick(&host, Qt::Key_Return);
    QCOMPARE(grid().model()->rowCount(), 6);
}

void MainWindowTest::sortsThatFailAreToldAndKeepTheRows() {
    importEvidence();
    child<TableTab>(*m_form, "TableTab").sortBy(SortChoice::FileSize);
    QCOMPARE(grid().model()->rowCount(), 6);
    QVERIFY(!m_desk->examiner.heard.empty());
}

void MainWindowTest::theCaseTrailTellsOfTheImport() {
    openExample(*m_desk, *m_form);
    whenShown<CaseTrailForm>([&](CaseTrailForm &form) {
        auto &list = child<QTreeWidget>(form, "lstTrail");
        const int before = list.topLevelItemCount();
        QVERIFY(before >= 3);
        QCOMPARE(list.topLevelItem(1)->text(1), QStringLiteral("Import"));
        QCOMPARE(list.topLevelItem(1)->text(7).size(), 64);
        QTest::mouseClick(&child<QPushButton>(form, "btnVerify"), Qt::LeftButton);
        QCOMPARE(m_desk->examiner.heard.back(), std::string("sources-verified"));
        QCOMPARE(list.topLevelItemCount(), before + 1);
        form.reject();
    });
    trigger(*m_form, "actCaseTrail");
}

void MainWindowTest::exitAsks() {
    m_desk->examiner.script = {Answer::No};
    QVERIFY(!m_form->close());
    QCOMPARE(m_desk->examiner.heard.back(), std::string("exit-program"));
    m_desk->examiner.script = {Answer::Yes};
    QVERIFY(m_form->close());
}

} // namespace nv

QTEST_MAIN(nv::MainWindowTest)
#include "main_window_test.moc"
