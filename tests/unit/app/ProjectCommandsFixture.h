#pragma once

#include "ProgramFixture.h"
#include "app/ProjectCommands.h"
#include "db/project/ProjectFields.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace nv::test {

struct ScriptedDialogs final : FileDialogs {
    std::optional<std::filesystem::path> chooseProject() override { return answer; }
    std::optional<std::filesystem::path> createNewProjectFilename() override { return answer; }
    std::optional<std::filesystem::path> chooseSaveAs() override { return answer; }
    std::optional<std::filesystem::path> answer;
};

struct RecordingProjectView final : ProjectView {
    void setCaption(const std::string &text) override { caption = text; }
    void restoreLayout() override { ++restored; }
    void saveLayout() override { ++saved; }
    void showRecentFiles() override {}
    void clear() override { ++cleared; }
    void loadURLs() override { ++loaded; }
    void showUpgradeWizard(const std::filesystem::path &project) override {
        EXPECT_FALSE(isOpen()) << "the wizard works on a closed project";
        upgraded.push_back(project);
    }
    std::function<bool()> isOpen;
    std::vector<std::filesystem::path> upgraded;
    std::string caption;
    int restored = 0;
    int saved = 0;
    int cleared = 0;
    int loaded = 0;
};

/// The commands on projects, with a window and dialogs that a test can ask.
struct ProjectCommandsTest : ProgramFixture {
    ProjectDatabase &db() { return program->state.projectDB; }
    std::string setting(std::string_view name) {
        return ProjectFields(db().connection(), program->log).getDefault(name);
    }
    void set(std::string_view name, std::string_view value) {
        ASSERT_TRUE(ProjectFields(db().connection(), program->log).saveDefaultSetting(name, value));
    }
    std::int64_t rows() {
        return db().connection().execAndGet("SELECT count(*) FROM URLs").getInt64();
    }

    ScriptedDialogs dialogs;
    RecordingProjectView window;
    ProjectCommands commands{start(), dialogs, window};
    std::filesystem::path path = folder.path() / "case.nvp";
};

} // namespace nv::test
