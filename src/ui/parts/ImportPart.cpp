#include "ui/parts/ImportPart.h"

#include "app/messages/DropMessages.h"
#include "ui/parts/Workbench.h"
#include "ui/table/EmptyPage.h"

#include <QAction>

#include <algorithm>

namespace nv {

ImportPart::ImportPart(Workbench &bench, ImportSteps &steps, NewProject newProject,
                       std::function<void()> imported)
    : m_bench(bench), m_steps(steps), m_newProject(std::move(newProject)),
      m_imported(std::move(imported)) {
    const auto run = [this](auto command) {
        m_bench.run("MainForm.import()", [=, this] { (this->*command)(); });
    };
    connect(bench.actions.import, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.import()", [this] { import({}); }); });
    connect(&steps, &ImportSteps::folderWanted, this, [=] { run(&ImportPart::chooseFolder); });
    connect(&steps, &ImportSteps::filesWanted, this, [this] {
        m_bench.run("MainForm.import()", [this] {
            add(sortDropped(m_bench.dialogs.chooseFiles("Choose files of evidence:")).evidence);
        });
    });
    connect(&steps, &ImportSteps::clearingWanted, this, &ImportPart::clear);
    connect(&steps, &ImportSteps::checkWanted, this, [=] { run(&ImportPart::check); });
    connect(&steps, &ImportSteps::importWanted, this, [=] { run(&ImportPart::importChecked); });
    bench.table->emptyPage().offerSteps(steps);
}

bool ImportPart::needProject(const Places &places, const AskedProject &asked) {
    return m_bench.isProjectOpen() ? m_bench.mayWrite() : m_newProject(places, asked);
}

std::unique_ptr<ImportForm> ImportPart::newForm(const Places &places) {
    const auto chooseFolder = [this](const std::string &title, const std::filesystem::path &from) {
        return m_bench.dialogs.chooseFolder(title, from);
    };
    const auto project = [this](const Places &evidence, const AskedProject &asked) {
        return needProject(evidence, asked);
    };
    const auto chooseProject = [this] { return m_bench.dialogs.createNewProjectFilename(); };
    const auto choosePage = [this](const std::filesystem::path &offered) {
        return m_bench.dialogs.choosePage(offered);
    };
    return std::make_unique<ImportForm>(
        m_bench.program, places, ImportNeeds{chooseFolder, project, chooseProject, choosePage},
        &m_bench.window);
}

/// What was checked before isn't kept: both share the import's job.
void ImportPart::import(const Places &places) {
    if (m_bench.isProjectOpen() && !m_bench.mayWrite())
        return;
    m_form.reset();
    m_steps.setChecked({}, false);
    const auto form = newForm(places.empty() ? m_steps.places() : places);
    form->exec();
    afterForm(*form);
}

void ImportPart::take(const DroppedPaths &dropped) {
    if (!dropped.notTaken.empty())
        m_bench.examiner().tell(messages::droppedNotTaken(notTakenText(dropped.notTaken)));
    if (dropped.evidence.empty())
        return;
    const UrlTable *table = m_bench.table->table();
    if (!m_bench.isProjectOpen() || (table && table->emptyState() == EmptyState::NoRecords))
        add(dropped.evidence);
    else
        import(dropped.evidence);
}

void ImportPart::add(const Places &places) {
    Places all = m_steps.places();
    for (const std::filesystem::path &place : places)
        if (std::ranges::find(all, place) == all.end())
            all.push_back(place);
    if (all == m_steps.places())
        return;
    m_form.reset();
    m_steps.setPlaces(std::move(all));
}

void ImportPart::chooseFolder() {
    const auto chosen = m_bench.dialogs.chooseFolder("Choose a folder of evidence:", {});
    if (chosen)
        add({std::filesystem::canonical(*chosen)});
}

void ImportPart::check() {
    if (m_steps.places().empty())
        return;
    if (!m_form)
        m_form = newForm(m_steps.places());
    m_form->check();
    afterForm(*m_form);
}

void ImportPart::importChecked() {
    if (!m_form)
        return;
    m_form->importChecked();
    afterForm(*m_form);
}

void ImportPart::afterForm(ImportForm &form) {
    if (form.imported()) {
        const AfterSummary next = form.next();
        clear();
        m_imported();
        m_bench.goOn(next);
    } else if (&form == m_form.get()) {
        if (const Places places = form.places(); places != m_steps.places())
            m_steps.setPlaces(places); // in the wizard they can be changed too
        m_steps.setChecked(form.checkedText(), form.isReady());
    }
}

void ImportPart::clear() {
    m_form.reset();
    m_steps.setPlaces({});
}

} // namespace nv
