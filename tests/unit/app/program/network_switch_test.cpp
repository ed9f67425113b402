#include "app/program/NetworkSwitch.h"
#include "base/Files.h"
#include "unit/app/ProgramFixture.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::Pair;

struct NetworkSwitchTest : test::ProgramFixture {
    bool toggle(ConnectionState state, Quiet quiet = Quiet::no) {
        return toggleNetworkConnection(*program, state, quiet);
    }
};

TEST_F(NetworkSwitchTest, theConnectionOfTheSettingsIsSwitched) {
    settings("[OPTIONS]\nNetworkConnectionName=Lab Net\n");
    start();
    network.answer = Switched::done;
    EXPECT_TRUE(toggle(ConnectionState::disabled));
    EXPECT_THAT(network.asked, ElementsAre(Pair("Lab Net", ConnectionState::disabled)));
    EXPECT_TRUE(program->state.connectionOffline);
    EXPECT_TRUE(toggle(ConnectionState::enabled));
    EXPECT_FALSE(program->state.connectionOffline);
}

TEST_F(NetworkSwitchTest, aMissingFolderOrItemIsTold) {
    start();
    const bool before = program->state.connectionOffline;
    examiner.expect("connection-not-found");
    EXPECT_FALSE(toggle(ConnectionState::enabled));
    EXPECT_THAT(examiner.heard.back().text,
                testing::HasSubstr("NetworkManager doesn't run on this computer"));
    network.answer = Switched::noItem;
    examiner.expect("connection-not-found");
    EXPECT_FALSE(toggle(ConnectionState::enabled));
    EXPECT_TRUE(
        examiner.heard.back().text.starts_with("Couldn't find 'Local Area Connection' item"));
    EXPECT_FALSE(toggle(ConnectionState::enabled, Quiet::yes));
    EXPECT_EQ(program->state.connectionOffline, before);
}

TEST_F(NetworkSwitchTest, aStateThatIsAsAskedIsNoSwitch) {
    start();
    network.answer = Switched::alreadySo;
    EXPECT_FALSE(toggle(ConnectionState::disabled));
    EXPECT_TRUE(program->state.connectionOffline);
}

TEST_F(NetworkSwitchTest, aRefusalIsToldAndLogged) {
    start();
    network.refuses = true;
    examiner.expect("network-switch-failed");
    EXPECT_FALSE(toggle(ConnectionState::disabled));
    EXPECT_EQ(examiner.heard.back().text, "not allowed");
    const Bytes log = readWhole(program->log.path());
    EXPECT_THAT(std::string(ByteView(log).raw()),
                testing::HasSubstr("MainBAS.ToggleNetworkConnection()"));
}

} // namespace
} // namespace nv
