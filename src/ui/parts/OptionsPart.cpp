#include "ui/parts/OptionsPart.h"

#include "app/messages/Messages.h"
#include "app/options/Options.h"
#include "app/options/ProjectOptions.h"
#include "app/project/Project.h"
#include "ui/options/OptionsForm.h"

#include <QAction>

namespace nv {

namespace {

OptionsDialogs dialogsOf(Workbench &bench) {
    return {[&bench] { return bench.dialogs.createNewProjectFilename(); },
            [&bench](const std::string &title, const std::filesystem::path &start) {
                return bench.dialogs.chooseFolder(title, start);
            }};
}

} // namespace

OptionsPart::OptionsPart(Workbench &bench) : m_bench(bench) {
    connect(bench.actions.options, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.showOptions()", [this] { showOptions(); }); });
}

void OptionsPart::showOptions() {
    OptionsForm form(m_bench.program, dialogsOf(m_bench), OptionsForm::Mode::settings,
                     &m_bench.window);
    connect(&form, &OptionsForm::galleryOutdated, &m_bench, &Workbench::galleryOutdated);
    if (form.exec() != QDialog::Accepted)
        return;
    emit m_bench.optionsChanged();
    m_bench.reload();
}

std::optional<OptionsPart::NewProject>
OptionsPart::askNewProject(const std::function<void()> &closeOpen) {
    OptionsForm form(m_bench.program, dialogsOf(m_bench), OptionsForm::Mode::newProject,
                     &m_bench.window);
    form.closeOpenProject = closeOpen;
    if (!m_bench.dialogs.confirmNewProject(form))
        return std::nullopt;
    emit m_bench.optionsChanged();
    return NewProject{form.project(), form.base()};
}

std::optional<OptionsPart::NewProject>
OptionsPart::takeNewProject(const std::filesystem::path &path,
                            const std::filesystem::path &overwriteAgreed) {
    Program &program = m_bench.program;
    Options options = readNewProjectOptions(program, initTimeZone(program));
    options.projectDBPath = path;
    if (!options.timeZoneID && options.exactZone.empty())
        options.exactZone = "UTC"; // whoever asks for a project asks for its zone too
    if (!applyOptions(program, options, {true, {}, overwriteAgreed}).applied)
        return std::nullopt;
    emit m_bench.optionsChanged();
    return NewProject{path, {}};
}

void OptionsPart::storeNewProject(const NewProject &made) {
    Program &program = m_bench.program;
    if (!made.base.empty())
        setRootPath(program, std::filesystem::canonical(made.base));
    // What a project begins with is no change of it.
    const auto unkept = storeProjectValues(program, projectValuesInForce(program), TrailNote::no);
    if (!unkept.empty())
        m_bench.examiner().tell(messages::projectValuesNotKept(unkept));
}

} // namespace nv
