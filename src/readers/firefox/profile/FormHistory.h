#pragma once

#include "readers/Reader.h"

namespace nv {

/// Reads what was entered into forms, "formhistory.sqlite"; docs/formats/firefox-forms.md.
ReadResult parseFirefoxFormsFile(ReadContext &ctx);

} // namespace nv
