#include "ui/parts/ProjectLook.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "db/sql/Connection.h"
#include "platform/qt/QtText.h"
#include "ui/frame/StoppableTask.h"

#include <SQLiteCpp/Database.h>

#include <utility>

namespace nv {

ProjectLook::~ProjectLook() {
    stop();
}

void ProjectLook::start(const std::filesystem::path &project, Read read, Done done) {
    stop();
    m_thread = std::thread([this, project, read = std::move(read), done = std::move(done),
                            turn = m_turn] { work(project, read, done, turn); });
}

void ProjectLook::stop() {
    ++m_turn;
    m_stops = true;
    if (m_thread.joinable())
        m_thread.join();
    m_stops = false;
}

void ProjectLook::work(const std::filesystem::path &project, const Read &read, const Done &done,
                       int turn) {
    Walk walk = Walk::Cancelled;
    NoLog unheard; // the log is the window's: what went wrong is told there
    const auto failure = failureOf(unheard, "ProjectLook.work()", [&] {
        const auto database = connectToProject(project, Access::read);
        StoppableTask task(m_stops);
        walk = read(*database, task);
    });
    QMetaObject::invokeMethod(
        this,
        [this, turn, done, failure, walk] {
            if (turn != m_turn)
                return;
            m_thread.join();
            if (walk == Walk::Finished || failure)
                done(toQt(failure.value_or(std::string())));
        },
        Qt::QueuedConnection);
}

} // namespace nv
