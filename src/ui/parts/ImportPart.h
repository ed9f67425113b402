#pragma once

#include "app/project/DroppedPaths.h"
#include "ui/import/ImportForm.h"
#include "ui/table/ImportSteps.h"

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

namespace nv {

class Workbench;

/// The import: the wizard, and the three steps that lead through it from the empty pages.
class ImportPart final : public QObject {
    Q_OBJECT

  public:
    using Places = std::vector<std::filesystem::path>;
    /// Makes the project that is asked for, outside of these places; false when none is open
    /// afterwards.
    using NewProject = std::function<bool(const Places &evidence, const AskedProject &asked)>;

    /// All must outlive it; `imported` is called when rows may have come.
    ImportPart(Workbench &bench, ImportSteps &steps, NewProject newProject,
               std::function<void()> imported);

    /// Offers these folders and files in the wizard; may be none.
    void import(const Places &places);
    /// Takes what was dropped but for a project: into the steps while there are no rows, else into
    /// the wizard.
    void take(const DroppedPaths &dropped);

  private:
    bool needProject(const Places &places, const AskedProject &asked);
    std::unique_ptr<ImportForm> newForm(const Places &places);
    void add(const Places &places);
    void chooseFolder();
    void check();
    void importChecked();
    void afterForm(ImportForm &form);
    /// Nothing is kept of the steps.
    void clear();

    Workbench &m_bench;
    ImportSteps &m_steps;
    NewProject m_newProject;
    std::function<void()> m_imported;
    std::unique_ptr<ImportForm> m_form; ///< that of the steps, once something was checked
};

} // namespace nv
