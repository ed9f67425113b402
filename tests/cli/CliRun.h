#pragma once

#include "support/Places.h"

#include <filesystem>
#include <string>
#include <vector>

namespace nv::test {

struct CliResult {
    int exit = -1; ///< exit code, or 128 + the signal that ended the program
    std::string out;
    std::string err;
};

/// Runs the built norvelane-cli with a home folder of its own and no terminal.
CliResult runCli(const std::vector<std::string> &arguments, const std::filesystem::path &home);
/// The same with a copy of it that lies elsewhere.
CliResult runProgram(const std::filesystem::path &program,
                     const std::vector<std::string> &arguments, const std::filesystem::path &home);

/// Starts it in the background; its output goes to files below `home`.
class CliProcess {
  public:
    /// As nobody the program is bound by the modes of files, whoever runs the tests.
    enum class As { whoeverTests, nobody };
    CliProcess(const std::vector<std::string> &arguments, const std::filesystem::path &home,
               const std::filesystem::path &program = cliProgram(), As as = As::whoeverTests);
    ~CliProcess();
    CliProcess(const CliProcess &) = delete;
    CliProcess &operator=(const CliProcess &) = delete;

    void signal(int number) const;
    /// Waits for its end.
    CliResult finish();

  private:
    std::filesystem::path m_home;
    int m_pid;
};

} // namespace nv::test
