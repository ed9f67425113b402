#pragma once

#include "readers/Reader.h"

namespace nv {

// One record for one loose file. Of what is in it only the title is read. Failures are trapped:
// they stand in the log and in the result.

/// A page that lies on the disc by itself; the record's cached file is the page.
ReadResult parseSimpleHTML(ReadContext &ctx);

/// Reads no columns: the name is older than what it does.
ReadResult parseCSVFile(ReadContext &ctx);

} // namespace nv
