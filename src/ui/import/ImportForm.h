#pragma once

#include "app/program/Program.h"
#include "import/Scan.h"
#include "ui/import/ImportChoicePage.h"
#include "ui/import/WizardTask.h"

#include <QDialog>

class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QStackedWidget;
class QTableView;

namespace nv {

class FoundFilesModel;

/// The import wizard: choose folder and types; scan and choose from the list; finish. A project
/// must be open.
class ImportForm final : public QDialog {
    Q_OBJECT

  public:
    /// `start` is the folder or file that is offered first; may be empty.
    ImportForm(Program &program, const std::filesystem::path &start, ChooseFolder chooseFolder,
               QWidget *parent = nullptr);
    ~ImportForm() override;
    ImportForm(const ImportForm &) = delete;
    ImportForm &operator=(const ImportForm &) = delete;

    /// True when files were read, so that the table has to be loaded anew.
    bool imported() const { return m_imported; }
    /// Cancel: of the scan while it runs, otherwise of the wizard.
    void reject() override;

  private:
    enum Step { Choose, Files, Finish };

    QWidget *newFilesPage();
    QWidget *newZoneRow();
    QWidget *newFinishPage();
    QWidget *newButtons();
    void showStep(Step step);
    void nextBtnClick();
    void back();
    void startScan();
    bool startingDirectoryIsUsable();
    ScanResult runScan();
    void showScan(const ScanResult &result);
    void runImport();
    bool goesOnDespiteNetwork();
    void chooseBase();
    void importFiles();
    void suggestZone();
    void chooseZone();
    void showZone();
    bool takeZone();

    Program &m_program;
    ImportChoicePage *m_choice = nullptr;
    FoundFilesModel *m_files = nullptr;
    QStackedWidget *m_pages = nullptr;
    QTableView *m_grid = nullptr;
    QLabel *m_heading = nullptr;
    QLabel *m_scanStep = nullptr;
    QLabel *m_scanFolder = nullptr;
    QLabel *m_gaps = nullptr;
    QLabel *m_zone = nullptr;
    QLabel *m_zoneHint = nullptr;
    QProgressBar *m_scanBar = nullptr;
    QPlainTextEdit *m_summary = nullptr;
    QPushButton *m_back = nullptr;
    QPushButton *m_next = nullptr;
    QPushButton *m_cancel = nullptr;
    std::string m_zoneKey;            ///< the zone that the project gets with the import
    WizardTask *m_scanTask = nullptr; ///< while the scan runs
    bool m_running = false;           ///< files are being read
    bool m_imported = false;
};

} // namespace nv
