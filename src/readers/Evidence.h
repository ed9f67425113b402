#pragma once

#include "base/ByteView.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// The seized files as readers see them: found without regard to case, split into base folder and
/// relative path, never written to.
class Evidence {
  public:
    /// `base` is the project's base folder; empty or "/" for none.
    explicit Evidence(const std::filesystem::path &base);
    ~Evidence();
    Evidence(const Evidence &) = delete;
    Evidence &operator=(const Evidence &) = delete;

    /// The "drive" of a path: the base folder when the path lies below it, else "/". Ends with "/".
    std::string rootOf(const std::filesystem::path &path) const;
    /// What is left of `path` behind rootOf(path): rootOf + relativeOf is the path.
    std::string relativeOf(const std::filesystem::path &path) const;

    /// The file `name` (which may hold folders, parted by "\" or "/") below `folder`, its case set
    /// right; nothing when it isn't there, is no regular file, or would lie outside of `folder`.
    /// Listings of folders are kept, so a million look-ups in one folder cost one listing.
    std::optional<std::filesystem::path> find(const std::filesystem::path &folder,
                                              std::string_view name) const;

    /// A plain file, and no link.
    bool isPlainFile(const std::filesystem::path &path) const;
    /// The first `count` bytes, fewer when the file is shorter. Throws FileFailure.
    Bytes head(const std::filesystem::path &file, std::uint64_t count) const;

  private:
    struct Listings;
    std::filesystem::path m_base;
    std::unique_ptr<Listings> m_listings;
};

/// Whether `path`, which need not exist, is the evidence folder `base` or lies below it, links of
/// both followed. An empty base and "/" are no evidence folder.
bool liesInEvidence(const std::filesystem::path &path, const std::filesystem::path &base);

} // namespace nv
