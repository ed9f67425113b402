#include "ui/window/SummaryPart.h"

#include "ui/import/ImportSummaryForm.h"

#include <QAction>

namespace nv {

SummaryPart::SummaryPart(Workbench &bench) : m_bench(bench) {
    connect(bench.actions.importSummary, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.showSummary()", [this] { show(); }); });
}

void SummaryPart::show() {
    if (!m_bench.isProjectOpen())
        return;
    const auto choosePage = [this](const std::filesystem::path &offered) {
        return m_bench.dialogs.choosePage(offered);
    };
    ImportSummaryForm form(m_bench.program, choosePage, &m_bench.window);
    form.exec();
    if (const auto next = form.next())
        m_bench.goOn(*next);
}

} // namespace nv
