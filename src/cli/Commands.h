#pragma once

#include "cli/Command.h"

namespace nv::cli {

// Each in the file of its name.

Command importCommand();
Command listCommand();
Command queryCommand();
Command queriesCommand();
Command saveQueryCommand();
Command showQueryCommand();
Command deleteQueryCommand();
Command searchCommand();
Command keywordsCommand();
Command resultsCommand();
Command showResultCommand();
Command deleteResultCommand();
Command showCommand();
Command dumpCommand();
Command extractCommand();
Command zonesCommand();
Command rebuildCommand();
Command auditCommand();
Command tagCommand();
Command tagsCommand();
Command changeTagCommand();
Command deleteTagCommand();
Command templateCommand();
Command templateCreateCommand();
Command templateListCommand();
Command templateApplyCommand();
Command thumbnailsCommand();
Command galleryCommand();
Command summaryCommand();
Command trailCommand();
Command verifyCommand();
Command linksCommand();
Command noteCommand();
Command hexCommand();
Command exifCommand();
Command explainCommand();
Command textCommand();
Command hostsCommand();
Command reportCommand();
Command exportCommand();
Command upgradeCommand();
Command optionsCommand();
Command optionsGetCommand();
Command optionsSetCommand();
Command placesCommand();
Command timelineCommand();
Command hashSetsCommand();
Command addHashSetCommand();
Command listHashSetsCommand();
Command removeHashSetCommand();
Command matchHashSetsCommand();

} // namespace nv::cli
