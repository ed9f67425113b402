#include "cli/CliRun.h"

#include "base/Files.h"
#include "support/Unprivileged.h"

#include <csignal>
#include <fcntl.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace nv::test {

namespace {

std::string contentsOf(const std::filesystem::path &file) {
    const Bytes bytes = readWhole(file);
    return std::string(ByteView(bytes).raw());
}

void redirect(const std::filesystem::path &file, int descriptor) {
    const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::dup2(fd, descriptor);
}

} // namespace

CliProcess::CliProcess(const std::vector<std::string> &arguments, const std::filesystem::path &home,
                       const std::filesystem::path &program, As as)
    : m_home(home), m_pid(-1) {
    std::filesystem::create_directories(home);
    std::vector<std::string> words{program.string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    m_pid = ::fork();
    if (m_pid < 0)
        throw std::runtime_error("cannot start " + program.string());
    if (m_pid == 0) {
        ::setenv("NORVELANE_HOME", home.c_str(), 1);
        redirect("/dev/null", STDIN_FILENO);
        redirect(home / "stdout", STDOUT_FILENO);
        redirect(home / "stderr", STDERR_FILENO);
        if (as == As::nobody && ::geteuid() == 0 &&
            (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0))
            ::_exit(127);
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
}

CliProcess::~CliProcess() {
    if (m_pid > 0) {
        signal(SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
}

void CliProcess::signal(int number) const {
    ::kill(m_pid, number);
}

CliResult CliProcess::finish() {
    int status = 0;
    ::waitpid(m_pid, &status, 0);
    m_pid = -1;
    const int exit = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return {exit, contentsOf(m_home / "stdout"), contentsOf(m_home / "stderr")};
}

CliResult runCli(const std::vector<std::string> &arguments, const std::filesystem::path &home) {
    return CliProcess(arguments, home).finish();
}

CliResult runProgram(const std::filesystem::path &program,
                     const std::vector<std::string> &arguments, const std::filesystem::path &home) {
    return CliProcess(arguments, home, program).finish();
}

} // namespace nv::test
