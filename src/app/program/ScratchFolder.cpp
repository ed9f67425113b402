#include "app/program/ScratchFolder.h"

#include "base/Files.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kWindow = "norvelane-window-";
constexpr std::string_view kCommandLine = "norvelane-cli-";
constexpr const char *kMark = ".norvelane-scratch";
/// Its name until it is locked: nobody takes a folder for given up that is just being made.
constexpr const char *kUnlockedMark = ".norvelane-scratch-new";
constexpr std::string_view kMarkText =
    "Scratch folder of Norvelane: removed when the program that works in it has ended.\n";

std::string_view prefixOf(Front owner) {
    return owner == Front::window ? kWindow : kCommandLine;
}

fs::path newFolder(const fs::path &tempFolder, Front owner) {
    std::string name = (tempFolder / fmt::format("{}XXXXXX", prefixOf(owner))).string();
    if (!::mkdtemp(name.data()))
        throw StorageFailure(
            fmt::format("no scratch folder can be made in \"{}\"", textOf(tempFolder)));
    return name;
}

/// The mark goes last: what is interrupted here is still known as given up.
void removeMarked(const fs::path &folder) {
    std::vector<fs::path> inside;
    for (const auto &entry : fs::directory_iterator(folder))
        if (entry.path().filename() != kMark && entry.path().filename() != kUnlockedMark)
            inside.push_back(entry.path());
    for (const fs::path &path : inside)
        fs::remove_all(path);
    fs::remove_all(folder);
}

struct GivenUp {
    fs::path folder;
    FileHold mark; ///< keeps other starts off it
};

/// A start takes no time between making its mark and locking it, unless it was killed there.
bool isOfKilledStart(const fs::path &unlockedMark, const FileHold &hold) {
    constexpr std::chrono::minutes kLongestStart{1};
    std::error_code failed;
    const auto written = fs::last_write_time(unlockedMark, failed);
    return !failed && written + kLongestStart < fs::file_time_type::clock::now() &&
           (hold.text().empty() || hold.text() == kMarkText);
}

/// Held; nothing when its process lives, or when the folder is none of ours.
std::optional<FileHold> markOfGivenUp(const fs::path &folder) {
    FileHold mark(folder / kMark, FileHold::Kind::alone, FileHold::Make::no);
    if (mark.isHeld() && mark.text() == kMarkText)
        return mark;
    const fs::path unlocked = folder / kUnlockedMark;
    FileHold early(unlocked, FileHold::Kind::alone, FileHold::Make::no);
    if (early.isHeld() && isOfKilledStart(unlocked, early))
        return early;
    return std::nullopt;
}

std::vector<GivenUp> givenUpIn(const fs::path &tempFolder, Front whoStarts) {
    std::vector<GivenUp> found;
    for (const auto &entry : fs::directory_iterator(tempFolder)) {
        const std::string name = entry.path().filename().string();
        const bool isOurs = name.starts_with(kCommandLine) ||
                            (whoStarts == Front::window && name.starts_with(kWindow));
        std::error_code gone;
        if (!isOurs || !fs::is_directory(entry.symlink_status(gone)))
            continue;
        auto mark = markOfGivenUp(entry.path());
        if (mark)
            found.push_back({entry.path(), std::move(*mark)});
    }
    return found;
}

} // namespace

ScratchFolder::ScratchFolder(const fs::path &tempFolder, Front owner)
    : m_path(newFolder(tempFolder, owner)),
      m_mark(m_path / kUnlockedMark, FileHold::Kind::alone, FileHold::Make::yes) {
    m_mark.write(kMarkText);
    // Where there are no locks nobody could tell that this process lives: the folder stays
    // unmarked, and is never taken for given up.
    if (m_mark.isHeld())
        fs::rename(m_path / kUnlockedMark, m_path / kMark);
    else
        fs::remove(m_path / kUnlockedMark);
}

void ScratchFolder::remove() const {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

void emptyTempFolder(const fs::path &tempFolder, Front whoStarts, TaskMonitor &task) {
    task.describe({"EMPTYING CONTENTS OF TEMP FOLDER", "", "", ""});
    const std::vector<GivenUp> folders = givenUpIn(tempFolder, whoStarts);
    for (std::size_t i = 0; i < folders.size(); ++i) {
        if (!task.advance(static_cast<double>(i) / static_cast<double>(folders.size())))
            return;
        if (task.wantsStep())
            task.show({fmt::format("Deleting {} of {}...", i + 1, folders.size()),
                       static_cast<std::int64_t>(i + 1), static_cast<std::int64_t>(folders.size()),
                       "", 0, 0});
        removeMarked(folders[i].folder);
    }
}

} // namespace nv
