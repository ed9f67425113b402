#include "ui/queries/SQLQueryForm.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/project/ProjectFields.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"
#include "ui/queries/StatementBox.h"
#include "views/queries/QueryMessages.h"
#include "views/queries/TestQuery.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QComboBox>
#include <QFormLayout>
#include <QGuiApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include <stdexcept>

namespace nv {

SQLQueryForm::SQLQueryForm(SQLite::Database &project, FailureLog &log, Examiner &examiner,
                           QWidget *parent)
    : QDialog(parent), m_project(project), m_log(log), m_examiner(examiner) {
    setObjectName(QStringLiteral("SQLQueryForm"));
    setWindowTitle(tr("Query Builder"));
    resizeWithinScreen(*this, {680, 520});
    m_statement = new StatementBox("SQLText");
    m_statement->setAccessibleName(tr("Statement"));
    m_statement->setStatement(toQt(m_builder.sqlText));
    m_name = new QLineEdit;
    m_name->setObjectName(QStringLiteral("txtFavoriteName"));
    m_name->setAccessibleName(tr("Store as name"));
    m_name->setPlaceholderText(tr("Leave empty to use the statement without storing it"));
    m_name->setToolTip(tr("Letters, blanks, dashes and underscores"));
    auto *name = new QFormLayout;
    name->addRow(tr("Store as &name:"), m_name);
    auto *choice = new QHBoxLayout;
    choice->addWidget(newFields(), 1);
    choice->addWidget(newCondition(), 1);
    auto *column = new QVBoxLayout(this);
    column->addLayout(choice, 1);
    column->addWidget(m_statement, 1);
    column->addLayout(name);
    column->addWidget(newButtons());
    showFields();
    m_value->setFocus();
}

QWidget *SQLQueryForm::newFields() {
    m_tables = new QComboBox;
    m_tables->setObjectName(QStringLiteral("cbTables"));
    m_tables->setAccessibleName(tr("Table"));
    m_tables->setToolTip(tr("The table whose fields are listed"));
    for (const std::string &table : builderTables())
        m_tables->addItem(toQt(table));
    m_fields = new QListWidget;
    m_fields->setObjectName(QStringLiteral("List1"));
    m_fields->setAccessibleName(tr("Field"));
    connect(m_tables, &QComboBox::currentTextChanged, this, &SQLQueryForm::showFields);
    auto *side = new QWidget;
    auto *form = new QFormLayout(side);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(tr("&Table:"), m_tables);
    form->addRow(tr("&Field:"), m_fields);
    return side;
}

QWidget *SQLQueryForm::newCondition() {
    m_condition = new QComboBox;
    m_condition->setObjectName(QStringLiteral("cbCondition"));
    m_condition->setAccessibleName(tr("Condition"));
    for (const std::string_view condition : kBuilderConditions)
        m_condition->addItem(toQt(condition));
    m_value = new QLineEdit;
    m_value->setObjectName(QStringLiteral("txtCondition"));
    m_value->setAccessibleName(tr("Value"));
    m_value->setToolTip(tr("A text, a number, True, False or a date such as 1/15/2009"));
    auto *add = new QPushButton(tr("&Add"));
    add->setObjectName(QStringLiteral("btnAddNew"));
    add->setToolTip(tr("Add the condition to the statement"));
    add->setDefault(true);
    connect(add, &QPushButton::clicked, this, &SQLQueryForm::addCondition);
    auto *side = new QWidget;
    auto *form = new QFormLayout(side);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(tr("C&ondition:"), m_condition);
    form->addRow(tr("&Value:"), m_value);
    form->addRow(QString(), add);
    return side;
}

QWidget *SQLQueryForm::newButtons() {
    auto *bar = new QWidget;
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const char *name, const QString &text, const QString &hint, auto act) {
        auto *button = new QPushButton(text);
        button->setObjectName(QLatin1String(name));
        button->setToolTip(hint);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, act);
        row->addWidget(button);
    };
    add("btnClear", tr("&Clear"), tr("Begin the statement anew"), [this] { clearStatement(); });
    add("btnClipboard", tr("Co&py"), tr("Copy the statement to the clipboard"),
        [this] { copyStatement(); });
    add("btnSampleSQL", tr("&Sample..."), tr("Show a sample of a statement"),
        [this] { m_examiner.tell(messages::sampleStatement()); });
    row->addStretch();
    add("btnOkay", tr("O&kay"), tr("Take the statement to the Query tab"), [this] { accept(); });
    add("btnCancel", tr("Cancel"), tr("Close without taking the statement"), [this] { reject(); });
    return bar;
}

std::string SQLQueryForm::favoriteName() const {
    return fromQt(m_name->text().trimmed());
}

void SQLQueryForm::showFields() {
    m_fields->clear();
    const auto failure = failureOf(m_log, "SQLQueryForm.LoadFieldNames()", [this] {
        for (const std::string &name : loadFieldNames(m_project, fromQt(m_tables->currentText())))
            m_fields->addItem(toQt(name));
    });
    if (failure)
        m_examiner.tell(messages::fieldNamesFailed(*failure));
    m_fields->setCurrentRow(0);
}

void SQLQueryForm::addCondition() {
    const QListWidgetItem *field = m_fields->currentItem();
    m_builder.sqlText = fromQt(m_statement->toPlainText());
    m_builder.add(field ? fromQt(field->text()) : "", fromQt(m_condition->currentText()),
                  fromQt(m_value->text()));
    m_statement->setStatement(toQt(m_builder.sqlText));
    m_value->selectAll();
    m_value->setFocus();
}

void SQLQueryForm::clearStatement() {
    m_builder.clear();
    m_statement->setStatement(toQt(m_builder.sqlText));
}

void SQLQueryForm::copyStatement() {
    QGuiApplication::clipboard()->setText(m_statement->toPlainText());
}

void SQLQueryForm::accept() {
    if (!isFavoriteName(favoriteName())) {
        m_examiner.tell(messages::invalidFavoriteName());
        return m_name->setFocus();
    }
    const auto failure = failureOf(m_log, "SQLQueryForm.btnOkay_Click()", [this] {
        m_customQueryDef = sanitizeSQLText(trim(fromQt(m_statement->toPlainText())));
        if (!ProjectFields(m_project, m_log).saveDefaultSetting("QueryName", m_customQueryDef))
            throw std::runtime_error("the statement could not be kept in the project");
    });
    if (failure)
        return m_examiner.tell(messages::queryDialogFailed(*failure));
    QDialog::accept();
}

} // namespace nv
