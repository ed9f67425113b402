#include "readers/FolderLayout.h"

#include "base/Files.h"
#include "base/Text.h"

#include <algorithm>

namespace nv {

namespace fs = std::filesystem;

bool isHexName(std::string_view name, std::size_t digits) {
    return name.size() == digits && std::ranges::all_of(name, [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
           });
}

fs::path folderAbove(const Candidate &file, int levels) {
    fs::path folder = file.file;
    for (int level = 0; level < levels; ++level)
        folder = folder.parent_path();
    return folder;
}

std::string folderName(const Candidate &file, int levels) {
    return toLower(textOf(folderAbove(file, levels).filename()));
}

fs::path ownFolder(const Candidate &file) {
    return folderAbove(file);
}

bool hasBeside(const Candidate &file, std::string_view name) {
    return file.evidence->kindOf(folderAbove(file) / name) != PlaceKind::nothing;
}

bool beginsWith(const Candidate &file, std::string_view bytes) {
    return !file.verifySignatures || file.head.raw().starts_with(bytes);
}

} // namespace nv
