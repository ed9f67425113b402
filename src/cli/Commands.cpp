#include "cli/Commands.h"

namespace nv::cli {

namespace {

constexpr MakeCommand kCommands[] = {
    importCommand,         listCommand,         queryCommand,         queriesCommand,
    saveQueryCommand,      showQueryCommand,    deleteQueryCommand,   searchCommand,
    keywordsCommand,       resultsCommand,      showResultCommand,    deleteResultCommand,
    showCommand,           explainCommand,      dumpCommand,          extractCommand,
    zonesCommand,          rebuildCommand,      auditCommand,         tagCommand,
    tagsCommand,           changeTagCommand,    deleteTagCommand,     templateCommand,
    templateCreateCommand, templateListCommand, templateApplyCommand, thumbnailsCommand,
    galleryCommand,        summaryCommand,      trailCommand,         verifyCommand,
    linksCommand,          noteCommand,         hexCommand,           exifCommand,
    textCommand,           hostsCommand,        placesCommand,        timelineCommand,
    hashSetsCommand,       addHashSetCommand,   listHashSetsCommand,  removeHashSetCommand,
    matchHashSetsCommand,  reportCommand,       exportCommand,        upgradeCommand,
    optionsCommand,        optionsGetCommand,   optionsSetCommand,
};

constexpr Example kProgramExamples[] = {
    {"import case.nvp /mnt/seized", "all that is found below a folder"},
    {"list case.nvp --host example.com", "the rows of a host as a table"},
    {"query case.nvp \"SELECT TOP 5 URL FROM URLs WHERE ActionDateUTC > #1/15/2009#\"", ""},
    {"show case.nvp 17", "everything about one row"},
    {"extract case.nvp 17 page.html", "its cached content as a file"},
    {"rebuild case.nvp 17 --out pages", "the page with its parts, for offline view"},
    {"report case.nvp --type graphical --tagged --out report", "to be handed over"},
};

} // namespace

std::span<const MakeCommand> commandTable() {
    return kCommands;
}

std::span<const Example> programExamples() {
    return kProgramExamples;
}

} // namespace nv::cli
