#pragma once

#include "readers/Reader.h"

namespace nv {

/// Chromium's "Preferences", "Secure Preferences" and "Local State": what sites may do and how they
/// are shown, profiles, and who was signed in; docs/formats/chromium-settings.md.
ReadResult parseChromiumSettings(ReadContext &ctx);

} // namespace nv
