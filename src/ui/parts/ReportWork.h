#pragma once

#include "app/jobs/ReportJob.h"
#include "ui/frame/StoppableTask.h"
#include "views/rows/IdLoader.h"

#include <QObject>

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace nv {

/// Makes a report in a thread of its own, by a connection of its own that only reads: the report is
/// of the project as it was when it began, whatever the examiner does meanwhile.
class ReportWork final : public QObject {
    Q_OBJECT

  public:
    /// Throws StorageFailure. The program outlives it.
    explicit ReportWork(Program &program);
    /// Stops what isn't finished; of it nothing is left.
    ~ReportWork() override;
    ReportWork(const ReportWork &) = delete;
    ReportWork &operator=(const ReportWork &) = delete;

    /// Its options are set before the start. While it runs nobody touches it.
    ReportWriter &report();
    void start(RowIds rows);
    /// What comes of it is a report that was cancelled.
    void stop() { m_stops = true; }
    std::int64_t rows() const;

  signals:
    void advanced(int percent);
    /// It has come to its end, in the window's thread; `failure` is empty for none.
    void ended(bool finished, const QString &failure);

  private:
    class Messages;
    struct Making;
    void work(const RowIds &rows);
    void end(bool finished, const std::optional<std::string> &failure);

    Program &m_program;
    std::atomic<bool> m_stops = false;
    std::unique_ptr<Making> m_making;
    std::thread m_thread;
};

} // namespace nv
