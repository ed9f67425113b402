#include "app/options/SettingsInForce.h"

#include "app/messages/Messages.h"
#include "app/options/SettingsTable.h"

namespace nv {

namespace {

/// To what is made of a setting, and to the parts of the program that hold one of their own.
void handDown(Program &program, const SettingFacts &row) {
    const SettingValues &state = program.state;
    const auto is = [&row](auto member) { return row.member == SettingMember(member); };
    if (is(&SettingValues::dateFormat) || is(&SettingValues::timeFormat))
        program.state.dateTimeFormat = state.dateFormat + " " + state.timeFormat;
    if (is(&SettingValues::progressBarRefreshRate))
        program.task.progressBarRefreshRate = state.progressBarRefreshRate;
    if (is(&SettingValues::verifyFileSignatures))
        program.import.verifyFileSignatures = state.verifyFileSignatures;
    if (is(&SettingValues::parseAdvancedMetadata))
        program.import.parseAdvancedMetadata = state.parseAdvancedMetadata;
    if (is(&SettingValues::thumbnailsWhileImporting))
        program.import.makeThumbnails = state.thumbnailsWhileImporting;
    if (is(&SettingValues::classicOnly))
        program.import.classicOnly = state.classicOnly;
}

void tellUnkept(const Program &program, bool isKnown) {
    if (!isKnown)
        program.around.examiner.tell(messages::settingsNotWritten(program.settings.path()));
}

} // namespace

void takeSettings(Program &program) {
    for (const SettingFacts &row : settingsTable()) {
        if (row.read != SettingRead::atStart)
            continue;
        readMember(program.settings, row, defaultOf(program, row), program.state);
        handDown(program, row);
    }
}

void bringIntoForce(Program &program, const SettingFacts &row, const SettingValues &values) {
    copyMember(row, values, program.state);
    handDown(program, row);
}

void keepText(Program &program, TextKey key, std::string_view text) {
    const bool isKnown = program.settings.hasUnwritten();
    if (!writeText(program.settings, key, text))
        tellUnkept(program, isKnown);
}

void keepFlag(Program &program, FlagKey key, bool on) {
    SettingValues values(static_cast<const SettingValues &>(program.state));
    putText(values, key.row(), on ? "True" : "False");
    bringIntoForce(program, key.row(), values);
    const bool isKnown = program.settings.hasUnwritten();
    if (!writeFlag(program.settings, key, on))
        tellUnkept(program, isKnown);
}

} // namespace nv
