#include "address/NumberHosts.h"
#include "address/PercentSets.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace nv {

namespace {

constexpr std::size_t kPieces = 8;
using Pieces = std::array<std::uint16_t, kPieces>;

/// Reads the text once from the left.
class Ipv6Reader {
  public:
    explicit Ipv6Reader(std::string_view text) : m_rest(text) {}

    std::optional<Pieces> read() {
        if (m_rest.starts_with(':')) {
            if (!m_rest.starts_with("::"))
                return std::nullopt;
            m_rest.remove_prefix(2);
            m_compressed = ++m_count; // stands for one piece at least
        }
        while (!m_rest.empty())
            if (!readPiece())
                return std::nullopt;
        return m_compressed || m_count == kPieces ? std::optional(filled()) : std::nullopt;
    }

  private:
    /// One piece with the colon behind it, or the "::", or the IPv4 address at the end.
    bool readPiece() {
        if (m_count >= kPieces)
            return false;
        if (m_rest.front() == ':') { // the second one: the first went with its piece
            if (m_compressed)
                return false;
            m_rest.remove_prefix(1);
            m_compressed = ++m_count;
            return true;
        }
        std::size_t digits = 0;
        unsigned value = 0;
        for (; digits < std::min<std::size_t>(4, m_rest.size()) && hexDigitOf(m_rest[digits]) >= 0;
             ++digits)
            value = value * 16 + static_cast<unsigned>(hexDigitOf(m_rest[digits]));
        if (digits < m_rest.size() && m_rest[digits] == '.')
            return digits > 0 && readIpv4();
        m_rest.remove_prefix(digits);
        if (!m_rest.empty()) {
            if (m_rest.front() != ':' || m_rest.size() == 1)
                return false;
            m_rest.remove_prefix(1);
        }
        m_pieces.at(m_count++) = static_cast<std::uint16_t>(value);
        return true;
    }

    /// Four decimal numbers, which are the last two pieces.
    bool readIpv4() {
        if (m_count > kPieces - 2)
            return false;
        for (unsigned seen = 0; seen < 4; ++seen) {
            if (seen > 0 && !skipPoint())
                return false;
            const std::optional<unsigned> value = byteNumber();
            if (!value)
                return false;
            std::uint16_t &piece = m_pieces.at(m_count + seen / 2);
            piece = static_cast<std::uint16_t>(piece * 0x100U + *value);
        }
        m_count += 2;
        return m_rest.empty();
    }

    bool skipPoint() {
        if (!m_rest.starts_with('.'))
            return false;
        m_rest.remove_prefix(1);
        return true;
    }

    /// Up to 255, without zeros in front.
    std::optional<unsigned> byteNumber() {
        std::optional<unsigned> value;
        while (!m_rest.empty() && m_rest.front() >= '0' && m_rest.front() <= '9') {
            if (value == 0U)
                return std::nullopt;
            value = value.value_or(0) * 10 + static_cast<unsigned>(m_rest.front() - '0');
            if (*value > 255)
                return std::nullopt;
            m_rest.remove_prefix(1);
        }
        return value;
    }

    /// With the zeros that "::" stands for.
    Pieces filled() const {
        Pieces pieces = m_pieces;
        if (m_compressed) {
            auto *const first = pieces.data() + *m_compressed;
            std::rotate(first, pieces.data() + m_count, pieces.data() + kPieces);
        }
        return pieces;
    }

    std::string_view m_rest;
    Pieces m_pieces{};
    std::size_t m_count = 0;
    std::optional<std::size_t> m_compressed; ///< the piece that follows "::"
};

struct Run {
    std::size_t begin = 0;
    std::size_t length = 0;
};

/// The first longest run of zeros, of two at least.
Run longestZeros(const Pieces &pieces) {
    Run longest;
    for (std::size_t at = 0; at < kPieces;) {
        std::size_t end = at;
        while (end < kPieces && pieces.at(end) == 0)
            ++end;
        if (end - at > std::max<std::size_t>(1, longest.length))
            longest = {at, end - at};
        at = end + 1;
    }
    return longest;
}

std::string hexOf(unsigned value) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const unsigned shift : {12U, 8U, 4U, 0U})
        if (!text.empty() || shift == 0 || value >> shift != 0)
            text += kDigits[(value >> shift) & 0xFU];
    return text;
}

std::string serialised(const Pieces &pieces) {
    const Run zeros = longestZeros(pieces);
    std::string text = "[";
    for (std::size_t at = 0; at < kPieces;) {
        if (zeros.length > 0 && at == zeros.begin) {
            text += at == 0 ? "::" : ":";
            at += zeros.length;
            continue;
        }
        text += hexOf(pieces.at(at));
        if (++at < kPieces)
            text += ':';
    }
    return text + "]";
}

} // namespace

std::optional<std::string> ipv6Host(std::string_view inside) {
    const std::optional<Pieces> pieces = Ipv6Reader(inside).read();
    return pieces ? std::optional(serialised(*pieces)) : std::nullopt;
}

} // namespace nv
