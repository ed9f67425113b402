#pragma once

#include "app/program/Program.h"

#include <QWidget>

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

class QLabel;
class QLineEdit;

namespace nv {

/// The project that an import makes.
struct AskedProject {
    std::filesystem::path path;
    std::filesystem::path overwriteAgreed; ///< the examiner has agreed to write over this file
};

/// Asks for the file of a project; nothing when the examiner cancels. Of one that is there it has
/// asked whether to write over it.
using ChooseProject = std::function<std::optional<std::filesystem::path>()>;

/// The part of the wizard that asks where the project is to lie, with a file that is good as it is.
/// It is hidden while a project is open.
class ImportProject final : public QWidget {
    Q_OBJECT

  public:
    ImportProject(Program &program, ChooseProject chooseProject, QWidget *parent = nullptr);

    /// Offers a file for this evidence, unless the examiner has named one.
    void suggest(const std::vector<std::filesystem::path> &evidence);
    /// Shown or not, as a project came or went.
    void look();
    /// No project is open, and none is named.
    bool isMissing() const;
    /// With the extension of projects.
    AskedProject asked() const;
    /// "ada 2026-11-22.nvp"; empty while a project is open.
    QString nameText() const;
    /// To the name, to change it.
    void focusName();

  signals:
    void changed();

  private:
    void browse();

    Program &m_program;
    ChooseProject m_chooseProject;
    QLineEdit *m_path;
    std::filesystem::path m_suggested;
    std::filesystem::path m_overwriteAgreed;
};

} // namespace nv
