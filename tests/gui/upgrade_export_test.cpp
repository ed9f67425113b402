#include "Desk.h"
#include "base/Files.h"
#include "ui/maintenance/UpgradeWizardForm.h"
#include "ui/reports/ExportForm.h"
#include "ui/table/TableTab.h"

#include <QAction>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMap>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>

namespace nv {

using namespace test;

class UpgradeExportTest : public QObject {
    Q_OBJECT

  private slots:
    void theWizardFindsAndFixesADifference();
    void aProjectThatFitsOffersNoFix();
    void aScanThatFailsIsToldAndOffersNoFix();
    void theOpenProjectIsClosedForTheWizardAndOpenedAfterIt();
    void anExportWritesWhatTheDialogSays();
    void cachedContentsLeaveAsAWebArchive();
    void anEmptyPathStopsTheExport();
    void cancelInTheDialogWritesNothing();
    void aNameFollowsItsFormat();
    void noKeysMeanTwoCommands();

  private:
    static void click(QWidget &parent, const char *name) {
        QTest::mouseClick(&child<QAbstractButton>(parent, name), Qt::LeftButton);
    }
    static bool asked(const Desk &desk, const char *id) {
        return std::ranges::find(desk.examiner.heard, id) != desk.examiner.heard.end();
    }
    static fs::path closedProject(Desk &desk, MainForm &form, const char *sql) {
        openExample(desk, form);
        trigger(form, "actClose");
        const fs::path project = desk.folder.path() / "case.nvp";
        SQLite::Database(project.string(), SQLite::OPEN_READWRITE).exec(sql);
        return project;
    }
    static std::string text(const fs::path &file) {
        return std::string(ByteView(readWhole(file)).raw());
    }
};

void UpgradeExportTest::theWizardFindsAndFixesADifference() {
    Desk desk;
    MainForm form(desk.program, desk.dialogs);
    const fs::path project = closedProject(
        desk, form, "DROP INDEX URLIndex; CREATE TABLE Mine (a); INSERT INTO Mine VALUES (1)");
    desk.dialogs.answer = project;
    whenShown<UpgradeWizardForm>([&](UpgradeWizardForm &wizard) {
        auto &grid = child<QTableWidget>(wizard, "vsGrid");
        QVERIFY(!child<QPushButton>(wizard, "FixBtn").isEnabled());
        click(wizard, "ScanBtn");
        QCOMPARE(grid.rowCount(), 1);
        QCOMPARE(grid.item(0, 2)->text(), QStringLiteral("URLIndex"));
        QCOMPARE(grid.item(0, 3)->text(), QStringLiteral("Missing"));
        QCOMPARE(child<QLabel>(wizard, "labUpgradeStatus").text(),
                 QStringLiteral("Scan complete."));
        QVERIFY(child<QPlainTextEdit>(wizard, "txtLeftBehind").toPlainText().contains("Mine"));
        QVERIFY(asked(desk, "fix-file"));
        QCOMPARE(child<QPushButton>(wizard, "FixBtn").text(), QStringLiteral("Fix Now"));
        QCOMPARE(wizard.focusWidget(), &child<QPushButton>(wizard, "FixBtn"));
        QVERIFY(!child<QProgressBar>(wizard, "barUpgrade").isVisible());
        click(wizard, "FixBtn");
        QCOMPARE(grid.item(0, 3)->text(), QStringLiteral("Fixed!"));
        QVERIFY(!child<QPushButton>(wizard, "FixBtn").isEnabled());
        click(wizard, "btnCancel");
    });
    trigger(form, "actUpgradeWizard");
    QVERIFY(fs::exists(project.native() + ".old"));
}

void UpgradeExportTest::aProjectThatFitsOffersNoFix() {
    Desk desk;
    MainForm form(desk.program, desk.dialogs);
    desk.dialogs.answer = closedProject(desk, form, "SELECT 1 WHERE 0");
    whenShown<UpgradeWizardForm>([&](UpgradeWizardForm &wizard) {
        click(wizard, "ScanBtn");
        QCOMPARE(child<QTableWidget>(wizard, "vsGrid").rowCount(), 0);
        QVERIFY(!child<QPushButton>(wizard, "FixBtn").isEnabled());
        QVERIFY(!asked(desk, "fix-file"));
        click(wizard, "btnCancel");
    });
    trigger(form, "actUpgradeWizard");
}

void UpgradeExportTest::aScanThatFailsIsToldAndOffersNoFix() {
    Desk desk;
    MainForm form(desk.program, desk.dialogs);
    desk.dialogs.answer = desk.folder.write("cut.nvp", "SQLite format 3");
    whenShown<UpgradeWizardForm>([&](UpgradeWizardForm &wizard) {
        click(wizard, "ScanBtn");
        QVERIFY(asked(desk, "scan-error"));
        QCOMPARE(child<QLabel>(wizard, "labUpgradeStatus").text(),
                 QStringLiteral("The scan failed."));
        QCOMPARE(child<QPushButton>(wizard, "ScanBtn").text(), QStringLiteral("Scan"));
        QVERIFY(!child<QPushButton>(wizard, "FixBtn").isEnabled());
        QTest::keyClick(&wizard, Qt::Key_Escape);
        QVERIFY(!wizard.isVisible());
    });
    trigger(form, "actUpgradeWizard");
}

void UpgradeExportTest::theOpenProjectIsClosedForTheWizardAndOpenedAfterIt() {
    Desk desk;
    MainForm form(desk.program, desk.dialogs);
    openExample(desk, form);
    trigger(form, "actUpgradeWizard");
    QVERIFY(asked(desk, "upgrade-closes-project"));
    QVERIFY(desk.program.state.projectDB.isOpen());
    desk.examiner.script = {Answer::Yes};
    whenShown<UpgradeWizardForm>([&](UpgradeWizardForm &wizard) {
        QVERIFY(!desk.program.state.projectDB.isOpen());
        click(wizard, "btnCancel");
    });
    trigger(form, "actUpgradeWizard");
    QVERIFY(desk.program.state.projectDB.isOpen());
    QVERIFY(child<TableTab>(form, "TableTab").table()->rowCount() > 0);
}

void UpgradeExportTest::anExportWritesWhatTheDialogSays() {
    Desk desk;
    MainForm form(desk.program, desk.dialogs);
    openExample(desk, form);
    const fs::path out = desk.folder.path() / "rows.txt";
    whenShown<ExportForm>([&](ExportForm &dialog) {
        auto &list = child<QListWidget>(dialog, "List1");
        QCOMPARE(list.item(0)->text(), QStringLiteral("Index"));
        click(dialog, "chkAll");
        click(dialog, "chkAll");
        for (int row = 0; row < list.count(); ++row)
            if (list.item(row)->text() == QStringLiteral("URL"))
                list.item(row)->setCheckState(Qt::Checked);
        QTest::keyClicks(&child<QLineEdit>(dialog, "txtOutputFilename"),
                         QString::fromStdString(out.string()));
        dialog.accept();
    });
    trigger(form, "actExport");
    QVERIFY(asked(desk, "columns-exported"));
    QVERIFY(text(out).starts_with("URL\r\n"));
    QVERIFY(text(out).find("http://a.example/") != std::string::npos);
}

void UpgradeExportTest::cachedContentsLeaveAsAWebArchive() {
    Desk desk;
    MainForm form(desk.program, desk.dialogs);
    openExample(desk, form);
    const fs::path out = desk.folder.path() / "rows.warc";
    whenShown<ExportForm>([&](ExportForm &dialog) {
        QVERIFY(child<QWidget>(dialog, "boxColumns").isEnabled());
        auto &formats = child<QComboBox>(dialog, "cbFormat");
        formats.setCurrentIndex(static_cast<int>(ExportFormat::warc));
        QVERIFY(formats.currentText().contains(QStringLiteral("WARC")));
        QVERIFY(!child<QWidget>(dialog, "boxColumns").isEnabled());
        QTest::keyClicks(&child<QLineEdit>(dialog, "txtOutputFilename"),
                         QString::fromStdString(out.string()));
        dialog.accept();
    });
    trigger(form, "actExport");
    QVERIFY(asked(desk, "columns-exported"));
    QVERIFY(text(out).starts_with("WARC/1.1\r\nWARC-Type: warcinfo\r\n"));
}

void UpgradeExportTest::anEmptyPathStopsTheExport() {
    Desk desk;
    MainForm form(desk.program, desk.dialogs);
    openExample(desk, form);
    whenShown<ExportForm>([&](ExportForm &dialog) {
        dialog.accept();
        QVERIFY(dialog.isVisible());
        QVERIFY(asked(desk, "export-path-missing"));
        QTest::keyClicks(&child<QLineEdit>(dialog, "txtOutputFilename"),
                         QString::fromStdString((desk.folder.path() / "case.nvp").string()));
        dialog.accept();
        QVERIFY(asked(desk, "export-refused"));
        dialog.reject();
    });
    trigger(form, "actExport");
}

void UpgradeExportTest::cancelInTheDialogWritesNothing() {
    Desk desk;
    MainForm form(desk.program, desk.dialogs);
    openExample(desk, form);
    const fs::path out = desk.folder.path() / "rows.txt";
    whenShown<ExportForm>([&](ExportForm &dialog) {
        child<QLineEdit>(dialog, "txtOutputFilename").setText(QString::fromStdString(out.string()));
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    trigger(form, "actExport");
    QVERIFY(!fs::exists(out));
    QVERIFY(!asked(desk, "columns-exported"));
}

void UpgradeExportTest::aNameFollowsItsFormat() {
    Export job;
    Answers examiner;
    job.columnsAsString = "Index|Index;URL|COL_URL_VALUE;";
    ExportForm form(job, 3, {}, examiner);
    auto &name = child<QLineEdit>(form, "txtOutputFilename");
    auto &formats = child<QComboBox>(form, "cbFormat");
    name.setText(QStringLiteral("/nowhere/rows.txt"));
    formats.setCurrentIndex(2);
    QCOMPARE(name.text(), QStringLiteral("/nowhere/rows.jsonl"));
    QVERIFY(!child<QWidget>(form, "opDelimiter").isEnabled());
    auto &names = child<QComboBox>(form, "cbNames");
    QVERIFY(names.isEnabled());
    names.setCurrentIndex(1);
    formats.setCurrentIndex(4);
    QCOMPARE(name.text(), QStringLiteral("/nowhere/rows.warc.gz"));
    formats.setCurrentIndex(0);
    QCOMPARE(name.text(), QStringLiteral("/nowhere/rows.txt"));
    form.show();
    child<QAbstractButton>(form, "opDelimiter3").click();
    child<QAbstractButton>(form, "opRowsTagged").click();
    form.accept();
    QCOMPARE(job.delimiter, std::string("\t"));
    QVERIFY(!job.exportAllRows);
    QVERIFY(!names.isEnabled());
    QCOMPARE(job.names, FieldNames::classic);
    QCOMPARE(job.outputFileExt, std::string("txt"));
    QCOMPARE(job.selectedColumns.count(), std::size_t{2});
}

/// Keys of two commands run neither.
void UpgradeExportTest::noKeysMeanTwoCommands() {
    Desk desk;
    MainForm form(desk.program, desk.dialogs);
    QMap<QString, QString> commands;
    for (const QAction *action : form.findChildren<QAction *>()) {
        if (action->shortcutContext() != Qt::WindowShortcut || action->shortcut().isEmpty())
            continue;
        const QString keys = action->shortcut().toString();
        QVERIFY2(!commands.contains(keys),
                 qPrintable(keys + u' ' + commands.value(keys) + u' ' + action->objectName()));
        commands.insert(keys, action->objectName());
    }
    QVERIFY(commands.size() > 5);
}

} // namespace nv

QTEST_MAIN(nv::UpgradeExportTest)
#include "upgrade_export_test.moc"
