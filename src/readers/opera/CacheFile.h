#pragma once

#include "db/records/HistoryFile.h"
#include "db/records/UrlRecord.h"
#include "readers/Evidence.h"

#include <string>

namespace nv {

/// Sets where the files of the index lie.
void setOperaCacheFolder(UrlRecord &record, const HistoryFile &file, const Evidence &evidence);

/// Sets what the name of the record's cached file, not empty, and that file itself say. The folder
/// must be set.
/// True when the file is there. Throws EvidenceFailure when it can't be read.
bool setOperaCachedFile(UrlRecord &record, const std::string &name, const HistoryFile &file,
                        const Evidence &evidence);

} // namespace nv
