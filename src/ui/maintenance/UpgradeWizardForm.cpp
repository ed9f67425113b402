#include "ui/maintenance/UpgradeWizardForm.h"

#include "app/messages/Messages.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"
#include "ui/widgets/GridCopy.h"

#include <QApplication>
#include <QBoxLayout>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>

namespace nv {

namespace {

constexpr int kStatusColumn = 3;
constexpr int kBarSteps = 1000;
constexpr int kTimeStep = 50; // milliseconds between two looks at the Stop button

} // namespace

/// Shows the status line and lets the Stop button be pressed, on a time step.
class UpgradeWizardForm::Task final : public TaskMonitor {
  public:
    explicit Task(UpgradeWizardForm &form) : m_form(form) { m_timer.start(); }
    void describe(const TaskHeading &) override {}
    bool advance(double fraction) override {
        m_form.m_bar->setValue(static_cast<int>(fraction * kBarSteps));
        if (m_timer.elapsed() >= kTimeStep) {
            QApplication::processEvents();
            m_timer.restart();
        }
        return !m_form.m_stop;
    }
    bool wantsStep() const override { return true; }
    void show(const TaskStep &step) override { m_form.setStatus(toQt(step.topMessage)); }

  private:
    UpgradeWizardForm &m_form;
    QElapsedTimer m_timer;
};

UpgradeWizardForm::UpgradeWizardForm(const UpgradeWhere &where, ProjectUpgrade &upgrade,
                                     Examiner &examiner, FailureLog &log, QWidget *parent)
    : QDialog(parent), m_upgrade(upgrade), m_examiner(examiner), m_log(log) {
    setObjectName(QStringLiteral("UpgradeWizardForm"));
    setWindowTitle(tr("Upgrade Wizard"));
    resizeWithinScreen(*this, {640, 480});
    auto *project = new QLabel(toQt(textOf(where.project)));
    project->setObjectName(QStringLiteral("labUpgradeProject"));
    project->setTextFormat(Qt::PlainText);
    project->setWordWrap(true);
    buildGrid();
    m_leftBehind = new QPlainTextEdit;
    m_leftBehind->setObjectName(QStringLiteral("txtLeftBehind"));
    m_leftBehind->setReadOnly(true);
    m_leftBehind->setAccessibleName(tr("What a fix leaves behind, or what it has to tell"));
    m_leftBehind->setMaximumHeight(110);
    m_leftBehind->hide();
    m_status = new QLabel(tr("Press Scan to compare the project with this build."));
    m_status->setObjectName(QStringLiteral("labUpgradeStatus"));
    m_status->setTextFormat(Qt::PlainText);
    m_status->setWordWrap(true);
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *column = new QVBoxLayout(this);
    column->addWidget(project);
    column->addWidget(m_grid, 1);
    column->addWidget(m_leftBehind);
    column->addWidget(m_status);
    m_bar = new QProgressBar;
    m_bar->setObjectName(QStringLiteral("barUpgrade"));
    m_bar->setRange(0, kBarSteps);
    m_bar->setTextVisible(false);
    m_bar->setAccessibleName(tr("Progress"));
    QSizePolicy kept = m_bar->sizePolicy();
    kept.setRetainSizeWhenHidden(true); // or the list would jump
    m_bar->setSizePolicy(kept);
    column->addWidget(m_bar);
    column->addWidget(newButtons());
    showState(State::idle);
}

void UpgradeWizardForm::buildGrid() {
    m_grid = new QTableWidget(0, static_cast<int>(std::size(kDifferenceHeadings)));
    m_grid->setObjectName(QStringLiteral("vsGrid"));
    QStringList headings;
    for (const std::string_view heading : kDifferenceHeadings)
        headings << toQt(heading);
    m_grid->setHorizontalHeaderLabels(headings);
    m_grid->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_grid->verticalHeader()->hide();
    m_grid->setAccessibleName(tr("Differences from this build"));
    m_grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_grid->setAlternatingRowColors(true);
    m_grid->setTabKeyNavigation(false); // Tab leads on to the buttons
    letCopy(*m_grid);
}

QWidget *UpgradeWizardForm::newButtons() {
    auto *bar = new QWidget;
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const char *name, auto act) {
        auto *button = new QPushButton;
        button->setObjectName(QLatin1String(name));
        connect(button, &QPushButton::clicked, this, act);
        row->addWidget(button);
        return button;
    };
    m_scan = add("ScanBtn", [this] { scanBtnClick(); });
    m_scan->setToolTip(tr("Compare tables, indexes, columns and keys; the data isn't changed"));
    m_fix = add("FixBtn", [this] { fixBtnClick(); });
    m_fix->setToolTip(tr("Move all data into a new file and keep the old one beside it"));
    row->addStretch();
    auto *close = add("btnCancel", [this] { reject(); });
    close->setText(tr("&Close"));
    close->setToolTip(tr("A scan or fix that runs is stopped; the project stays as it is"));
    return bar;
}

void UpgradeWizardForm::showState(State state) {
    m_state = state;
    m_scan->setText(state == State::scanning ? tr("Stop") : tr("Scan"));
    m_fix->setText(state == State::fixing ? tr("Stop") : tr("Fix Now"));
    m_scan->setEnabled(state != State::fixing);
    m_bar->setVisible(state != State::idle);
    m_fix->setEnabled(state == State::fixing || (state == State::idle && m_canFix));
}

void UpgradeWizardForm::setStatus(const QString &text) {
    m_status->setText(text);
}

void UpgradeWizardForm::reject() {
    if (m_state == State::idle)
        QDialog::reject();
    m_stop = true;
}

void UpgradeWizardForm::scanBtnClick() {
    if (m_state == State::idle)
        scan();
    else
        m_stop = true;
}

void UpgradeWizardForm::fixBtnClick() {
    if (m_state == State::idle)
        fix();
    else
        m_stop = true;
}

void UpgradeWizardForm::runStoppable(State state, const std::function<void(TaskMonitor &)> &work) {
    m_stop = false;
    showState(state);
    Task task(*this);
    work(task);
    showState(State::idle);
}

void UpgradeWizardForm::scan() {
    m_canFix = false;
    m_grid->setRowCount(0);
    m_leftBehind->hide();
    SchemaScan found;
    std::optional<std::string> failure;
    runStoppable(State::scanning, [&](TaskMonitor &task) {
        failure = failureOf(m_log, "UpgradeWizardForm.ScanBtn_Click()",
                            [&] { found = m_upgrade.scan(task); });
        if (!failure && found.complete && found.differences.empty())
            m_upgrade.stampWhenOlder();
    });
    showDifferences(found);
    if (failure) {
        setStatus(tr("The scan failed."));
        return m_examiner.tell(messages::scanError(*failure));
    }
    setStatus(found.complete ? toQt(kScanComplete) : tr("The scan was stopped."));
    m_canFix = found.complete && !found.differences.empty();
    showState(State::idle);
    if (!m_canFix)
        return;
    m_examiner.tell(messages::fixFile());
    m_fix->setFocus();
}

void UpgradeWizardForm::showDifferences(const SchemaScan &scan) {
    m_grid->setRowCount(static_cast<int>(scan.differences.size()));
    int row = 0;
    for (const SchemaDifference &d : scan.differences) {
        int column = 0;
        for (const std::string *text : {&d.table, &d.object, &d.name, &d.status})
            m_grid->setItem(row, column++, new QTableWidgetItem(toQt(*text)));
        ++row;
    }
    QString lines = toQt(kLeftBehind);
    for (const std::string &line : scan.leftBehind)
        lines += QStringLiteral("\n  ") + toQt(line);
    m_leftBehind->setPlainText(lines);
    m_leftBehind->setVisible(!scan.leftBehind.empty());
}

/// An empty name stands for all tables.
void UpgradeWizardForm::showFixed(std::string_view table) {
    for (int row = 0; row < m_grid->rowCount(); ++row)
        if (table.empty() || equalsNoCase(fromQt(m_grid->item(row, 0)->text()), table))
            m_grid->item(row, kStatusColumn)->setText(toQt(kFixed));
}

void UpgradeWizardForm::fix() {
    FixOutcome outcome;
    std::optional<std::string> failure;
    runStoppable(State::fixing, [&](TaskMonitor &task) {
        failure = failureOf(m_log, "UpgradeWizardForm.FixBtn_Click()", [&] {
            outcome = m_upgrade.fix(task, [this](std::string_view table) { showFixed(table); });
        });
    });
    // Marks of a fix that didn't come to its end would be wrong: only a new scan knows.
    if (failure || outcome.end == FixEnd::stopped) {
        m_canFix = false;
        m_grid->setRowCount(0);
        showState(State::idle);
        setStatus(tr("Nothing was fixed; the project is as it was."));
        if (failure)
            m_examiner.tell(messages::fixError(*failure));
        return;
    }
    showFixed({});
    m_canFix = false;
    showState(State::idle);
    setStatus(tr("Fixed. The old file is %1").arg(toQt(textOf(outcome.oldProject))));
    QString notes;
    for (const std::string &note : outcome.notes)
        notes += toQt(note) + u'\n';
    if (!notes.isEmpty()) {
        m_leftBehind->setPlainText(notes.trimmed());
        m_leftBehind->show();
    }
}

} // namespace nv
