#include "ui/window/PlacesLoader.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "db/Connection.h"
#include "platform/qt/QtText.h"
#include "ui/window/StoppableTask.h"

#include <SQLiteCpp/Database.h>

namespace nv {

PlacesLoader::~PlacesLoader() {
    stop();
}

void PlacesLoader::start(const std::filesystem::path &project) {
    stop();
    m_thread = std::thread([this, project, turn = m_turn] { work(project, turn); });
}

void PlacesLoader::stop() {
    ++m_turn;
    m_stops = true;
    if (m_thread.joinable())
        m_thread.join();
    m_stops = false;
}

void PlacesLoader::work(const std::filesystem::path &project, int turn) {
    auto places = std::make_shared<Places>();
    Walk walk = Walk::Cancelled;
    NoLog unheard; // the log is the window's: what went wrong is told there
    const auto failure = failureOf(unheard, "PlacesLoader.work()", [&] {
        const auto database = connectToProject(project, Access::read);
        StoppableTask task(m_stops);
        walk = loadPlaces(*database, task, *places);
    });
    QMetaObject::invokeMethod(
        this,
        [this, turn, places, failure, walk] {
            if (turn != m_turn)
                return;
            m_thread.join();
            if (walk == Walk::Finished || failure)
                emit loaded(places, toQt(failure.value_or(std::string())));
        },
        Qt::QueuedConnection);
}

} // namespace nv
