// The dialog as a whole and what its buttons do; the tabs stand in OptionsFormTabs.cpp.
#include "ui/options/OptionsForm.h"

#include "app/messages/Messages.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "ui/options/OptionsWidgets.h"
#include "ui/options/TimeZoneForm.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

namespace nv {

namespace fs = std::filesystem;

namespace {

enum Path { kProject, kBase, kTemp, kTemplates, kPublish, kLogo };
enum Tab { kPathsTab = 0, kZoneTab = 2 };

} // namespace

OptionsForm::OptionsForm(Program &program, OptionsDialogs dialogs, Mode mode, QWidget *parent)
    : QDialog(parent), m_program(program), m_dialogs(std::move(dialogs)), m_mode(mode),
      m_zones(initTimeZone(program)),
      m_start(mode == Mode::newProject ? readNewProjectOptions(program, m_zones)
                                       : readOptions(program, m_zones)) {
    setObjectName(QStringLiteral("OptionsForm"));
    setWindowTitle(mode == Mode::newProject ? tr("New Project") : tr("Options"));
    m_tabs = named(new QTabWidget, "optionsTabs");
    m_tabs->addTab(newPaths(), tr("Paths"));
    m_tabs->addTab(newDateTime(), tr("Date/Time"));
    m_tabs->addTab(newZone(), tr("Time Zone"));
    m_tabs->addTab(newGallery(), tr("Gallery"));
    m_tabs->addTab(newPard(), tr("P.A.R.D."));
    m_tabs->addTab(newThumbnails(), tr("Thumbnails"));
    m_tabs->addTab(newSafety(), tr("Safety"));
    m_tabs->addTab(newStatus(), tr("Status"));
    m_tabs->addTab(newBeyond(), tr("Beyond"));
    m_tabs->setUsesScrollButtons(false);
    auto *column = new QVBoxLayout(this);
    if (mode == Mode::newProject)
        column->addWidget(newHint(tr("The values below are good as they are: Enter makes the "
                                     "project.")));
    column->addWidget(m_tabs, 1);
    column->addWidget(newButtons());
    showPard();
    showConnection();
    if (mode == Mode::newProject) {
        m_paths[kProject]->setFocus();
        m_paths[kProject]->selectAll();
    }
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
        outcome = applyOptions(m_program, shown(),
                               {m_mode == Mode::newProject, closeOpenProject, m_overwriteAgreed});
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
    m_tabs->setCurrentIndex(field == OptionsField::zone ? kZoneTab : kPathsTab);
    QWidget *control = m_zone;
    if (!m_zone->isEnabled())
        control = m_exactZone;
    if (field == OptionsField::project)
        control = m_paths[kProject];
    if (field == OptionsField::base)
        control = m_paths[kBase];
    if (field == OptionsField::temp)
        control = m_paths[kTemp];
    if (field == OptionsField::templates)
        control = m_paths[kTemplates];
    if (field == OptionsField::publish)
        control = m_paths[kPublish];
    control->setFocus();
}

void OptionsForm::btnPathClick(int index) {
    std::optional<fs::path> chosen;
    const auto folder = [&](const char *title) {
        chosen = m_dialogs.folder(title,
                                  pathFromQt(m_paths.at(static_cast<std::size_t>(index))->text()));
    };
    switch (index) {
    case kProject:
        chosen = m_dialogs.newProject();
        if (chosen)
            m_overwriteAgreed = *chosen;
        break;
    case kBase:
        folder("Select Base Folder: Select the BASE root folder for all evidence in project:");
        break;
    case kTemp:
        folder("Select a valid TEMP folder:");
        break;
    case kTemplates:
        folder("Select a folder for templates:");
        break;
    case kPublish:
        folder("Select a location to publish reports:");
        break;
    default:
        return chooseLogo();
    }
    if (chosen)
        m_paths.at(static_cast<std::size_t>(index))->setText(pathToQt(*chosen));
}

void OptionsForm::chooseLogo() {
    QFileDialog dialog(this, tr("Open File"));
    dialog.setObjectName(QStringLiteral("logoDialog"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilters({QStringLiteral("JPEG (*.jpg)"), QStringLiteral("GIF (*.gif)"),
                           QStringLiteral("Bitmap (*.bmp)"), QStringLiteral("All Files (*.*)")});
    dialog.setDefaultSuffix(QStringLiteral("jpg"));
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        m_paths[kLogo]->setText(dialog.selectedFiles().constFirst());
}

void OptionsForm::showZoneProperties() {
    TimeZoneForm(m_zones, m_zone->currentIndex(), this).exec();
}

void OptionsForm::showPard() {
    const bool on = m_pard->isChecked();
    for (QWidget *control : m_pard->parentWidget()->findChildren<QWidget *>()) {
        if (qobject_cast<QSpinBox *>(control) || qobject_cast<QScrollBar *>(control))
            control->setEnabled(on);
    }
    m_pardText->setText(
        !on ? tr("Pictures of every shape are shown.")
        : m_from->value() > m_to->value()
            ? tr("The range is empty: pictures of every shape are shown.")
            : tr("Pictures of %1% to %2% are shown.").arg(m_from->value()).arg(m_to->value()));
}

std::string OptionsForm::connectionName() const {
    const std::string name = fromQt(m_connectionName->text().trimmed());
    return m_connection->checkedId() == 0 || name.empty()
               ? std::string(TextKey("NetworkConnectionName")->byDefault)
               : name;
}

void OptionsForm::showConnection() {
    m_connectionName->setEnabled(m_connection->checkedId() == 1);
    const std::string status = connectionStatus(m_program, connectionName());
    m_switch->setText(status == "DISABLED" ? tr("Enable") : tr("Disable"));
    m_switch->setEnabled(!status.empty());
    m_status->setText(status.empty()        ? tr("Network Connection Not Found")
                      : status == "ENABLED" ? tr("The connection is up.")
                                            : tr("The connection is down."));
}

void OptionsForm::btnLocalAreaConnectionClick() {
    const std::string before = connectionStatus(m_program, connectionName());
    const std::string after = switchConnectionOver(m_program, connectionName());
    if (after != before)
        m_offline = after == "DISABLED";
    showConnection();
}

Options OptionsForm::shown() const {
    Options options = m_start;
    for (const auto &[row, box] : m_settings)
        chooseText(options, *row, box.value());
    const auto path = [this](Path index) { return pathFromQt(m_paths[index]->text().trimmed()); };
    options.projectDBPath = path(kProject);
    if (m_mode == Mode::newProject && !options.projectDBPath.empty() &&
        !options.projectDBPath.has_extension())
        options.projectDBPath += ".nvp";
    options.rootPath = path(kBase);
    options.tempFolderPath = path(kTemp);
    options.templatesPath = path(kTemplates);
    options.publishTempFolder = path(kPublish);
    options.agencyLogoPath = path(kLogo);
    options.dateFormat = fromQt(m_dateFormat->text().trimmed());
    options.timeFormat = fromQt(m_timeFormat->text().trimmed());
    options.timeZoneID.reset();
    if (m_zone->currentIndex() >= 0)
        options.timeZoneID = m_zone->currentData().toInt();
    options.exactZone = fromQt(m_exactZone->text().trimmed());
    options.enableDSTChanges = m_dst->isChecked();
    options.galleryRecordsPerPage = m_perPage->currentData().toInt();
    options.thumbnailRedrawTimeout = m_timeout->currentData().toInt();
    options.enablePARD = m_pard->isChecked();
    options.pardFrom = m_from->value();
    options.pardTo = m_to->value();
    if (m_viewerSizes->checkedId() > 0)
        options.viewerThumbnailWidth = m_viewerSizes->checkedId();
    if (m_reportSizes->checkedId() > 0)
        options.reportThumbnailWidth = m_reportSizes->checkedId();
    options.networkConnectionName = connectionName();
    options.switchedOffline = m_offline;
    options.progressBarRefreshRate = m_rate->value();
    return options;
}

} // namespace nv
