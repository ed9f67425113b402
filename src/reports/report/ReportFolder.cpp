#include "reports/report/ReportFolder.h"

#include "base/Files.h"
#include "base/Storage.h"
#include "base/Succeeds.h"
#include "base/Text.h"
#include "reports/pages/PictureKind.h"

#include <fmt/format.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kShortestRowName = 11; ///< "0000017.NVR"

/// Only what reports themselves make may be removed: the examiner may have put more beside it.
bool isRowFolder(const fs::path &folder) {
    const std::string name = textOf(folder.filename());
    return name.size() >= kShortestRowName && name.ends_with(".NVR") &&
           name.find_first_not_of("0123456789") == name.find('.');
}

bool isImage(const fs::path &file) {
    const std::string name = toLower(textOf(file.filename()));
    return name.ends_with(".gif") || name.ends_with(".png") || name.starts_with("norvelane");
}

} // namespace

std::string rowNameOf(UrlId id) {
    return fmt::format("{:0>7}", id);
}

ReportFolder ReportFolder::at(const fs::path &place) {
    ReportFolder folder(place);
    folder.path = place;
    return folder;
}

ReportFolder ReportFolder::of(const fs::path &parent, int reportType) {
    return reportType == kCaseType ? at(parent / "CaseReport") : ReportFolder(parent);
}

fs::path ReportFolder::index(int reportType) const {
    return path / (reportType == kCaseType        ? "index.htm"
                   : reportType == kGraphicalType ? "index-cache.htm"
                                                  : "index-history.htm");
}

void ReportFolder::removeRowFolders() const {
    if (!fs::is_directory(path))
        return;
    for (const fs::directory_entry &entry : fs::directory_iterator(path))
        if (isRowFolder(entry.path()))
            fs::remove_all(entry.path());
}

void ReportFolder::prepare(int reportType) const {
    makeFolder(images());
    fs::remove(unfinished());
    fs::remove(copied());
    fs::remove(index(reportType));
    if (reportType != 0)
        return;
    makeEmptyFolder(pictures());
    removeRowFolders();
}

void ReportFolder::copyImages(const fs::path &from, FailureLog &log) const {
    if (!fs::is_directory(from)) {
        log.write({fmt::format("the program's pictures are missing: \"{}\" was expected; the "
                               "report shows none",
                               textOf(from)),
                   "ReportClass.CreateHeader()", Severity::Warning, std::string(kNotSerious)});
        return;
    }
    for (const fs::directory_entry &entry : fs::directory_iterator(from))
        if (entry.is_regular_file() && isImage(entry.path()))
            copyToScratch(entry.path(), images() / entry.path().filename());
}

std::string ReportFolder::takePicture(const fs::path &picture, const std::string &name,
                                      FailureLog &log) const {
    const std::string kind = fs::is_regular_file(picture) ? pictureKindOf(picture) : "";
    if (!isShownByBrowsers(kind)) {
        log.write({fmt::format("\"{}\" is no picture that a report can show", textOf(picture)),
                   "ReportClass.CreateHeader()", Severity::Warning, std::string(kNotSerious)});
        return {};
    }
    const std::string copy = fmt::format("images/{}.{}", name, kind);
    const bool copied =
        succeeds(log, Severity::Warning, "ReportClass.CreateHeader()",
                 "Error Creating Report Header", [&] { copyToScratch(picture, path / copy); });
    return copied ? copy : std::string();
}

} // namespace nv
