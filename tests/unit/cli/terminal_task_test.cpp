#include "cli/TerminalTask.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace nv::cli {
namespace {

using testing::HasSubstr;
using testing::Not;

struct TerminalTaskTest : testing::Test {
    void run(TerminalTask &task, double to, double seconds) {
        const double from = fraction;
        for (int step = 1; step <= 100; ++step) {
            now += seconds / 100;
            fraction = from + (to - from) * step / 100;
            EXPECT_TRUE(task.advance(fraction));
        }
    }
    /// What the terminal shows now.
    std::string line() const { return err.str().substr(err.str().rfind('\r') + 1); }

    double now = 100;
    double fraction = 0;
    std::ostringstream err;
    TerminalTask terminal{err, true, [this] { return now; }};
    TerminalTask piped{err, false, [this] { return now; }};
};

TEST_F(TerminalTaskTest, theTimeThatIsLeftStandsBehindThePercentage) {
    terminal.describe({"READING", "", "/case/History", ""});
    run(terminal, 0.01, 2);
    EXPECT_THAT(line(), HasSubstr("%"));
    EXPECT_THAT(line(), Not(HasSubstr("left")));
    run(terminal, 0.5, 180);
    EXPECT_THAT(line(), HasSubstr(" 50%, about 3 minutes left /case/History"));
}

TEST_F(TerminalTaskTest, aLongNameLeavesRoomForIt) {
    terminal.describe({"READING", "", "/case/" + std::string(200, 'x') + "/end", ""});
    run(terminal, 0.4, 60 * 60);
    EXPECT_THAT(line(), HasSubstr("about 1 hour 30 minutes left ..."));
    EXPECT_THAT(line(), HasSubstr("x/end"));
    EXPECT_LE(line().size(), 86U); // with the sequence that clears the line
}

TEST_F(TerminalTaskTest, whatComesNextIsMeasuredAnew) {
    run(terminal, 1, 60);
    terminal.clear();
    fraction = 0;
    run(terminal, 0.04, 2);
    EXPECT_THAT(line(), Not(HasSubstr("left")));
    run(terminal, 0.5, 23);
    EXPECT_THAT(line(), HasSubstr("less than a minute left"));
}

TEST_F(TerminalTaskTest, nothingIsWrittenWhereNobodyLooks) {
    piped.describe({"READING", "", "/case/History", ""});
    run(piped, 0.9, 600);
    EXPECT_EQ(err.str(), "");
}

} // namespace
} // namespace nv::cli
