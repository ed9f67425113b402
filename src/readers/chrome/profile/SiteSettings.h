#pragma once

#include "readers/Reader.h"
#include "readers/chrome/profile/SettingsWalk.h"

namespace nv {

/// A record for what a site may do, and one for how large it is shown.
void saveSiteSetting(ReadContext &ctx, const SettingsEntry &entry);

} // namespace nv
