#include "ui/import/ImportForm.h"

#include "app/jobs/ImportClaim.h"
#include "app/jobs/ImportJob.h"
#include "app/jobs/ImportText.h"
#include "app/messages/Messages.h"
#include "app/messages/NetworkMessages.h"
#include "app/options/SettingsInForce.h"
#include "app/program/NetworkSwitch.h"
#include "app/project/EvidenceFolders.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"
#include "ui/import/ImportFilesPage.h"
#include "ui/import/ImportZone.h"
#include "ui/import/WizardParts.h"

#include <QBoxLayout>
#include <QStackedWidget>

namespace nv {

namespace fs = std::filesystem;

namespace {

QLabel *newHeading() {
    QLabel *heading = newWizardLabel("labStep");
    QFont large = heading->font();
    large.setBold(true);
    large.setPointSizeF(large.pointSizeF() * 1.2);
    heading->setFont(large);
    return heading;
}

} // namespace

ImportForm::ImportForm(Program &program, const fs::path &start, ChooseFolder chooseFolder,
                       QWidget *parent, ChoosePage choosePage)
    : QDialog(parent), m_program(program),
      m_choice(new ImportChoicePage(program.import, start, program.state.rootPath,
                                    std::move(chooseFolder))),
      m_files(new ImportFilesPage(program)),
      m_summary(new ImportSummaryPane(program, std::move(choosePage))), m_pages(new QStackedWidget),
      m_heading(newHeading()) {
    setObjectName(QStringLiteral("ImportForm"));
    setWindowTitle(tr("Import"));
    // Blocks the main window only: the status window's Cancel button has to stay live.
    setWindowModality(Qt::WindowModal);
    resizeWithinScreen(*this, {860, 560});
    connect(m_files, &ImportFilesPage::changed, this, &ImportForm::showButtons);
    connect(m_summary, &ImportSummaryPane::wanted, this, [this](AfterSummary what) {
        m_afterwards = what;
        accept();
    });
    m_pages->setObjectName(QStringLiteral("importPages"));
    m_pages->addWidget(m_choice);
    m_pages->addWidget(m_files);
    m_pages->addWidget(m_summary);

    auto *column = new QVBoxLayout(this);
    column->addWidget(m_heading);
    column->addWidget(m_pages, 1);
    column->addWidget(newButtons());
    showStep(Choose);
}

QWidget *ImportForm::newButtons() {
    m_cancel = newWizardButton("btnCancel", tr("Cancel"));
    m_back = newWizardButton("btnBack", tr("<< &Back"));
    m_next = newWizardButton("btnNext", {});
    connect(m_cancel, &QPushButton::clicked, this, &ImportForm::reject);
    connect(m_back, &QPushButton::clicked, this, [this] { showStep(Choose); });
    connect(m_next, &QPushButton::clicked, this, &ImportForm::nextBtnClick);

    auto *buttons = new QWidget;
    auto *row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_cancel);
    row->addStretch();
    row->addWidget(m_back);
    row->addWidget(m_next);
    return buttons;
}

void ImportForm::reject() {
    if (m_files->isScanning())
        m_files->cancelScan();
    else if (!m_running)
        QDialog::reject();
}

void ImportForm::showStep(Step step) {
    m_pages->setCurrentIndex(step);
    m_heading->setText(step == Choose  ? tr("Choose the evidence and what to look for")
                       : step == Files ? tr("Files To Be Imported")
                                       : tr("What the import has found"));
    showButtons();
    m_next->setDefault(true);
}

void ImportForm::showButtons() {
    const int step = m_pages->currentIndex();
    m_back->setEnabled(step == Files && !m_files->isScanning());
    m_next->setText(step == Finish ? tr("Finished") : tr("Next >>"));
    m_next->setEnabled(!m_files->isScanning() && (step != Files || m_files->hasChosen()));
    m_cancel->setEnabled(step != Finish);
}

void ImportForm::nextBtnClick() {
    const auto step = static_cast<Step>(m_pages->currentIndex());
    const auto failure = failureOf(m_program.log, "ImportForm.NextBtn_Click()", [&] {
        if (step == Choose)
            startScan();
        else if (step == Files)
            importFiles();
        else
            accept();
    });
    if (failure)
        m_program.around.examiner.tell(messages::importFailed(*failure));
}

/// A project among the evidence would change what other tools see of it.
bool ImportForm::startingDirectoryIsUsable() {
    const std::string &start = m_program.import.startingDirectory;
    if (start.empty())
        m_program.around.examiner.tell(messages::startingDirectoryMissing());
    else if (!fs::exists(start))
        m_program.around.examiner.tell(messages::startingDirectoryGone());
    else if (liesInEvidence(m_program.state.projectDBPath, start))
        m_program.around.examiner.tell(
            messages::liesInEvidence(m_program.state.projectDBPath, start));
    else
        return true;
    return false;
}

void ImportForm::startScan() {
    ImportSettings &job = m_program.import;
    m_choice->applyTo(job);
    keepFlag(m_program, "ParseAdvancedMetaData", job.parseAdvancedMetadata);
    keepFlag(m_program, "ThumbnailsWhileImporting", job.makeThumbnails);
    keepFlag(m_program, "ClassicOnly", job.classicOnly);
    if (!startingDirectoryIsUsable())
        return;
    requireZones(m_program);
    requireSchema(m_program);
    showStep(Files);
    const ScanResult result = m_files->scanEvidence();
    if (m_files->found() > 0 || result.cancelled)
        return;
    m_program.around.examiner.tell(messages::nothingToImport());
    // What could not be read is listed on this page.
    if (result.gaps.unreadable.empty())
        showStep(Choose);
}

/// A connection that can't be disabled leaves the examiner in the wizard, to decide anew.
bool ImportForm::goesOnDespiteNetwork() {
    if (networkConnectionStatus(m_program) != "ENABLED")
        return true;
    const Answer answer = m_program.around.examiner.ask(messages::networkDetected());
    if (answer != Answer::Yes)
        return answer == Answer::No;
    const bool done = toggleNetworkConnection(m_program, ConnectionState::disabled, Quiet::no);
    if (done)
        m_program.around.examiner.tell(messages::networkDisabled());
    return done;
}

/// A project keeps the base folder of its first import, since its rows are found by it, until
/// another one is named.
void ImportForm::chooseBase() {
    const fs::path named = m_choice->baseFolder();
    const fs::path start = fs::canonical(m_program.import.startingDirectory);
    const fs::path base = !named.empty()            ? fs::canonical(named)
                          : fs::is_directory(start) ? start
                                                    : start.parent_path();
    if (base != m_program.state.rootPath)
        setRootPath(m_program, base);
    keepEvidenceFolder(m_program, start);
}

void ImportForm::importFiles() {
    if (!goesOnDespiteNetwork() || !m_files->zone().take())
        return;
    m_files->leaveOutUnchosen();
    m_program.import.cancelImport = false;
    runImport();
}

void ImportForm::runImport() {
    m_running = true;
    setEnabled(false);
    ImportSummary summary;
    const auto failure = failureOf(m_program.log, "ImportForm.ImportFiles()", [&] {
        const ImportClaim claim(m_program.state.projectDBPath);
        chooseBase();
        const OpenTask task(m_program.task, {}, fromQt(tr("Import")));
        summary = runImportJob(m_program, m_program.task, m_program.state.tempFolderPath);
    });
    if (failure)
        m_summary->showFailure(*failure);
    else
        m_summary->load(ImportScope::last, summaryText(summary));
    m_imported = true;
    m_running = false;
    setEnabled(true);
    if (const std::string reason = failure.value_or(summary.failure); !reason.empty())
        m_program.around.examiner.tell(messages::importFailed(reason));
    showStep(Finish);
}

} // namespace nv
