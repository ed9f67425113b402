#pragma once

#include "db/URLClass.h"
#include "rebuild/RebuildContext.h"

#include <filesystem>
#include <string>
#include <vector>

namespace nv {

/// One reference of a rebuilt page and what stands in its place.
struct AuditRow {
    std::size_t number = 0; ///< counted from 1
    std::string originalValue;
    std::string newValue;
    std::string extension;
    std::string state;         ///< the file's name, or "Missing or Invalid Tag"
    std::int64_t TagURLID = 0; ///< key of the part's record; 0 for none
    bool isThere = false;
};

inline constexpr const char *kMissingPart = "Missing or Invalid Tag";

/// The substitution log of a rebuilt page, with what its rebuild folder `folder` holds of it. Empty
/// after a failure, which is logged.
std::vector<AuditRow> LoadAudit(const URLClass &page, const std::filesystem::path &folder,
                                const RebuildContext &ctx);

} // namespace nv
