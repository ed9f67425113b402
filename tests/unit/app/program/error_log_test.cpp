#include "app/program/ErrorLog.h"
#include "base/Files.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

struct ErrorLogTest : testing::Test {
    std::string text() const {
        const Bytes bytes = readWhole(log.path());
        return std::string(ByteView(bytes).raw());
    }
    test::TempFolder folder;
    test::FixedClock clock;
    ErrorLog log{folder.path() / "error.log", clock};
};

TEST_F(ErrorLogTest, writesAnEntryInItsLayoutInLocalTime) {
    clock.offset = std::chrono::minutes(-240);
    log.write({"No such row", "MainBAS.GetURL()", Severity::Serious, std::string(kContactSupport)});
    EXPECT_EQ(text(), "\r\n[2011-06-15 08:00:00]  No such row\r\n"
                      "   Function:  MainBAS.GetURL()\r\n"
                      "   Threat Level:  Serious\r\n"
                      "   Recommendation:  Please contact technical support if this error "
                      "re-occurs\r\n");
}

TEST_F(ErrorLogTest, leavesOutWhatIsEmptyAndAppends) {
    log.write({"", "", Severity::Low, ""});
    log.write({"second", "", Severity::Critical, ""});
    EXPECT_EQ(text(), "\r\n[2011-06-15 12:00:00]  Unknown error\r\n   Threat Level:  Low\r\n"
                      "\r\n[2011-06-15 12:00:00]  second\r\n   Threat Level:  Critical\r\n");
}

TEST_F(ErrorLogTest, evidenceCantForgeALine) {
    log.write({"a\r\n   Threat Level:  Low", "", Severity::Warning, ""});
    EXPECT_EQ(text(), "\r\n[2011-06-15 12:00:00]  a     Threat Level:  Low\r\n"
                      "   Threat Level:  Warning\r\n");
}

TEST_F(ErrorLogTest, commandsGoOnAfterEarlierOnesAndAreNamedWithTheirTime) {
    log.goOnFor("norvelane-cli import \r\ncase.nvp");
    EXPECT_FALSE(std::filesystem::exists(log.path())) << "nothing has failed yet";
    log.write({"first", "", Severity::Low, ""});
    ErrorLog next(log.path(), clock);
    next.goOnFor("norvelane-cli list case.nvp");
    next.write({"second", "", Severity::Low, ""});
    next.write({"third", "", Severity::Low, ""});
    const std::string stamp = "\r\n[2011-06-15 12:00:00]  ";
    const std::string low = "\r\n   Threat Level:  Low\r\n";
    EXPECT_EQ(text(), stamp + "Command:  norvelane-cli import   case.nvp\r\n" + stamp + "first" +
                          low + stamp + "Command:  norvelane-cli list case.nvp\r\n" + stamp +
                          "second" + low + stamp + "third" + low);
}

TEST_F(ErrorLogTest, ofCommandsIsTurnedOverAtAMegabyte) {
    folder.write("error.log", std::string(ErrorLog::kMostBytes - 1, 'a'));
    log.goOnFor("norvelane-cli verify");
    log.write({"fits", "", Severity::Low, ""});
    EXPECT_FALSE(std::filesystem::exists(log.olderPath()));
    log.write({"next", "", Severity::Low, ""});
    EXPECT_EQ(text().find("aaa"), std::string::npos);
    EXPECT_NE(text().find("norvelane-cli verify"), std::string::npos) << "each half is headed";
    EXPECT_EQ(text().find("fits"), std::string::npos);
    EXPECT_GT(std::filesystem::file_size(log.olderPath()), ErrorLog::kMostBytes);
}

TEST_F(ErrorLogTest, ofTheWindowIsNotTurnedOver) {
    folder.write("error.log", std::string(ErrorLog::kMostBytes, 'a'));
    log.write({"x", "", Severity::Low, ""});
    EXPECT_FALSE(std::filesystem::exists(log.olderPath()));
}

TEST_F(ErrorLogTest, aFolderThatIsGoneEndsNothing) {
    ErrorLog lost(folder.path() / "gone" / "error.log", clock);
    lost.write({"x", "", Severity::Warning, ""});
    lost.remove();
    EXPECT_FALSE(std::filesystem::exists(lost.path()));
}

} // namespace
} // namespace nv
