// norvelane-draw JOBFILE: draws pictures and pages small, sheets of them, and charts. The file
// holds a job a line; of each a line is written as soon as it is drawn, as DrawLines.h tells.
// Without the closing line the program has crashed, or has given up after a page that still
// holds the engine: the jobs that no line tells of are for another process.

#include "platform/posix/DrawLines.h"
#include "platform/posix/NetworkLock.h"
#include "platform/qt/ChartPainter.h"
#include "platform/qt/ImageThumbnailer.h"
#include "platform/qt/PageDrawEngine.h"
#include "platform/qt/PageGuard.h"
#include "platform/qt/SheetPainter.h"

#include <QApplication>

#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

using namespace nv;

namespace {

/// What pictures may take besides what the program takes by itself.
constexpr rlim_t kMemory = rlim_t{1} << 30;
/// Far more than a picture takes on a slow machine.
constexpr rlim_t kSecondsPerPicture = 30;

/// Only the soft limit, which can be lifted again.
void limit(int resource, rlim_t value) {
    rlimit both{};
    ::getrlimit(static_cast<__rlimit_resource>(resource), &both);
    both.rlim_cur = std::min(value, both.rlim_max);
    ::setrlimit(static_cast<__rlimit_resource>(resource), &both);
}

rlim_t memoryTaken() {
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE));
}

rlim_t secondsTaken() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<rlim_t>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec);
}

/// The lines leave through a file of their own: libraries write to the standard output, and the
/// engine's processes would keep it open after a crash.
class Lines {
  public:
    Lines() : m_fd(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0)) {
        ::dup2(STDERR_FILENO, STDOUT_FILENO);
    }
    void write(std::string line) const {
        line += '\n';
        for (std::string_view rest = line; !rest.empty();) {
            const ssize_t written = ::write(m_fd, rest.data(), rest.size());
            if (written <= 0)
                std::_Exit(EXIT_FAILURE); // nobody listens any more
            rest.remove_prefix(static_cast<std::size_t>(written));
        }
    }

  private:
    int m_fd;
};

class Artist {
  public:
    Drawn draw(const TimedJob &timed) {
        // What lay there must never pass for the new drawing.
        std::error_code none;
        std::filesystem::remove(timed.job.target, none);
        return timed.job.kind == DrawJob::Kind::page ? drawPage(timed) : drawPicture(timed.job);
    }
    bool isStuck() const { return m_pages && m_pages->isStuck(); }

  private:
    Drawn drawPicture(const DrawJob &job) {
        if (!m_pages)
            limit(RLIMIT_CPU, secondsTaken() + kSecondsPerPicture);
        if (job.kind == DrawJob::Kind::chart)
            return ChartPicture().draw(job);
        return job.kind == DrawJob::Kind::sheet ? SheetPainter().draw(job) : m_pictures.draw(job);
    }

    /// The web engine sets far more memory aside than it uses, and its threads share the limits.
    Drawn drawPage(const TimedJob &timed) {
        if (!m_pages) {
            limit(RLIMIT_AS, RLIM_INFINITY);
            limit(RLIMIT_CPU, RLIM_INFINITY);
            m_pages = std::make_unique<PageDrawEngine>();
        }
        return m_pages->draw(timed.job, timed.timeout);
    }

    ImageThumbnailer m_pictures;
    std::unique_ptr<PageDrawEngine> m_pages;
};

/// True when all jobs are done.
bool drawAll(std::istream &jobs, const Lines &lines) {
    Artist artist;
    std::string line;
    for (std::size_t job = 0; std::getline(jobs, line); ++job) {
        const auto timed = timedJobOf(line);
        lines.write(lineOf(
            {job, timed ? artist.draw(*timed) : Drawn{.failure = "This is no job for drawing."}}));
        if (artist.isStuck())
            return false;
    }
    return true;
}

int run(int argc, char **argv, const Lines &lines) {
    std::ifstream jobs(argv[1]);
    if (!jobs) {
        std::cerr << "the job file can't be read\n";
        return EXIT_FAILURE;
    }
    prepareWebEngine();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    limit(RLIMIT_AS, memoryTaken() + kMemory);
    lines.write(std::string(kDrawReady));
    if (drawAll(jobs, lines))
        lines.write(std::string(kDrawEnd));
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::cerr << "usage: norvelane-draw JOBFILE\n";
        return EXIT_FAILURE;
    }
    const Lines lines;
    const rlimit noCore{};
    ::setrlimit(RLIMIT_CORE, &noCore);
    lockNetwork();
    int code = EXIT_FAILURE;
    try {
        code = run(argc, argv, lines);
    } catch (const std::exception &failure) {
        std::cerr << failure.what() << '\n';
    }
    // What damaged pictures and pages have left behind had better not be taken down.
    std::_Exit(code);
}
