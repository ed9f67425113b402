#include "unit/import/ImportFixture.h"

#include <chrono>
#include <csignal>
#include <cstdint>
#include <sys/wait.h>
#include <unistd.h>

namespace nv {
namespace {

using Milliseconds = std::int64_t;

/// What the importing process tells: so many rows were handed over by then.
struct Progress {
    std::int64_t rows = 0;
    Milliseconds time = 0;
};

// A commit is due every 250 ms; the rest is for a busy machine.
constexpr Milliseconds kLastMoment = 400;
constexpr Milliseconds kRunsFor = 1000;

int g_progressPipe = -1; // a reader is a plain function and can't be handed it

Milliseconds now() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

ReadResult readForEver(ReadContext &ctx) {
    for (Progress progress;; progress.time = now()) {
        URLClass record;
        record.URL = "http://host/page.php?id=" + std::to_string(++progress.rows);
        ctx.sink.save(record);
        if (progress.rows % 100 == 0 &&
            ::write(g_progressPipe, &progress, sizeof progress) != sizeof progress)
            return {};
    }
}

const Reader *everlasting(HistoryFileType type) {
    static constexpr Reader reader =
        test::madeUp(HistoryFileType::norvelaneNVD, "everlasting", readForEver);
    return type == reader.type ? &reader : nullptr;
}

class CrashTest : public test::ImportFixture {
  protected:
    /// Imports in another process, which doesn't come back; its progress comes out of the pipe.
    pid_t importElsewhere(int writeEnd) {
        project.database.CloseDB();
        const pid_t child = ::fork();
        if (child != 0)
            return child;
        g_progressPipe = writeEnd;
        project.database.open();
        Unwatched task;
        import(task, everlasting);
        ::_exit(1);
    }

    /// The rows that were handed over so long before the last word that they must be on the disk.
    static std::int64_t rowsToSurvive(const std::vector<Progress> &told) {
        std::int64_t rows = 0;
        for (const Progress &progress : told)
            if (progress.time <= told.back().time - kLastMoment)
                rows = progress.rows;
        return rows;
    }
};

TEST_F(CrashTest, losesNoMoreThanTheLastMoment) {
    add(HistoryFileType::norvelaneNVD, "a", "");
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t child = importElsewhere(ends[1]);
    ::close(ends[1]);
    std::vector<Progress> told;
    Progress progress;
    bool killed = false;
    while (::read(ends[0], &progress, sizeof progress) == sizeof progress) {
        told.push_back(progress);
        if (!killed && told.back().time - told.front().time > kRunsFor)
            killed = ::kill(child, SIGKILL) == 0;
    }
    ::close(ends[0]);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));

    project.database.open();
    EXPECT_EQ(project.text("PRAGMA integrity_check"), "ok");
    EXPECT_GT(rowsToSurvive(told), 0);
    EXPECT_GE(rows(), rowsToSurvive(told));
    EXPECT_EQ(project.number("SELECT Successful FROM SourceFiles"), 0);
    EXPECT_EQ(import().artefacts[0].state, ArtefactState::complete); // the project goes on
}

} // namespace
} // namespace nv
