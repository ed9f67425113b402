#include "ui/parts/TrailPart.h"

#include "app/jobs/Trail.h"
#include "app/messages/TrailMessages.h"
#include "ui/frame/CaseTrailForm.h"

#include <QAction>
#include <fmt/format.h>

namespace nv {

TrailPart::TrailPart(Workbench &bench) : m_bench(bench) {
    connect(bench.actions.caseTrail, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.showTrail()", [this] { showTrail(); }); });
    connect(bench.table, &TableTab::ticked, this, [this](qint64 urlID, qint64 rows, bool on) {
        noteMarking(m_bench.program,
                    {.isSet = on,
                     .rows = rows,
                     .which = rows == 1 ? fmt::format("row {}", urlID)
                                        : fmt::format("selected with row {}", urlID)});
    });
}

void TrailPart::showTrail() {
    if (!m_bench.isProjectOpen())
        return;
    CaseTrailForm form(&m_bench.window);
    const auto refresh = [this, &form] {
        form.showEntries(CaseTrail(m_bench.project()).entries());
    };
    connect(&form, &CaseTrailForm::verifyWanted, &form, [this, &refresh] {
        verify();
        refresh();
    });
    refresh();
    form.exec();
}

void TrailPart::verify() {
    Program &program = m_bench.program;
    SourceCheck check;
    TrailChain chain;
    m_bench.runTask({"VERIFYING SOURCE FILES", "Hashing the imported files again", "", ""},
                    [&](TaskMonitor &task) {
                        check = verifySources(m_bench.project(), program.log, task);
                        chain = checkTrail(m_bench.project());
                        noteVerify(program, check, chain);
                    });
    m_bench.examiner().tell(messages::sourcesVerified(check, chain));
}

} // namespace nv
