#pragma once

#include "readers/EvidenceFile.h"
#include "time/Date.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A file or folder that could not be read.
struct UnreadPlace {
    std::filesystem::path path;
    std::string reason; ///< names the file and says what the system said
};

/// What lies in one folder, sorted by the bytes of the names: the order doesn't depend on the disk.
struct FolderContents {
    std::vector<std::filesystem::path> files;
    std::vector<std::filesystem::path> folders;
    std::vector<UnreadPlace> unreadable;         ///< names of which nothing can be found out
    std::vector<std::filesystem::path> links;    ///< of any kind; none is followed
    std::vector<std::filesystem::path> specials; ///< pipes, sockets and devices
};

enum class PlaceKind { nothing, file, folder, special };

/// What the file system knows of a file.
struct FileFacts {
    bool isThere = false;
    std::uint64_t size = 0; ///< in bytes
    Date created;           ///< where the file system keeps none, when it was written last
    Date lastAccessed;
};

/// The seized files, and the only way to them: found without regard to case, split into base folder
/// and relative path, listed, and opened for reading, never written to.
class Evidence {
  public:
    /// `base` is the project's base folder; empty or "/" for none. The watch must outlive this.
    explicit Evidence(const std::filesystem::path &base, EvidenceWatch *watch = nullptr);
    ~Evidence();
    Evidence(const Evidence &) = delete;
    Evidence &operator=(const Evidence &) = delete;

    /// The "drive" of a path: the base folder when the path lies below it, else "/". Ends with "/".
    std::string rootOf(const std::filesystem::path &path) const;
    /// What is left of `path` after rootOf(path): rootOf + relativeOf is the path.
    std::string relativeOf(const std::filesystem::path &path) const;

    /// The file `name` (which may hold folders, parted by "\" or "/") below `folder`, its case set
    /// right; nothing when it isn't there, is no regular file, or would lie outside of `folder`.
    /// Listings of folders are kept, so a million look-ups in one folder cost one listing.
    std::optional<std::filesystem::path> find(const std::filesystem::path &folder,
                                              std::string_view name) const;
    /// The path that textOf() showed as `text`: records hold texts, and names on the disk need not
    /// be UTF-8. Nothing when there is no such file or folder.
    std::optional<std::filesystem::path> byText(std::string_view text) const;
    /// The folders in which find() could not look, since they can't be listed.
    const std::vector<UnreadPlace> &unlisted() const;

    // Questions, which read nothing of a file.

    /// Links are followed: examiners name places by links too.
    PlaceKind kindOf(const std::filesystem::path &path) const;
    /// A plain file, and no link.
    bool isPlainFile(const std::filesystem::path &path) const;
    /// A folder, and no link.
    bool isPlainFolder(const std::filesystem::path &path) const;
    /// Where a link says that it leads, which isn't followed; empty for what is none.
    std::string linkText(const std::filesystem::path &path) const;
    /// Of a file that isn't there nothing is known.
    FileFacts factsOf(const std::filesystem::path &file) const;

    /// Throws EvidenceFailure when the folder can't be read to its end.
    FolderContents contentsOf(const std::filesystem::path &folder) const;
    /// Throws EvidenceFailure.
    EvidenceFile open(const std::filesystem::path &file) const;
    /// The first `count` bytes, fewer when the file is shorter. Throws EvidenceFailure.
    Bytes head(const std::filesystem::path &file, std::uint64_t count) const;
    /// The whole file. Throws EvidenceFailure.
    Bytes whole(const std::filesystem::path &file) const;

  private:
    struct Listings;
    std::filesystem::path m_base;
    EvidenceWatch *m_watch;
    std::unique_ptr<Listings> m_listings;
};

/// Whether `path`, which need not exist, is the evidence folder `base` or lies below it, links of
/// both followed. An empty base and "/" are no evidence folder.
bool liesInEvidence(const std::filesystem::path &path, const std::filesystem::path &base);

} // namespace nv
