#pragma once

#include "readers/Reader.h"

namespace nv {

/// "Shortcuts": a record for each text that was typed into the address bar with the page that was
/// chosen by it.
ReadResult parseChromeShortcutsFile(ReadContext &ctx);

/// "Network Action Predictor": the same with the letters typed so far, as often as the browser
/// guessed right and wrong.
ReadResult parseChromePredictorFile(ReadContext &ctx);

} // namespace nv
