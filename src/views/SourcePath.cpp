#include "views/SourcePath.h"

#include "base/Paths.h"
#include "base/Text.h"
#include "views/PathCheck.h"

namespace nv {

std::optional<std::filesystem::path> sourcePathOf(const std::string &historyFile,
                                                  const std::string &root) {
    if (historyFile.empty())
        return std::nullopt;
    const std::string moved = pathUnderBase(root, historyFile);
    for (const std::string &text : {historyFile, moved, replaceAll(moved, "\\", "/")}) {
        const auto path = pathFromText(text);
        std::error_code ignored;
        if (path && std::filesystem::is_regular_file(*path, ignored))
            return path;
    }
    return std::nullopt;
}

} // namespace nv
