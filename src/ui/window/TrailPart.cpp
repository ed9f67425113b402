#include "ui/window/TrailPart.h"

#include "app/jobs/Trail.h"
#include "app/messages/Messages.h"
#include "ui/window/CaseTrailForm.h"

#include <QAction>

namespace nv {

TrailPart::TrailPart(Workbench &bench) : m_bench(bench) {
    connect(bench.actions.caseTrail, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.showTrail()", [this] { showTrail(); }); });
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
    m_bench.runTask({"VERIFYING SOURCE FILES", "Hashing the imported files again", "", ""},
                    [&](TaskMonitor &task) {
                        check = verifySources(m_bench.project(), program.log, task);
                        noteVerify(program, check);
                    });
    m_bench.examiner().tell(messages::sourcesVerified(check));
}

} // namespace nv
