#pragma once

#include "db/records/UrlRecord.h"
#include "rebuild/RebuildContext.h"

#include <cstddef>
#include <filesystem>

namespace nv {

/// Rewrites the harvested style sheet at `path`, the cached content of `sheet`: every picture that
/// a "url(...)" names and the project has is copied beside it and named "_css0000001.gif" and so
/// on. A line is written once for each pair of parentheses and once more, which style sheets allow
/// (a sheet that would grow to many megabytes so gets only its last form).
/// A sheet without such pictures stays as it is. A failure is logged.
/// Names are counted on from `taken`, the result of the sheet before it in the same folder: counted
/// from 1 in each, the pictures of one would take the place of another's. Returns the last number
/// given.
std::size_t findReplaceCSSTags(const std::filesystem::path &path, const UrlRecord &sheet,
                               const RebuildContext &ctx, std::size_t taken = 0);

} // namespace nv
