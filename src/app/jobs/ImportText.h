#pragma once

#include "import/ImportSummary.h"

#include <string>

namespace nv {

/// What became of each artefact, for people: a line each with what was not reached or passed over,
/// then a line for each reader and a block for each profile of a browser. Loose files without
/// anything to tell are summed up.
std::string summaryText(const ImportSummary &summary);

/// The same of one artefact that was imported alone, in lines that need no columns.
std::string outcomeText(const ImportSummary &summary);

} // namespace nv
