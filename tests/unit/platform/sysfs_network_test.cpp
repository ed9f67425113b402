#include "platform/posix/SysfsNetwork.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

struct SysfsNetworkTest : testing::Test {
    std::string status(std::string_view name = "Local Area Connection") const {
        return SysfsNetwork(folder.path()).networkConnectionStatus(name);
    }
    test::TempFolder folder;
};

TEST_F(SysfsNetworkTest, anyInterfaceThatIsUpIsAConnection) {
    folder.write("lo/operstate", "unknown\n");
    folder.write("eth0/operstate", "down\n");
    folder.write("wlan0/operstate", "up\n");
    EXPECT_EQ(status(), "ENABLED");
}

TEST_F(SysfsNetworkTest, loopbackIsNoConnection) {
    folder.write("lo/operstate", "up\n");
    EXPECT_EQ(status(), "");
}

TEST_F(SysfsNetworkTest, interfacesThatAreAllDownAreDisabled) {
    folder.write("eth0/operstate", "down\n");
    folder.write("eth1/operstate", "dormant\n");
    EXPECT_EQ(status(), "DISABLED");
}

TEST_F(SysfsNetworkTest, aDriverThatDoesNotKnowCountsAsUp) {
    folder.write("tun0/operstate", "unknown\n");
    EXPECT_EQ(status(), "ENABLED");
}

TEST_F(SysfsNetworkTest, anInterfaceIsAskedForByName) {
    folder.write("eth0/operstate", "down\n");
    folder.write("wlan0/operstate", "up\n");
    EXPECT_EQ(status("eth0"), "DISABLED");
    EXPECT_EQ(status("wlan0"), "ENABLED");
}

TEST_F(SysfsNetworkTest, aSystemThatShowsNoInterfacesCannotTell) {
    EXPECT_EQ(SysfsNetwork(folder.path() / "missing").networkConnectionStatus("eth0"), "");
}

} // namespace
} // namespace nv
