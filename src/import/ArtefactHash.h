#pragma once

#include "base/Digest.h"
#include "readers/Evidence.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace nv {

/// What tells whether an artefact is still what was examined. Of a file, its digests; of a folder
/// those of a list of its files, the ones of the folders below included, in the order of their
/// names' bytes, a line for each: its own digest, two blanks, its name from the folder on. So
/// `md5sum` and `sha256sum` can make it too. Links are no files. The size is the sum of the files'.
/// `goOn` is told the bytes read so far; false ends the reading and gives nothing. What of a folder
/// can't be read is added to `unread`, where given, and the line of such a file has "-" in place of
/// its digest: one of ten thousand doesn't keep the others from being imported. Otherwise throws
/// EvidenceFailure.
std::optional<FileHashes> hashesOfArtefact(const Evidence &evidence,
                                           const std::filesystem::path &artefact,
                                           const std::function<bool(std::uint64_t)> &goOn = {},
                                           std::vector<UnreadPlace> *unread = nullptr);

} // namespace nv
