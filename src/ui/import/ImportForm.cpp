#include "ui/import/ImportForm.h"

#include "app/jobs/ImportClaim.h"
#include "app/jobs/ImportJob.h"
#include "app/jobs/ImportText.h"
#include "app/jobs/ThumbnailJob.h"
#include "app/jobs/ZoneJob.h"
#include "app/messages/Messages.h"
#include "app/messages/NetworkMessages.h"
#include "app/options/SettingsInForce.h"
#include "app/program/NetworkSwitch.h"
#include "app/program/Zones.h"
#include "app/project/EvidenceFolders.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "readers/Evidence.h"
#include "ui/import/FoundFilesModel.h"
#include "ui/views/ZoneForm.h"
#include "views/CellText.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableView>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// What the scan could not look at, a line each; empty when there is nothing of the kind.
QString gapsText(const ScanResult &result) {
    QStringList gaps;
    if (result.cancelled)
        gaps += ImportForm::tr("The scan was cancelled: the list ends where it stopped.");
    if (!result.gaps.unreadable.empty())
        gaps += ImportForm::tr("Folders or files that could not be read: %L1, the first one %2")
                    .arg(result.gaps.unreadable.size())
                    .arg(toQt(displayText(textOf(result.gaps.unreadable.front().path))));
    if (result.gaps.linksNotFollowed > 0)
        gaps +=
            ImportForm::tr("Links that were not followed: %L1").arg(result.gaps.linksNotFollowed);
    if (result.gaps.shaderCaches > 0)
        gaps +=
            ImportForm::tr("Shader caches that were passed over, as they hold no addresses: %L1")
                .arg(result.gaps.shaderCaches);
    return gaps.join(u'\n');
}

} // namespace

void ImportForm::reject() {
    if (m_scanTask)
        m_scanTask->cancel();
    else if (!m_running)
        QDialog::reject();
}

void ImportForm::showStep(Step step) {
    m_pages->setCurrentIndex(step);
    const bool last = step == Finish;
    m_back->setEnabled(step == Files && !m_scanTask);
    m_next->setText(last ? tr("Finished") : tr("Next >>"));
    m_next->setEnabled(!m_scanTask && (step != Files || m_files->validCount() > 0));
    m_cancel->setEnabled(!last);
    m_heading->setText(step == Choose  ? tr("Choose the evidence and what to look for")
                       : step == Files ? tr("Files To Be Imported")
                                       : tr("What the import has found"));
    m_next->setDefault(true);
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

void ImportForm::back() {
    showStep(Choose);
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
    job.historyFiles.clear();
    m_files->setFiles(job.historyFiles);
    m_gaps->clear();
    showScan(runScan());
}

ScanResult ImportForm::runScan() {
    WizardTask task;
    connect(&task, &WizardTask::stepped, this, [this](const QString &what, const QString &where) {
        m_scanStep->setText(what);
        m_scanFolder->setText(where);
    });
    connect(&task, &WizardTask::advanced, this,
            [this](double fraction) { m_scanBar->setValue(static_cast<int>(fraction * 100)); });
    m_scanTask = &task;
    m_scanBar->setVisible(true);
    showStep(Files);
    ScanResult result;
    const auto failure = failureOf(m_program.log, "ImportForm.NextBtn_Click()",
                                   [&] { result = scan(m_program.import, task, m_program.log); });
    m_scanTask = nullptr;
    m_scanBar->setVisible(false);
    if (failure)
        m_program.around.examiner.tell(messages::importFailed(*failure));
    return result;
}

/// What the evidence says is taken before the first import; later the project has its zone, and is
/// only told.
void ImportForm::suggestZone() {
    if (m_zoneKey.empty())
        m_zoneKey = keyInList(m_program);
    QStringList told;
    bool isTaken = lastRow(m_program) > 0;
    const ImportSettings &job = m_program.import;
    for (const ZoneHint &hint :
         knownZoneHints(m_program, job.startingDirectory, job.historyFiles)) {
        told += tr("The evidence names the zone %1 (%2).")
                    .arg(toQt(hint.zone), toQt(displayText(textOf(hint.file))));
        if (!isTaken)
            m_zoneKey = hint.zone;
        isTaken = true;
    }
    m_zoneHint->setText(told.join(u'\n'));
    m_zoneHint->setVisible(!told.isEmpty());
    showZone();
}

void ImportForm::chooseZone() {
    ZoneForm dialog(m_program, m_zoneKey, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_zoneKey = dialog.key();
    showZone();
}

void ImportForm::showZone() {
    m_zone->setText(tr("Times are shown in: %1").arg(zoneName(m_program, m_zoneKey)));
}

/// False when the examiner is to choose again.
bool ImportForm::takeZone() {
    return m_zoneKey == keyInList(m_program) || changeZone(m_program, m_zoneKey, m_program.task);
}

void ImportForm::showScan(const ScanResult &result) {
    ImportSettings &job = m_program.import;
    job.historyFiles = result.historyFiles;
    job.gaps = result.gaps;
    m_files->setFiles(job.historyFiles);
    suggestZone();
    m_scanFolder->clear();
    m_scanStep->setText(tr("Files found: %L1").arg(m_files->rowCount()));
    const QString gaps = gapsText(result);
    m_gaps->setText(gaps);
    m_gaps->setVisible(!gaps.isEmpty());
    showStep(Files);
    if (m_files->rowCount() == 0 && !result.cancelled) {
        m_program.around.examiner.tell(messages::nothingToImport());
        // What could not be read is listed on this page.
        showStep(result.gaps.unreadable.empty() ? Choose : Files);
    }
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
    if (!goesOnDespiteNetwork() || !takeZone())
        return;
    m_files->prune(m_program.import.historyFiles);
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
        const OpenTask task(m_program.task, {});
        summary = runImportJob(m_program, m_program.task, m_program.state.tempFolderPath);
    });
    m_imported = true;
    m_running = false;
    setEnabled(true);
    if (const std::string reason = failure.value_or(summary.failure); !reason.empty())
        m_program.around.examiner.tell(messages::importFailed(reason));
    m_summary->setPlainText(toQt(summaryText(summary)));
    showStep(Finish);
}

} // namespace nv
