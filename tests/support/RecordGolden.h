#pragma once

#include "readers/Reader.h"

#include <filesystem>
#include <string>

namespace nv::test {

/// The cases of one format.
struct GoldenCases {
    std::filesystem::path folder;
    std::string file; ///< below each case's folder "input"
    ReadResult (*read)(ReadContext &);
};

/// Reads the file of every case and compares all that the reading says with the case's
/// expected.tsv, whose head line says which fields of the records it holds. There must be at least
/// `leastCases`.
void checkGoldenCases(const GoldenCases &cases, std::size_t leastCases);

} // namespace nv::test
