#pragma once

#include "readers/Reader.h"

namespace nv {

class BodyTarget;

/// Reads the entries of an SQL cache, part after part; docs/formats/chromium-sql-cache.md. The
/// artefact is the folder, or any file of it.
ReadResult parseChromiumSqlCache(ReadContext &ctx);

/// The body of one of its records, its pieces one after the other. The pages of the database are
/// read as they lie; only when they don't give all of it is the file copied and opened.
bool fetchSqlBody(const UrlRecord &record, const Evidence &evidence, BodyTarget &target);

} // namespace nv
