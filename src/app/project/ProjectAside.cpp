#include "app/project/ProjectAside.h"

#include "base/Files.h"
#include "base/NoLog.h"
#include "base/Trap.h"
#include "db/sql/Connection.h"
#include "db/sql/SideFiles.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace nv {

namespace fs = std::filesystem;

namespace {

bool isThere(const fs::path &path) {
    std::error_code none;
    return fs::symlink_status(path, none).type() != fs::file_type::not_found;
}

/// Of a start that was killed early the file is still empty.
bool isOurs(const fs::path &path) {
    std::error_code none;
    if (!fs::is_regular_file(fs::symlink_status(path, none)))
        return false;
    if (fs::file_size(path, none) == 0)
        return true;
    NoLog unheard;
    return !failureOf(unheard, "", [&path] { checkIsProject(path); });
}

bool isFree(const fs::path &path) {
    return !isThere(path) && std::ranges::none_of(kSideSuffixes, [&path](std::string_view suffix) {
        return isThere(sideFile(path, suffix));
    });
}

} // namespace

fs::path placeAside(const fs::path &whole) {
    const std::string name = whole.native() + ".~new";
    fs::path place = name;
    for (int n = 2;; ++n) {
        if (isOurs(place))
            removeDatabase(place);
        if (isFree(place))
            return place;
        place = fmt::format("{}{}", name, n);
    }
}

void refuseLoneLog(const fs::path &whole) {
    if (isThere(whole))
        return;
    for (const std::string_view suffix : kRowSuffixes) {
        const fs::path log = sideFile(whole, suffix);
        std::error_code none;
        if (const auto size = fs::file_size(log, none); !none && size > 0)
            throw StorageFailure(fmt::format(
                "\"{}\" belongs to a project \"{}\" that was moved away, and may hold rows of it: "
                "no other project is made here. Put the two together again, or move it away",
                textOf(log), textOf(whole.filename())));
    }
}

} // namespace nv
