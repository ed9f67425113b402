#pragma once

#include "readers/Candidate.h"
#include "readers/Reader.h"

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// The list of formats.
using Formats = std::span<const Reader *const>;

/// All formats, in the order of trial: the first that recognises a file takes it, so the order is
/// part of what an import finds.
Formats registry();

/// The row that takes the file; null when no format does.
const Reader *recognise(const Candidate &candidate);

/// All rows that take the file: the first that recognises it, and of those after it the ones that
/// take files beside others.
std::vector<const Reader *> readersTaking(const Candidate &candidate, Formats formats = registry());

/// The row whose reader takes files of this type. Types that no scan finds (a daily index, an index
/// named on the command line) are read with the row of their format; null for types without one.
const Reader *readerFor(HistoryFileType type);

/// The row of a short key such as "ie-cache"; null when there is none.
const Reader *readerByKey(std::string_view key);

/// The format of the file that the record came from, as far as fetching its body goes: of formats
/// that share the record's kind, the file decides. Null when none is known that holds bodies.
const Reader *sourceOf(const URLClass &record, Formats formats = registry());

/// What is listed and read when `reader` takes `candidate`: the file itself, another one, or a
/// folder.
std::filesystem::path artefactOf(const Reader &reader, const Candidate &candidate);

/// A browser keeps compiled graphics programs in caches that look like those of pages.
bool holdsShaders(const Reader &reader, const Candidate &candidate);

/// Why what is stored from `file` has to be read with care, although nothing of it is damaged;
/// empty for most files. Throws EvidenceFailure.
std::string warningOn(const Reader &reader, const std::filesystem::path &file,
                      const Evidence &evidence);

} // namespace nv
