#pragma once

namespace nv::version {

// The build's version; CMakeLists.txt reads it from here.
inline constexpr int kMajor = 0;
inline constexpr int kMinor = 1;
inline constexpr int kRevision = 0;

} // namespace nv::version
