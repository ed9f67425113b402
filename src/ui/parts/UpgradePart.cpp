#include "ui/parts/UpgradePart.h"

#include "app/messages/Messages.h"
#include "app/project/Project.h"
#include "ui/maintenance/UpgradeWizardForm.h"

namespace nv {

void UpgradePart::show(const std::filesystem::path &project) {
    const auto chosen = project.empty() ? m_bench.dialogs.chooseProject() : std::optional(project);
    if (!chosen)
        return;
    if (!isProjectName(*chosen))
        return m_bench.examiner().tell(messages::notAProjectFile());
    Program &program = m_bench.program;
    const UpgradeWhere where{*chosen, program.state.tempFolderPath, program.paths.keywords()};
    ProjectUpgrade upgrade(where, buildOf(program), program.log, program.around.clock);
    UpgradeWizardForm form(where, upgrade, m_bench.examiner(), program.log, &m_bench.window);
    form.exec();
}

} // namespace nv
