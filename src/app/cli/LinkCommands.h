#pragma once

#include "app/cli/Exit.h"
#include "app/cli/RowWriter.h"
#include "app/cli/Session.h"

#include <cstdint>
#include <optional>
#include <string>

namespace nv::cli {

struct LinkArguments {
    std::string project;
    std::optional<std::int64_t> urlId; ///< the record whose pairs are listed
    bool wideIds = false;
};
/// Runs link analysis; with an id, lists what it found for that record.
Exit linksCommand(Session &session, const LinkArguments &arguments, Format format);

} // namespace nv::cli
