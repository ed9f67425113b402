#include "ui/queries/QueryTab.h"

#include "platform/qt/QtText.h"
#include "ui/queries/StatementBox.h"
#include "ui/widgets/GrowingGrid.h"

#include <QAction>
#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QSplitter>
#include <QToolButton>

#include <algorithm>

namespace nv {

namespace {

enum Column { Field, Condition, Value, Joining };

template <class List>
QStringList textsOf(const List &list) {
    QStringList texts;
    for (const std::string_view text : list)
        texts += toQt(text);
    return texts;
}

QToolButton *newButton(const char *name, QAction *action) {
    auto *button = new QToolButton;
    button->setObjectName(QLatin1String(name));
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setMinimumWidth(90);
    button->setFocusPolicy(Qt::StrongFocus); // a cell that is being edited ends with the click
    return button;
}

QWidget *under(const QString &title, QWidget *content) {
    auto *whole = new QWidget;
    auto *column = new QVBoxLayout(whole);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(3);
    auto *label = new QLabel(title);
    label->setBuddy(content);
    constexpr int kLeastLines = 3; // so that the window fits small screens
    content->setMinimumHeight(kLeastLines * content->fontMetrics().lineSpacing());
    content->setAccessibleName(QString(title).remove(u'&'));
    column->addWidget(label);
    column->addWidget(content, 1);
    return whole;
}

} // namespace

QueryTab::QueryTab(const QueryActions &actions, QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("QueryTab"));
    auto *halves = new QSplitter(Qt::Vertical);
    halves->setObjectName(QStringLiteral("querySplitter"));
    halves->setChildrenCollapsible(false);
    halves->addWidget(newGrids());
    halves->addWidget(newStatement(actions));
    halves->setStretchFactor(0, 1);
    halves->setStretchFactor(1, 1);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(6, 6, 6, 6);
    column->addWidget(newChoiceBar(actions));
    column->addWidget(halves, 1);
}

QWidget *QueryTab::newChoiceBar(const QueryActions &actions) {
    m_queries = new QComboBox;
    m_queries->setObjectName(QStringLiteral("cbQueries"));
    m_queries->setAccessibleName(tr("Stored query"));
    // A long name doesn't make the window wider.
    m_queries->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_queries->setMinimumContentsLength(28);
    m_queries->setPlaceholderText(tr("Choose a stored query"));
    m_queries->setToolTip(tr("Shows a stored query's statement; Apply loads its rows"));
    connect(m_queries, &QComboBox::activated, this,
            [this](int place) { emit queryChosen(m_queries->itemText(place)); });
    auto *label = new QLabel(tr("&Stored query:"));
    label->setBuddy(m_queries);
    auto *bar = new QWidget;
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(label);
    row->addWidget(m_queries);
    row->addWidget(newButton("btnSaveQuery", actions.save));
    row->addWidget(newButton("btnDeleteQuery", actions.remove));
    row->addStretch();
    row->addWidget(newButton("btnQueryForm", actions.builder));
    return bar;
}

QWidget *QueryTab::newGrids() {
    m_grid = new GrowingGrid("QueryGrid", {tr("Field"), tr("Operator"), tr("Value"), tr("And/Or")},
                             [this](int row, int column) { return cellChoices(row, column); });
    m_sorts = new GrowingGrid("QuerySortGrid", {tr("Field"), tr("Order")}, [this](int, int column) {
        return column == 0 ? fieldNames() : textsOf(kSortOrders);
    });
    connect(m_grid, &GrowingGrid::changed, this, &QueryTab::gridChanged);
    connect(m_sorts, &GrowingGrid::changed, this, &QueryTab::gridChanged);
    auto *grids = new QSplitter;
    grids->setObjectName(QStringLiteral("queryGrids"));
    grids->setChildrenCollapsible(false);
    grids->addWidget(under(tr("&Conditions"), m_grid));
    grids->addWidget(under(tr("S&ort by"), m_sorts));
    grids->setStretchFactor(0, 2);
    grids->setStretchFactor(1, 1);
    return grids;
}

QWidget *QueryTab::newStatement(const QueryActions &actions) {
    m_statement = new StatementBox("txtSQLDef");
    m_statement->setPlaceholderText(tr("SELECT * FROM URLs"));
    auto *whole = under(tr("State&ment"), m_statement);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(newButton("btnValidateSQL", actions.validate));
    buttons->addWidget(newButton("btnApplyQuery", actions.apply));
    buttons->addWidget(newButton("btnUndoQuery", actions.undo));
    buttons->addWidget(newButton("btnDefaultQuery", actions.reset));
    buttons->addStretch();
    static_cast<QVBoxLayout *>(whole->layout())->addLayout(buttons);
    return whole;
}

QStringList QueryTab::fieldNames() const {
    QStringList names{QStringLiteral(" ")};
    for (const QueryField &field : m_fields)
        names += toQt(field.name);
    return names;
}

QStringList QueryTab::cellChoices(int row, int column) const {
    switch (column) {
    case Field:
        return fieldNames();
    case Condition:
        return textsOf(kConditions);
    case Joining:
        return textsOf(kJoinings);
    default:
        break;
    }
    const std::string name = fromQt(m_grid->item(row, Field)->text());
    const auto field = std::find_if(m_fields.begin(), m_fields.end(),
                                    [&](const QueryField &known) { return known.name == name; });
    return field != m_fields.end() && field->isBoolean ? textsOf(kBooleanValues) : QStringList();
}

void QueryTab::setFields(std::vector<QueryField> fields) {
    m_fields = std::move(fields);
    m_grid->clearRows();
    m_sorts->clearRows();
}

void QueryTab::setQueries(const QStringList &names, const QString &selected) {
    m_queries->clear();
    m_queries->addItems(names);
    // A name that isn't listed, "_DEFAULT" above all, is shown without being a choice.
    m_queries->setPlaceholderText(selected.isEmpty() ? tr("Choose a stored query") : selected);
    m_queries->setCurrentIndex(m_queries->findText(selected, Qt::MatchFixedString));
}

QString QueryTab::chosenQuery() const {
    return m_queries->currentText();
}

QString QueryTab::statement() const {
    return m_statement->toPlainText();
}

void QueryTab::setStatement(const QString &sql) {
    m_statement->setStatement(sql);
}

std::vector<QueryRow> QueryTab::rows() const {
    std::vector<QueryRow> rows;
    for (const QStringList &cells : m_grid->filledRows())
        rows.push_back({fromQt(cells[Field]), fromQt(cells[Condition]), fromQt(cells[Value]),
                        fromQt(cells[Joining])});
    return rows;
}

std::vector<QuerySortRow> QueryTab::sorts() const {
    std::vector<QuerySortRow> rows;
    for (const QStringList &cells : m_sorts->filledRows())
        rows.push_back({fromQt(cells[0]), fromQt(cells[1])});
    return rows;
}

void QueryTab::focusStatement() {
    m_statement->setFocus();
}

} // namespace nv
