#include "ui/import/ImportForm.h"

#include "app/jobs/HashSetJob.h"
#include "app/jobs/ImportClaim.h"
#include "app/jobs/ImportJob.h"
#include "app/messages/DropMessages.h"
#include "app/messages/Messages.h"
#include "app/messages/NetworkMessages.h"
#include "app/options/SettingsInForce.h"
#include "app/program/NetworkSwitch.h"
#include "app/project/EvidenceFolders.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Trap.h"
#include "db/hashes/HashSets.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"
#include "ui/import/ImportFilesPage.h"
#include "ui/import/ImportNetwork.h"
#include "ui/import/ImportZone.h"
#include "ui/import/WizardParts.h"
#include "ui/widgets/DroppedUrls.h"

#include <QBoxLayout>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTimer>

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

/// With many places the page is higher than a small screen.
QScrollArea *newScrolled(QWidget *page) {
    auto *area = new QScrollArea;
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(page);
    return area;
}

} // namespace

ImportForm::ImportForm(Program &program, const std::vector<fs::path> &places, ImportNeeds needs,
                       QWidget *parent)
    : QDialog(parent), m_program(program), m_needs(std::move(needs)),
      m_firstBase(program.state.rootPath),
      m_choice(new ImportChoicePage(program.import, places, m_firstBase, m_needs.chooseFolder)),
      m_files(new ImportFilesPage(program, m_needs.chooseProject)),
      m_summary(new ImportSummaryPane(program, m_needs.choosePage)), m_pages(new QStackedWidget),
      m_heading(newHeading()) {
    setObjectName(QStringLiteral("ImportForm"));
    setWindowTitle(tr("Import"));
    // Blocks the main window only: the status window's Cancel button has to stay live.
    setWindowModality(Qt::WindowModal);
    setAcceptDrops(true);
    resizeWithinScreen(*this, {860, 600});
    connect(m_files, &ImportFilesPage::changed, this, &ImportForm::showButtons);
    connect(m_summary, &ImportSummaryPane::wanted, this, [this](AfterSummary what) {
        m_afterwards = what;
        accept();
    });
    m_pages->setObjectName(QStringLiteral("importPages"));
    m_pages->addWidget(newScrolled(m_choice));
    m_pages->addWidget(m_files);
    m_pages->addWidget(m_summary);

    auto *column = new QVBoxLayout(this);
    column->addWidget(m_heading);
    column->addWidget(m_pages, 1);
    column->addWidget(newButtons());
    offerHashSets();
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

void ImportForm::check() {
    m_isKept = true;
    showAndGoOn(m_pages->currentIndex() == Choose);
}

void ImportForm::importChecked() {
    showAndGoOn(isReady());
}

void ImportForm::showAndGoOn(bool goesOn) {
    offerHashSets();
    if (!goesOn)
        m_files->look();
    showButtons();
    if (goesOn)
        QTimer::singleShot(0, this, &ImportForm::nextBtnClick);
    exec();
}

bool ImportForm::isReady() const {
    return m_pages->currentIndex() == Files && !m_files->isScanning() && m_files->chosen() > 0;
}

QString ImportForm::checkedText() const {
    if (m_pages->currentIndex() != Files || m_files->found() == 0)
        return {};
    const QString text = tr("%1. Time zone: %2").arg(m_files->chosenText(), m_files->zone().name());
    const QString project = m_files->project().nameText();
    return project.isEmpty() ? text : tr("%1. Project: %2").arg(text, project);
}

void ImportForm::dragEnterEvent(QDragEnterEvent *event) {
    if (m_pages->currentIndex() == Choose && holdsUrls(*event->mimeData()))
        event->acceptProposedAction();
}

void ImportForm::dropEvent(QDropEvent *event) {
    DroppedPaths dropped = droppedIn(*event->mimeData());
    event->acceptProposedAction();
    if (dropped.project)
        dropped.notTaken.push_back(
            {textOf(*dropped.project), "is a project and no evidence; the main window opens it"});
    m_choice->addPlaces(dropped.evidence);
    m_choice->tellNotTaken(dropped.notTaken.empty()
                               ? QString()
                               : tr("Not taken:\n%1").arg(toQt(notTakenText(dropped.notTaken))));
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
    m_next->setText(step == Finish  ? tr("Finished")
                    : step == Files ? tr("&Import >>")
                                    : tr("Next >>"));
    m_next->setEnabled(
        !m_files->isScanning() &&
        (step != Files || (m_files->chosen() > 0 && !m_files->project().isMissing())));
    m_cancel->setText(m_isKept && step == Files && !m_files->isScanning() ? tr("Close")
                                                                          : tr("Cancel"));
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
bool ImportForm::placesAreUsable() {
    Examiner &examiner = m_program.around.examiner;
    const std::vector<fs::path> places = m_choice->places();
    if (places.empty())
        examiner.tell(messages::startingDirectoryMissing());
    for (const fs::path &place : places) {
        if (!fs::exists(place))
            examiner.tell(places.size() > 1 ? messages::evidenceGone(place)
                                            : messages::startingDirectoryGone());
        else if (m_program.state.projectDB.isOpen() &&
                 liesInEvidence(m_program.state.projectDBPath, place))
            examiner.tell(messages::liesInEvidence(m_program.state.projectDBPath, place));
        else
            continue;
        return false;
    }
    return !places.empty();
}

void ImportForm::offerHashSets() {
    const bool areThere = !hashSetPaths(m_program.paths.hashSets()).empty();
    m_choice->offerHashSets(readFlag(m_program.settings, "HashSetsWhileImporting"),
                            areThere ? QString()
                                     : tr("There is no hash set: Tools, Hash Sets makes one."));
}

void ImportForm::startScan() {
    ImportSettings &job = m_program.import;
    m_choice->applyTo(job);
    keepFlag(m_program, "ParseAdvancedMetaData", job.parseAdvancedMetadata);
    keepFlag(m_program, "ThumbnailsWhileImporting", job.makeThumbnails);
    keepFlag(m_program, "ClassicOnly", job.classicOnly);
    if (m_choice->offersHashSets())
        keepFlag(m_program, "HashSetsWhileImporting", job.hashSets);
    m_choice->tellNotTaken({});
    if (!placesAreUsable())
        return;
    static_cast<void>(hashSetsForImport(m_program)); // a damaged one is told before the work
    requireZones(m_program);
    if (m_program.state.projectDB.isOpen())
        requireSchema(m_program);
    showStep(Files);
    const ScanResult result = m_files->scanEvidence(m_choice->places());
    if (m_files->found() > 0 || result.cancelled)
        return;
    m_program.around.examiner.tell(messages::nothingToImport());
    // What could not be read is listed on this page.
    if (result.gaps.unreadable.empty())
        showStep(Choose);
}

/// The warning on the page is passed by importing. What came up since that page was looked at is
/// asked about. A connection that can't be disabled leaves the examiner in the wizard, to decide
/// anew.
bool ImportForm::goesOnDespiteNetwork() {
    if (m_files->network().warns() || networkConnectionStatus(m_program) != "ENABLED")
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
    const fs::path base = named.empty() ? offeredBase() : fs::canonical(named);
    if (base != m_program.state.rootPath)
        setRootPath(m_program, base);
    for (const fs::path &place : m_choice->places())
        keepEvidenceFolder(m_program, fs::canonical(place));
}

/// The project may lie beside several folders of evidence; then the first one has to do: the others
/// are found by their whole paths.
fs::path ImportForm::offeredBase() const {
    const ProgramState &state = m_program.state;
    if (!state.rootPath.empty() && state.rootPath != m_firstBase)
        return state.rootPath; // that of a project which wasn't open as the page was filled
    const std::vector<fs::path> places = m_choice->places();
    const fs::path common = commonFolder(places);
    return liesInEvidence(state.projectDBPath, common) ? commonFolder({places.front()}) : common;
}

void ImportForm::importFiles() {
    const bool isNew = !m_program.state.projectDB.isOpen();
    if (!m_needs.project(m_choice->places(), m_files->project().asked())) {
        if (isNew)
            m_files->project().focusName();
        return;
    }
    m_files->project().look();
    if (!placesAreUsable())
        return;
    requireZones(m_program); // now that of the project
    requireSchema(m_program);
    if (!goesOnDespiteNetwork() || !m_files->zone().take())
        return;
    m_choice->applyTo(m_program.import);
    m_files->handOver();
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
        m_summary->load(summary);
    m_imported = true;
    m_running = false;
    setEnabled(true);
    if (const std::string reason = failure.value_or(summary.failure); !reason.empty())
        m_program.around.examiner.tell(messages::importFailed(reason));
    showStep(Finish);
}

} // namespace nv
