#include "ui/window/WindowTitle.h"

#include "app/program/TaskStatus.h"
#include "platform/qt/QtText.h"
#include "ui/parts/Workbench.h"

#include <QStringList>
#include <QWidget>

#include <algorithm>

namespace nv {

namespace {

/// What is over before would only make the title flicker; the status window waits as long.
constexpr double kShowAfter = 0.4; // seconds

} // namespace

void WindowTitle::follow(Workbench &bench) {
    bench.program.task.watcher = [this](const TaskStatus &status) { showTask(status); };
    QObject::connect(&bench, &Workbench::workProgressed, &bench,
                     [this](const QString &name, double fraction) { showWork(name, fraction); });
    QObject::connect(&bench, &Workbench::workEnded, &bench,
                     [this](const QString &name) { endWork(name); });
    QObject::connect(&bench, &Workbench::projectClosing, &bench, [this] { endAllWork(); });
}

void WindowTitle::setCaption(const QString &caption) {
    m_caption = caption;
    refresh();
}

void WindowTitle::showTask(const TaskStatus &status) {
    const bool had = m_hasTask;
    m_hasTask = status.isOpen && status.secondsElapsed() >= kShowAfter;
    if (!had && !m_hasTask)
        return;
    m_task = {toQt(status.workName()), status.topPercent};
    refresh();
}

void WindowTitle::showWork(const QString &name, double fraction) {
    m_background[name] = static_cast<int>(std::clamp(fraction, 0.0, 1.0) * 100);
    refresh();
}

void WindowTitle::endWork(const QString &name) {
    if (m_background.remove(name) > 0)
        refresh();
}

void WindowTitle::endAllWork() {
    m_background.clear();
    refresh();
}

/// A task whose total isn't known stays at 0, which would say nothing.
void WindowTitle::refresh() {
    QStringList parts;
    if (m_hasTask || !m_background.isEmpty()) {
        const Work work = m_hasTask ? m_task : Work{m_background.firstKey(), m_background.first()};
        if (work.percent > 0)
            parts += QStringLiteral("%1%").arg(work.percent);
        if (!work.name.isEmpty())
            parts += work.name;
    }
    parts += m_caption;
    const QString title = parts.join(QStringLiteral(" - "));
    if (title != m_window.windowTitle())
        m_window.setWindowTitle(title);
}

} // namespace nv
