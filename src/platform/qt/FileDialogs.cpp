#include "platform/qt/FileDialogs.h"

#include "platform/qt/QtText.h"

#include <QApplication>
#include <QFileDialog>

namespace nv {

namespace {

constexpr const char *kProjects = "Norvelane Project (*.nvp)";
constexpr const char *kAllFiles = "All Files (*.*)";

std::optional<std::filesystem::path> run(QFileDialog &dialog) {
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return pathFromQt(dialog.selectedFiles().constFirst());
}

std::optional<std::filesystem::path> chooseProject(const char *name, const char *title,
                                                   QFileDialog::AcceptMode mode,
                                                   const QStringList &filters) {
    QFileDialog dialog(QApplication::activeWindow(), QString::fromLatin1(title));
    dialog.setObjectName(QString::fromLatin1(name));
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile
                                                       : QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.setNameFilters(filters);
    dialog.setDefaultSuffix(QStringLiteral("nvp"));
    return run(dialog);
}

} // namespace

std::optional<std::filesystem::path> QtFileDialogs::openProject() {
    return chooseProject("openProjectDialog", "Open File", QFileDialog::AcceptOpen,
                         {QString::fromLatin1(kProjects)});
}

std::optional<std::filesystem::path> QtFileDialogs::newProject() {
    return chooseProject("newProjectDialog", "Project File Name", QFileDialog::AcceptSave,
                         {QString::fromLatin1(kProjects)});
}

std::optional<std::filesystem::path> QtFileDialogs::saveProjectAs() {
    return chooseProject("saveAsDialog", "Save As", QFileDialog::AcceptSave,
                         {QString::fromLatin1(kProjects), QString::fromLatin1(kAllFiles)});
}

std::optional<std::filesystem::path>
QtFileDialogs::chooseFolder(const std::string &title, const std::filesystem::path &start) {
    QFileDialog dialog(QApplication::activeWindow(), toQt(title), pathToQt(start));
    dialog.setObjectName(QStringLiteral("folderDialog"));
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    return run(dialog);
}

} // namespace nv
