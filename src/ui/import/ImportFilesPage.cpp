#include "ui/import/ImportFilesPage.h"

#include "app/messages/Messages.h"
#include "base/Files.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "ui/import/FoundFilesModel.h"
#include "ui/import/ImportZone.h"
#include "ui/import/WizardParts.h"
#include "ui/views/GridCopy.h"
#include "views/CellText.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QProgressBar>
#include <QTableView>

namespace nv {

namespace {

/// What the scan could not look at, a line each; empty when there is nothing of the kind.
QString gapsText(const ScanResult &result) {
    QStringList gaps;
    if (result.cancelled)
        gaps += ImportFilesPage::tr("The scan was cancelled: the list ends where it stopped.");
    if (!result.gaps.unreadable.empty())
        gaps +=
            ImportFilesPage::tr("Folders or files that could not be read: %L1, the first one %2")
                .arg(result.gaps.unreadable.size())
                .arg(toQt(displayText(textOf(result.gaps.unreadable.front().path))));
    if (result.gaps.linksNotFollowed > 0)
        gaps += ImportFilesPage::tr("Links that were not followed: %L1")
                    .arg(result.gaps.linksNotFollowed);
    if (result.gaps.shaderCaches > 0)
        gaps += ImportFilesPage::tr(
                    "Shader caches that were passed over, as they hold no addresses: %L1")
                    .arg(result.gaps.shaderCaches);
    return gaps.join(u'\n');
}

QTableView *newFilesGrid(FoundFilesModel &model) {
    auto *grid = new QTableView;
    grid->setTextElideMode(Qt::ElideMiddle); // paths differ at their ends
    grid->setObjectName(QStringLiteral("ImportGrid"));
    grid->setAccessibleName(ImportFilesPage::tr("Files found"));
    grid->setModel(&model);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setAlternatingRowColors(true);
    grid->setShowGrid(false);
    grid->setWordWrap(false);
    grid->setTabKeyNavigation(false);
    grid->verticalHeader()->hide();
    grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid->verticalHeader()->setDefaultSectionSize(grid->fontMetrics().height() + 8);
    constexpr int kWidths[] = {54, 170, 100, 170, 300, 90}; // pixels
    for (int column = 0; column < FoundFilesModel::kColumns; ++column)
        grid->setColumnWidth(column, kWidths[column]);
    grid->horizontalHeader()->setSectionResizeMode(FoundFilesModel::Path, QHeaderView::Stretch);
    grid->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    letCopy(*grid);
    return grid;
}

QProgressBar *newScanBar() {
    auto *bar = new QProgressBar;
    bar->setObjectName(QStringLiteral("barScan"));
    bar->setAccessibleName(ImportFilesPage::tr("Progress of the search"));
    bar->setTextVisible(false);
    bar->setMaximumHeight(8);
    return bar;
}

} // namespace

ImportFilesPage::ImportFilesPage(Program &program)
    : m_program(program), m_files(new FoundFilesModel(this)), m_step(newWizardLabel("labScanStep")),
      m_folder(newWizardLabel("labScanFolder")), m_gaps(newWizardLabel("labScanGaps")),
      m_bar(newScanBar()), m_zone(new ImportZone(program)) {
    connect(m_files, &FoundFilesModel::ticksChanged, this, &ImportFilesPage::changed);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_step);
    column->addWidget(m_folder);
    column->addWidget(m_bar);
    column->addWidget(newFilesGrid(*m_files), 1);
    column->addWidget(m_gaps);
    column->addWidget(m_zone);
}

void ImportFilesPage::cancelScan() {
    if (m_task)
        m_task->cancel();
}

std::size_t ImportFilesPage::found() const {
    return static_cast<std::size_t>(m_files->rowCount());
}

bool ImportFilesPage::hasChosen() const {
    return m_files->validCount() > 0;
}

void ImportFilesPage::leaveOutUnchosen() {
    m_files->prune(m_program.import.historyFiles);
}

ScanResult ImportFilesPage::scanEvidence() {
    m_program.import.historyFiles.clear();
    m_files->setFiles(m_program.import.historyFiles);
    m_gaps->clear();
    ScanResult result = runScan();
    show(result);
    return result;
}

ScanResult ImportFilesPage::runScan() {
    WizardTask task;
    connect(&task, &WizardTask::stepped, this, [this](const QString &what, const QString &where) {
        m_step->setText(what);
        m_folder->setText(where);
    });
    connect(&task, &WizardTask::advanced, this,
            [this](double fraction) { m_bar->setValue(static_cast<int>(fraction * 100)); });
    m_task = &task;
    m_bar->setVisible(true);
    emit changed();
    ScanResult result;
    const auto failure = failureOf(m_program.log, "ImportForm.NextBtn_Click()",
                                   [&] { result = scan(m_program.import, task, m_program.log); });
    m_task = nullptr;
    m_bar->setVisible(false);
    if (failure)
        m_program.around.examiner.tell(messages::importFailed(*failure));
    return result;
}

void ImportFilesPage::show(const ScanResult &result) {
    ImportSettings &job = m_program.import;
    job.historyFiles = result.historyFiles;
    job.gaps = result.gaps;
    m_files->setFiles(job.historyFiles);
    m_zone->suggest();
    m_folder->clear();
    m_step->setText(tr("Files found: %L1").arg(m_files->rowCount()));
    const QString gaps = gapsText(result);
    m_gaps->setText(gaps);
    m_gaps->setVisible(!gaps.isEmpty());
    emit changed();
}

} // namespace nv
