#include "ui/import/ImportProject.h"

#include "app/project/SuggestedProject.h"
#include "base/DisplayText.h"
#include "base/Files.h"
#include "platform/qt/QtText.h"
#include "ui/import/WizardParts.h"

#include <QBoxLayout>
#include <QLineEdit>

#include <utility>

namespace nv {

ImportProject::ImportProject(Program &program, ChooseProject chooseProject, QWidget *parent)
    : QWidget(parent), m_program(program), m_chooseProject(std::move(chooseProject)),
      m_path(new QLineEdit) {
    setObjectName(QStringLiteral("ImportProject"));
    QLabel *caption = newWizardLabel("labImportProject");
    caption->setText(tr("&Project file:"));
    caption->setWordWrap(false);
    caption->setBuddy(m_path);
    m_path->setObjectName(QStringLiteral("txtImportProject"));
    m_path->setAccessibleName(tr("Project file"));
    m_path->setToolTip(tr("The file that is made for the case. It never lies in the evidence."));
    m_path->setPlaceholderText(tr("Name a file outside of the evidence"));
    connect(m_path, &QLineEdit::textChanged, this, &ImportProject::changed);
    QPushButton *browse = newWizardButton("btnImportProject", tr("Bro&wse..."));
    browse->setAccessibleName(tr("Browse for: Project file"));
    browse->setAutoDefault(false);
    connect(browse, &QPushButton::clicked, this, &ImportProject::browse);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(caption);
    row->addWidget(m_path, 1);
    row->addWidget(browse);
    look();
}

void ImportProject::suggest(const std::vector<std::filesystem::path> &evidence) {
    const bool isOwn = pathFromQt(m_path->text().trimmed()) != m_suggested;
    m_suggested = suggestedProject(m_program, evidence);
    if (!isOwn)
        m_path->setText(pathToQt(m_suggested));
    look();
}

void ImportProject::look() {
    setVisible(!m_program.state.projectDB.isOpen());
}

bool ImportProject::isMissing() const {
    return !m_program.state.projectDB.isOpen() && m_path->text().trimmed().isEmpty();
}

AskedProject ImportProject::asked() const {
    std::filesystem::path path = pathFromQt(m_path->text().trimmed());
    if (!path.empty() && path.has_filename() && !path.has_extension())
        path += ".nvp";
    return {path, m_overwriteAgreed};
}

QString ImportProject::nameText() const {
    return m_program.state.projectDB.isOpen() ? QString()
                                              : toQt(displayText(textOf(asked().path.filename())));
}

void ImportProject::focusName() {
    m_path->setFocus();
    m_path->selectAll();
}

void ImportProject::browse() {
    const auto chosen = m_chooseProject();
    if (!chosen)
        return;
    m_overwriteAgreed = *chosen;
    m_path->setText(pathToQt(*chosen));
}

} // namespace nv
