#include "ui/options/PathsTab.h"

#include "platform/qt/QtText.h"
#include "ui/options/OptionsWidgets.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>

#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

enum Path { kProject, kBase, kTemp, kTemplates, kPublish, kLogo };

} // namespace

PathsTab::PathsTab(const Options &start, Of project, OptionsDialogs dialogs)
    : m_dialogs(std::move(dialogs)), m_isNew(project == Of::newProject) {
    auto *form = new QFormLayout(this);
    addPath(*form, kProject, tr("&Project file:"), "txtPathProject", start.projectDBPath,
            tr("The file that holds the case"))
        ->setReadOnly(!m_isNew);
    QLineEdit *base = addPath(*form, kBase, tr("&Base folder:"), "txtPathBase", start.rootPath,
                              tr("Cached files of the evidence are looked for below it"));
    base->setEnabled(project != Of::noProject);
    if (m_isNew)
        base->setPlaceholderText(tr("The folder of the first import"));
    addPath(*form, kTemp, tr("&Temp folder:"), "txtPathTempFolder", start.tempFolderPath,
            tr("Scratch files, until the program ends"));
    addPath(*form, kTemplates, tr("T&emplates folder:"), "txtPathTemplatesFolder",
            start.templatesPath, tr("Templates made of rebuilt pages"));
    addPath(*form, kPublish, tr("P&ublish folder:"), "txtPathPublish", start.publishTempFolder,
            tr("Offered when a report is published"));
    addPath(*form, kLogo, tr("Agency &logo:"), "txtPathAgencyLogo", start.agencyLogoPath,
            tr("The picture at the head of reports"));
    if (auto *browse = findChild<QPushButton *>(QStringLiteral("btnPath0")))
        browse->setEnabled(m_isNew);
    if (auto *browse = findChild<QPushButton *>(QStringLiteral("btnPath1")))
        browse->setEnabled(project != Of::noProject);
    form->addRow(newHint(tr("The Temp folder holds until the program ends; at each start it is "
                            "TempFolderPath of the section [DEFAULT] of the settings file. Each "
                            "run works in a folder of its own in there.")));
}

QLineEdit *PathsTab::addPath(QFormLayout &form, int index, const QString &label, const char *name,
                             const fs::path &path, const QString &hint) {
    auto *line = new QWidget;
    auto *row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    auto *text = named(new QLineEdit(pathToQt(path)), name);
    text->setToolTip(hint);
    auto *button = new QPushButton(tr("Browse..."));
    button->setObjectName(QStringLiteral("btnPath%1").arg(index));
    const QString plain = QString(label).remove(u'&').remove(u':');
    text->setAccessibleName(plain);
    button->setAccessibleName(tr("Browse for: %1").arg(plain));
    button->setToolTip(tr("Choose: %1").arg(plain));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, index] { btnPathClick(index); });
    row->addWidget(text, 1);
    row->addWidget(button);
    auto *caption = new QLabel(label);
    caption->setBuddy(text);
    form.addRow(caption, line);
    m_paths.push_back(text);
    return text;
}

void PathsTab::beginWithProject() {
    m_paths[kProject]->setFocus();
    m_paths[kProject]->selectAll();
}

void PathsTab::stayAt(OptionsField field) {
    static constexpr std::pair<OptionsField, Path> kFields[] = {
        {OptionsField::project, kProject},
        {OptionsField::base, kBase},
        {OptionsField::temp, kTemp},
        {OptionsField::templates, kTemplates},
        {OptionsField::publish, kPublish}};
    for (const auto &[each, path] : kFields)
        if (each == field)
            m_paths[path]->setFocus();
}

void PathsTab::btnPathClick(int index) {
    std::optional<fs::path> chosen;
    QLineEdit *text = m_paths.at(static_cast<std::size_t>(index));
    const auto folder = [&](const char *title) {
        chosen = m_dialogs.folder(title, pathFromQt(text->text()));
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
        text->setText(pathToQt(*chosen));
}

void PathsTab::chooseLogo() {
    QFileDialog dialog(this, tr("Open File"));
    dialog.setObjectName(QStringLiteral("logoDialog"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilters({QStringLiteral("JPEG (*.jpg)"), QStringLiteral("GIF (*.gif)"),
                           QStringLiteral("Bitmap (*.bmp)"), QStringLiteral("All Files (*.*)")});
    dialog.setDefaultSuffix(QStringLiteral("jpg"));
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        m_paths[kLogo]->setText(dialog.selectedFiles().constFirst());
}

void PathsTab::putInto(Options &options) const {
    const auto path = [this](Path index) { return pathFromQt(m_paths[index]->text().trimmed()); };
    options.projectDBPath = path(kProject);
    if (m_isNew && !options.projectDBPath.empty() && !options.projectDBPath.has_extension())
        options.projectDBPath += ".nvp";
    options.rootPath = path(kBase);
    options.tempFolderPath = path(kTemp);
    options.templatesPath = path(kTemplates);
    options.publishTempFolder = path(kPublish);
    options.agencyLogoPath = path(kLogo);
}

} // namespace nv
