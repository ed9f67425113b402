#include "ui/parts/TipPart.h"

#include "app/settings/Settings.h"
#include "ui/frame/TipForm.h"

#include <QAction>

#include <chrono>

namespace nv {

TipPart::TipPart(Workbench &bench) : m_bench(bench) {
    connect(bench.actions.tips, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.showTips()", [this] { show(); }); });
}

void TipPart::showAtStart() {
    IniFile &settings = m_bench.program.settings;
    const bool isFirst = !readFlag(settings, "HasStarted");
    if (isFirst)
        rememberFlag(settings, "HasStarted", true);
    else if (readFlag(settings, "ShowTipsAtStartup"))
        show();
}

void TipPart::show() {
    Program &program = m_bench.program;
    const auto today = program.around.clock.now().time_since_epoch();
    const auto day = std::chrono::duration_cast<std::chrono::days>(today).count();
    TipForm(readTips(program.paths.tips()), static_cast<std::size_t>(day), program.settings,
            &m_bench.window)
        .exec();
}

} // namespace nv
