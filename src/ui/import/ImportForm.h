#pragma once

#include "app/program/Program.h"
#include "ui/import/ImportChoicePage.h"
#include "ui/import/ImportProject.h"
#include "ui/import/ImportSummaryPane.h"

#include <QDialog>

#include <filesystem>
#include <functional>
#include <vector>

class QLabel;
class QPushButton;
class QStackedWidget;

namespace nv {

class ImportFilesPage;

/// What the wizard asks the window for.
struct ImportNeeds {
    ChooseFolder chooseFolder;
    /// A project that may be written is open, or is made now as it is asked for, outside of these
    /// places. False, and told, when there is none.
    std::function<bool(const std::vector<std::filesystem::path> &places, const AskedProject &asked)>
        project;
    ChooseProject chooseProject;
    ChoosePage choosePage = choosePageByDialog; ///< for the summary
};

/// The import wizard: choose evidence and types; scan and choose from what was found; finish. A
/// project is needed only for the last step.
class ImportForm final : public QDialog {
    Q_OBJECT

  public:
    /// `places` are the folders and files that are offered first; may be none.
    ImportForm(Program &program, const std::vector<std::filesystem::path> &places,
               ImportNeeds needs, QWidget *parent = nullptr);

    /// Shows it, with what was found: looks for that where it hasn't been done.
    void check();
    /// Shows it and imports what is chosen.
    void importChecked();
    /// Of a check that found something: "3 of 4 files, 12,345 bytes"; else empty.
    QString checkedText() const;
    /// Files are chosen, and only the import is missing.
    bool isReady() const;
    std::vector<std::filesystem::path> places() const { return m_choice->places(); }

    /// True when files were read, so that the table has to be loaded anew.
    bool imported() const { return m_imported; }
    /// What the examiner wants to go on with after it.
    AfterSummary next() const { return m_afterwards; }
    /// Cancel: of the scan while it runs, otherwise of the wizard.
    void reject() override;

  protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

  private:
    enum Step { Choose, Files, Finish };

    QWidget *newButtons();
    void showStep(Step step);
    void showButtons();
    void nextBtnClick();
    /// Runs nextBtnClick() when the window is there.
    void showAndGoOn(bool goesOn);
    /// Sets may have come or gone since it was shown last.
    void offerHashSets();
    void startScan();
    bool placesAreUsable();
    void importFiles();
    void runImport();
    bool goesOnDespiteNetwork();
    void chooseBase();
    std::filesystem::path offeredBase() const;

    Program &m_program;
    ImportNeeds m_needs;
    std::filesystem::path m_firstBase; ///< the project's base folder as the page was filled
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
    bool m_isKept = false; ///< closing it loses nothing
};

} // namespace nv
