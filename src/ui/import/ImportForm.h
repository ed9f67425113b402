#pragma once

#include "app/program/Program.h"
#include "ui/import/ImportChoicePage.h"
#include "ui/import/ImportSummaryPane.h"

#include <QDialog>

class QLabel;
class QPushButton;
class QStackedWidget;

namespace nv {

class ImportFilesPage;

/// The import wizard: choose folder and types; scan and choose from the list; finish. A project
/// must be open.
class ImportForm final : public QDialog {
    Q_OBJECT

  public:
    /// `start` is the folder or file that is offered first; may be empty.
    ImportForm(Program &program, const std::filesystem::path &start, ChooseFolder chooseFolder,
               QWidget *parent = nullptr, ChoosePage choosePage = choosePageByDialog);

    /// True when files were read, so that the table has to be loaded anew.
    bool imported() const { return m_imported; }
    /// What the examiner wants to go on with after it.
    AfterSummary next() const { return m_afterwards; }
    /// Cancel: of the scan while it runs, otherwise of the wizard.
    void reject() override;

  private:
    enum Step { Choose, Files, Finish };

    QWidget *newButtons();
    void showStep(Step step);
    void showButtons();
    void nextBtnClick();
    void startScan();
    bool startingDirectoryIsUsable();
    void importFiles();
    void runImport();
    bool goesOnDespiteNetwork();
    void chooseBase();

    Program &m_program;
    ImportChoicePage *m_choice;
    ImportFilesPage *m_files;
    ImportSummaryPane *m_summary;
    AfterSummary m_afterwards = AfterSummary::table;
    QStackedWidget *m_pages;
    QLabel *m_heading;
    QPushButton *m_back = nullptr;
    QPushButton *m_next = nullptr;
    QPushButton *m_cancel = nullptr;
    bool m_running = false; ///< files are being read
    bool m_imported = false;
};

} // namespace nv
