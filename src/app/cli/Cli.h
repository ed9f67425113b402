#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace nv::cli {

// What scripts rely on. 1 stands for wrong usage.
enum class Exit {
    ok = 0,
    usage = 1,
    damagedEvidence = 2, ///< an artefact failed or was cut short; the rest is there
    projectUnusable = 3, ///< the project can't be opened or written
    interrupted = 130,
};

/// Runs the headless program. `arguments` are those behind the program's name; `executable` is its
/// own path, beside which its data lies. Results go to `out`, all else to `err`.
int run(const std::string &executable, const std::vector<std::string> &arguments, std::ostream &out,
        std::ostream &err);

} // namespace nv::cli
