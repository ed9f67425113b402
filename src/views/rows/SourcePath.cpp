#include "views/rows/SourcePath.h"

#include "base/Paths.h"
#include "base/Text.h"
#include "views/rows/PathCheck.h"

namespace nv {

namespace {

template <class IsIt>
std::optional<std::filesystem::path> placeOf(const std::string &historyFile,
                                             const std::string &root, const IsIt &isIt) {
    if (historyFile.empty())
        return std::nullopt;
    const std::string moved = pathUnderBase(root, historyFile);
    for (const std::string &text : {historyFile, moved, replaceAll(moved, "\\", "/")}) {
        const auto path = pathFromText(text);
        if (path && isIt(*path))
            return path;
    }
    return std::nullopt;
}

} // namespace

std::optional<std::filesystem::path> sourcePathOf(const std::string &historyFile,
                                                  const std::string &root) {
    return placeOf(historyFile, root, [](const std::filesystem::path &path) {
        std::error_code ignored;
        return std::filesystem::is_regular_file(path, ignored);
    });
}

std::optional<std::filesystem::path> sourceFolderOf(const std::string &historyFile,
                                                    const std::string &root) {
    return placeOf(historyFile, root, [](const std::filesystem::path &path) {
        std::error_code ignored;
        return std::filesystem::is_directory(path, ignored);
    });
}

} // namespace nv
