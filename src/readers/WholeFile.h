#pragma once

#include "readers/Reader.h"

#include <functional>
#include <string_view>

namespace nv {

// What readers of files that are read in one piece have in common.

/// The result of a file that can't be read at all; the log says why.
ReadResult unreadable(const ReadContext &ctx);

/// Shows `heading`, whose detail is the file's path, reads the file into memory and hands it on.
/// What is thrown is logged once, as a warning of `procedure`, and makes the file unreadable.
ReadResult readWholeFile(ReadContext &ctx, TaskHeading heading, std::string_view procedure,
                         const std::function<ReadResult(ByteView)> &read);

} // namespace nv
