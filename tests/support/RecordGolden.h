#pragma once

#include "readers/Reader.h"

#include <filesystem>
#include <string>
#include <vector>

namespace nv::test {

/// A column of a golden case's expected.tsv.
struct GoldenColumn {
    const char *name;
    std::string (*cell)(const URLClass &record);
};

/// The cases of one format.
struct GoldenCases {
    std::filesystem::path folder;
    std::string file; ///< below each case's folder "input"
    ReadResult (*read)(ReadContext &);
    std::vector<GoldenColumn> columns;
};

/// Reads the file of every case and compares all that the reading says with the case's
/// expected.tsv. There must be at least `leastCases`.
void checkGoldenCases(const GoldenCases &cases, std::size_t leastCases);

} // namespace nv::test
