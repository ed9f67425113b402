#include "cli/Session.h"

#include "app/messages/Messages.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "cli/RowWriter.h"

#include <fmt/format.h>

#include <unistd.h>

namespace nv::cli {

namespace {

constexpr std::string_view kNoNote =
    "the project can't be written: its trail has no note of this\n";

bool isWritable(const std::filesystem::path &project) {
    const auto folder = std::filesystem::absolute(project).parent_path();
    return ::access(project.c_str(), W_OK) == 0 && ::access(folder.c_str(), W_OK) == 0;
}

} // namespace

Answer StreamExaminer::ask(const Message &message) {
    m_err << (message.title.empty() ? "" : message.title + ": ")
          << printable(replaceAll(message.text, "\n", " ")) << '\n';
    return message.unattended;
}

Session::Session(const std::string &executable, std::string_view command, std::ostream &toOut,
                 std::ostream &toErr)
    : out(toOut), err(toErr), m_examiner(toErr),
      program(findProgramPaths(executable), Front::headless,
              {m_examiner, m_status, m_clock, m_systemTime, m_network}),
      task(toErr, ::isatty(STDERR_FILENO) == 1) {
    program.log.goOnFor(command);
    startUp(program, Front::headless);
    catchInterrupts();
}

Session::~Session() {
    for (const auto &folder : program.scratch)
        folder->remove();
}

void Session::open(const std::filesystem::path &project, Access access, Holding holding) {
    if (!isProjectName(project))
        throw StorageFailure(
            fmt::format("\"{}\": {}", textOf(project), messages::notAProjectFile().text));
    openProject(program, project, access, holding);
    if (isOlderProject(program))
        err << fmt::format("This project file was made with an earlier build of Norvelane: the "
                           "command `upgrade {}` compares it with this one's.\n",
                           printable(textOf(project)));
}

bool Session::openForNote(const std::filesystem::path &project) {
    std::optional<std::string> why;
    if (isWritable(project)) { // a full disk shows only when something is written
        why = failureOf(program.log, "DatabaseClass.OpenDB()",
                        [&] { open(project, Access::write, Holding::no); });
        if (!why)
            return true;
    }
    open(project, Access::read, Holding::no);
    if (why)
        err << printable(*why) << '\n';
    err << kNoNote;
    return false;
}

bool Session::mayNote(const std::filesystem::path &project) {
    const bool may = isWritable(project);
    if (!may)
        err << kNoNote;
    return may;
}

void Session::flushOutput() {
    out.flush();
    if (!out && !outputClosed)
        throw StorageFailure("the standard output can't be written: what was printed is not whole");
}

const std::filesystem::path &Session::scratch() {
    if (program.state.tempFolderPath.empty())
        takeTempFolder(program, program.state.tempFolderRoot);
    return program.state.tempFolderPath;
}

} // namespace nv::cli
