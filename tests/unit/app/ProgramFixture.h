#pragma once

#include "app/Program.h"
#include "support/Places.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <gtest/gtest.h>

namespace nv::test {

struct FixedSystemTime final : SystemTime {
    MachineZone zone() const override { return machine; }
    MachineZone machine{300, "Eastern Standard Time"};
};

/// A system that tells nothing of its network until a test says otherwise.
struct NoNetwork final : Network {
    std::string NetworkConnectionStatus(std::string_view) const override { return status; }
    Switched switchConnection(std::string_view name, ConnectionState state) override {
        if (refuses)
            throw std::runtime_error("not allowed");
        asked.emplace_back(std::string(name), state);
        return answer;
    }
    std::string status;
    Switched answer = Switched::noFolder;
    bool refuses = false;
    std::vector<std::pair<std::string, ConnectionState>> asked;
};

struct NoView final : StatusView {
    void open() override {}
    void close() override {}
    void update(const ThreadClass &) override {}
    void pump() override {}
};

/// A program in a folder of its own, with the shipped zones and a scripted examiner.
struct ProgramFixture : testing::Test {
    ProgramFixture() {
        std::filesystem::create_directories(folder.path() / "program");
        std::filesystem::create_directories(folder.path() / "home");
        std::filesystem::copy_file(timeZonesFile(), paths.zones());
    }
    void settings(std::string_view text) { folder.write("home/Norvelane.ini", text); }
    Program &start(Front front = Front::window) {
        program = std::make_unique<Program>(
            paths, front, Surroundings{examiner, view, clock, systemTime, network});
        startUp(*program, front);
        return *program;
    }

    TempFolder folder;
    ProgramPaths paths{folder.path() / "program", folder.path() / "home"};
    ScriptedExaminer examiner;
    NoView view;
    FixedClock clock;
    FixedSystemTime systemTime;
    NoNetwork network;
    std::unique_ptr<Program> program;
};

} // namespace nv::test
