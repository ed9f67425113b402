#pragma once

#include "readers/Reader.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace nv {

/// All formats, in the order of trial: the first that recognises a file takes it, so the order is
/// part of what an import finds. The rows that recognise nothing are read when asked for.
std::span<const Reader> registry();

/// The row that takes the file; null when no format does.
const Reader *recognise(const Candidate &candidate);

/// The row whose reader takes files of this type. Types that no scan finds (a daily index, an index
/// named on the command line) are read with the row of their format; null for types without one.
const Reader *readerFor(HistoryFileType type);

/// The row of a short key such as "ie-cache"; null when there is none.
const Reader *readerByKey(std::string_view key);

/// The row whose records have this `cacheType`, in either case; null when there is none.
const Reader *readerOfKind(std::string_view cacheType);

/// What recognition may know of a file without opening it; the caller adds `head` when contents are
/// verified. `evidence` must outlive the candidate.
Candidate candidateOf(const std::filesystem::path &file, const Evidence &evidence);

/// The file that is listed and read when `reader` takes `candidate`: the file itself, but for
/// Chrome's cache, which is known by its first block file and read through the index beside it.
std::filesystem::path artefactOf(const Reader &reader, const Candidate &candidate);

/// A browser keeps compiled graphics programs in caches that look like those of pages: they hold no
/// address and no page, only what the machine's graphics need.
bool holdsShaders(const Reader &reader, const Candidate &candidate);

/// Why what is stored from `file` has to be read with care, although nothing of it is damaged;
/// empty for most files. Throws EvidenceFailure.
std::string warningOn(const Reader &reader, const std::filesystem::path &file,
                      const Evidence &evidence);

} // namespace nv
