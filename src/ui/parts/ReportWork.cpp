#include "ui/parts/ReportWork.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "db/sql/Connection.h"
#include "platform/qt/QtText.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr const char *kProcedure = "ReportForm.OkBtn_Click()";

/// Beside what the viewers fetch.
fs::path newScratch(const Program &program) {
    fs::path scratch = program.state.tempFolderPath / "~making report";
    makeEmptyFolder(scratch);
    return scratch;
}

} // namespace

/// The log is the window's: it gets them at the end.
class ReportWork::Messages final : public FailureLog {
  public:
    void write(const Failure &failure) override { m_failures.push_back(failure); }
    void handOver(FailureLog &log) {
        for (const Failure &failure : std::exchange(m_failures, {}))
            log.write(failure);
    }

  private:
    std::vector<Failure> m_failures;
};

struct ReportWork::Making {
    Making(Program &program, const std::atomic<bool> &stops, std::function<void(int)> shown)
        : scratch(newScratch(program)), zone(program.state.gmtZone),
          project(connectToProject(program.state.projectDB.filePath, Access::read)),
          task(stops, std::move(shown)),
          tools(program, {*project, zone, log}, task, program.state.tempFolderPath, scratch) {}
    ~Making() {
        std::error_code ignored; // it is scratch
        fs::remove_all(scratch, ignored);
    }
    Making(const Making &) = delete;
    Making &operator=(const Making &) = delete;

    fs::path scratch;
    TimeZone zone;
    Messages log;
    std::unique_ptr<SQLite::Database> project;
    /// As long as it isn't at its end, the connection sees the project as it was at the start.
    std::optional<SQLite::Statement> now;
    StoppableTask task;
    ReportTools tools;
};

ReportWork::ReportWork(Program &program)
    : m_program(program), m_making(std::make_unique<Making>(program, m_stops, [this](int percent) {
          QMetaObject::invokeMethod(
              this, [this, percent] { emit advanced(percent); }, Qt::QueuedConnection);
      })) {}

ReportWork::~ReportWork() {
    stop();
    if (m_thread.joinable())
        m_thread.join();
}

ReportWriter &ReportWork::report() {
    return m_making->tools.report;
}

std::int64_t ReportWork::rows() const {
    return m_making->tools.rows();
}

void ReportWork::start(RowIds rows) {
    m_making->now.emplace(*m_making->project, "SELECT name FROM sqlite_master");
    m_making->now->executeStep();
    m_thread = std::thread([this, rows = std::move(rows)] { work(rows); });
}

void ReportWork::work(const RowIds &rows) {
    bool finished = false;
    const auto failure =
        failureOf(m_making->log, kProcedure, [&] { finished = m_making->tools.make(rows); });
    QMetaObject::invokeMethod(
        this, [this, finished, failure] { end(finished, failure); }, Qt::QueuedConnection);
}

void ReportWork::end(bool finished, const std::optional<std::string> &failure) {
    m_thread.join();
    m_making->log.handOver(m_program.log);
    emit ended(finished, toQt(failure.value_or(std::string())));
}

} // namespace nv
