#include "readers/Evidence.h"

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Text.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unordered_map>

namespace nv {

namespace fs = std::filesystem;

namespace {

struct Entry {
    fs::path name;
    bool isFolder = false;
    bool isFile = false;
};

/// The entries of a folder by lower-case name; names that differ in case only stand side by side.
using Listing = std::unordered_multimap<std::string, Entry>;

/// Hands each entry of the folder to `take`, as far as the folder can be listed.
template <class Take>
std::error_code eachEntry(EvidenceWatch *watch, const fs::path &folder, Take &&take) {
    using Step = EvidenceWatch::Step;
    if (const int error = watch ? watch->errorBefore(Step::list, folder) : 0)
        return {error, std::system_category()};
    std::error_code failed;
    for (fs::directory_iterator it(folder, failed), end; !failed && it != end; it.increment(failed))
        take(*it);
    return failed;
}

FileFailure unlistable(const fs::path &folder, std::error_code failed) {
    return {"cannot list", folder, failed.value()};
}

/// What the names of one folder stand for. Listings tell it of each name, which costs nothing; in
/// a folder that may be listed and not entered every name is there and nothing after it, so the
/// first one is looked up.
class TypesInFolder {
  public:
    /// `none` when nothing can be found out: then `failed` says why.
    fs::file_type of(const fs::directory_entry &entry, std::error_code &failed) {
        if (!m_isEntered) {
            const fs::file_type type = entry.symlink_status(failed).type();
            m_isEntered = type != fs::file_type::none;
            return type;
        }
        if (entry.is_symlink(failed))
            return fs::file_type::symlink;
        if (!failed && entry.is_directory(failed))
            return fs::file_type::directory;
        if (!failed && entry.is_regular_file(failed))
            return fs::file_type::regular;
        return failed ? fs::file_type::none : fs::file_type::unknown;
    }

  private:
    bool m_isEntered = false;
};

void addEntry(FolderContents &contents, const fs::directory_entry &entry, TypesInFolder &types) {
    std::error_code failed;
    switch (types.of(entry, failed)) {
    case fs::file_type::none:
        contents.unreadable.push_back(
            {entry.path(), FileFailure("cannot open", entry.path(), failed.value()).what()});
        break;
    case fs::file_type::symlink:
        contents.links.push_back(entry.path());
        break;
    case fs::file_type::directory:
        contents.folders.push_back(entry.path());
        break;
    case fs::file_type::regular:
        contents.files.push_back(entry.path());
        break;
    default:
        contents.specials.push_back(entry.path());
        break;
    }
}

void sortByBytes(std::vector<fs::path> &paths) {
    std::ranges::sort(paths, {},
                      [](const fs::path &path) -> const std::string & { return path.native(); });
}

/// Links are neither file nor folder here: evidence must not lead out of itself.
void addEntry(Listing &listing, const fs::directory_entry &entry, TypesInFolder &types) {
    std::error_code failed;
    const fs::file_type type = types.of(entry, failed);
    const fs::path name = entry.path().filename();
    if (!failed)
        listing.emplace(toLower(textOf(name)), Entry{name, type == fs::file_type::directory,
                                                     type == fs::file_type::regular});
}

const Entry *entryNamed(const Listing &listing, const std::string &name) {
    const auto [first, last] = listing.equal_range(toLower(name));
    for (auto it = first; it != last; ++it)
        if (textOf(it->second.name) == name)
            return &it->second;
    return first == last ? nullptr : &first->second;
}

std::string withClosingSlash(const fs::path &folder) {
    std::string text = folder.lexically_normal().native();
    if (text.empty() || text.back() != '/')
        text.push_back('/');
    return text;
}

/// Records name folders by their texts.
fs::path onDisk(const fs::path &folder) {
    const bool isPlain =
        std::ranges::all_of(folder.native(), [](unsigned char c) { return c < 0x80; });
    return isPlain ? folder : pathFromText(folder.native()).value_or(folder);
}

} // namespace

struct Evidence::Listings {
    /// What couldn't be listed to its end is kept as far as it could, and noted in `unlisted`.
    const Listing &of(const fs::path &folder, EvidenceWatch *watch) {
        const auto [it, isNew] = byFolder.try_emplace(folder.native());
        if (isNew)
            list(it->second, folder, watch);
        return it->second;
    }

    std::unordered_map<std::string, Listing> byFolder;
    std::vector<UnreadPlace> unlisted;

  private:
    void list(Listing &listing, const fs::path &folder, EvidenceWatch *watch) {
        TypesInFolder types;
        const std::error_code failed =
            eachEntry(watch, folder, [&](const auto &entry) { addEntry(listing, entry, types); });
        const bool isGone =
            failed == std::errc::no_such_file_or_directory || failed == std::errc::not_a_directory;
        if (failed && !isGone)
            unlisted.push_back({folder, unlistable(folder, failed).what()});
    }
};

Evidence::Evidence(const fs::path &base, EvidenceWatch *watch)
    : m_base(withClosingSlash(base)), m_watch(watch), m_listings(std::make_unique<Listings>()) {}

Evidence::~Evidence() = default;

std::string Evidence::rootOf(const fs::path &path) const {
    return path.native().starts_with(m_base.native()) ? textOf(m_base) : "/";
}

std::string Evidence::relativeOf(const fs::path &path) const {
    const std::string &whole = path.native();
    const bool below = whole.starts_with(m_base.native());
    return textOf(whole.substr(below ? m_base.native().size() : 1));
}

std::optional<fs::path> Evidence::find(const fs::path &folder, std::string_view name) const {
    const std::string unified = replaceAll(name, "\\", "/");
    fs::path found = onDisk(folder);
    if (!found.has_filename() && found != found.root_path())
        found = found.parent_path(); // one listing and one name for "Cache" and "Cache/"
    bool isFile = false;
    for (const std::string_view part : split(unified, '/')) {
        if (part.empty() || part == ".")
            continue;
        const Entry *entry = isFile || part == ".."
                                 ? nullptr
                                 : entryNamed(m_listings->of(found, m_watch), std::string(part));
        if (!entry || !(entry->isFile || entry->isFolder))
            return std::nullopt;
        found /= entry->name;
        isFile = entry->isFile;
    }
    return isFile ? std::optional(found) : std::nullopt;
}

std::optional<fs::path> Evidence::byText(std::string_view text) const {
    return pathFromText(text);
}

const std::vector<UnreadPlace> &Evidence::unlisted() const {
    return m_listings->unlisted;
}

PlaceKind Evidence::kindOf(const fs::path &path) const {
    std::error_code none;
    const fs::file_status status = fs::status(path, none);
    if (!fs::exists(status))
        return PlaceKind::nothing;
    if (fs::is_directory(status))
        return PlaceKind::folder;
    return fs::is_regular_file(status) ? PlaceKind::file : PlaceKind::special;
}

bool Evidence::isPlainFile(const fs::path &path) const {
    std::error_code none;
    return fs::is_regular_file(fs::symlink_status(path, none));
}

bool Evidence::isPlainFolder(const fs::path &path) const {
    std::error_code none;
    return fs::is_directory(fs::symlink_status(path, none));
}

std::string Evidence::linkText(const fs::path &path) const {
    std::error_code none;
    return fs::read_symlink(path, none).string();
}

FileFacts Evidence::factsOf(const fs::path &file) const {
#ifdef STATX_BTIME
    struct statx facts {};
    if (::statx(AT_FDCWD, file.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &facts) == 0) {
        const bool hasBirth = (facts.stx_mask & STATX_BTIME) != 0;
        const auto created = hasBirth ? facts.stx_btime.tv_sec : facts.stx_mtime.tv_sec;
        return {true, facts.stx_size, Date::fromUnixSeconds(created),
                Date::fromUnixSeconds(facts.stx_atime.tv_sec)};
    }
#endif
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0)
        return {};
    return {true, static_cast<std::uint64_t>(status.st_size),
            Date::fromUnixSeconds(status.st_mtime), Date::fromUnixSeconds(status.st_atime)};
}

FolderContents Evidence::contentsOf(const fs::path &folder) const {
    FolderContents contents;
    TypesInFolder types;
    const std::error_code failed =
        eachEntry(m_watch, folder, [&](const auto &entry) { addEntry(contents, entry, types); });
    if (failed)
        throw EvidenceFailure(unlistable(folder, failed), folder);
    sortByBytes(contents.files);
    sortByBytes(contents.folders);
    sortByBytes(contents.links);
    sortByBytes(contents.specials);
    return contents;
}

EvidenceFile Evidence::open(const fs::path &file) const {
    return {file, m_watch};
}

Bytes Evidence::head(const fs::path &file, std::uint64_t count) const {
    return open(file).read(0, count);
}

Bytes Evidence::whole(const fs::path &file) const {
    return open(file).read(0, UINT64_MAX);
}

bool liesInEvidence(const fs::path &path, const fs::path &base) {
    const fs::path folder = base.empty() ? base : wholePath(base);
    if (folder.empty() || folder == "/")
        return false;
    // Projects hold texts of paths, and of two folders that show as the same text none is written
    // to: which of them is meant can't be told.
    const fs::path whole = wholePath(path);
    return std::mismatch(folder.begin(), folder.end(), whole.begin(), whole.end(),
                         [](const fs::path &a, const fs::path &b) {
                             return a == b || textOf(a) == textOf(b);
                         })
               .first == folder.end();
}

} // namespace nv
