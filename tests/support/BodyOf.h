#pragma once

#include "readers/Body.h"
#include "readers/Reader.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <optional>
#include <string>

namespace nv::test {

/// What the format's fetch gives for the record; nothing when it has no body.
inline std::optional<std::string> bodyOf(Fetch fetch, const UrlRecord &record,
                                         const std::filesystem::path &base) {
    const TempFolder scratch;
    constexpr std::uint64_t kInMemory = std::uint64_t{1} << 30;
    BodyTarget target(scratch.path() / "body", kInMemory);
    if (!fetch(record, Evidence(base), target))
        return std::nullopt;
    return std::string(target.take().raw());
}

} // namespace nv::test
