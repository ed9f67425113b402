#pragma once

#include "base/ByteView.h"
#include "readers/Reader.h"

namespace nv {

/// Whether the bytes begin as XML does.
bool beginsAsXml(ByteView bytes);

/// The addresses that the user typed: a record for each. Throws what the sink throws.
void readOperaTyped(ReadContext &ctx, ByteView bytes, ReadResult &result);

} // namespace nv
