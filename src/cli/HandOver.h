#pragma once

#include "db/schema/Ids.h"

#include <filesystem>
#include <span>
#include <string>

namespace nv::cli {

/// Throws UsageError when `out` is there and no folder.
void refusePlainFile(const std::filesystem::path &out);

/// In which forms rebuilt pages leave the program: each in a folder, where no file is asked for.
struct HandOverForms {
    bool single = false; ///< a file that holds the page with all that it shows
    bool warc = false;   ///< a web archive of the records that the page was rebuilt of
};

/// The name of a page's archive: "0000017.warc.gz".
std::string archiveNameOf(UrlId id);

/// Throws UsageError when `out` holds something of the name that a page's folder or file would get:
/// it may be the examiner's own.
void refuseExisting(std::span<const UrlId> ids, const std::filesystem::path &out,
                    const HandOverForms &forms = {});

/// Copies the folder of the rebuilt `page` into `out`, in a form that is safe to open and in place
/// of what bears its name there, and removes the one that it was rebuilt in. What was there stays
/// until the copy is whole.
void handOver(const std::filesystem::path &page, const std::filesystem::path &out);

/// The same as one file, "0000017.html". False when it would be too large: nothing is written then,
/// and the page's folder is gone all the same.
[[nodiscard]] bool handOverSingle(const std::filesystem::path &page,
                                  const std::filesystem::path &out);

} // namespace nv::cli
