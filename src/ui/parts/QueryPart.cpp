#include "ui/parts/QueryPart.h"

#include "base/Trap.h"
#include "db/project/DeadQueries.h"
#include "platform/qt/QtText.h"
#include "ui/queries/QueryTab.h"
#include "ui/queries/SQLQueryForm.h"
#include "views/queries/QueryMessages.h"

#include <QAction>
#include <QInputDialog>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QRegularExpression>

namespace nv {

namespace {

/// The table's selector calls the default query by an empty name.
QString tableName(const std::string &name) {
    return name == kDefaultQueryName ? QString() : toQt(name);
}

} // namespace

QueryPart::QueryPart(Workbench &bench)
    : m_bench(bench), m_actions(&bench.window), m_tab(new QueryTab(m_actions)) {
    constexpr int kBesideTable = 1;
    bench.dataTabs->insertTab(kBesideTable, m_tab, tr("Query"));
    if (auto *window = qobject_cast<QMainWindow *>(&bench.window))
        addMenu(*window);
    connectActions();
    connect(m_tab, &QueryTab::gridChanged, this, &QueryPart::takeGrid);
    connect(m_tab, &QueryTab::queryChosen, this, [this](const QString &name) {
        m_bench.run("MainForm.LoadStoredQuery()",
                    [&] { m_commands->loadStoredQuery(fromQt(name)); });
    });
    connect(bench.table, &TableTab::statusChanged, this, &QueryPart::followTable);
    connect(bench.table, &TableTab::sortedBy, this, [this](SortChoice choice) {
        if (m_bench.program.state.projectDB.isReadOnly())
            return; // the order isn't kept
        m_commands->takeStatement(kSortChoices.at(static_cast<std::size_t>(choice)).query);
        m_bench.table->showQuery({});
    });
    connect(&bench, &Workbench::queriesChanged, this, [this] {
        if (m_commands)
            m_commands->loadStoredQueries();
    });
    connect(&bench, &Workbench::projectOpened, this, &QueryPart::open);
    connect(&bench, &Workbench::projectClosing, this, &QueryPart::close);
    bench.limits.add(*this);
}

QueryPart::~QueryPart() = default;

/// The examiner's statement that stands for all rows; empty for the program's own, and for one that
/// only orders them.
QString QueryPart::ownStatement() const {
    const ProgramState &state = m_bench.program.state;
    const bool isOwn = m_bench.table->queryName().isEmpty() &&
                       tableName(state.activeQueryName).isEmpty() &&
                       state.currentSQLDef != state.defaultSQLDef;
    const QString sql = isOwn ? toQt(state.currentSQLDef) : QString();
    static const QRegularExpression selects(
        QStringLiteral("\\b(where|join|limit|group|distinct|except|intersect)\\b"),
        QRegularExpression::CaseInsensitiveOption);
    return sql.contains(selects) ? sql : QString();
}

/// A list of the query's name and the statement that stands for all rows.
QVariant QueryPart::limit() const {
    const QString name = m_bench.table->queryName();
    const QString own = ownStatement();
    return name.isEmpty() && own.isEmpty() ? QVariant() : QVariant(QStringList{name, own});
}

void QueryPart::setLimit(const QVariant &limit) {
    const QStringList wanted = limit.toStringList();
    const QString own = wanted.value(1);
    if (own != ownStatement() && wanted.value(0).isEmpty() && m_commands) {
        if (!m_bench.mayWrite()) // it is kept in the project
            return;
        const ProgramState &state = m_bench.program.state;
        m_commands->takeStatement(own.isEmpty() ? std::string_view(state.defaultSQLDef)
                                                : std::string_view(fromQt(own)));
    }
    m_bench.table->showQuery(wanted.value(0));
}

std::vector<LimitChip> QueryPart::chips() const {
    const QVariant now = limit();
    if (!now.isValid())
        return {};
    const QString name = now.toStringList().constFirst();
    return {
        {name.isEmpty() ? tr("Statement: %1").arg(ownStatement()) : tr("Query: %1").arg(name), {}}};
}

void QueryPart::addMenu(QMainWindow &window) {
    auto *menu = new QMenu(tr("&Query"), &window);
    menu->setObjectName(QStringLiteral("menuQuery"));
    menu->addActions({m_actions.show, m_actions.builder});
    menu->addSeparator();
    menu->addActions({m_actions.validate, m_actions.apply, m_actions.undo, m_actions.reset});
    menu->addSeparator();
    menu->addActions({m_actions.save, m_actions.remove});
    menu->addSeparator();
    menu->addAction(m_actions.favorites);
    auto *tools = window.findChild<QMenu *>(QStringLiteral("menuTools"));
    window.menuBar()->insertMenu(tools ? tools->menuAction() : nullptr, menu);
}

void QueryPart::connectActions() {
    const auto on = [this](QAction *action, const char *procedure, auto command) {
        connect(action, &QAction::triggered, this, [=, this] {
            m_bench.run(procedure, [=, this] {
                if (m_commands)
                    command();
            });
        });
    };
    on(m_actions.validate, "MainForm.btnValidateSQL_Click()",
       [this] { m_commands->btnValidateSQL(); });
    on(m_actions.apply, "MainForm.btnApplyQuery_Click()", [this] { m_commands->btnApplyQuery(); });
    on(m_actions.undo, "MainForm.btnUndoQuery_Click()", [this] { m_commands->btnUndoQuery(); });
    on(m_actions.reset, "MainForm.btnDefaultQuery_Click()",
       [this] { m_commands->btnDefaultQuery(); });
    on(m_actions.save, "MainForm.btnSaveQuery_Click()", [this] { m_commands->btnSaveQuery(); });
    on(m_actions.remove, "MainForm.DeleteStoredQuery()", [this] {
        if (const QString name = m_tab->chosenQuery(); !name.isEmpty())
            m_commands->deleteStoredQuery(fromQt(name));
    });
    on(m_actions.builder, "SQLQueryForm.Show()", [this] { showBuilder(); });
    connect(m_actions.show, &QAction::triggered, this, [this] {
        m_bench.dataTabs->setCurrentWidget(m_tab);
        m_tab->focusStatement();
    });
    connect(m_actions.favorites, &QAction::triggered, this,
            [this] { m_bench.examiner().tell(messages::favorites()); });
}

void QueryPart::open() {
    Program &program = m_bench.program;
    m_commands = std::make_unique<QueryCommands>(m_bench.project(), program.state, program.log,
                                                 m_bench.examiner(), *this);
    m_tab->setFields(trapped(program.log, Severity::Warning, "MainForm.QueryGrid_BeforeEdit()",
                             kContactSupport, std::vector<QueryField>(),
                             [this] { return queryFields(m_bench.project()); }));
    m_commands->start();
    m_actions.setProjectOpen(true, program.state.projectDB.isReadOnly());
}

void QueryPart::close() {
    m_commands.reset();
    m_actions.setProjectOpen(false, false);
    m_tab->setFields({});
    m_tab->setQueries({}, {});
    m_tab->setStatement({});
}

/// The table has loaded another query: by its own selector or the Quick Query menu.
void QueryPart::followTable() {
    const QString shown = m_bench.table->queryName();
    if (m_commands && shown != tableName(m_bench.program.state.activeQueryName))
        m_commands->takeActiveQuery(fromQt(shown));
}

void QueryPart::takeGrid() {
    if (m_commands)
        m_commands->formatQuerySQL(m_tab->rows(), m_tab->sorts());
}

void QueryPart::showBuilder() {
    SQLQueryForm form(m_bench.project(), m_bench.program.log, m_bench.examiner(), &m_bench.window);
    if (form.exec() != QDialog::Accepted)
        return;
    m_bench.program.state.customQueryDef = form.customQueryDef();
    m_commands->takeCustomQuery();
    m_bench.dataTabs->setCurrentWidget(m_tab);
    if (const std::string name = form.favoriteName(); !name.empty())
        m_commands->btnSaveQuery(name);
}

std::string QueryPart::statement() const {
    return fromQt(m_tab->statement());
}

void QueryPart::showStatement(const std::string &sql) {
    m_tab->setStatement(toQt(sql));
}

void QueryPart::showQueries(const std::vector<std::string> &names, const std::string &selected) {
    QStringList listed;
    for (const std::string &name : names)
        listed += toQt(name);
    m_tab->setQueries(listed, toQt(selected));
    listed.prepend(QString());
    // The table can run a query that no list shows.
    if (!listed.contains(tableName(selected)))
        listed += toQt(selected);
    m_bench.table->setQueries(listed, deadQueries());
}

QStringList QueryPart::deadQueries() const {
    QStringList dead;
    if (!m_bench.isProjectOpen())
        return dead;
    for (const StoredQuery &query : StoredQueries(m_bench.project()).list())
        if (isDeadQuery(query))
            dead += toQt(query.name);
    return dead;
}

std::string QueryPart::enterQueryName(const Message &prompt) {
    QInputDialog dialog(&m_bench.window);
    dialog.setObjectName(QStringLiteral("SaveQueryForm"));
    dialog.setWindowTitle(toQt(prompt.title));
    dialog.setLabelText(toQt(prompt.text));
    dialog.resize(360, dialog.height());
    return dialog.exec() == QDialog::Accepted ? fromQt(dialog.textValue()) : std::string();
}

void QueryPart::statementChanged() {
    if (m_bench.program.state.redrawThumbIfPageRebuilt)
        emit m_bench.thumbnailsChanged();
}

void QueryPart::loadURLs() {
    m_bench.table->showQuery(tableName(m_bench.program.state.activeQueryName));
    m_bench.reload();
}

} // namespace nv
