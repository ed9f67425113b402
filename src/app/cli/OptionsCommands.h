#pragma once

#include "app/cli/Exit.h"
#include "app/cli/RowWriter.h"
#include "app/cli/Session.h"

#include <string>

namespace nv::cli {

struct OptionsArguments {
    std::string key;     ///< "Key" or "SECTION/Key"; empty lists all
    std::string value;   ///< of set; empty leads back to the default
    std::string project; ///< the project's own values instead of the settings file's
};

/// Lists settings: section, key, value, default, what they change.
Exit optionsGetCommand(Session &session, const OptionsArguments &arguments, Format format);
/// Writes one setting after a check. UsageError when there is no such key or the value is bad.
Exit optionsSetCommand(Session &session, const OptionsArguments &arguments);

} // namespace nv::cli
