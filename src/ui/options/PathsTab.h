#pragma once

#include "ui/options/OptionsTab.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QFormLayout;
class QLineEdit;

namespace nv {

/// The dialogs of the browse buttons; nothing is given back on Cancel.
struct OptionsDialogs {
    std::function<std::optional<std::filesystem::path>()> newProject;
    std::function<std::optional<std::filesystem::path>(const std::string &title,
                                                       const std::filesystem::path &start)>
        folder;
};

/// The files and folders, each with a button that looks for it.
class PathsTab final : public OptionsTab {
    Q_OBJECT

  public:
    enum class Of { openProject, noProject, newProject };

    PathsTab(const Options &start, Of project, OptionsDialogs dialogs);

    void putInto(Options &options) const override;
    /// For the name of a new project.
    void beginWithProject();
    /// Where the dialog stays; fields of other tabs change nothing.
    void stayAt(OptionsField field);
    /// The file that the examiner has agreed to write over.
    const std::filesystem::path &overwriteAgreed() const { return m_overwriteAgreed; }

  private:
    QLineEdit *addPath(QFormLayout &form, int index, const QString &label, const char *name,
                       const std::filesystem::path &path, const QString &hint);
    void btnPathClick(int index);
    void chooseLogo();

    OptionsDialogs m_dialogs;
    bool m_isNew;
    std::vector<QLineEdit *> m_paths; ///< in the order of the browse buttons
    std::filesystem::path m_overwriteAgreed;
};

} // namespace nv
