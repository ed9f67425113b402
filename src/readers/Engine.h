#pragma once

namespace nv {

/// What a file's format tells of the program that wrote it.
enum class Engine {
    unknown,
    chromium,
    gecko,
    webkit,
    internetExplorer,
    macIE,
    opera, ///< up to version 12
    safari,
};

} // namespace nv
