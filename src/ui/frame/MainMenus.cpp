#include "ui/frame/MainMenus.h"

#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"

#include <QActionGroup>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

namespace nv {

namespace {

/// File and query names may hold "&", which menus take for a mnemonic.
QString literal(QString text) {
    return text.replace(u'&', QStringLiteral("&&"));
}

QMenu *named(QMenu *menu, const char *name) {
    menu->setObjectName(QLatin1String(name));
    return menu;
}

} // namespace

MainMenus::MainMenus(QMainWindow &window, const MainActions &actions)
    : QObject(&window), m_window(window) {
    buildFile(actions);
    buildEdit(actions);
    buildView(actions);
    buildToolsAndHelp(actions);
    buildToolBar(actions);
}

void MainMenus::buildFile(const MainActions &actions) {
    m_file = named(m_window.menuBar()->addMenu(tr("&File")), "menuFile");
    m_file->addActions({actions.newProject, actions.openProject, actions.import});
    m_file->addSeparator();
    m_file->addActions({actions.saveAs, actions.exportRows, actions.closeProject});
    m_file->addSeparator();
    m_quickQuery = named(m_file->addMenu(icon("filter"), tr("&Quick Query")), "menuQuickQuery");
    m_file->addSeparator();
    m_recentEnd = m_file->addSeparator();
    m_file->addAction(actions.exit);
}

void MainMenus::buildEdit(const MainActions &actions) {
    QMenu *menu = named(m_window.menuBar()->addMenu(tr("&Edit")), "menuEdit");
    menu->addActions({actions.copyCell, actions.copyRows});
    named(menu->addMenu(tr("Cop&y As")), "menuCopyAs")
        ->addActions(
            {actions.copyCsv, actions.copyMarkdown, actions.copyJson, actions.copyDefanged});
    menu->addAction(actions.selectAll);
    menu->addSeparator();
    menu->addActions({actions.search, actions.find, actions.findNext});
    menu->addSeparator();
    menu->addAction(actions.tag);
}

void MainMenus::buildView(const MainActions &actions) {
    QMenu *menu = named(m_window.menuBar()->addMenu(tr("&View")), "menuView");
    menu->addActions({actions.filters, actions.hideKnown, actions.columns});
    m_sortBy = named(menu->addMenu(tr("&Sort By")), "PopupMenuSortBy");
    addSortChoices();
    menu->addAction(actions.refresh);
    menu->addSeparator();
    menu->addActions({actions.viewers, actions.places, actions.hosts, actions.time});
    addThemes(*named(menu->addMenu(icon("theme"), tr("&Theme")), "menuTheme"));
}

void MainMenus::addSortChoices() {
    for (const SortChoiceFacts &facts : kSortChoices) {
        const SortChoice choice = facts.choice;
        m_sortBy->addAction(toQt(facts.label), this, [this, choice] { emit sortChosen(choice); });
    }
}

void MainMenus::addThemes(QMenu &menu) {
    auto *group = new QActionGroup(this);
    for (const Theme theme : {Theme::System, Theme::Light, Theme::Dark}) {
        const QString text = theme == Theme::System  ? tr("&System")
                             : theme == Theme::Light ? tr("&Light")
                                                     : tr("&Dark");
        QAction *action = menu.addAction(text, this, [this, theme] { emit themeChosen(theme); });
        action->setObjectName(QStringLiteral("actTheme") + toQt(themeName(theme)));
        action->setCheckable(true);
        group->addAction(action);
        m_themes.push_back(action);
    }
}

void MainMenus::buildToolsAndHelp(const MainActions &actions) {
    QMenu *tools = named(m_window.menuBar()->addMenu(tr("&Tools")), "menuTools");
    tools->addActions(
        {actions.rebuild, actions.rebuildPage, actions.rebuildExactly, actions.rebuildByClassic});
    tools->addSeparator();
    tools->addActions({actions.linkAnalysis, actions.hashSets});
    tools->addSeparator();
    tools->addActions({actions.createReport, actions.publishReport, actions.openReportFolder});
    tools->addSeparator();
    tools->addActions({actions.baseFolder, actions.timeZone, actions.options});
    tools->addSeparator();
    tools->addActions({actions.importSummary, actions.caseTrail, actions.network});
    tools->addSeparator();
    tools->addActions({actions.upgradeWizard, actions.errorLog});
    QMenu *help = named(m_window.menuBar()->addMenu(tr("&Help")), "menuHelp");
    help->addActions({actions.guide, actions.tips, actions.about});
}

void MainMenus::buildToolBar(const MainActions &actions) {
    m_toolBar = m_window.addToolBar(tr("Toolbar"));
    m_toolBar->setObjectName(QStringLiteral("toolBar"));
    m_toolBar->setMovable(false);
    m_toolBar->setIconSize(QSize(22, 22));
    m_toolBar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    m_toolBar->addActions({actions.newProject, actions.openProject, actions.import});
    m_toolBar->addSeparator();
    m_toolBar->addActions({actions.search, actions.filters, actions.places, actions.time,
                           actions.columns, actions.refresh});
    m_toolBar->addSeparator();
    m_toolBar->addActions({actions.tag, actions.rebuild, actions.createReport, actions.exportRows});
    m_toolBar->addSeparator();
    m_toolBar->addActions({actions.network, actions.options});
}

void MainMenus::showRecentFiles(const std::vector<RecentFile> &files) {
    qDeleteAll(m_recent);
    m_recent.clear();
    for (const RecentFile &file : files) {
        const auto number = static_cast<int>(m_recent.size()) + 1;
        const QString text =
            QStringLiteral("&%1 %2").arg(QString::number(number), literal(toQt(file.shownText)));
        auto *action = new QAction(text, this);
        action->setObjectName(QStringLiteral("actRecent%1").arg(number));
        connect(action, &QAction::triggered, this,
                [this, path = file.path] { emit recentFileChosen(path); });
        m_recent.push_back(action);
        m_file->insertAction(m_recentEnd, action);
    }
}

void MainMenus::showQuickQueries(const QStringList &names) {
    m_quickQuery->clear();
    m_quickQuery->addAction(tr("&Default"), this, [this] { emit quickQueryChosen({}); });
    m_quickQuery->addSeparator();
    for (const QString &name : names)
        m_quickQuery->addAction(literal(name.mid(1)), this,
                                [this, name] { emit quickQueryChosen(name); });
}

void MainMenus::showTheme(Theme theme) {
    m_themes.at(static_cast<std::size_t>(theme))->setChecked(true);
}

void MainMenus::setEnabled(bool enabled) {
    m_window.menuBar()->setEnabled(enabled);
    m_toolBar->setEnabled(enabled);
}

void MainMenus::setProjectOpen(bool open) {
    m_quickQuery->setEnabled(open);
    m_sortBy->setEnabled(open);
}

} // namespace nv
