#pragma once

#include "app/ProjectCommands.h"
#include "base/Examiner.h"

#include <filesystem>
#include <string>
#include <vector>

namespace nv {

class OptionsForm;

/// The dialogs that the main window shows. Tests have their own.
class WindowDialogs : public FileDialogs {
  public:
    /// Nothing is chosen when the examiner cancels.
    virtual std::optional<std::filesystem::path>
    chooseFolder(const std::string &title, const std::filesystem::path &start) = 0;
    /// Several at once; none when the examiner cancels.
    virtual std::vector<std::filesystem::path> chooseFiles(const std::string &title);
    /// Asks for the file of a page to write; an existing one is only given back after a question.
    virtual std::optional<std::filesystem::path> choosePage(const std::filesystem::path &offered);
    /// The lists that a hash set is to be made of; none when the examiner cancels.
    virtual std::vector<std::filesystem::path> chooseHashLists();
    /// Shows the first step of a new project; false when the examiner cancels.
    virtual bool confirmNewProject(OptionsForm &form);
};

/// The system's dialogs. Names without an extension get "nvp". An existing file is only given back
/// after the program's own question whether to overwrite it.
class QtWindowDialogs final : public WindowDialogs {
  public:
    explicit QtWindowDialogs(Examiner &examiner) : m_examiner(examiner) {}

    std::optional<std::filesystem::path> chooseProject() override;
    std::optional<std::filesystem::path> createNewProjectFilename() override;
    std::optional<std::filesystem::path> chooseSaveAs() override;
    std::optional<std::filesystem::path> chooseFolder(const std::string &title,
                                                      const std::filesystem::path &start) override;
    std::vector<std::filesystem::path> chooseFiles(const std::string &title) override;

  private:
    std::optional<std::filesystem::path>
    unlessKept(const std::optional<std::filesystem::path> &chosen);

    Examiner &m_examiner;
};

} // namespace nv
