#pragma once

#include "readers/Reader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

class BodyTarget;

/// Reads the entries of a Simple cache, in the order of their names; docs/formats/
/// chromium-simple-cache.md. The artefact is the folder, or any file of it.
ReadResult parseChromiumSimpleCache(ReadContext &ctx);

/// The body of one of its records; stretches of a sparse one, one after the other.
bool fetchSimpleBody(const UrlRecord &record, const Evidence &evidence, BodyTarget &target);

/// What the name of an entry's file says.
struct SimpleFileName {
    std::uint64_t hash = 0;
    char part = 0;         ///< '0', '1' or 's'
    bool isDoomed = false; ///< renamed by the browser, which was to delete it later
};

/// Nothing for files that are none of an entry's.
std::optional<SimpleFileName> simpleFileName(std::string_view name);

} // namespace nv
