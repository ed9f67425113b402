#include "views/rows/PathCheck.h"

#include "base/Paths.h"
#include "base/Text.h"
#include "readers/RecordKind.h"

#include <filesystem>
#include <system_error>

namespace nv {
namespace {

bool isSeparator(char c) {
    return c == '/' || c == '\\';
}

bool isThere(const std::string &text, bool mayBeFolder) {
    const auto path = pathFromText(text);
    std::error_code ignored;
    return path && (std::filesystem::is_regular_file(*path, ignored) ||
                    (mayBeFolder && std::filesystem::is_directory(*path, ignored)));
}

std::string_view behindDrive(std::string_view path) {
    if (path.size() >= 2 && path[1] == ':')
        path.remove_prefix(2);
    while (!path.empty() && isSeparator(path.front()))
        path.remove_prefix(1);
    return path;
}

} // namespace

std::string pathUnderBase(std::string_view rootPath, std::string_view historyFilePath) {
    if (historyFilePath.starts_with(rootPath))
        return std::string(historyFilePath);
    std::string path(rootPath);
    if (!path.empty() && !isSeparator(path.back()))
        path += '/';
    return path.append(behindDrive(historyFilePath));
}

bool PathCheck::isBad(const EvidencePlace &place) {
    const CacheParts parts = partsOf(place.cacheType);
    if (parts == CacheParts::byPath) {
        // A redirection names no file, so none is missing.
        if (place.relativePath.empty() && place.cacheFileName.empty())
            return false;
        return !exists(std::string(place.rootPath).append(place.relativePath), false);
    }
    // Caches of today's browsers are read as a whole folder.
    return parts == CacheParts::byUrl &&
           !exists(pathUnderBase(place.rootPath, place.historyFilePath),
                   !place.historyFilePath.empty());
}

bool PathCheck::exists(const std::string &path, bool mayBeFolder) {
    const std::pair key(path, mayBeFolder);
    if (const auto known = m_known.find(key); known != m_known.end())
        return known->second;
    if (m_known.size() >= kMostKnown)
        m_known.clear();
    // Projects that were made on Windows hold its separators.
    const bool found =
        isThere(path, mayBeFolder) || isThere(replaceAll(path, "\\", "/"), mayBeFolder);
    return m_known.emplace(key, found).first->second;
}

} // namespace nv
