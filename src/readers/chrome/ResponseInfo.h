#pragma once

#include "base/ByteView.h"

#include <string>

namespace nv {

/// The server's answer in what the browser keeps of it before a body: its lines, each with "\r\n".
/// Empty when the bytes end before it does, or hold something else.
///   response = size:u32 flags:u32 requested:u64 answered:u64 length:u32 (line 0)*  ...
/// Numbers are little-endian.
std::string answerOf(ByteView response);

} // namespace nv
