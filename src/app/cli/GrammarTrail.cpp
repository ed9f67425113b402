#include "app/cli/Grammar.h"
#include "app/cli/TrailCommands.h"

namespace nv::cli {

void Grammar::addTrail() {
    CLI::App *trail =
        command("trail", "What was done with the project: when, on which file, by which version",
                [this](Session &s) { return trailCommand(s, m_project, m_format); });
    addProject(trail, m_project);
    addFormat(trail);
    CLI::App *verify =
        command("verify", "Hash the imported files again and tell which have changed or are gone",
                [this](Session &s) { return verifyCommand(s, m_project, m_format); });
    addProject(verify, m_project);
    addFormat(verify);
}

} // namespace nv::cli
