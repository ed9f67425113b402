#include "app/cli/Grammar.h"

namespace nv::cli {

void Grammar::addOptions() {
    CLI::App *all = app.add_subcommand("options", "The settings, or a project's own values");
    all->require_subcommand(1);
    const auto add = [this, all](const char *name, const char *what, Run run) {
        CLI::App *added = all->add_subcommand(name, what);
        added->callback([this, run = std::move(run)] { chosen = run; });
        added->add_option("--project", m_options.project,
                          "The values that this project keeps for itself");
        return added;
    };
    CLI::App *get = add("get", "List settings with their defaults",
                        [this](Session &s) { return optionsGetCommand(s, m_options, m_format); });
    get->add_option("KEY", m_options.key, "Only this one: Key or SECTION/Key");
    addFormat(get);
    CLI::App *set = add("set", "Change a setting after a check of its value",
                        [this](Session &s) { return optionsSetCommand(s, m_options); });
    set->add_option("KEY", m_options.key, "Key or SECTION/Key")->required();
    set->add_option("VALUE", m_options.value, "\"\" leads back to the default")->required();
}

} // namespace nv::cli
