#include "readers/Candidate.h"

#include "base/Files.h"
#include "base/Text.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

/// Lower-case; those of "Dawn", such as "DawnGraphiteCache", are known by their beginning and end.
constexpr std::array<std::string_view, 4> kShaderFolders = {"gpucache", "shadercache",
                                                            "grshadercache", "graphitedawncache"};

constexpr std::array<std::string_view, 5> kOperaHistories = {
    "global.dat", "global_history.dat", "download.dat", "type_history.xml", "typed_history.xml"};

} // namespace

Candidate candidateOf(const std::filesystem::path &file, const Evidence &evidence) {
    Candidate candidate;
    candidate.evidence = &evidence;
    candidate.file = file;
    candidate.name = toLower(textOf(file.filename()));
    candidate.path = toLower(replaceAll(textOf(file), "\\", "/"));
    candidate.extension = GetFileExtension(candidate.path);
    return candidate;
}

bool nameHas(const Candidate &file, std::string_view part) {
    return file.name.find(part) != std::string::npos;
}

bool pathHas(const Candidate &file, std::string_view part) {
    return file.path.find(part) != std::string::npos;
}

bool contentHas(const Candidate &file, std::string_view mark) {
    return !file.verifySignatures || file.head.raw().find(mark) != std::string_view::npos;
}

bool hasOperaHistoryName(const Candidate &file) {
    return std::ranges::find(kOperaHistories, file.name) != kOperaHistories.end();
}

bool isShaderFolder(const std::filesystem::path &folder) {
    const std::string name = toLower(textOf(folder.filename()));
    const bool isDawn = name.starts_with("dawn") && name.ends_with("cache");
    return isDawn || std::ranges::find(kShaderFolders, name) != kShaderFolders.end();
}

} // namespace nv
