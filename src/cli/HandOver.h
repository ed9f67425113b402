#pragma once

#include "db/Ids.h"

#include <filesystem>
#include <span>

namespace nv::cli {

/// Throws UsageError when `out` is there and no folder.
void refusePlainFile(const std::filesystem::path &out);

/// Throws UsageError when `out` holds something of the name that a page's folder would get: it may
/// be the examiner's own.
void refuseExisting(std::span<const UrlId> ids, const std::filesystem::path &out);

/// Copies the folder of the rebuilt `page` into `out`, in a form that is safe to open and in place
/// of what bears its name there, and removes the one that it was rebuilt in. What was there stays
/// until the copy is whole.
void handOver(const std::filesystem::path &page, const std::filesystem::path &out);

} // namespace nv::cli
