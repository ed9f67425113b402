#include "cli/HandOver.h"

#include "base/Files.h"
#include "base/Storage.h"
#include "base/Unfinished.h"
#include "cli/Session.h"
#include "rebuild/LocalNames.h"
#include "reports/SafePage.h"

#include <fmt/format.h>

namespace nv::cli {

namespace fs = std::filesystem;

void refusePlainFile(const fs::path &out) {
    if (fs::exists(out) && !fs::is_directory(out))
        throw UsageError(fmt::format("--out {}: a folder was expected", textOf(out)));
}

void refuseExisting(std::span<const UrlId> ids, const fs::path &out) {
    fs::path first;
    std::size_t more = 0;
    for (const UrlId id : ids) {
        const fs::path target = out / folderNameOf(id);
        if (!fs::exists(fs::symlink_status(target)))
            continue;
        more += first.empty() ? 0 : 1;
        first = first.empty() ? target : first;
    }
    if (!first.empty())
        throw UsageError(
            fmt::format("\"{}\" is there already{}; --overwrite replaces what is there",
                        textOf(first), more == 0 ? "" : fmt::format(", and so are {} more", more)));
}

namespace {

/// Under a name that nobody has: what lies there may be the examiner's.
fs::path newFolderBeside(const fs::path &target) {
    const std::string name = target.native() + ".~new";
    fs::path folder = name;
    for (int n = 2;; ++n) {
        std::error_code failed;
        if (fs::create_directory(folder, failed))
            return folder;
        if (failed && failed != std::errc::file_exists)
            failStorage("cannot make the folder", folder, failed.value());
        folder = fmt::format("{}{}", name, n);
    }
}

} // namespace

void handOver(const fs::path &page, const fs::path &out) {
    const fs::path folder = page.parent_path();
    const fs::path target = out / folder.filename();
    makeFolder(out);
    Unfinished made(newFolderBeside(target));
    const fs::path &aside = made.path();
    for (const fs::directory_entry &entry : fs::directory_iterator(folder))
        copyToScratch(entry.path(), aside / entry.path().filename());
    guardFolder(aside / page.filename());
    fs::remove_all(target);
    moveFile(aside, target);
    made.finished();
    fs::remove_all(folder);
}

} // namespace nv::cli
