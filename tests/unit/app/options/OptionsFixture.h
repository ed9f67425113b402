#pragma once

#include "app/options/Options.h"
#include "app/project/Project.h"
#include "db/project/ProjectFields.h"
#include "db/trail/CaseTrail.h"
#include "unit/app/ProgramFixture.h"

namespace nv::test {

/// A program whose Options are read and applied.
struct OptionsFixture : ProgramFixture {
    OptionsFixture() { start(); }
    std::vector<ZoneRow> zones() { return initTimeZone(*program); }
    Options shown() { return readOptions(*program, zones()); }
    std::string ini(std::string_view section, std::string_view key) {
        return IniFile(paths.settings(), program->log).readIniValue(section, key, "(none)");
    }
    void openCase() { ASSERT_TRUE(createProject(*program, folder.path() / "case.nvp")); }
    std::string inProject(std::string_view name) {
        return ProjectFields(program->state.projectDB.connection(), program->log).getDefault(name);
    }
    std::vector<TrailEntry> trail() {
        return CaseTrail(program->state.projectDB.connection()).entries();
    }
    bool apply(const Options &options) { return applyOptions(*program, options).applied; }
    ProgramState &state() { return program->state; }
};

} // namespace nv::test
