#pragma once

#include "views/limits/ColumnLimit.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <cstddef>
#include <filesystem>
#include <thread>

namespace nv {

/// Counts the values of a column in a thread of its own, by a connection of its own that only
/// reads. All is told in the thread that it lives in.
class ValueCounter final : public QObject {
    Q_OBJECT

  public:
    explicit ValueCounter(QObject *parent = nullptr) : QObject(parent) {}
    ~ValueCounter() override;
    ValueCounter(const ValueCounter &) = delete;
    ValueCounter &operator=(const ValueCounter &) = delete;

    /// At most `most` values. Called once.
    void start(const std::filesystem::path &project, RowIds ids, UrlColumn column,
               std::size_t most);
    /// Returns when the connection is closed; nothing is told any more.
    void stop();

  signals:
    /// In hundredths of the rows.
    void advanced(int hundredths);
    /// Those of the first rows.
    void counted(const nv::CountedValues &counted, qint64 rows);
    /// Those of all rows, unless `failure` says why not.
    void finished(const nv::CountedValues &counted, const QString &failure);

  private:
    void work(const std::filesystem::path &project, const RowIds &ids, UrlColumn column,
              std::size_t most);
    /// Runs `told` in the owner's thread unless it was stopped before.
    template <class Told>
    void tell(Told told) {
        QMetaObject::invokeMethod(
            this,
            [this, told = std::move(told)] {
                if (!m_stops)
                    told();
            },
            Qt::QueuedConnection);
    }

    std::thread m_thread;
    std::atomic<bool> m_stops = false;
};

} // namespace nv
