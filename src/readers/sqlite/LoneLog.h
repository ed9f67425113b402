#pragma once

#include "readers/Reader.h"

#include <filesystem>
#include <optional>
#include <string>

namespace nv {

/// The database whose log ("History-wal") or journal ("History-journal") the file is by its name,
/// whether that is there or not; nothing for any other file.
std::optional<std::filesystem::path> databaseOfLog(const std::filesystem::path &file);

/// Why rows may be missing: the log is there, and the database that `format` would read isn't.
/// Empty where nothing is told: unless `isNamed`, when the examiner named the log himself, its
/// place has to be a browser's, or its bytes have to be those of a log with pages. Throws
/// EvidenceFailure.
std::string loneLogText(const std::filesystem::path &log, const Candidate &database,
                        const Reader &format, bool isNamed);

} // namespace nv
