#include "ui/window/MainForm.h"

#include "app/messages/Messages.h"
#include "app/project/Project.h"
#include "app/settings/Settings.h"
#include "base/Trap.h"
#include "db/project/ProjectFields.h"
#include "db/project/StoredQueries.h"
#include "db/sql/WriteBatch.h"
#include "platform/qt/AccessibleBoxes.h"
#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"
#include "ui/frame/FocusRing.h"
#include "ui/frame/RecentPane.h"
#include "ui/frame/RecordArea.h"
#include "ui/frame/TextForm.h"
#include "ui/frame/WelcomePage.h"
#include "ui/parts/AreasPart.h"
#include "ui/parts/CopyPart.h"
#include "ui/parts/ExportPart.h"
#include "ui/parts/FilesPart.h"
#include "ui/parts/GuidePart.h"
#include "ui/parts/LowWindow.h"
#include "ui/parts/OptionsPart.h"
#include "ui/parts/RebuildPart.h"
#include "ui/parts/ReportPart.h"
#include "ui/parts/RowMenuPart.h"
#include "ui/parts/ThemePart.h"
#include "ui/parts/TipPart.h"
#include "ui/parts/UpgradePart.h"
#include "ui/parts/ViewersPart.h"
#include "ui/parts/Workbench.h"
#include "ui/table/StepsPane.h"
#include "ui/table/TableTab.h"
#include "ui/widgets/DroppedUrls.h"
#include "ui/window/WindowLayout.h"
#include "ui/window/WindowParts.h"
#include "views/queries/QueryCommands.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QMimeData>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabWidget>

namespace nv {

namespace fs = std::filesystem;

MainForm::MainForm(Program &program, WindowDialogs &dialogs)
    : m_program(program), m_dialogs(dialogs), m_commands(program, dialogs, *this), m_actions(this),
      m_menus(*this, m_actions) {
    nameComboBoxes();
    FocusRings::show();
    setObjectName(QStringLiteral("MainForm"));
    setWindowIcon(icon("norvelane-logo"));
    setAcceptDrops(true);
    resizeWithinScreen(*this, {1280, 820});
    m_pages = new QStackedWidget;
    m_pages->setObjectName(QStringLiteral("mainPages"));
    m_welcome = new WelcomePage(*m_actions.newProject, *m_actions.openProject, m_steps);
    m_pages->addWidget(m_welcome);
    m_pages->addWidget(newProjectPage());
    setCentralWidget(m_pages);
    m_areas = &addPart<AreasPart>(*m_bench, *this);
    addPart<LowWindow>(*m_bench, *this);
    connectWindowActions();
    connectEditActions();
    connectOtherActions();
    connectMenus();
    m_title.follow(*m_bench);
    m_commands.updateProgramCaption();
    addPart<ThemePart>(m_menus, *this, program.settings);
    showRecentFiles();
    showProjectState();
    restoreGeometryKept();
    m_welcome->steps().focusNext();
}

MainForm::~MainForm() {
    m_program.task.watcher = nullptr;
    m_areas = nullptr; // it goes before the controls do
}

QWidget *MainForm::newProjectPage() {
    const RunTask runTasks = [this](const TaskHeading &heading, const auto &work) {
        runTask(heading, work);
    };
    const RunCommand runCommands = [this](const char *procedure, const auto &command) {
        run(procedure, command);
    };
    m_table = new TableTab(runTasks, m_program.around.examiner);
    auto *dataTabs = new QTabWidget;
    dataTabs->setObjectName(QStringLiteral("dataTabs"));
    dataTabs->setDocumentMode(true);
    dataTabs->addTab(m_table, tr("Table"));
    m_viewers = new ViewerTabs(runCommands, [this] { return m_locks > 0; });
    m_bench =
        std::make_unique<Workbench>(m_program, m_dialogs, m_actions, *this, runCommands, runTasks);
    m_bench->dataTabs = dataTabs;
    m_bench->dataArea = new QSplitter;
    m_bench->dataArea->setObjectName(QStringLiteral("dataArea"));
    m_bench->dataArea->setChildrenCollapsible(false);
    m_bench->dataArea->addWidget(dataTabs);
    m_bench->table = m_table;
    m_bench->viewers = m_viewers;
    m_bench->card = newCard(*m_bench);
    m_record = new RecordArea(*m_bench->card, *m_viewers, *this);
    addParts();
    auto *halves = new QSplitter(Qt::Vertical);
    halves->setObjectName(QStringLiteral("mainSplitter"));
    halves->addWidget(m_bench->dataArea);
    halves->addWidget(m_record);
    halves->setStretchFactor(0, 3);
    halves->setStretchFactor(1, 2);
    halves->setSizes({400, 340});
    return halves;
}

/// In the order of their tabs.
void MainForm::addParts() {
    m_parts = newParts(*m_bench);
    m_rebuild = &addPart<RebuildPart>(*m_bench);
    auto &options = addPart<OptionsPart>(*m_bench);
    m_files = &addPart<FilesPart>(*m_bench, m_commands, *this, options, *m_rebuild, m_steps);
    addPart<ReportPart>(*m_bench);
    addPart<ExportPart>(*m_bench);
    addPart<RowMenuPart>(*m_bench);
    addPart<CopyPart>(*m_bench);
    addPart<GuidePart>(*m_bench);
    m_tips = &addPart<TipPart>(*m_bench);
}

void MainForm::showUpgradeWizard(const std::filesystem::path &project) {
    UpgradePart(*m_bench).show(project);
}

void MainForm::connectWindowActions() {
    const auto on = [this](QAction *action, const char *procedure, auto command) {
        connect(action, &QAction::triggered, this,
                [=, this] { run(procedure, [=, this] { (this->*command)(); }); });
    };
    connect(m_actions.exit, &QAction::triggered, this, &QWidget::close);
    on(m_actions.refresh, "MainForm.LoadURLs()", &MainForm::loadURLs);
    on(m_actions.errorLog, "MainForm.showErrorLog()", &MainForm::showErrorLog);
    on(m_actions.about, "MainForm.showAbout()", &MainForm::showAbout);
}

void MainForm::connectEditActions() {
    connect(m_actions.copyCell, &QAction::triggered, m_table, &TableTab::copyCell);
    connect(m_actions.copyRows, &QAction::triggered, m_table, &TableTab::copyRows);
    connect(m_actions.selectAll, &QAction::triggered, &m_table->grid(), &QTableView::selectAll);
    connect(m_actions.find, &QAction::triggered, m_table, &TableTab::openFind);
    connect(m_actions.findNext, &QAction::triggered, m_table, &TableTab::findNext);
    connect(m_actions.tag, &QAction::triggered, m_table, &TableTab::flipTags);
}

void MainForm::connectOtherActions() {
    connect(m_actions.columns, &QAction::triggered, m_table, &TableTab::showColumnsForm);
    connect(m_actions.viewers, &QAction::toggled, this, [this](bool shown) {
        m_record->setVisible(shown);
        m_viewers->refresh();
    });
    connect(m_bench.get(), &Workbench::noticed, this, &MainForm::showNotice);
    connect(m_bench.get(), &Workbench::reloadWanted, this, &MainForm::loadURLs);
    connect(m_table, &TableTab::statusChanged, this, &MainForm::showStatus);
    connect(m_table, &TableTab::currentUrlChanged, this, [this] {
        showNotice({});
        m_viewers->setRecord(m_table->grid().currentUrl());
    });
    connect(m_table, &TableTab::ticked, m_viewers, &ViewerTabs::refreshMarks);
    connect(m_table, &TableTab::layoutEdited, this, &MainForm::keepLayout);
    connect(m_table, &TableTab::tickingRefused, this, [this] { m_bench->mayWrite(); });
}

void MainForm::connectMenus() {
    connect(&m_menus, &MainMenus::recentFileChosen, this, &MainForm::takePath);
    connect(&m_welcome->recent(), &RecentPane::openWanted, this, &MainForm::takePath);
    connect(&m_welcome->recent(), &RecentPane::removalWanted, this, [this](const fs::path &path) {
        forgetFilenameINI(m_program.settings, path);
        showRecentFiles();
    });
    connect(&m_menus, &MainMenus::quickQueryChosen, m_table, &TableTab::chooseQuery);
    connect(&m_menus, &MainMenus::sortChosen, m_table, &TableTab::sortBy);
}

void MainForm::showNotice(const QString &text) {
    m_status.showNotice(text);
}

void MainForm::showStatus() {
    m_status.showTable(*m_table, m_program.state);
}

void MainForm::showProjectState() {
    const bool open = isProjectOpen();
    if (!open && m_pages->currentIndex() != 0)
        m_welcome->steps().focusNext();
    m_pages->setCurrentIndex(open ? 1 : 0);
    m_actions.setProjectOpen(open, m_program.state.projectDB.isReadOnly());
    m_menus.setProjectOpen(open);
    m_status.setProjectOpen(open);
    if (open)
        showStatus();
}

void MainForm::lockControls() {
    if (m_locks++ > 0)
        return;
    m_focusBeforeLock = focusWidget(); // also while the window of the task before goes away
    m_menus.setEnabled(false);
    m_pages->setEnabled(false);
    QApplication::setOverrideCursor(Qt::BusyCursor);
}

void MainForm::unlockControls() {
    if (--m_locks > 0)
        return;
    QApplication::restoreOverrideCursor();
    m_menus.setEnabled(true);
    m_pages->setEnabled(true);
    if (m_focusBeforeLock && m_focusBeforeLock->isVisible() && isAncestorOf(m_focusBeforeLock))
        m_focusBeforeLock->setFocus();
    else
        m_table->grid().setFocus();
}

bool MainForm::focusNextPrevChild(bool next) {
    return m_areas ? m_areas->goToStop(next) : QMainWindow::focusNextPrevChild(next);
}

/// One question is enough.
bool MainForm::mayLeave() {
    const auto agreed = m_bench->askBeforeClosing();
    return agreed ? *agreed : m_program.around.examiner.ask(messages::exitProgram()) == Answer::Yes;
}

void MainForm::closeEvent(QCloseEvent *event) {
    bool leaves = false;
    run("MainForm.Leave()", [this, &leaves] { leaves = mayLeave(); });
    event->setAccepted(leaves);
    if (!leaves)
        return;
    run("MainForm.CloseFile()", [this] { m_commands.closeFile(); });
    keepGeometry();
}

void MainForm::keepGeometry() {
    keepWindowLayout(*this, m_program.settings);
    rememberFlag(m_program.settings, "ShowViewers", m_actions.viewers->isChecked());
    rememberFlag(m_program.settings, "PinViewer", m_viewers->isPinned());
}

void MainForm::restoreGeometryKept() {
    restoreWindowLayout(*this, m_program.settings);
    m_actions.viewers->setChecked(readFlag(m_program.settings, "ShowViewers"));
    m_viewers->setPinned(readFlag(m_program.settings, "PinViewer"));
}

void MainForm::dragEnterEvent(QDragEnterEvent *event) {
    if (m_locks == 0 && !QApplication::activeModalWidget() && holdsUrls(*event->mimeData()))
        event->acceptProposedAction();
}

void MainForm::dropEvent(QDropEvent *event) {
    const DroppedPaths dropped = droppedIn(*event->mimeData());
    event->acceptProposedAction();
    // After the drop is over: what comes may show dialogs.
    QTimer::singleShot(0, this, [this, dropped] { m_files->takeDropped(dropped); });
}

void MainForm::takePath(const fs::path &path) {
    m_files->takePath(path);
}

void MainForm::run(const char *procedure, const std::function<void()> &command) {
    if (m_locks > 0)
        return;
    const auto failure = failureOf(m_program.log, procedure, command);
    if (failure)
        m_program.around.examiner.tell(messages::commandFailed(*failure));
    showProjectState();
}

void MainForm::runTask(const TaskHeading &heading, const std::function<void(TaskMonitor &)> &work) {
    lockControls();
    const auto failure = failureOf(m_program.log, "MainForm.runTask()", [&] {
        const OpenTask task(m_program.task, heading);
        work(m_program.task);
    });
    unlockControls();
    if (failure)
        m_program.around.examiner.tell(messages::commandFailed(*failure));
}

void MainForm::loadCommandLineFile(const fs::path &path) {
    lockControls();
    const auto failure = failureOf(m_program.log, "MainForm.LoadCommandLineFile()",
                                   [&] { m_commands.loadCommandLineFile(path); });
    if (!failure)
        m_rebuild->tellOfWideIds();
    unlockControls();
    if (failure)
        m_program.around.examiner.tell(messages::openingFailed(*failure));
    showProjectState();
}

void MainForm::showErrorLog() {
    QFile file(pathToQt(m_program.log.path()));
    const QString text = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll())
                                                        : tr("No failure has been logged.");
    TextForm(tr("Error Log"), text, this).exec();
}

void MainForm::showTipAtStart() {
    m_tips->showAtStart();
}

void MainForm::showAbout() {
    const ProgramState &state = m_program.state;
    m_program.around.examiner.tell(messages::about(state.appTitle, state.appVersion));
}

void MainForm::setCaption(const std::string &caption) {
    m_title.setCaption(toQt(caption));
}

void MainForm::restoreLayout() {
    SQLite::Database &project = m_program.state.projectDB.connection();
    const ProjectFields fields(project, m_program.log);
    const auto failure = failureOf(m_program.log, "MainForm.FormatColumns()", [&] {
        m_table->restoreLayout(
            [&fields](std::string_view name) { return fields.getDefault(name); });
    });
    if (failure)
        m_program.around.examiner.tell(messages::columnsFailed(*failure));
    m_table->openProject(project, m_program.log, m_program.state.gmtZone);
    emit m_bench->projectOpened();
    showQuickQueries();
    showProjectState();
    if (m_program.state.projectDB.isReadOnly())
        showNotice(tr("Open for reading only: nothing is written to the project."));
}

/// Comes before the connection goes, so the table lets go of it too.
void MainForm::saveLayout() {
    m_table->closeProject();
    emit m_bench->projectClosing();
    keepLayout();
}

void MainForm::keepLayout() {
    if (!m_program.state.projectDB.isOpen() || m_program.state.projectDB.isReadOnly())
        return;
    SQLite::Database &project = m_program.state.projectDB.connection();
    ProjectFields fields(project, m_program.log);
    WriteBatch batch(project);
    m_table->saveLayout(
        [&fields](std::string_view name, std::string_view value) { fields.remember(name, value); });
    batch.commit();
}

void MainForm::showQuickQueries() {
    QStringList quick;
    for (const StoredQuery &query : StoredQueries(m_program.state.projectDB.connection()).list()) {
        const QString name = toQt(query.name);
        if (isListedQuery(query.name) && isReservedQuery(query.name))
            quick += name;
    }
    m_menus.showQuickQueries(quick);
}

void MainForm::showRecentFiles() {
    const std::vector<RecentFile> files = configLastFilesOpened(m_program.settings);
    m_menus.showRecentFiles(files);
    m_welcome->recent().showFiles(files);
}

void MainForm::clear() {
    if (m_table->table())
        m_table->closeProject();
    emit m_bench->projectClosing();
    m_table->setQueries({});
    showProjectState();
}

void MainForm::loadURLs() {
    if (!m_table->table())
        return;
    m_table->table()->rootPath = textOf(m_program.state.rootPath);
    m_table->table()->filters = m_program.state.filters;
    m_table->table()->dates() = dateSettings(m_program);
    m_table->loadURLs();
}

} // namespace nv
