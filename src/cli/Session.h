#pragma once

#include "app/project/Project.h"
#include "cli/TerminalTask.h"
#include "cli/UsageError.h"
#include "platform/posix/PosixSystemTime.h"
#include "platform/posix/SysfsNetwork.h"

#include <filesystem>
#include <ostream>
#include <string>
#include <string_view>

namespace nv::cli {

/// Writes messages to a stream and gives the answer of nobody being there.
class StreamExaminer final : public Examiner {
  public:
    explicit StreamExaminer(std::ostream &err) : m_err(err) {}
    Answer ask(const Message &message) override;

  private:
    std::ostream &m_err;
};

/// The headless program has no status window.
class NoStatusView final : public StatusView {
  public:
    void open() override {}
    void close() override {}
    void update(const TaskStatus &) override {}
    void pump() override {}
};

/// What one run of the headless program works with.
class Session {
  public:
    /// `command` is what was called, for the log.
    Session(const std::string &executable, std::string_view command, std::ostream &out,
            std::ostream &err);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    /// Throws StorageFailure when `project` has not the extension of projects, isn't there, or
    /// can't be opened, or when a window has it open and the command would write.
    void open(const std::filesystem::path &project, Access access = Access::write,
              Holding holding = Holding::yes);
    /// The same for commands that only look: no byte of the project changes.
    void openForReading(const std::filesystem::path &project) { open(project, Access::read); }
    /// For commands whose only trace in the project is a note in its trail: on a medium that can't
    /// be written, or is full, they work all the same, and tell that there is no note. False then.
    bool openForNote(const std::filesystem::path &project);
    /// The project and its folder may be written; says so when they may not.
    bool mayNote(const std::filesystem::path &project);
    /// Throws StorageFailure when not everything that was printed has arrived.
    void flushOutput();
    /// A folder of this run's own below the Temp folder, removed at its end.
    const std::filesystem::path &scratch();

    std::ostream &out;
    std::ostream &err;

  private:
    StreamExaminer m_examiner;
    NoStatusView m_status;
    SystemClock m_clock;
    PosixSystemTime m_systemTime;
    SysfsNetwork m_network;

  public:
    Program program;
    TerminalTask task;
};

} // namespace nv::cli
