#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace nv {

/// Where a row says that its evidence lies.
struct EvidencePlace {
    std::string_view cacheType;
    std::string_view rootPath;
    std::string_view relativePath; ///< `CacheFileRelativePath`
    std::string_view cacheFileName;
    std::string_view historyFilePath;
};

/// Tells rows whose evidence isn't where they say. Asks the file system once for a path; call
/// forget() when files may have moved.
class PathCheck {
  public:
    /// True when the row's Status is to read "Bad Path".
    bool isBad(const EvidencePlace &place);
    void forget() { m_known.clear(); }

  private:
    /// Enough for what an examiner scrolls through; a full cache starts anew.
    static constexpr std::size_t kMostKnown = 100'000;

    bool exists(const std::string &path, bool mayBeFolder);

    std::map<std::pair<std::string, bool>, bool> m_known;
};

/// The path of a history file as it lies under `rootPath`: itself when it begins with that,
/// otherwise what follows its drive or leading separator, put after `rootPath`.
std::string pathUnderBase(std::string_view rootPath, std::string_view historyFilePath);

} // namespace nv
