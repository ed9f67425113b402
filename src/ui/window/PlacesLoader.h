#pragma once

#include "views/Places.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <filesystem>
#include <memory>
#include <thread>

namespace nv {

/// Counts the places of a project in a thread of its own, by a connection of its own that only
/// reads.
class PlacesLoader final : public QObject {
    Q_OBJECT

  public:
    explicit PlacesLoader(QObject *parent = nullptr) : QObject(parent) {}
    ~PlacesLoader() override;
    PlacesLoader(const PlacesLoader &) = delete;
    PlacesLoader &operator=(const PlacesLoader &) = delete;

    /// What was being counted is given up.
    void start(const std::filesystem::path &project);
    /// Returns when the connection is closed; nothing is told any more.
    void stop();
    bool isRunning() const { return m_thread.joinable(); }

  signals:
    /// In the window's thread. `failure` is empty when the places are there.
    void loaded(const std::shared_ptr<nv::Places> &places, const QString &failure);

  private:
    void work(const std::filesystem::path &project, int turn);

    std::thread m_thread;
    std::atomic<bool> m_stops = false;
    int m_turn = 0; ///< of the counting that is waited for
};

} // namespace nv
