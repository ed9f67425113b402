#include "readers/Evidence.h"

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Text.h"

#include <algorithm>
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

/// Links are neither file nor folder here: evidence must not lead out of itself.
Listing listingOf(const fs::path &folder) {
    Listing listing;
    std::error_code failed;
    for (fs::directory_iterator it(folder, failed), end; !failed && it != end;
         it.increment(failed)) {
        const fs::file_status status = it->symlink_status(failed);
        if (!failed)
            listing.emplace(toLower(textOf(it->path().filename())),
                            Entry{it->path().filename(), fs::is_directory(status),
                                  fs::is_regular_file(status)});
    }
    return listing;
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
    const Listing &of(const fs::path &folder) {
        const auto [it, isNew] = byFolder.try_emplace(folder.native());
        if (isNew)
            it->second = listingOf(folder);
        return it->second;
    }
    std::unordered_map<std::string, Listing> byFolder;
};

Evidence::Evidence(const fs::path &base)
    : m_base(withClosingSlash(base)), m_listings(std::make_unique<Listings>()) {}

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
    bool isFile = false;
    for (const std::string_view part : split(unified, '/')) {
        if (part.empty() || part == ".")
            continue;
        const Entry *entry =
            isFile || part == ".." ? nullptr : entryNamed(m_listings->of(found), std::string(part));
        if (!entry || !(entry->isFile || entry->isFolder))
            return std::nullopt;
        found /= entry->name;
        isFile = entry->isFile;
    }
    return isFile ? std::optional(found) : std::nullopt;
}

bool Evidence::isPlainFile(const fs::path &path) const {
    std::error_code none;
    return fs::is_regular_file(fs::symlink_status(path, none));
}

Bytes Evidence::head(const fs::path &file, std::uint64_t count) const {
    return readHead(file, static_cast<std::size_t>(count));
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
