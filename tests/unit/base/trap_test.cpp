#include "base/ByteView.h"
#include "base/Trap.h"
#include "support/TestDoubles.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(ProcedureTrap, logsOnceAndGivesTheDefault) {
    test::MemoryLog log;
    const int result = trapped(log, Severity::Serious, "MainBAS.GetURL()", kContactSupport, 7,
                               []() -> int { throw std::runtime_error("no such row"); });
    EXPECT_EQ(result, 7);
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_EQ(log.entries[0].message, "no such row");
    EXPECT_EQ(log.entries[0].procedure, "MainBAS.GetURL()");
    EXPECT_EQ(log.entries[0].severity, Severity::Serious);
}

TEST(ProcedureTrap, letsAStorageFailureThrough) {
    test::MemoryLog log;
    EXPECT_THROW(static_cast<void>(trapped(log, Severity::Warning, "x", "", 0,
                                           []() -> int { throw StorageFailure("disk full"); })),
                 StorageFailure);
    EXPECT_THROW(
        trapped(log, Severity::Warning, "x", "", [] { throw StorageFailure("disk full"); }),
        StorageFailure);
    EXPECT_TRUE(log.entries.empty());
}

TEST(ProcedureTrap, withoutAResultOnlyLogs) {
    test::MemoryLog log;
    trapped(log, Severity::Low, "MainBAS.X()", kNotSerious, [] { viewOf("a").u8(1); });
    logFailureOf(log, "MainBAS.Y()", [] { throw StorageFailure("disk full"); });
    ASSERT_EQ(log.entries.size(), 2u);
    EXPECT_EQ(log.entries[0].procedure, "MainBAS.X()");
    EXPECT_EQ(log.entries[1].message, "disk full");
}

TEST(CommandTrap, givesTheReasonToTellAndLogsIt) {
    test::MemoryLog log;
    EXPECT_EQ(failureOf(log, "MainForm.OpenFile()", [] { throw StorageFailure("disk full"); }),
              "disk full");
    EXPECT_EQ(failureOf(log, "MainForm.OpenFile()", [] {}), std::nullopt);
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_EQ(log.entries[0].procedure, "MainForm.OpenFile()");
}

TEST(RecordTrap, countsOnAfterFiftyAndSumsUp) {
    test::MemoryLog log;
    {
        RecordTrap trap(log, "ParserClass.X()");
        for (std::uint64_t i = 0; i < 53; ++i)
            EXPECT_FALSE(trap.run(i, [] { viewOf("a").u8(1); }));
        EXPECT_TRUE(trap.run(53, [] {}));
        trap.attempt(54, [] {});
        EXPECT_EQ(trap.failed(), 53u);
    }
    ASSERT_EQ(log.entries.size(), 51u);
    EXPECT_NE(log.entries[0].message.find("record at 0"), std::string::npos);
    EXPECT_NE(log.entries[50].message.find("3 further"), std::string::npos);
}

} // namespace
} // namespace nv
