#pragma once

#include "base/ByteView.h"

#include <string>

namespace nv {

/// Whom a certificate (X.509, DER) is for, the names of hosts that it holds for, and who issued
/// it: "CN=a.example; names a.example, b.example; issued by CN=Some CA". Empty when the bytes hold
/// none.
std::string certificateText(ByteView der);

} // namespace nv
