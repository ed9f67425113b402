#include "app/program/ProjectHold.h"

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "time/Date.h"
#include "views/rows/CellText.h"

#include <fmt/format.h>

#include <array>
#include <pwd.h>
#include <unistd.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLongestHolder = 300; // characters

fs::path fileOf(const fs::path &project) {
    return wholePath(project).native() + "-open";
}

FileHold::Kind kindOf(Front front) {
    return front == Front::window ? FileHold::Kind::alone : FileHold::Kind::shared;
}

/// Whoever ends removes the file: a lock on one that is gone keeps nobody out.
FileHold take(const fs::path &file, Front front) {
    FileHold hold(file, kindOf(front), FileHold::Make::yes);
    return !hold.isHeld() || hold.isStillAt(file)
               ? std::move(hold)
               : FileHold(file, kindOf(front), FileHold::Make::yes);
}

std::string userName() {
    const passwd *user = ::getpwuid(::getuid());
    return user ? user->pw_name : fmt::format("user {}", ::getuid());
}

std::string machineName() {
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "this machine";
}

/// Of several command lines the last one to come stands here.
std::string holderText(Front front, const Clock &clock) {
    const CivilTime t = Date::fromTimePoint(clock.now() + clock.localOffset()).civil();
    return fmt::format("{} on {}, {} (process {}), since {:04}-{:02}-{:02} {:02}:{:02}:{:02}",
                       userName(), machineName(),
                       front == Front::window ? "in a window" : "by norvelane-cli", ::getpid(),
                       t.year, t.month, t.day, t.hour, t.minute, t.second);
}

/// The file may lie beside a project of anybody's.
std::string shown(const std::string &holder) {
    const std::string_view line = trim(std::string_view(holder).substr(0, holder.find('\n')));
    return line.empty() ? "another program" : displayText(line, kLongestHolder);
}

} // namespace

ProjectHold::ProjectHold(const fs::path &project, Front front, const Clock &clock)
    : m_file(fileOf(project)), m_hold(take(m_file, front)) {
    if (m_hold.state() == FileHold::State::ofAnother)
        throw StorageFailure(fmt::format("\"{}\" is open already, for writing: {}", textOf(project),
                                         shown(m_hold.text())));
    m_hold.write(holderText(front, clock) + "\n");
}

ProjectHold::~ProjectHold() {
    std::error_code ignored;
    if (m_hold.becomesAlone() && m_hold.isStillAt(m_file))
        fs::remove(m_file, ignored);
}

std::optional<std::string> holderOf(const fs::path &project, Front front) {
    const FileHold hold(fileOf(project), kindOf(front), FileHold::Make::no);
    if (hold.state() != FileHold::State::ofAnother)
        return std::nullopt;
    return shown(hold.text());
}

} // namespace nv
