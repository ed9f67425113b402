#include "ui/parts/SummaryPart.h"

#include "base/Trap.h"
#include "db/trail/CaseTrail.h"
#include "ui/frame/NotReadSign.h"

#include <QAction>
#include <QMainWindow>
#include <QStatusBar>

namespace nv {

using First = ImportSummaryForm::First;

SummaryPart::SummaryPart(Workbench &bench) : m_bench(bench) {
    connect(bench.actions.importSummary, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.showSummary()", [this] { show(First::counts); }); });
    addSign();
}

void SummaryPart::addSign() {
    auto *window = qobject_cast<QMainWindow *>(&m_bench.window);
    if (!window)
        return;
    m_sign = new NotReadSign;
    window->statusBar()->addPermanentWidget(m_sign);
    connect(m_sign, &QToolButton::clicked, this,
            [this] { m_bench.run("MainForm.showSummary()", [this] { show(First::notRead); }); });
    // Whatever was imported is loaded then.
    connect(m_bench.table, &TableTab::rowsLoaded, this, &SummaryPart::countNotRead);
    connect(&m_bench, &Workbench::projectClosing, this, [this] {
        m_countedTo.reset();
        m_sign->setCount(0);
    });
}

void SummaryPart::countNotRead() {
    logFailureOf(m_bench.program.log, "MainForm.CountNotRead()", [this] {
        const std::int64_t last = CaseTrail(m_bench.project()).lastID();
        if (m_countedTo == last)
            return;
        m_sign->setCount(nv::countNotRead(m_bench.project()));
        m_countedTo = last;
    });
}

void SummaryPart::show(First first) {
    if (!m_bench.isProjectOpen())
        return;
    const auto choosePage = [this](const std::filesystem::path &offered) {
        return m_bench.dialogs.choosePage(offered);
    };
    ImportSummaryForm form(m_bench.program, choosePage, first, &m_bench.window);
    form.exec();
    if (const auto next = form.next())
        m_bench.goOn(*next);
}

} // namespace nv
