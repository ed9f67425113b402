#include "cli/HandOver.h"

#include "base/Files.h"
#include "base/Storage.h"
#include "base/Unfinished.h"
#include "cli/Session.h"
#include "rebuild/LocalNames.h"
#include "reports/exports/ExportFile.h"
#include "reports/pages/PartsInside.h"
#include "reports/pages/SafePage.h"

#include <fmt/format.h>

#include <string>
#include <vector>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kSingleExtension = ".html";

std::string singleNameOf(UrlId id) {
    return sidOf(id) + std::string(kSingleExtension);
}

} // namespace

std::string archiveNameOf(UrlId id) {
    return sidOf(id) + ".warc.gz";
}

void refusePlainFile(const fs::path &out) {
    if (fs::exists(out) && !fs::is_directory(out))
        throw UsageError(fmt::format("--out {}: a folder was expected", textOf(out)));
}

namespace {

std::vector<std::string> namesOf(UrlId id, const HandOverForms &forms) {
    std::vector<std::string> names;
    if (forms.single)
        names.push_back(singleNameOf(id));
    if (forms.warc)
        names.push_back(archiveNameOf(id));
    if (names.empty())
        names.push_back(folderNameOf(id));
    return names;
}

} // namespace

void refuseExisting(std::span<const UrlId> ids, const fs::path &out, const HandOverForms &forms) {
    fs::path first;
    std::size_t more = 0;
    for (const UrlId id : ids)
        for (const std::string &name : namesOf(id, forms)) {
            const fs::path target = out / name;
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

/// Copies the page's folder and guards the copy.
void guardInto(const fs::path &page, const fs::path &aside) {
    for (const fs::directory_entry &entry : fs::directory_iterator(page.parent_path()))
        copyToScratch(entry.path(), aside / entry.path().filename());
    guardFolder(aside / page.filename());
}

} // namespace

void handOver(const fs::path &page, const fs::path &out) {
    const fs::path folder = page.parent_path();
    const fs::path target = out / folder.filename();
    makeFolder(out);
    Unfinished made(newFolderBeside(target));
    const fs::path &aside = made.path();
    guardInto(page, aside);
    fs::remove_all(target);
    moveFile(aside, target);
    made.finished();
    fs::remove_all(folder);
}

bool handOverSingle(const fs::path &page, const fs::path &out) {
    makeFolder(out);
    const fs::path target = out / (page.stem().native() + std::string(kSingleExtension));
    const Unfinished made(newFolderBeside(target));
    guardInto(page, made.path());
    const auto html = singlePage(made.path() / page.filename());
    if (html) {
        ExportFile file(target);
        file.write(*html);
        file.finish();
    }
    fs::remove_all(page.parent_path());
    return html.has_value();
}

} // namespace nv::cli
