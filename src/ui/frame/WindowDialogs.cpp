#include "ui/frame/WindowDialogs.h"

#include "app/messages/Messages.h"
#include "base/Files.h"
#include "platform/qt/QtText.h"
#include "ui/import/ImportSummaryPane.h"
#include "ui/options/OptionsForm.h"

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

std::optional<std::filesystem::path> chooseFile(const char *name, const char *title,
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

std::vector<std::filesystem::path> WindowDialogs::chooseFiles(const std::string &) {
    return {};
}

bool WindowDialogs::confirmNewProject(OptionsForm &form) {
    return form.exec() == QDialog::Accepted;
}

std::vector<std::filesystem::path> WindowDialogs::chooseHashLists() {
    QFileDialog dialog(QApplication::activeWindow(),
                       QCoreApplication::translate("WindowDialogs", "Lists of Hashes"));
    dialog.setObjectName(QStringLiteral("hashListsDialog"));
    dialog.setFileMode(QFileDialog::ExistingFiles);
    dialog.setNameFilter(QString::fromLatin1(kAllFiles));
    std::vector<std::filesystem::path> files;
    if (dialog.exec() != QDialog::Accepted)
        return files;
    const QStringList chosen = dialog.selectedFiles();
    files.reserve(static_cast<std::size_t>(chosen.size()));
    for (const QString &file : chosen)
        files.push_back(pathFromQt(file));
    return files;
}

std::optional<std::filesystem::path>
WindowDialogs::choosePage(const std::filesystem::path &offered) {
    return choosePageByDialog(offered);
}

std::optional<std::filesystem::path>
QtWindowDialogs::unlessKept(const std::optional<std::filesystem::path> &chosen) {
    const bool kept = chosen && std::filesystem::exists(*chosen) &&
                      m_examiner.ask(messages::overwriteProject(textOf(*chosen))) != Answer::Yes;
    return kept ? std::nullopt : chosen;
}

std::optional<std::filesystem::path> QtWindowDialogs::chooseProject() {
    return chooseFile("openProjectDialog", "Open File", QFileDialog::AcceptOpen,
                      {QString::fromLatin1(kProjects)});
}

std::optional<std::filesystem::path> QtWindowDialogs::createNewProjectFilename() {
    return unlessKept(chooseFile("newProjectDialog", "Project File Name", QFileDialog::AcceptSave,
                                 {QString::fromLatin1(kProjects)}));
}

std::optional<std::filesystem::path> QtWindowDialogs::chooseSaveAs() {
    return unlessKept(chooseFile("saveAsDialog", "Save As", QFileDialog::AcceptSave,
                                 {QString::fromLatin1(kProjects), QString::fromLatin1(kAllFiles)}));
}

std::optional<std::filesystem::path>
QtWindowDialogs::chooseFolder(const std::string &title, const std::filesystem::path &start) {
    QFileDialog dialog(QApplication::activeWindow(), toQt(title), pathToQt(start));
    dialog.setObjectName(QStringLiteral("folderDialog"));
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    return run(dialog);
}

std::vector<std::filesystem::path> QtWindowDialogs::chooseFiles(const std::string &title) {
    QFileDialog dialog(QApplication::activeWindow(), toQt(title));
    dialog.setObjectName(QStringLiteral("filesDialog"));
    dialog.setFileMode(QFileDialog::ExistingFiles);
    std::vector<std::filesystem::path> files;
    if (dialog.exec() == QDialog::Accepted)
        for (const QString &file : dialog.selectedFiles())
            files.push_back(pathFromQt(file));
    return files;
}

} // namespace nv
