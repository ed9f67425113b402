#include "readers/chrome/cache/ResponseInfo.h"

#include "base/Text.h"
#include "readers/HttpHeaders.h"

#include <fmt/format.h>

#include <utility>

namespace nv {

namespace {

enum Flag : std::uint32_t {
    kCertificate = 1U << 8,
    kSecurityBits = 1U << 9,
    kCertificateState = 1U << 10,
    kVary = 1U << 11,
    kTruncated = 1U << 12,
    kConnectionState = 1U << 16,
    kCertificateTimes = 1U << 20,
    kFurtherFlags = 1U << 31,
};
constexpr std::uint32_t kFirstTime = 1U << 2; ///< of the further flags
constexpr std::uint64_t kVaryBytes = 16;

/// A server sends three or four.
constexpr std::uint32_t kMostCertificates = 16;

/// Reads fields one after the other. From the first on that isn't whole all are empty.
class Fields {
  public:
    /// Boundaries are counted from the first byte, whatever `at` is.
    Fields(ByteView bytes, std::uint64_t at) : m_bytes(bytes), m_at(at) {}

    bool areWhole() const { return m_isWhole; }
    /// Of the field that was read last.
    ChromeResponse::Place place() const { return m_place; }
    std::uint32_t number() {
        const ByteView bytes = take(4);
        return m_isWhole ? bytes.u32le(0) : 0;
    }
    std::int64_t time() {
        const ByteView bytes = take(8);
        return m_isWhole ? static_cast<std::int64_t>(bytes.u64le(0)) : 0;
    }
    ByteView text() {
        const std::uint32_t length = number();
        const ByteView bytes = take(length);
        m_at = (m_at + 3) / 4 * 4;
        return bytes;
    }
    void skip(std::uint64_t count) { take(count); }

  private:
    ByteView take(std::uint64_t count) {
        m_isWhole = m_isWhole && m_bytes.has(m_at, count);
        if (!m_isWhole)
            return {};
        const ByteView bytes = m_bytes.sub(m_at, count);
        m_place = {m_at, count};
        m_at += count;
        return bytes;
    }

    ByteView m_bytes;
    ChromeResponse::Place m_place;
    std::uint64_t m_at;
    bool m_isWhole = true;
};

/// False when it can't be told where the next field is.
bool readCertificates(Fields &fields, ChromeResponse &response) {
    const std::uint32_t count = fields.number();
    for (std::uint32_t i = 0; i < count && i < kMostCertificates && fields.areWhole(); ++i) {
        const std::string_view der = fields.text().raw();
        if (i == 0)
            response.certificatePlace = fields.place();
        response.certificates.emplace_back(der.begin(), der.end());
    }
    return count <= kMostCertificates;
}

/// Up to the server's address.
void readConnection(Fields &fields, std::uint32_t flags, ChromeResponse &response) {
    if ((flags & kCertificate) != 0 && !readCertificates(fields, response))
        return;
    for (const Flag flag : {kCertificateState, kSecurityBits, kConnectionState})
        if ((flags & flag) != 0)
            fields.skip(4);
    // A list of them has fields of its own, and was written for few years.
    if ((flags & kCertificateTimes) != 0 && fields.number() > 0)
        return;
    if ((flags & kVary) != 0)
        fields.skip(kVaryBytes);
    const std::string address = decodeText(fields.text().raw());
    response.serverPlace = fields.place();
    const std::uint32_t port = fields.number() & 0xFFFF;
    if (address.empty() || !fields.areWhole())
        return;
    const bool isSix = address.find(':') != std::string::npos;
    response.server =
        isSix ? fmt::format("[{}]:{}", address, port) : fmt::format("{}:{}", address, port);
}

} // namespace

std::optional<ChromeResponse> chromeResponseOf(ByteView bytes) {
    constexpr std::uint64_t kFlagsAt = 4;
    if (!bytes.has(0, kFlagsAt))
        return std::nullopt;
    Fields fields(bytes, kFlagsAt);
    const std::uint32_t flags = fields.number();
    const std::uint32_t further = (flags & kFurtherFlags) != 0 ? fields.number() : 0;
    ChromeResponse response;
    response.isTruncated = (flags & kTruncated) != 0;
    response.requested = fields.time();
    response.requestedPlace = fields.place();
    response.answered = fields.time();
    response.answeredPlace = fields.place();
    if ((further & kFirstTime) != 0) {
        response.first = fields.time();
        response.firstPlace = fields.place();
    }
    const ByteView lines = fields.text();
    response.headersPlace = fields.place();
    if (!fields.areWhole() || !startsWithNoCase(lines.raw(), "HTTP"))
        return std::nullopt;
    response.headers = decodeText(headersInLines(lines.raw()));
    readConnection(fields, flags, response);
    return response;
}

std::string answerOf(ByteView response) {
    auto read = chromeResponseOf(response);
    return read ? std::move(read->headers) : std::string();
}

} // namespace nv
