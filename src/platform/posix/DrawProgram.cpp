#include "platform/posix/DrawProgram.h"

#include "base/Files.h"
#include "base/Storage.h"
#include "platform/ChildProcess.h"
#include "platform/posix/DrawLines.h"
#include "platform/posix/DrawProcess.h"

#include <algorithm>
#include <csignal>

namespace nv {

namespace fs = std::filesystem;

namespace {

using End = ChildResult::End;
using Take = std::function<bool(std::size_t job, const Drawn &)>;

/// The web engine grows with each page.
constexpr std::size_t kJobsPerProcess = 300;

Drawn failed(std::string why) {
    Drawn drawn;
    drawn.failure = std::move(why);
    return drawn;
}

/// Where not even as many plain bytes can be written, it isn't the picture's fault. Throws
/// StorageFailure.
void checkRoomFor(const DrawJob &job) {
    constexpr std::size_t kBytesPerPixel = 4;
    const auto pixels = static_cast<std::size_t>(job.width) * static_cast<std::size_t>(job.height);
    std::error_code ignored;
    {
        FileWriter trial(job.target);
        trial.write(std::string(pixels * kBytesPerPixel, '\0'));
        trial.close();
    }
    fs::remove(job.target, ignored);
}

class DrawRun {
  public:
    DrawRun(const fs::path &program, const DrawFolder &folder, std::span<const DrawJob> jobs,
            std::chrono::seconds timeout, const Take &take, const std::function<bool()> &goOn)
        : m_jobs(jobs), m_timeout(timeout), m_take(take), m_goOn(goOn),
          m_jobFile(folder.path() / "jobs"), m_command(drawCommand(program, folder, m_jobFile)) {}

    void drawAll(std::chrono::seconds longestSilence) {
        m_command.longestSilence = longestSilence;
        while (m_next < m_jobs.size() && !m_isStopped)
            drawSome();
    }

  private:
    void drawSome();
    bool takeLine(std::string_view line);
    void handOn(const Drawn &drawn) {
        if (drawn.failure == kTargetNotWritten)
            checkRoomFor(m_jobs[m_next]);
        m_isStopped = !m_take(m_next++, drawn) || m_isStopped;
    }
    void blame(const ChildResult &result);
    void failRest(const std::string &why) {
        while (m_next < m_jobs.size() && !m_isStopped)
            handOn(failed(why));
    }

    std::span<const DrawJob> m_jobs;
    std::chrono::seconds m_timeout;
    const Take &m_take;
    const std::function<bool()> &m_goOn;
    fs::path m_jobFile;
    ChildCommand m_command;
    std::size_t m_next = 0;  ///< the first job that nothing is known of
    std::size_t m_first = 0; ///< of the process at work
    std::size_t m_end = 0;   ///< after its last one
    bool m_isReady = false;  ///< that process has come as far as its jobs
    bool m_isStopped = false;
};

void DrawRun::drawSome() {
    m_first = m_next;
    m_isReady = false;
    std::string lines;
    m_end = std::min(m_jobs.size(), m_first + kJobsPerProcess);
    for (const DrawJob &job : m_jobs.subspan(m_first, m_end - m_first))
        lines += lineOf({job, m_timeout}) + '\n';
    writeWhole(m_jobFile, lines);
    const ChildResult result = runChild(
        m_command, [this](std::string_view line) { return takeLine(line); }, m_goOn);
    if (result.end == End::stopped)
        m_isStopped = true;
    else if (m_next < m_end)
        blame(result);
}

/// Anything but the lines agreed on comes from a program gone wrong, and is passed over: the job
/// then counts as not drawn.
bool DrawRun::takeLine(std::string_view line) {
    if (line == kDrawReady)
        m_isReady = true;
    else if (const auto drawn = drawnJobOf(line);
             drawn && m_next < m_end && drawn->job == m_next - m_first)
        handOn(drawn->drawn);
    return !m_isStopped;
}

/// For a process that ended before its time. A crash need not come from the job
/// at hand: only the first job of a process is blamed, any other one is given to a new process. So
/// each process brings the drawing forward by a job at least.
void DrawRun::blame(const ChildResult &result) {
    if (result.end == End::notStarted || !m_isReady)
        return failRest(whyNothingWasDrawn(result));
    const bool isStuck =
        result.end == End::silent || (result.end == End::crashed && result.code == SIGXCPU);
    if (m_next > m_first && !isStuck)
        return;
    handOn(failed(whatEndedTheDrawing(result)));
}

} // namespace

DrawProgram::DrawProgram(std::optional<fs::path> program, fs::path scratch)
    : m_program(std::move(program)), m_scratch(std::move(scratch)) {}

void DrawProgram::draw(std::span<const DrawJob> jobs, std::chrono::seconds timeout,
                       const Take &take, const std::function<bool()> &goOn) {
    if (!m_program) {
        for (std::size_t job = 0; job < jobs.size(); ++job)
            if (!take(job, failed("The program norvelane-draw is missing: nothing can be drawn.")))
                return;
        return;
    }
    const DrawFolder folder(fs::absolute(m_scratch));
    DrawRun run(*m_program, folder, jobs, timeout, take, goOn);
    run.drawAll(timeout + longestStart);
}

} // namespace nv
