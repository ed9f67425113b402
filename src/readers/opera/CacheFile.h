#pragma once

#include "db/HistoryFile.h"
#include "db/URLClass.h"
#include "readers/Evidence.h"

#include <string>

namespace nv {

/// Sets where the files of the index lie.
void setOperaCacheFolder(URLClass &record, const HistoryFile &file, const Evidence &evidence);

/// Sets what the name of the record's cached file, not empty, and that file itself say. The folder
/// must be set.
/// True when the file is there. Throws EvidenceFailure when it can't be read.
bool setOperaCachedFile(URLClass &record, const std::string &name, const HistoryFile &file,
                        const Evidence &evidence);

} // namespace nv
