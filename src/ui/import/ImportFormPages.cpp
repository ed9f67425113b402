// How the wizard's window is put together.
#include "platform/qt/WithinScreen.h"
#include "ui/import/FoundFilesModel.h"
#include "ui/import/ImportForm.h"
#include "ui/views/GridCopy.h"

#include <QBoxLayout>
#include <QFontDatabase>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableView>

namespace nv {

namespace {

QLabel *newLabel(const char *name) {
    auto *label = new QLabel;
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText); // paths of evidence
    label->setWordWrap(true);
    return label;
}

QPushButton *newButton(const char *name, const QString &text) {
    auto *button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    return button;
}

QTableView *newFilesGrid(FoundFilesModel &model) {
    auto *grid = new QTableView;
    grid->setTextElideMode(Qt::ElideMiddle); // paths differ at their ends
    grid->setObjectName(QStringLiteral("ImportGrid"));
    grid->setAccessibleName(ImportForm::tr("Files found"));
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

} // namespace

ImportForm::ImportForm(Program &program, const std::filesystem::path &start,
                       ChooseFolder chooseFolder, QWidget *parent)
    : QDialog(parent), m_program(program) {
    setObjectName(QStringLiteral("ImportForm"));
    setWindowTitle(tr("Import"));
    // Blocks the main window only: the status window's Cancel button has to stay live.
    setWindowModality(Qt::WindowModal);
    resizeWithinScreen(*this, {860, 560});

    m_heading = newLabel("labStep");
    QFont large = m_heading->font();
    large.setBold(true);
    large.setPointSizeF(large.pointSizeF() * 1.2);
    m_heading->setFont(large);
    m_choice = new ImportChoicePage(program.import, start, program.state.rootPath,
                                    std::move(chooseFolder));
    m_pages = new QStackedWidget;
    m_pages->setObjectName(QStringLiteral("importPages"));
    m_pages->addWidget(m_choice);
    m_pages->addWidget(newFilesPage());
    m_pages->addWidget(newFinishPage());

    auto *column = new QVBoxLayout(this);
    column->addWidget(m_heading);
    column->addWidget(m_pages, 1);
    column->addWidget(newButtons());
    showStep(Choose);
}

ImportForm::~ImportForm() = default;

QWidget *ImportForm::newFilesPage() {
    m_files = new FoundFilesModel(this);
    m_grid = newFilesGrid(*m_files);
    m_scanStep = newLabel("labScanStep");
    m_scanFolder = newLabel("labScanFolder");
    m_gaps = newLabel("labScanGaps");
    m_scanBar = new QProgressBar;
    m_scanBar->setObjectName(QStringLiteral("barScan"));
    m_scanBar->setAccessibleName(tr("Progress of the search"));
    m_scanBar->setTextVisible(false);
    m_scanBar->setMaximumHeight(8);
    connect(m_files, &FoundFilesModel::ticksChanged, this,
            [this] { m_next->setEnabled(!m_scanTask && m_files->validCount() > 0); });

    auto *page = new QWidget;
    auto *column = new QVBoxLayout(page);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_scanStep);
    column->addWidget(m_scanFolder);
    column->addWidget(m_scanBar);
    column->addWidget(m_grid, 1);
    column->addWidget(m_gaps);
    column->addWidget(newZoneRow());
    return page;
}

QWidget *ImportForm::newZoneRow() {
    m_zone = newLabel("labImportZone");
    m_zoneHint = newLabel("labZoneHint");
    m_zoneHint->hide();
    auto *choose = newButton("btnChooseZone", tr("Time &Zone..."));
    choose->setToolTip(tr("Mostly that of the examined machine: local dates are stored in it"));
    choose->setAutoDefault(false);
    connect(choose, &QPushButton::clicked, this, &ImportForm::chooseZone);
    auto *zone = new QWidget;
    auto *grid = new QGridLayout(zone);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(choose, 0, 0);
    grid->addWidget(m_zone, 0, 1);
    grid->addWidget(m_zoneHint, 1, 0, 1, 2);
    grid->setColumnStretch(1, 1);
    return zone;
}

QWidget *ImportForm::newFinishPage() {
    m_summary = new QPlainTextEdit;
    m_summary->setObjectName(QStringLiteral("txtSummary"));
    m_summary->setAccessibleName(tr("Summary of the import"));
    m_summary->setReadOnly(true);
    m_summary->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_summary->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_summary->setTabChangesFocus(true);
    return m_summary;
}

QWidget *ImportForm::newButtons() {
    m_cancel = newButton("btnCancel", tr("Cancel"));
    m_back = newButton("btnBack", tr("<< &Back"));
    m_next = newButton("btnNext", {});
    connect(m_cancel, &QPushButton::clicked, this, &ImportForm::reject);
    connect(m_back, &QPushButton::clicked, this, &ImportForm::back);
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

} // namespace nv
