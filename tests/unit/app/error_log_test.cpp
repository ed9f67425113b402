#include "app/ErrorLog.h"
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

TEST_F(ErrorLogTest, aFolderThatIsGoneEndsNothing) {
    ErrorLog lost(folder.path() / "gone" / "error.log", clock);
    lost.write({"x", "", Severity::Warning, ""});
    lost.remove();
    EXPECT_FALSE(std::filesystem::exists(lost.path()));
}

} // namespace
} // namespace nv
