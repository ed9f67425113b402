#include "platform/ChildProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace nv {

namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr std::size_t kKeptErrors = 4096;
constexpr int kAskEveryMs = 50;

class Descriptor {
  public:
    explicit Descriptor(int fd = -1) : m_fd(fd) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int release() { return std::exchange(m_fd, -1); }
    int get() const { return m_fd; }
    bool isOpen() const { return m_fd >= 0; }
    void take(int fd) {
        close();
        m_fd = fd;
    }
    void close() {
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = -1;
    }

  private:
    int m_fd;
};

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            throw std::system_error(errno, std::generic_category(), "a pipe can't be made");
        reading.take(ends[0]);
        writing.take(ends[1]);
    }
    Descriptor reading;
    Descriptor writing;
};

/// As the system takes lists of texts: with an empty pointer at the end.
std::vector<char *> pointersTo(std::vector<std::string> &texts) {
    std::vector<char *> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// What the child's files are, and that it starts with ordinary signals in a group of its own: the
/// terminal's interrupt is for this program, which then stops the child itself.
class SpawnSettings {
  public:
    SpawnSettings(int output, int errors) {
        posix_spawn_file_actions_init(&m_files);
        posix_spawn_file_actions_addopen(&m_files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&m_files, output, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&m_files, errors, STDERR_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&m_files, STDERR_FILENO + 1);
        posix_spawnattr_init(&m_attributes);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        posix_spawnattr_setsigdefault(&m_attributes, &all);
        posix_spawnattr_setpgroup(&m_attributes, 0);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF |
                                                    POSIX_SPAWN_SETPGROUP);
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&m_files);
        posix_spawnattr_destroy(&m_attributes);
    }
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;

    /// The system's error number, 0 when the child runs.
    int spawn(const ChildCommand &command, pid_t &pid) const {
        const std::string program = command.program.native();
        std::vector<std::string> texts = command.arguments;
        texts.insert(texts.begin(), program);
        std::vector<char *> arguments = pointersTo(texts);
        // Settings of the examiner's shell must not change what is read out of evidence.
        std::vector<std::string> settings = command.environment;
        settings.emplace_back("LC_ALL=C.UTF-8");
        std::vector<char *> environment = pointersTo(settings);
        return ::posix_spawn(&pid, program.c_str(), &m_files, &m_attributes, arguments.data(),
                             environment.data());
    }

  private:
    posix_spawn_file_actions_t m_files{};
    posix_spawnattr_t m_attributes{};
};

bool isReady(const Descriptor &descriptor) {
    pollfd waiting = {descriptor.get(), POLLIN, 0};
    return ::poll(&waiting, 1, 0) > 0;
}

class Child {
  public:
    Child(const ChildCommand &command, const std::function<bool(std::string_view)> &take,
          const std::function<bool()> &goOn)
        : m_command(command), m_take(take), m_goOn(goOn) {}
    ~Child() { end(); }
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    ChildResult run() {
        if (const int error = start(); error != 0)
            return {ChildResult::End::notStarted, error, {}};
        const std::optional<ChildResult::End> broken = readAll();
        ChildResult result = end();
        if (broken)
            result.end = *broken;
        while (m_errors.isOpen() && isReady(m_errors))
            takeErrors();
        result.errors = m_errorText;
        return result;
    }

  private:
    int start() {
        Pipe output;
        Pipe errors;
        const int error =
            SpawnSettings(output.writing.get(), errors.writing.get()).spawn(m_command, m_pid);
        if (error != 0)
            m_pid = -1;
        m_output.take(output.reading.release());
        m_errors.take(errors.reading.release());
        return error;
    }

    /// Nothing when the child closed its output by itself, otherwise why it was left.
    std::optional<ChildResult::End> readAll();
    std::optional<ChildResult::End> takeOutput();
    void takeErrors();
    bool handOnLines();
    ChildResult end();
    bool hasEnded() const;

    const ChildCommand &m_command;
    const std::function<bool(std::string_view)> &m_take;
    const std::function<bool()> &m_goOn;
    pid_t m_pid = -1;
    Descriptor m_output;
    Descriptor m_errors;
    std::string m_line;         ///< what has come of lines that are not handed on yet
    std::size_t m_searched = 0; ///< bytes of m_line that hold no line break
    std::string m_errorText;
};

/// Up to 64 KB of what is waiting; empty at the end of the stream.
std::string_view readSome(const Descriptor &from, std::array<char, 65536> &buffer) {
    ssize_t count = -1;
    do
        count = ::read(from.get(), buffer.data(), buffer.size());
    while (count < 0 && errno == EINTR);
    return {buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
}

std::optional<ChildResult::End> Child::readAll() {
    auto heard = SteadyClock::now();
    while (m_output.isOpen()) {
        if (!m_goOn())
            return ChildResult::End::stopped;
        std::array<pollfd, 2> waiting = {
            {{m_output.get(), POLLIN, 0}, {m_errors.get(), POLLIN, 0}}};
        ::poll(waiting.data(), waiting.size(), kAskEveryMs);
        if (waiting[1].revents != 0)
            takeErrors();
        if (waiting[0].revents != 0) {
            if (const auto broken = takeOutput())
                return broken;
            heard = SteadyClock::now(); // the time that taking the lines took isn't the child's
        } else if (SteadyClock::now() - heard > m_command.longestSilence) {
            return ChildResult::End::silent;
        }
    }
    return std::nullopt;
}

std::optional<ChildResult::End> Child::takeOutput() {
    std::array<char, 65536> buffer{};
    const std::string_view bytes = readSome(m_output, buffer);
    if (bytes.empty())
        m_output.close();
    m_line += bytes;
    if (!handOnLines())
        return ChildResult::End::stopped;
    if (m_line.size() > m_command.longestLine)
        return ChildResult::End::lineTooLong;
    return std::nullopt;
}

void Child::takeErrors() {
    std::array<char, 65536> buffer{};
    const std::string_view bytes = readSome(m_errors, buffer);
    if (bytes.empty())
        m_errors.close();
    m_errorText += bytes.substr(0, kKeptErrors - m_errorText.size());
}

bool Child::handOnLines() {
    std::size_t begin = 0;
    for (std::size_t end = m_line.find('\n', m_searched); end != std::string::npos;
         end = m_line.find('\n', begin)) {
        if (!m_take(std::string_view(m_line).substr(begin, end - begin)))
            return false;
        begin = end + 1;
    }
    m_line.erase(0, begin);
    m_searched = m_line.size();
    return true;
}

/// Whatever became of it, the child is killed and buried: a child that closed its output has
/// nothing more to say. What it has started is in its group, which keeps its number until the child
/// is buried.
ChildResult Child::end() {
    if (m_pid < 0)
        return {};
    // A child that is about to exit gets the moment that it needs for that.
    const auto patience = SteadyClock::now() + std::chrono::seconds(m_output.isOpen() ? 0 : 2);
    while (!hasEnded() && SteadyClock::now() < patience)
        ::poll(nullptr, 0, 1);
    ::kill(-m_pid, SIGKILL);
    int status = 0;
    pid_t ended = 0;
    do
        ended = ::waitpid(m_pid, &status, 0);
    while (ended < 0 && errno == EINTR);
    m_pid = -1;
    if (WIFSIGNALED(status))
        return {ChildResult::End::crashed, WTERMSIG(status), {}};
    return {ChildResult::End::exited, WEXITSTATUS(status), {}};
}

/// Without burying it.
bool Child::hasEnded() const {
    siginfo_t info{};
    return ::waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == m_pid;
}

} // namespace

ChildResult runChild(const ChildCommand &command,
                     const std::function<bool(std::string_view line)> &take,
                     const std::function<bool()> &goOn) {
    return Child(command, take, goOn).run();
}

std::vector<std::filesystem::path> companionFolders() {
    std::error_code error;
    const auto own = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    std::vector<std::filesystem::path> folders{own, own.parent_path() / "libexec" / "norvelane"};
    if (const char *named = std::getenv("NORVELANE_PROGRAMS"); named && *named)
        folders.emplace_back(named);
    return folders;
}

std::optional<std::filesystem::path> companionProgram(std::string_view name) {
    std::error_code error;
    for (const std::filesystem::path &folder : companionFolders())
        if (std::filesystem::exists(folder / name, error))
            return folder / name;
    return std::nullopt;
}

} // namespace nv
