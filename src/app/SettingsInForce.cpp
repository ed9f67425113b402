#include "app/SettingsInForce.h"

#include "app/SettingsTable.h"

namespace nv {

namespace {

/// To what is made of a setting, and to the parts of the program that hold one of their own.
void handDown(Program &program, const SettingFacts &row) {
    const SettingValues &state = program.thisClass;
    const auto is = [&row](auto member) { return row.member == SettingMember(member); };
    if (is(&SettingValues::DateFormat) || is(&SettingValues::TimeFormat))
        program.thisClass.DateTimeFormat = state.DateFormat + " " + state.TimeFormat;
    if (is(&SettingValues::ProgressBarRefreshRate))
        program.thread.ProgressBarRefreshRate = state.ProgressBarRefreshRate;
    if (is(&SettingValues::VerifyFileSignatures))
        program.import.VerifyFileSignatures = state.VerifyFileSignatures;
    if (is(&SettingValues::ParseAdvancedMetadata))
        program.import.ParseAdvancedMetadata = state.ParseAdvancedMetadata;
    if (is(&SettingValues::ThumbnailsWhileImporting))
        program.import.MakeThumbnails = state.ThumbnailsWhileImporting;
}

} // namespace

void takeSettings(Program &program) {
    for (const SettingFacts &row : settingsTable()) {
        if (row.read != SettingRead::atStart)
            continue;
        readMember(program.settings, row, defaultOf(program, row), program.thisClass);
        handDown(program, row);
    }
}

void bringIntoForce(Program &program, const SettingFacts &row, const SettingValues &values) {
    copyMember(row, values, program.thisClass);
    handDown(program, row);
}

void keepFlag(Program &program, FlagKey key, bool on) {
    SettingValues values = program.thisClass;
    putText(values, key.row(), on ? "True" : "False");
    bringIntoForce(program, key.row(), values);
    writeFlag(program.settings, key, on);
}

} // namespace nv
