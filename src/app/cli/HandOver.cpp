#include "app/cli/HandOver.h"

#include "app/cli/Session.h"
#include "base/Files.h"
#include "rebuild/LocalNames.h"
#include "reports/SafePage.h"

#include <fmt/format.h>

namespace nv::cli {

namespace fs = std::filesystem;

void refusePlainFile(const fs::path &out) {
    if (fs::exists(out) && !fs::is_directory(out))
        throw UsageError(fmt::format("--out {}: a folder was expected", textOf(out)));
}

void refuseExisting(std::span<const std::int64_t> ids, const fs::path &out) {
    fs::path first;
    std::size_t more = 0;
    for (const std::int64_t id : ids) {
        const fs::path target = out / folderNameOf(UrlId{id});
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

void handOver(const fs::path &page, const fs::path &out) {
    const fs::path folder = page.parent_path();
    const fs::path target = out / folder.filename();
    const fs::path aside = target.native() + ".~new";
    fs::remove_all(aside);
    fs::create_directories(aside);
    for (const fs::directory_entry &entry : fs::directory_iterator(folder))
        copyToScratch(entry.path(), aside / entry.path().filename());
    guardFolder(aside / page.filename());
    fs::remove_all(target);
    fs::rename(aside, target);
    fs::remove_all(folder);
}

} // namespace nv::cli
