#pragma once

#include "readers/Reader.h"

#include <filesystem>
#include <string>
#include <vector>

namespace nv::test {

/// One folder of tests/golden, and the format whose cases it holds. Where several formats share it,
/// each case says which one it is of.
struct GoldenFolder {
    std::string name;
    const Reader *reader;
};

/// The folders that the rows of all formats name, each once.
std::vector<GoldenFolder> goldenFolders();

/// Reads the artefact of every case of the folder and compares all that the reading says with the
/// case's expected.tsv, whose head line says which fields of the records it holds.
void checkGoldenCases(const GoldenFolder &folder, const std::filesystem::path &golden);

/// The artefact of a case: the file below "input" that goes by one of the format's names for it.
std::filesystem::path artefactIn(const std::filesystem::path &oneCase, const Reader &reader);

/// The folder of the format's sound case below `golden`.
std::filesystem::path soundCase(const Reader &reader, const std::filesystem::path &golden);

} // namespace nv::test
