#pragma once

#include "readers/Engine.h"
#include "readers/Reader.h"

namespace nv {

/// Whether the file lies where a browser of that engine keeps a profile, or in a folder near below
/// it: by the names of the folders above it, or by two further files of a profile that lie there.
/// Their names are looked at, not what they hold.
bool liesInProfile(const Candidate &file, Engine engine);

} // namespace nv
