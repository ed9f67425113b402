#pragma once

#include "base/ByteView.h"
#include "db/records/FactList.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nv {

/// What the browser keeps of a server's answer before a body. Times are microseconds since 1601, as
/// they are stored.
///   response = size:u32 flags:u32 [further:u32] requested:i64 answered:i64 [first:i64]
///              headers:text [certificates] [...] server:text port:u16 ...
///   text     = length:u32 byte[length] pad          all fields on boundaries of 4 bytes
/// Numbers are little-endian. What follows the headers depends on flags and version; reading ends
/// there at the first field that isn't whole.
struct ChromeResponse {
    std::int64_t requested = 0;
    std::int64_t answered = 0;
    /// When the body came, where the two other times are those of a check whether it is still good.
    std::optional<std::int64_t> first;
    std::string headers;             ///< lines, each with "\r\n", the status line first
    std::vector<Bytes> certificates; ///< DER, the server's own first
    std::string server;              ///< address and port, as in "127.0.0.1:443"
    bool isTruncated = false;        ///< the transfer broke off

    /// Where a field stands, in bytes from the begin of the response.
    struct Place {
        std::uint64_t at = 0;
        std::uint64_t size = 0; ///< 0 for a field that isn't there
    };
    Place requestedPlace;
    Place answeredPlace;
    Place firstPlace;
    Place headersPlace;
    Place certificatePlace; ///< of the first one
    Place serverPlace;      ///< of the address, without the port
};

/// Nothing when the bytes hold something else, or end before the headers do.
std::optional<ChromeResponse> chromeResponseOf(ByteView bytes);

/// The lines of its headers alone; empty without them.
std::string answerOf(ByteView response);

} // namespace nv
