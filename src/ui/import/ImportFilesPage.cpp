#include "ui/import/ImportFilesPage.h"

#include "app/messages/Messages.h"
#include "base/Files.h"
#include "base/NoLog.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "ui/import/FoundFilesModel.h"
#include "ui/import/ImportNetwork.h"
#include "ui/import/ImportZone.h"
#include "ui/import/WizardParts.h"
#include "ui/widgets/GridCopy.h"
#include "views/rows/CellText.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QProgressBar>
#include <QTreeView>

#include <array>
#include <set>
#include <utility>

namespace nv {

namespace {

QString shownPath(const std::filesystem::path &path) {
    return toQt(displayText(textOf(path)));
}

/// Whoever names a place expects something of it. Of many the first ones.
QStringList placesOfNothing(const ScanResult &result) {
    constexpr qsizetype kTold = 3;
    QStringList told;
    qsizetype more = 0;
    for (const ScannedPlace &place : result.places) {
        const bool isLookedAt = place.isFile || !place.isWithinAnother;
        if (!isLookedAt || place.artefacts + place.unreadable > 0 || result.cancelled)
            continue;
        if (told.size() == kTold)
            ++more;
        else if (place.isFile)
            told +=
                ImportFilesPage::tr("Not taken, since its name, place and first bytes are those "
                                    "of no known file: %1")
                    .arg(shownPath(place.path));
        else
            told +=
                ImportFilesPage::tr("Nothing known was found in: %1").arg(shownPath(place.path));
    }
    if (more > 0)
        told += ImportFilesPage::tr("And nothing in %L1 more of what was chosen").arg(more);
    return told;
}

/// What the scan could not look at, a line each; empty when there is nothing of the kind.
QString gapsText(const ScanResult &result) {
    QStringList gaps;
    if (result.places.size() > 1)
        gaps += placesOfNothing(result);
    if (result.cancelled)
        gaps += ImportFilesPage::tr("The scan was cancelled: the list ends where it stopped.");
    if (!result.gaps.unreadable.empty())
        gaps +=
            ImportFilesPage::tr("Folders or files that could not be read: %L1, the first one %2")
                .arg(result.gaps.unreadable.size())
                .arg(shownPath(result.gaps.unreadable.front().path));
    if (result.gaps.linksNotFollowed > 0)
        gaps += ImportFilesPage::tr("Links that were not followed: %L1")
                    .arg(result.gaps.linksNotFollowed);
    if (result.gaps.shaderCaches > 0)
        gaps += ImportFilesPage::tr(
                    "Shader caches that were passed over, as they hold no addresses: %L1")
                    .arg(result.gaps.shaderCaches);
    return gaps.join(u'\n');
}

QTreeView *newFoundTree(FoundFilesModel &model) {
    auto *tree = new QTreeView;
    tree->setTextElideMode(Qt::ElideMiddle); // paths differ at their ends
    tree->setObjectName(QStringLiteral("ImportGrid"));
    tree->setAccessibleName(ImportFilesPage::tr("What was found"));
    tree->setModel(&model);
    tree->setUniformRowHeights(true); // there may be a hundred thousand lines
    tree->setAlternatingRowColors(true);
    tree->setTabKeyNavigation(false);
    tree->setAllColumnsShowFocus(true);
    constexpr std::array kWidths = {330, 70, 110, 120}; // pixels
    for (std::size_t column = 0; column < kWidths.size(); ++column)
        tree->setColumnWidth(static_cast<int>(column), kWidths.at(column));
    tree->header()->setStretchLastSection(true);
    letCopy(*tree);
    return tree;
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

ImportFilesPage::ImportFilesPage(Program &program, ChooseProject chooseProject)
    : m_program(program), m_files(new FoundFilesModel(this)), m_tree(newFoundTree(*m_files)),
      m_step(newWizardLabel("labScanStep")), m_folder(newWizardLabel("labScanFolder")),
      m_gaps(newWizardLabel("labScanGaps")), m_total(newWizardLabel("labFoundTotal")),
      m_bar(newScanBar()), m_pace(newWizardLabel("labScanPace")), m_zone(new ImportZone(program)),
      m_project(new ImportProject(program, std::move(chooseProject))),
      m_network(new ImportNetwork(program)) {
    connect(m_files, &FoundFilesModel::ticksChanged, this, [this] {
        m_total->setText(m_files->found() > 0 ? chosenText() : QString());
        emit changed();
    });
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_step);
    column->addWidget(m_folder);
    column->addWidget(m_bar);
    column->addWidget(m_pace);
    column->addWidget(m_tree, 1);
    column->addWidget(m_total);
    column->addWidget(m_gaps);
    column->addWidget(m_zone);
    column->addWidget(m_project);
    column->addWidget(m_network);
    m_pace->hide();
    connect(m_project, &ImportProject::changed, this, &ImportFilesPage::changed);
}

void ImportFilesPage::cancelScan() {
    if (m_task)
        m_task->cancel();
}

std::size_t ImportFilesPage::found() const {
    return m_files->found();
}

std::size_t ImportFilesPage::chosen() const {
    return m_files->chosen().files;
}

QString ImportFilesPage::chosenText() const {
    const FoundFilesModel::Total chosen = m_files->chosen();
    QString text = tr("To be imported: %L1 of %L2 files, %L3 bytes")
                       .arg(chosen.files)
                       .arg(m_files->found())
                       .arg(chosen.bytes);
    if (const std::size_t unread = m_files->notRead(); unread > 0)
        text += tr("; not read yet, and only named in the summary: %L1").arg(unread);
    return text;
}

void ImportFilesPage::handOver() {
    ImportSettings &job = m_program.import;
    job.historyFiles = m_scanned.historyFiles;
    job.gaps = m_scanned.gaps;
    m_files->prune(job.historyFiles);
}

void ImportFilesPage::look() {
    m_project->look();
    m_network->look();
}

ScanResult ImportFilesPage::scanEvidence(const std::vector<std::filesystem::path> &places) {
    m_project->suggest(places);
    look();
    m_program.import.historyFiles.clear();
    m_found = {};
    m_files->setFiles(m_program.import.historyFiles, m_found);
    m_gaps->clear();
    ScanResult result = runScan(places);
    show(result);
    return result;
}

void ImportFilesPage::run(const std::function<void(WizardTask &)> &work) {
    WizardTask task;
    connect(&task, &WizardTask::stepped, this, [this](const QString &what, const QString &where) {
        m_step->setText(what);
        m_folder->setText(where);
    });
    connect(&task, &WizardTask::advanced, this, [this, &task](double fraction) {
        m_bar->setValue(static_cast<int>(fraction * 100));
        m_pace->setText(task.pace());
    });
    m_task = &task;
    m_bar->setVisible(true);
    m_pace->setText(task.pace());
    m_pace->setVisible(true);
    m_folder->setVisible(true);
    m_zone->setVisible(false); // what the evidence says of it isn't known yet
    emit changed();
    const auto failure =
        failureOf(m_program.log, "ImportForm.NextBtn_Click()", [&] { work(task); });
    m_task = nullptr;
    m_bar->setVisible(false);
    m_pace->setVisible(false);
    if (failure)
        m_program.around.examiner.tell(messages::importFailed(*failure));
}

ScanResult ImportFilesPage::runScan(const std::vector<std::filesystem::path> &places) {
    ScanResult result;
    run([&](WizardTask &task) {
        result = scanPlaces(m_program.import, places, task, m_program.log);
    });
    group(result);
    return result;
}

/// Also what a cancelled scan found so far, so it has a cancel of its own.
void ImportFilesPage::group(ScanResult &result) {
    Walk walk = Walk::Cancelled;
    run([&](WizardTask &task) {
        m_step->setText(tr("Asking whose they are"));
        NoLog unheard; // the import asks again and tells what can't be read
        walk = groupFound(result.historyFiles, result.places, task, unheard, m_found);
    });
    if (walk == Walk::Finished)
        return;
    result.historyFiles.clear();
    result.cancelled = true;
}

void ImportFilesPage::show(const ScanResult &result) {
    ImportSettings &job = m_program.import;
    m_scanned = result;
    job.historyFiles = result.historyFiles;
    job.gaps = result.gaps;
    m_files->setFiles(job.historyFiles, m_found);
    openPlaces();
    std::set<std::filesystem::path> folders;
    for (const ScannedPlace &place : result.places)
        folders.insert(place.isFile ? place.path.parent_path() : place.path);
    m_zone->suggest({folders.begin(), folders.end()});
    m_folder->clear();
    m_folder->hide();
    m_zone->show();
    m_step->setText(tr("Files found: %L1").arg(m_files->found()));
    const QString gaps = gapsText(result);
    m_gaps->setText(gaps);
    m_gaps->setVisible(!gaps.isEmpty());
    emit changed();
}

/// Down to the kinds, below which there may be thousands of files.
void ImportFilesPage::openPlaces() {
    std::vector<QModelIndex> waiting{QModelIndex()};
    while (!waiting.empty()) {
        const QModelIndex place = waiting.back();
        waiting.pop_back();
        for (int row = 0; row < m_files->rowCount(place); ++row) {
            const QModelIndex child = m_files->index(row, 0, place);
            if (m_files->isFile(child) || m_files->isFile(m_files->index(0, 0, child)))
                continue;
            m_tree->expand(child);
            waiting.push_back(child);
        }
    }
    m_tree->setCurrentIndex(m_files->index(0, 0));
    m_tree->setFocus();
}

} // namespace nv
