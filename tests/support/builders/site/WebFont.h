#pragma once

#include <string>

namespace nv::test {

/// A font of the site's own, "Pier": capitals (for small letters too), figures and a few signs out
/// of straight strokes. As a WOFF file, the same bytes on every run.
std::string pierFont();

} // namespace nv::test
