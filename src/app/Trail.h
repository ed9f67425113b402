#pragma once

#include "app/Program.h"
#include "db/CaseTrail.h"
#include "import/ImportSummary.h"
#include "maintenance/SourceCheck.h"

#include <filesystem>
#include <string>

namespace nv {

// What the program adds to the case trail of the open project. A failure is logged and costs the
// entry only: nobody's work stops because of it.

/// Time and version are filled in.
void noteInTrail(Program &program, TrailEntry entry);
/// The same with a file that the program wrote or read, which is hashed now.
void noteFileInTrail(Program &program, TrailEntry entry, const std::filesystem::path &file);
/// An entry for each file that the import took up.
void noteImport(Program &program, const ImportSummary &summary);
void noteVerify(Program &program, const SourceCheck &check);

} // namespace nv
