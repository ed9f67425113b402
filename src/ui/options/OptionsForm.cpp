#include "ui/options/OptionsForm.h"

#include "app/messages/Messages.h"
#include "app/program/Zones.h"
#include "base/Trap.h"
#include "ui/options/DatesTabs.h"
#include "ui/options/OptionsWidgets.h"
#include "ui/options/PicturesTabs.h"
#include "ui/options/SafetyTab.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QTabWidget>

#include <utility>

namespace nv {

OptionsForm::OptionsForm(Program &program, OptionsDialogs dialogs, Mode mode, QWidget *parent)
    : QDialog(parent), m_program(program), m_mode(mode), m_zones(initTimeZone(program)),
      m_start(mode == Mode::newProject ? readNewProjectOptions(program, m_zones)
                                       : readOptions(program, m_zones)),
      m_settings(m_start) {
    setObjectName(QStringLiteral("OptionsForm"));
    setWindowTitle(mode == Mode::newProject ? tr("New Project") : tr("Options"));
    m_tabs = named(new QTabWidget, "optionsTabs");
    addTabs(std::move(dialogs));
    m_tabs->setUsesScrollButtons(false);
    auto *column = new QVBoxLayout(this);
    if (mode == Mode::newProject)
        column->addWidget(newHint(tr("The values below are good as they are: Enter makes the "
                                     "project.")));
    column->addWidget(m_tabs, 1);
    column->addWidget(newButtons());
    if (mode == Mode::newProject)
        m_paths->beginWithProject();
}

void OptionsForm::addTabs(OptionsDialogs dialogs) {
    const auto project = m_mode == Mode::newProject           ? PathsTab::Of::newProject
                         : m_program.state.projectDB.isOpen() ? PathsTab::Of::openProject
                                                              : PathsTab::Of::noProject;
    m_paths = new PathsTab(m_start, project, std::move(dialogs));
    m_zone = new ZoneTab(m_zones, exactZones(m_program).names(), m_start);
    auto *gallery = new GalleryOptionsTab(m_start, m_settings);
    connect(gallery, &GalleryOptionsTab::galleryOutdated, this, &OptionsForm::galleryOutdated);
    addTab(m_paths, tr("Paths"));
    addTab(new DateTimeTab(m_program, m_start), tr("Date/Time"));
    addTab(m_zone, tr("Time Zone"));
    addTab(gallery, tr("Gallery"));
    addTab(new PardTab(m_start), tr("P.A.R.D."));
    addTab(new ThumbnailSizesTab(m_start), tr("Thumbnails"));
    addTab(new SafetyTab(m_program, m_start, m_settings), tr("Safety"));
    m_tabs->addTab(newStatus(), tr("Status"));
    m_tabs->addTab(newBeyond(), tr("Beyond")); // last: what no other tab has
}

void OptionsForm::addTab(OptionsTab *tab, const QString &title) {
    m_tabs->addTab(tab, title);
    m_ownTabs.push_back(tab);
}

QWidget *OptionsForm::newStatus() {
    auto *tab = new QWidget;
    auto *form = new QFormLayout(tab);
    constexpr int kMostSeconds = 60;
    m_rate = addScrolled(*form, tr("&Refresh rate (seconds):"),
                         tr("0 shows each step, which slows a task down"),
                         {"txtStatusRefreshRate", "VScroll1", Qt::Vertical, kMostSeconds},
                         m_start.progressBarRefreshRate);
    form->addRow(newHint(tr("The status window of a long task changes its texts this often.")));
    return tab;
}

/// All that have a control and stand on no other tab.
QWidget *OptionsForm::newBeyond() {
    auto *tab = new QWidget;
    auto *column = new QVBoxLayout(tab);
    for (const SettingFacts &row : settingsTable())
        if (row.control.name && !m_settings.has(row))
            m_settings.add(*column, row);
    column->addStretch(1);
    return tab;
}

QWidget *OptionsForm::newButtons() {
    auto *buttons = new QDialogButtonBox;
    auto *okay = named(new QPushButton(tr("&Okay")), "btnOkay");
    auto *cancel = named(new QPushButton(tr("Cancel")), "btnCancel");
    okay->setDefault(true);
    cancel->setAutoDefault(false);
    buttons->addButton(okay, QDialogButtonBox::AcceptRole);
    buttons->addButton(cancel, QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &OptionsForm::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &OptionsForm::reject);
    return buttons;
}

void OptionsForm::accept() {
    OptionsOutcome outcome;
    const auto failure = failureOf(m_program.log, "OptionsForm.btnOkay_Click()", [&] {
        outcome = applyOptions(
            m_program, shown(),
            {m_mode == Mode::newProject, closeOpenProject, m_paths->overwriteAgreed()});
    });
    if (failure)
        m_program.around.examiner.tell(messages::commandFailed(*failure));
    if (outcome.applied)
        QDialog::accept();
    else
        stayAt(outcome.focus);
}

void OptionsForm::stayAt(OptionsField field) {
    if (field == OptionsField::none)
        return;
    const bool isZone = field == OptionsField::zone;
    m_tabs->setCurrentWidget(isZone ? static_cast<QWidget *>(m_zone) : m_paths);
    if (isZone)
        m_zone->stay();
    else
        m_paths->stayAt(field);
}

Options OptionsForm::shown() const {
    Options options = m_start;
    m_settings.putInto(options);
    for (const OptionsTab *tab : m_ownTabs)
        tab->putInto(options);
    options.progressBarRefreshRate = m_rate->value();
    return options;
}

} // namespace nv
