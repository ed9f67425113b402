#pragma once

#include "ui/parts/Workbench.h"

namespace nv {

/// Tools > Options, and the first step of a new project.
class OptionsPart final : public QObject {
    Q_OBJECT

  public:
    explicit OptionsPart(Workbench &bench);

    /// What a new project starts with.
    struct NewProject {
        std::filesystem::path path;
        std::filesystem::path base; ///< may be empty
    };
    /// The settings of the dialog are in force when it gives a project; an open one was closed by
    /// `closeOpen`.
    std::optional<NewProject> askNewProject(const std::function<void()> &closeOpen);
    /// The same without the dialog: with the values that it would begin with, for this file. What
    /// it refuses is told. No project is open.
    std::optional<NewProject> takeNewProject(const std::filesystem::path &path,
                                             const std::filesystem::path &overwriteAgreed);
    /// Into the project that was made of it.
    void storeNewProject(const NewProject &made);

  private:
    void showOptions();

    Workbench &m_bench;
};

} // namespace nv
