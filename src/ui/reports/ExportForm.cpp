#include "ui/reports/ExportForm.h"

#include "app/messages/Messages.h"
#include "base/Files.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>

#include <array>
#include <utility>

namespace nv {

namespace {

constexpr std::array<const char *, 4> kDelimiters = {"|", ",", ";", "\t"};

/// A bare row of widgets for a form's line.
QHBoxLayout *lineOf(QWidget &line) {
    auto *row = new QHBoxLayout(&line);
    row->setContentsMargins(0, 0, 0, 0);
    return row;
}

} // namespace

ExportForm::ExportForm(Export &job, std::size_t rows, Untouchable untouchable, Examiner &examiner,
                       QWidget *parent)
    : QDialog(parent), m_job(job), m_untouchable(std::move(untouchable)), m_examiner(examiner) {
    setObjectName(QStringLiteral("ExportForm"));
    setWindowTitle(tr("Export Columns"));
    resizeWithinScreen(*this, {560, 620});
    auto *form = new QFormLayout;
    form->addRow(tr("Rows:"), newRowChoice(rows));
    form->addRow(tr("For&mat:"), newFormatChoice());
    form->addRow(tr("Delimiter:"), m_delimiters);
    form->addRow(tr("&Names:"), newNamesChoice());
    form->addRow(QString(), m_guard);
    form->addRow(tr("F&ile:"), newFileLine());
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("&Okay"));
    connect(buttons, &QDialogButtonBox::accepted, this, &ExportForm::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ExportForm::reject);
    auto *column = new QVBoxLayout(this);
    column->addWidget(newColumns(), 1);
    column->addLayout(form);
    column->addWidget(buttons);
    followFormat();
}

QWidget *ExportForm::newColumns() {
    auto *box = m_columnBox = new QGroupBox(tr("Columns"));
    box->setObjectName(QStringLiteral("boxColumns"));
    m_all = new QCheckBox(tr("&All columns of the table, hidden ones too"));
    m_all->setObjectName(QStringLiteral("chkAll"));
    m_columns = new QListWidget;
    m_columns->setObjectName(QStringLiteral("List1"));
    m_columns->setAccessibleName(tr("Columns"));
    m_columns->setAlternatingRowColors(true);
    for (const ListedColumn &column : columnsFromString(m_job.columnsAsString)) {
        const QString header = toQt(column.columnHeader);
        auto *item = new QListWidgetItem(header.isEmpty() ? tr("Tick") : header, m_columns);
        item->setData(Qt::UserRole, toQt(column.keyName));
        item->setToolTip(toQt(column.keyName));
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Checked);
    }
    m_all->setToolTip(tr("Otherwise those that are ticked below"));
    connect(m_all, &QCheckBox::toggled, this, &ExportForm::tickAll);
    auto *column = new QVBoxLayout(box);
    column->addWidget(m_all);
    column->addWidget(m_columns);
    return box;
}

QWidget *ExportForm::newRowChoice(std::size_t rows) {
    auto *line = new QWidget;
    line->setObjectName(QStringLiteral("opRows"));
    QHBoxLayout *row = lineOf(*line);
    m_rows = new QButtonGroup(this);
    const auto add = [&](const QString &text, const char *name) {
        auto *button = new QRadioButton(text);
        button->setObjectName(QLatin1String(name));
        m_rows->addButton(button, static_cast<int>(m_rows->buttons().size()));
        row->addWidget(button);
    };
    add(tr("A&ll rows (%L1)").arg(rows), "opRowsAll");
    add(tr("&Ticked rows (%L1)").arg(m_job.selectedURLs.count()), "opRowsTagged");
    row->addStretch();
    m_rows->button(0)->setChecked(true);
    return line;
}

QWidget *ExportForm::newFormatChoice() {
    m_format = new QComboBox;
    m_format->setObjectName(QStringLiteral("cbFormat"));
    m_format->setAccessibleName(tr("Format"));
    for (const ExportFormatFacts &facts : exportFormats())
        m_format->addItem(toQt(facts.label));
    m_guard = new QCheckBox(tr("Apostrophe before texts that look like &formulas"));
    m_guard->setObjectName(QStringLiteral("chkGuardFormulas"));
    m_guard->setToolTip(tr("A spreadsheet may run a text of evidence that begins with = + - or @"));
    m_format->setToolTip(tr("Delimited text is what the table shows; the others hold what is "
                            "stored, with dates in ISO 8601. A web archive holds cached contents, "
                            "for programs that replay them"));
    m_delimiters = new QWidget;
    m_delimiters->setToolTip(tr("What stands between two cells; one in a cell isn't quoted"));
    m_delimiters->setObjectName(QStringLiteral("opDelimiter"));
    QHBoxLayout *row = lineOf(*m_delimiters);
    m_delimiter = new QButtonGroup(this);
    int at = 0;
    for (const QString &text :
         {QStringLiteral("|"), QStringLiteral(","), QStringLiteral(";"), tr("Tab")}) {
        auto *button = new QRadioButton(text);
        button->setObjectName(QStringLiteral("opDelimiter%1").arg(at));
        m_delimiter->addButton(button, at++);
        row->addWidget(button);
    }
    row->addStretch();
    m_delimiter->button(0)->setChecked(true);
    connect(m_format, &QComboBox::currentIndexChanged, this, &ExportForm::followFormat);
    return m_format;
}

QWidget *ExportForm::newNamesChoice() {
    m_names = new QComboBox;
    m_names->setObjectName(QStringLiteral("cbNames"));
    m_names->setAccessibleName(tr("Names of fields"));
    m_names->setToolTip(tr("What CSV and JSON lines call the columns"));
    m_names->addItem(tr("As people write them (url, title, visit_count)"));
    m_names->addItem(tr("Classic (COL_URL_VALUE)"));
    return m_names;
}

QWidget *ExportForm::newFileLine() {
    auto *line = new QWidget;
    QHBoxLayout *row = lineOf(*line);
    m_file = new QLineEdit;
    m_file->setObjectName(QStringLiteral("txtOutputFilename"));
    m_file->setAccessibleName(tr("File"));
    auto *button = new QPushButton(tr("&Browse..."));
    button->setObjectName(QStringLiteral("btnBrowse"));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, &ExportForm::browse);
    line->setFocusProxy(m_file);
    row->addWidget(m_file, 1);
    row->addWidget(button);
    return line;
}

void ExportForm::tickAll(bool on) {
    for (int row = 0; row < m_columns->count(); ++row)
        m_columns->item(row)->setCheckState(on ? Qt::Checked : Qt::Unchecked);
    m_columns->setEnabled(!on);
}

ExportFormat ExportForm::format() const {
    return static_cast<ExportFormat>(m_format->currentIndex());
}

/// A name keeps up with the format as long as its extension is that of one.
void ExportForm::followFormat() {
    m_delimiters->setEnabled(format() == ExportFormat::delimited);
    m_guard->setEnabled(format() == ExportFormat::csv);
    m_names->setEnabled(format() == ExportFormat::csv || format() == ExportFormat::jsonl);
    m_columnBox->setEnabled(factsOf(format()).content == ExportContent::cells);
    if (!m_file || m_file->text().isEmpty())
        return;
    m_file->setText(pathToQt(withExtensionOf(pathFromQt(m_file->text()), format())));
}

void ExportForm::browse() {
    QFileDialog dialog(this, tr("Export Filename"));
    dialog.setObjectName(QStringLiteral("exportDialog"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    // The question whether to overwrite comes with Okay, for typed names too.
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    const QString extension = toQt(extensionOf(format()));
    const QString kind =
        format() == ExportFormat::delimited
            ? QStringLiteral("Plain Text (*.txt)")
            : QStringLiteral("%1 (*.%2)").arg(toQt(factsOf(format()).word).toUpper(), extension);
    dialog.setNameFilters({kind, QStringLiteral("All Files (*.*)")});
    dialog.setDefaultSuffix(extension);
    if (dialog.exec() == QDialog::Accepted)
        m_file->setText(dialog.selectedFiles().value(0));
}

void ExportForm::accept() {
    if (m_file->text().trimmed().isEmpty())
        return m_examiner.tell(messages::exportPathMissing());
    std::filesystem::path path = pathFromQt(m_file->text().trimmed());
    if (!path.has_extension())
        path.replace_extension(extensionOf(format()));
    if (const auto refusal = refusalOf(path, m_untouchable))
        return m_examiner.tell(messages::exportRefused(*refusal));
    std::error_code none;
    if (std::filesystem::exists(path, none) &&
        m_examiner.ask(messages::overwriteExport(textOf(path))) != Answer::Yes)
        return;
    fillJob(path);
    QDialog::accept();
}

void ExportForm::reject() {
    m_job.cancel = true;
    QDialog::reject();
}

void ExportForm::fillJob(const std::filesystem::path &path) {
    m_job.cancel = false;
    m_job.delimiter = kDelimiters.at(static_cast<std::size_t>(m_delimiter->checkedId()));
    m_job.format = format();
    m_job.names = m_names->currentIndex() == 0 ? FieldNames::people : FieldNames::classic;
    m_job.guardFormulas = m_guard->isChecked();
    m_job.exportAllRows = m_rows->checkedId() == 0;
    m_job.exportAllColumns = m_all->isChecked();
    m_job.outputFilePath = path;
    const std::string extension = path.extension();
    m_job.outputFileExt = extension.empty() ? extension : extension.substr(1);
    const SelectedColumns offered = columnsFromString(m_job.columnsAsString);
    m_job.selectedColumns.clear();
    for (int row = 0; row < m_columns->count(); ++row) {
        const QListWidgetItem *item = m_columns->item(row);
        const std::string key = fromQt(item->data(Qt::UserRole).toString());
        if (item->checkState() == Qt::Checked)
            m_job.selectedColumns.add(offered.item(key), key);
    }
}

} // namespace nv
