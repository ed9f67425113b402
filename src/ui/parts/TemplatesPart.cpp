#include "ui/parts/TemplatesPart.h"

#include "app/jobs/TemplateJob.h"
#include "app/messages/Messages.h"
#include "app/options/SettingsInForce.h"
#include "base/Files.h"
#include "platform/qt/QtText.h"
#include "ui/parts/RebuildPart.h"
#include "ui/rebuild/TemplatesTab.h"

#include <QInputDialog>
#include <QTabWidget>

namespace nv {

namespace {
constexpr const char *kManaging = "MainForm.PopupMenuTemplates_Click()";
constexpr int kRenameWidth = 420; ///< pixels; names of pages are long
} // namespace

TemplatesPart::TemplatesPart(Workbench &bench) : m_bench(bench), m_tab(new TemplatesTab) {
    bench.dataTabs->addTab(m_tab, tr("Templates"));
    m_tab->setMatchByTitle(bench.program.state.templateMatchByTitle);
    connectTab();
    connect(&bench, &Workbench::projectClosing, m_tab, &TemplatesTab::closePreview);
}

void TemplatesPart::connectTab() {
    const auto on = [this](void (TemplatesTab::*wanted)(), const char *procedure,
                           void (TemplatesPart::*command)()) {
        connect(m_tab, wanted, this, [this, procedure, command] {
            m_bench.run(procedure, [this, command] { (this->*command)(); });
        });
    };
    connect(m_tab, &TemplatesTab::shown, this, &TemplatesPart::list);
    on(&TemplatesTab::createWanted, "MainForm.CreateTemplate()", &TemplatesPart::createTemplate);
    on(&TemplatesTab::applyWanted, "MainForm.RebuildFromTemplates()",
       &TemplatesPart::rebuildFromTemplates);
    on(&TemplatesTab::viewWanted, "MainForm.LoadTemplate()", &TemplatesPart::view);
    on(&TemplatesTab::renameWanted, kManaging, &TemplatesPart::rename);
    on(&TemplatesTab::deleteWanted, kManaging, &TemplatesPart::remove);
    connect(&m_bench, &Workbench::optionsChanged, m_tab,
            [this] { m_tab->setMatchByTitle(m_bench.program.state.templateMatchByTitle); });
    connect(m_tab, &TemplatesTab::matchByTitleChosen, this, &TemplatesPart::chooseMatchByTitle);
}

void TemplatesPart::list() {
    Program &program = m_bench.program;
    m_tab->setTemplates(listTemplates(program.state.templatesPath, program.log));
}

std::vector<UrlId> TemplatesPart::pages() {
    std::vector<UrlId> ids = shownTagged(m_bench);
    if (const auto current = m_bench.table->grid().currentUrl(); ids.empty() && current)
        ids.push_back(*current);
    if (ids.empty())
        m_bench.showNotice(tr("No page is chosen: go to one in the table, or tick some."));
    return ids;
}

void TemplatesPart::createTemplate() {
    const std::vector<UrlId> ids = pages();
    if (ids.empty())
        return;
    Program &program = m_bench.program;
    TemplatesMade made;
    m_bench.runTask({"CREATING TEMPLATE(S)", "Overall Progress", "", ""}, [&](TaskMonitor &task) {
        RecordTools tools(program, task, program.state.tempFolderPath);
        made = createTemplates(program, tools, ids);
    });
    list();
    if (!made.last.empty())
        m_tab->select(made.last);
    m_bench.showNotice(toQt(madeText(made)));
}

void TemplatesPart::rebuildFromTemplates() {
    if (!m_bench.mayWrite())
        return;
    const std::vector<std::filesystem::path> templates = m_tab->chosen();
    for (const std::filesystem::path &file : templates)
        if (!isTemplateThere(m_bench.program, file))
            return list();
    const std::vector<UrlId> ids = pages();
    if (templates.empty() || ids.empty())
        return;
    Program &program = m_bench.program;
    LaidTemplates laid;
    m_bench.runTask({"REBUILDING FROM TEMPLATE(S)", "Overall Progress ", "", ""},
                    [&](TaskMonitor &task) {
                        RecordTools tools(program, task, program.state.tempFolderPath);
                        laid = nv::rebuildFromTemplates(program, tools, ids, templates);
                    });
    m_bench.refreshRows();
    m_bench.showNotice(toQt(laidText(laid)));
    if (laid.results.contains(Laid::failed))
        m_bench.examiner().tell(messages::templateRebuildFailed(laidText(laid)));
}

void TemplatesPart::view() {
    const auto file = m_tab->current();
    if (!file || !isTemplateThere(m_bench.program, *file))
        return list();
    Program &program = m_bench.program;
    Unwatched nobody;
    const RecordTools tools(program, nobody, program.state.tempFolderPath);
    const auto folder = loadTemplate(*file, tools.context());
    if (folder && std::filesystem::exists(*folder / kTemplatePage))
        return m_tab->showPreview(*folder / kTemplatePage);
    m_bench.examiner().tell(messages::loadingTemplateFailed(folder ? reasonText(Laid::noTemplate)
                                                                   : reasonText(Laid::failed)));
}

void TemplatesPart::rename() {
    const auto file = m_tab->current();
    if (!file || !isTemplateThere(m_bench.program, *file))
        return list();
    QInputDialog dialog(&m_bench.window);
    dialog.setObjectName(QStringLiteral("RenameTemplateForm"));
    dialog.setWindowTitle(tr("Rename Template"));
    dialog.setLabelText(tr("Enter the new name:"));
    dialog.setTextValue(toQt(textOf(file->stem())));
    dialog.resize(kRenameWidth, dialog.sizeHint().height());
    if (dialog.exec() != QDialog::Accepted)
        return;
    const auto renamed = renameTemplate(m_bench.program, *file, fromQt(dialog.textValue()));
    list();
    if (renamed)
        m_tab->select(*renamed);
}

void TemplatesPart::remove() {
    if (const auto file = m_tab->current())
        deleteTemplate(m_bench.program, *file);
    list();
}

void TemplatesPart::chooseMatchByTitle(bool on) {
    keepFlag(m_bench.program, "TemplateMatchByTitle", on);
}

} // namespace nv
