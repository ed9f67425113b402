#pragma once

#include "base/ByteView.h"

#include <cstdint>
#include <optional>
#include <string>

namespace nv {

/// What a service worker's cache keeps of a request and its answer, a message of protocol buffers:
///   entry    = 1: request, 2: response, 3: stored, microseconds since 1601
///   request  = 1: method, 2: header*
///   response = 1: status, 2: its text, 4: header*, 6: answered, 8: URL*, 13: MIME type
///   header   = 1: name, 2: value
/// The body beside it is unpacked, whatever the header "Content-Encoding" says.
struct ChromeSiteAnswer {
    std::string method;
    std::string statusLine; ///< without the protocol's version, which isn't kept
    std::string headers;    ///< lines, each with "\r\n"
    std::string mimeType;
    std::int64_t answered = 0;
    std::int64_t stored = 0;

    // Where the two times stand, in bytes from the message's begin; of size 0 without one.
    std::uint64_t answeredAt = 0;
    std::uint64_t answeredSize = 0;
    std::uint64_t storedAt = 0;
    std::uint64_t storedSize = 0;
};

/// Nothing when the bytes are no such message.
std::optional<ChromeSiteAnswer> chromeSiteAnswerOf(ByteView message);

} // namespace nv
