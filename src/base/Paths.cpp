#include "base/Paths.h"

#include "base/Text.h"

#include <iterator>
#include <string>
#include <system_error>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// As many links in a row as the system follows.
constexpr int kMostLinks = 40;

bool isThere(const fs::path &path) {
    std::error_code none;
    return fs::exists(path, none);
}

/// Each name may be as it is written or in Windows-1252; a folder of either may hold the rest.
std::optional<fs::path> below(const fs::path &folder, fs::path::const_iterator part,
                              fs::path::const_iterator end) {
    if (part == end)
        return folder;
    const auto rest = [&](const std::string &name) {
        const fs::path here = folder / name;
        return isThere(here) ? below(here, std::next(part), end) : std::nullopt;
    };
    if (auto found = rest(part->native()))
        return found;
    const std::string ansi = toAnsi(part->native());
    const bool isOther = ansi != part->native() && fromAnsi(ansi) == part->native();
    return isOther ? rest(ansi) : std::nullopt;
}

} // namespace

fs::path wholePath(const fs::path &path) {
    std::error_code failed;
    const fs::path written = fs::absolute(path, failed);
    if (failed || path.empty())
        return path;
    fs::path whole = written;
    for (int links = 0; links < kMostLinks; ++links) {
        whole = fs::weakly_canonical(whole, failed);
        if (failed)
            break;
        // A link to what isn't there yet stays in the result, and writing to it would follow it.
        if (!fs::is_symlink(fs::symlink_status(whole, failed)))
            return whole.has_filename() || whole == whole.root_path() ? whole : whole.parent_path();
        const fs::path target = fs::read_symlink(whole, failed);
        if (failed)
            break;
        whole = whole.parent_path() / target;
    }
    return written.lexically_normal();
}

std::optional<fs::path> pathFromText(std::string_view text) {
    const fs::path written = text;
    if (text.empty() || text.find('\0') != std::string_view::npos)
        return std::nullopt;
    return isThere(written) ? written : below({}, written.begin(), written.end());
}

} // namespace nv
