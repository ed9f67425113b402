// How the main window is put together, and what it does by itself: locking, closing, drag and drop.
#include "app/IniSections.h"
#include "app/Messages.h"
#include "app/ui/ExportPart.h"
#include "app/ui/FiltersPart.h"
#include "app/ui/GalleryPart.h"
#include "app/ui/GuidePart.h"
#include "app/ui/HostsPart.h"
#include "app/ui/LinkPart.h"
#include "app/ui/MainForm.h"
#include "app/ui/NetworkPart.h"
#include "app/ui/OptionsPart.h"
#include "app/ui/QueryPart.h"
#include "app/ui/RebuildPart.h"
#include "app/ui/RebuiltPanes.h"
#include "app/ui/ReportPart.h"
#include "app/ui/RowMenuPart.h"
#include "app/ui/TemplatesPart.h"
#include "app/ui/TrailPart.h"
#include "app/ui/UpgradePart.h"
#include "app/ui/ViewersPart.h"
#include "app/ui/WelcomePage.h"
#include "app/ui/WindowLayout.h"
#include "app/ui/Workbench.h"
#include "base/Files.h"
#include "platform/qt/AccessibleBoxes.h"
#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"
#include "views/CellText.h"
#include "views/ui/TableTab.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QMimeData>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabWidget>

namespace nv {

MainForm::MainForm(Program &program, WindowDialogs &dialogs)
    : m_program(program), m_dialogs(dialogs), m_commands(program, dialogs, *this), m_actions(this),
      m_menus(*this, m_actions) {
    nameComboBoxes();
    setObjectName(QStringLiteral("MainForm"));
    setWindowIcon(icon("norvelane-logo"));
    setAcceptDrops(true);
    resizeWithinScreen(*this, {1280, 820});
    m_pages = new QStackedWidget;
    m_pages->setObjectName(QStringLiteral("mainPages"));
    m_pages->addWidget(new WelcomePage(*m_actions.newProject, *m_actions.openProject));
    m_pages->addWidget(newProjectPage());
    setCentralWidget(m_pages);
    buildStatusBar();
    connectFileActions();
    connectEditActions();
    connectOtherActions();
    connectMenus();
    m_commands.UpdateProgramCaption();
    m_menus.showTheme(keptTheme(program.settings));
    showRecentFiles();
    showProjectState();
    restoreGeometryKept();
}

MainForm::~MainForm() = default;

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
    addParts();
    auto *halves = new QSplitter(Qt::Vertical);
    halves->setObjectName(QStringLiteral("mainSplitter"));
    halves->addWidget(m_bench->dataArea);
    halves->addWidget(m_viewers);
    halves->setStretchFactor(0, 3);
    halves->setStretchFactor(1, 1);
    halves->setSizes({560, 220});
    return halves;
}

/// In the order of their tabs.
void MainForm::addParts() {
    addProperties(*m_bench);
    m_parts.push_back(std::make_unique<QueryPart>(*m_bench));
    m_parts.push_back(std::make_unique<GalleryPart>(*m_bench));
    m_parts.push_back(std::make_unique<TemplatesPart>(*m_bench));
    m_parts.push_back(std::make_unique<HostsPart>(*m_bench));
    m_parts.push_back(std::make_unique<FiltersPart>(*m_bench));
    m_parts.push_back(std::make_unique<RebuiltPanes>(*m_bench));
    m_parts.push_back(std::make_unique<LinkPart>(*m_bench));
    m_parts.push_back(std::make_unique<NetworkPart>(*m_bench));
    m_parts.push_back(std::make_unique<TrailPart>(*m_bench));
    m_parts.push_back(std::make_unique<ViewersPart>(*m_bench));
    auto rebuild = std::make_unique<RebuildPart>(*m_bench);
    m_rebuild = rebuild.get();
    m_parts.push_back(std::move(rebuild));
    auto options = std::make_unique<OptionsPart>(*m_bench);
    m_options = options.get();
    m_parts.push_back(std::move(options));
    m_parts.push_back(std::make_unique<ReportPart>(*m_bench));
    m_parts.push_back(std::make_unique<ExportPart>(*m_bench));
    m_parts.push_back(std::make_unique<RowMenuPart>(*m_bench));
    m_parts.push_back(std::make_unique<GuidePart>(*m_bench));
}

void MainForm::showUpgradeWizard(const std::filesystem::path &project) {
    UpgradePart(*m_bench).show(project);
}

void MainForm::buildStatusBar() {
    const auto add = [this](const char *name, int stretch) {
        auto *label = new QLabel;
        label->setObjectName(QLatin1String(name));
        label->setTextFormat(Qt::PlainText);
        label->setContentsMargins(4, 0, 12, 0);
        statusBar()->addWidget(label, stretch);
        return label;
    };
    m_status = {add("labRows", 0),  add("labTagged", 0), add("labNotice", 1),
                add("labQuery", 0), add("labZone", 0),   add("labBase", 1)};
    // Long texts are cut instead of making the window wider; their tooltips are whole.
    for (QLabel *label : {m_status.notice, m_status.base})
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void MainForm::connectFileActions() {
    const auto on = [this](QAction *action, const char *procedure, auto command) {
        connect(action, &QAction::triggered, this,
                [=, this] { run(procedure, [=, this] { (this->*command)(); }); });
    };
    on(m_actions.newProject, "MainForm.OpenFile()", &MainForm::newProject);
    on(m_actions.saveAs, "MainForm.SaveAs()", &MainForm::saveAs);
    connect(m_actions.openProject, &QAction::triggered, this,
            [this] { run("MainForm.OpenFile()", [this] { openProject({}); }); });
    connect(m_actions.closeProject, &QAction::triggered, this,
            [this] { run("MainForm.CloseFile()", [this] { m_commands.CloseFile(); }); });
    connect(m_actions.import, &QAction::triggered, this,
            [this] { run("MainForm.import()", [this] { import({}); }); });
    connect(m_actions.upgradeWizard, &QAction::triggered, this,
            [this] { run("MainForm.upgradeWizard()", [this] { m_commands.upgradeWizard(); }); });
    connect(m_actions.exit, &QAction::triggered, this, &QWidget::close);
    on(m_actions.baseFolder, "MainForm.chooseBaseFolder()", &MainForm::chooseBaseFolder);
    on(m_actions.timeZone, "MainForm.chooseTimeZone()", &MainForm::chooseTimeZone);
    on(m_actions.refresh, "MainForm.LoadURLs()", &MainForm::LoadURLs);
    on(m_actions.errorLog, "MainForm.showErrorLog()", &MainForm::showErrorLog);
    on(m_actions.tips, "MainForm.showTips()", &MainForm::showTips);
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
        m_viewers->setVisible(shown);
        m_viewers->refresh();
    });
    connect(m_bench.get(), &Workbench::noticed, this, &MainForm::showNotice);
    connect(m_bench.get(), &Workbench::reloadWanted, this, &MainForm::LoadURLs);
    connect(m_table, &TableTab::statusChanged, this, &MainForm::showStatus);
    connect(m_table, &TableTab::currentUrlChanged, this, [this] {
        showNotice({});
        m_viewers->setRecord(m_table->grid().currentUrl());
    });
    connect(m_table, &TableTab::layoutEdited, this, &MainForm::keepLayout);
    connect(m_table, &TableTab::tickingRefused, this, [this] { m_bench->mayWrite(); });
    connect(m_table, &TableTab::importRequested, m_actions.import, &QAction::trigger);
}

void MainForm::connectMenus() {
    connect(&m_menus, &MainMenus::recentFileChosen, this, &MainForm::takePath);
    connect(&m_menus, &MainMenus::quickQueryChosen, m_table, &TableTab::chooseQuery);
    connect(&m_menus, &MainMenus::sortChosen, m_table, &TableTab::sortBy);
    connect(&m_menus, &MainMenus::themeChosen, this, &MainForm::chooseTheme);
}

/// Stands in the status bar until the examiner goes to another row.
void MainForm::showNotice(const QString &text) {
    m_status.notice->setText(text);
    m_status.notice->setToolTip(Qt::convertFromPlainText(text));
    showStatusParts();
}

void MainForm::showStatusParts() {
    const bool open = isProjectOpen();
    const bool noticed = open && !m_status.notice->text().isEmpty();
    m_status.notice->setVisible(noticed);
    for (QLabel *label : {m_status.rows, m_status.tagged})
        label->setVisible(open);
    for (QLabel *label : {m_status.query, m_status.zone, m_status.base})
        label->setVisible(open && !noticed);
}

void MainForm::showStatus() {
    UrlTable *table = m_table->table();
    if (!table)
        return;
    const ThisClass &state = m_program.thisClass;
    m_status.rows->setText(tr("Rows: %L1").arg(table->rowCount()));
    m_status.tagged->setText(tr("Tagged: %L1").arg(m_table->taggedCount()));
    const QString query = m_table->queryName();
    // A column that is shown has its sign in the heading.
    const auto sort = table->columnSort();
    const bool isSortHidden = sort && m_table->grid().tableLayout().hidden(sort->column);
    const QString order =
        isSortHidden ? tr(", by %1").arg(toQt(factsOf(sort->column).header)) : QString();
    constexpr int kWidestQuery = 200; // pixels
    m_status.query->setText(m_status.query->fontMetrics().elidedText(
        tr("Query: %1").arg((query.isEmpty() ? tr("Default") : query) + order), Qt::ElideRight,
        kWidestQuery));
    m_status.query->setToolTip(Qt::convertFromPlainText(query + order));
    m_status.zone->setText(tr("Zone: %1")
                               .arg(toQt(state.GMTZone.exact ? state.GMTZone.tzName
                                                             : state.GMTZone.GetBiasAsTime(0))));
    const std::string base = textOf(state.RootPath);
    m_status.base->setText(
        tr("Base folder: %1").arg(base.empty() ? tr("none") : toQt(displayText(base))));
    m_status.base->setToolTip(Qt::convertFromPlainText(m_status.base->text()));
}

void MainForm::showProjectState() {
    const bool open = isProjectOpen();
    m_pages->setCurrentIndex(open ? 1 : 0);
    m_actions.setProjectOpen(open, m_program.thisClass.ProjectDB.isReadOnly());
    m_menus.setProjectOpen(open);
    showStatusParts();
    if (open)
        showStatus();
}

void MainForm::Lock_Controls() {
    if (m_locks++ > 0)
        return;
    m_focusBeforeLock = QApplication::focusWidget();
    m_menus.setEnabled(false);
    m_pages->setEnabled(false);
    QApplication::setOverrideCursor(Qt::BusyCursor);
}

void MainForm::Unlock_Controls() {
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

void MainForm::closeEvent(QCloseEvent *event) {
    const bool leaves =
        m_locks == 0 && m_program.around.examiner.ask(messages::exitProgram()) == Answer::Yes;
    event->setAccepted(leaves);
    if (!leaves)
        return;
    run("MainForm.CloseFile()", [this] { m_commands.CloseFile(); });
    keepGeometry();
}

void MainForm::keepGeometry() {
    keepWindowLayout(*this, m_program.settings);
    m_program.settings.WriteIniValue(kBeyondSection, "ShowViewers", m_actions.viewers->isChecked());
}

void MainForm::restoreGeometryKept() {
    restoreWindowLayout(*this, m_program.settings);
    m_actions.viewers->setChecked(
        m_program.settings.ReadIniValue(kBeyondSection, "ShowViewers", true));
}

void MainForm::dragEnterEvent(QDragEnterEvent *event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (m_locks == 0 && urls.size() == 1 && urls.constFirst().isLocalFile())
        event->acceptProposedAction();
}

void MainForm::dropEvent(QDropEvent *event) {
    const QString path = event->mimeData()->urls().constFirst().toLocalFile();
    event->acceptProposedAction();
    // After the drop is over: what comes may show dialogs.
    QTimer::singleShot(0, this, [this, path] { takePath(pathFromQt(path)); });
}

} // namespace nv
