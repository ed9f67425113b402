#pragma once

#include <cstdint>
#include <filesystem>

namespace nv {

/// What the sheets of a spreadsheet hold together.
struct SheetCount {
    std::int64_t rows = 0; ///< with the headings
    std::int64_t cells = 0;
    bool operator==(const SheetCount &) const = default;
};

/// Reads a finished spreadsheet (ZIP, up to 4 GB) back. Throws what makes it no sound one.
SheetCount countSheets(const std::filesystem::path &spreadsheet);

} // namespace nv
