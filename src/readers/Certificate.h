#pragma once

#include "base/ByteView.h"

#include <optional>
#include <string>

namespace nv {

/// Whom a server's certificate names.
struct Certificate {
    std::string name;   ///< common name, or else the first of its host names
    std::string issuer; ///< common name, or else the organisation
};

/// `der` may be longer than the certificate. Nothing when it is none.
std::optional<Certificate> certificateOf(ByteView der);

/// The first certificate that stands anywhere in the bytes.
std::optional<Certificate> certificateIn(ByteView bytes);

} // namespace nv
