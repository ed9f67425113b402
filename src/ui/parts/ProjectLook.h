#pragma once

#include "base/TaskMonitor.h"
#include "views/rows/IdLoader.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <filesystem>
#include <functional>
#include <thread>

namespace SQLite {
class Database;
}

namespace nv {

/// Reads a project in a thread of its own, by a connection of its own that only reads.
class ProjectLook final : public QObject {
    Q_OBJECT

  public:
    /// In the thread. Throws what the database says.
    using Read = std::function<Walk(SQLite::Database &project, TaskMonitor &task)>;
    /// In the window's thread, unless it was cancelled. `failure` is empty when all was read.
    using Done = std::function<void(const QString &failure)>;

    explicit ProjectLook(QObject *parent = nullptr) : QObject(parent) {}
    ~ProjectLook() override;
    ProjectLook(const ProjectLook &) = delete;
    ProjectLook &operator=(const ProjectLook &) = delete;

    /// What was being read is given up. What both use has to live as long as they do.
    void start(const std::filesystem::path &project, Read read, Done done);
    /// Returns when the connection is closed; nothing is told any more.
    void stop();
    bool isRunning() const { return m_thread.joinable(); }

  private:
    void work(const std::filesystem::path &project, const Read &read, const Done &done, int turn);

    std::thread m_thread;
    std::atomic<bool> m_stops = false;
    int m_turn = 0; ///< of the reading that is waited for
};

} // namespace nv
