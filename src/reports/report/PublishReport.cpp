#include "reports/report/PublishReport.h"

#include "base/Files.h"
#include "base/Text.h"
#include "reports/case/CaseReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

void addFolder(std::vector<fs::path> &files, const fs::path &folder) {
    if (!fs::is_directory(folder))
        return;
    for (const fs::directory_entry &entry : fs::directory_iterator(folder))
        if (entry.is_regular_file())
            files.push_back(entry.path());
}

/// A report of a case has its folder for itself. Its list of files comes before its first page.
std::vector<fs::path> filesOfCase(const ReportFolder &report) {
    std::vector<fs::path> files;
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(report.path))
        if (entry.is_regular_file() && entry.path() != report.index(kCaseType))
            files.push_back(entry.path());
    files.push_back(report.index(kCaseType));
    return files;
}

/// The page comes last: whoever finds it, even after a power cut, finds all that it shows.
std::vector<fs::path> filesOf(const ReportFolder &report, int reportType) {
    if (reportType == kCaseType)
        return filesOfCase(report);
    std::vector<fs::path> files;
    addFolder(files, report.images());
    if (reportType == 0) {
        addFolder(files, report.pictures());
        const Bytes names = readWhole(report.rowFolders());
        for (const std::string_view line : split(ByteView(names).raw(), '\n'))
            if (const std::string_view name = trim(line); !name.empty())
                addFolder(files, report.path / name);
    }
    files.push_back(report.index(reportType));
    return files;
}

void show(std::size_t n, std::size_t total, const fs::path &file, TaskMonitor &task) {
    if (!task.wantsStep())
        return;
    TaskStep step;
    step.topMessage = fmt::format("Copying {} of {}", n, total);
    step.topCounter = static_cast<std::int64_t>(n);
    step.topTotal = static_cast<std::int64_t>(total);
    step.bottomMessage = textOf(file.filename());
    task.show(step);
}

/// A folder of this name that is a link would lead the copies elsewhere, perhaps into evidence.
void makeOwnFolder(const fs::path &folder) {
    if (fs::is_symlink(fs::symlink_status(folder)))
        throw std::runtime_error(fmt::format(
            "\"{}\" is a link to another place: nothing is written there", textOf(folder)));
    fs::create_directories(folder);
}

/// What is new of a report whose files didn't all arrive goes: it must not pass for one. What was
/// there before, perhaps of a report of the other type, stays.
class HalfPublished {
  public:
    explicit HalfPublished(fs::path target) : m_target(std::move(target)) {}
    ~HalfPublished() {
        if (!m_isWhole)
            remove();
    }
    HalfPublished(const HalfPublished &) = delete;
    HalfPublished &operator=(const HalfPublished &) = delete;
    /// Before `file` is written.
    void expect(const fs::path &file) {
        if (!fs::exists(fs::symlink_status(file)))
            m_new.push_back(file);
    }
    void becomeWhole() { m_isWhole = true; }

  private:
    void remove() const {
        std::error_code ignored;
        for (const fs::path &file : m_new) {
            fs::remove(file, ignored);
            if (file.parent_path() != m_target)
                fs::remove(file.parent_path(), ignored); // when it is empty now
        }
    }

    fs::path m_target;
    std::vector<fs::path> m_new;
    bool m_isWhole = false;
};

/// A name that such a report gives: letters, digits and marks, in its folder or one below it.
bool isNameOfCase(std::string_view name) {
    constexpr std::string_view kMarks = "-_~.";
    const auto isPlain = [&](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               kMarks.find(c) != std::string_view::npos;
    };
    const auto parts = split(name, '/');
    return parts.size() <= 2 && std::ranges::all_of(parts, [&](std::string_view part) {
               return !part.empty() && part.front() != '.' && std::ranges::all_of(part, isPlain);
           });
}

/// Of the files that its list names those that are plain ones: the list came from somewhere, too.
void removeCase(const ReportFolder &old) {
    const fs::path list = old.path / kReportFiles;
    const Bytes names = readWhole(list);
    const fs::path index = old.index(kCaseType);
    fs::remove(index); // first: what is left is no report any more
    std::error_code none;
    for (const std::string_view line : split(ByteView(names).raw(), '\n')) {
        const std::string_view name = line.substr(0, line.find(','));
        const fs::path file = old.path / name;
        if (!isNameOfCase(name) || fs::is_symlink(fs::symlink_status(file.parent_path(), none)) ||
            !fs::is_regular_file(fs::symlink_status(file, none)))
            continue;
        fs::remove(file, none);
        if (file.parent_path() != old.path)
            fs::remove(file.parent_path(), none); // when it is empty now
    }
    fs::remove(list, none);
}

} // namespace

void removePublished(const fs::path &target) {
    removePublished(target, kCaseType);
    const ReportFolder old = ReportFolder::at(target);
    if (!isReportThere(old, 0) && !isReportThere(old, 1))
        return;
    for (const fs::path &path : {old.index(0), old.index(1), old.images(), old.pictures()})
        fs::remove_all(path);
    old.removeRowFolders();
}

bool isReportThere(const ReportFolder &report, int reportType) {
    // Many a folder has a page "index.htm" that isn't ours to remove.
    return fs::is_regular_file(report.index(reportType)) &&
           (reportType != kCaseType || fs::is_regular_file(report.path / kReportFiles));
}

void removePublished(const fs::path &target, int reportType) {
    const ReportFolder old = ReportFolder::at(target);
    if (!isReportThere(old, reportType))
        return;
    if (reportType == kCaseType)
        return removeCase(old);
    fs::remove(old.index(reportType));
    if (reportType != 0)
        return;
    fs::remove_all(old.pictures());
    old.removeRowFolders();
}

Published publishReport(const ReportFolder &report, int reportType, const fs::path &target,
                        TaskMonitor &task) {
    task.describe({"PUBLISHING REPORT", "Copying report contents to output folder...", "", ""});
    const fs::path index = ReportFolder::at(target).index(reportType);
    if (reportType == kCaseType && fs::exists(fs::symlink_status(index)) &&
        !isReportThere(ReportFolder::at(target), kCaseType))
        throw std::runtime_error(
            fmt::format("\"{}\" is no report's page: it isn't replaced, and nothing was written",
                        textOf(index)));
    const auto files = filesOf(report, reportType);
    Published published;
    HalfPublished half(target);
    fs::remove(index); // that of an earlier report
    for (const fs::path &file : files) {
        show(published.files + 1, files.size(), file, task);
        if (!task.advance(static_cast<double>(published.files) /
                          static_cast<double>(files.size()))) {
            published.cancelled = true;
            return published;
        }
        const fs::path copy = target / file.lexically_relative(report.path);
        half.expect(copy);
        if (copy.parent_path() != target)
            makeOwnFolder(copy.parent_path());
        copyToScratch(file, copy);
        ++published.files;
    }
    half.becomeWhole();
    return published;
}

} // namespace nv
