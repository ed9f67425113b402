#include "ui/parts/ValueCounter.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "db/sql/Connection.h"
#include "platform/qt/QtText.h"
#include "ui/frame/StoppableTask.h"

#include <SQLiteCpp/Database.h>

#include <utility>

namespace nv {

ValueCounter::~ValueCounter() {
    stop();
}

void ValueCounter::start(const std::filesystem::path &project, RowIds ids, UrlColumn column,
                         std::size_t most) {
    m_thread = std::thread(
        [this, project, ids = std::move(ids), column, most] { work(project, ids, column, most); });
}

void ValueCounter::stop() {
    m_stops = true;
    if (m_thread.joinable())
        m_thread.join();
}

namespace {

/// Each page is read once, one after the other: to keep many would only take memory.
constexpr const char *kSmallCache = "PRAGMA cache_size=-2048";

} // namespace

void ValueCounter::work(const std::filesystem::path &project, const RowIds &ids, UrlColumn column,
                        std::size_t most) {
    CountedValues values;
    Walk walk = Walk::Cancelled;
    NoLog unheard; // the log is the window's: what went wrong is told there
    const auto failure = failureOf(unheard, "ValueCounter.work()", [&] {
        const auto database = connectToProject(project, Access::read);
        database->exec(kSmallCache);
        StoppableTask task(m_stops,
                           [this](int done) { tell([this, done] { emit advanced(done); }); });
        walk = countValues(
            *database, ids, column, most, task, values,
            [this](const CountedValues &first, std::size_t rows) {
                tell([this, first, rows] { emit counted(first, static_cast<qint64>(rows)); });
            });
    });
    if (walk == Walk::Finished || failure)
        tell([this, values, why = toQt(failure.value_or(std::string()))] {
            emit finished(values, why);
        });
}

} // namespace nv
