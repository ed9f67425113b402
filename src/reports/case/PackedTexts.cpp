// A PNG is a signature and chunks:
//   chunk   size (4 bytes, big-endian, of the data), kind (4 letters), data, checksum (4 bytes)
//   zTXt    keyword 00, method (00: zlib), packed text
//   iCCP    name 00, method, packed profile
//   iTXt    keyword 00, whether it is packed (01), method, language 00, keyword 00, text
#include "reports/case/PackedTexts.h"

#include "base/ByteView.h"
#include "readers/Unpacker.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace nv {

namespace {

constexpr std::string_view kSignature = "\x89PNG\r\n\x1A\n";
constexpr std::size_t kHead = 8;                         ///< of a chunk: size and kind
constexpr std::size_t kChecksum = 4;                     ///< behind its data
constexpr std::size_t kMostBytes = std::size_t{8} << 20; ///< unpacked, of a picture
constexpr std::size_t kMostChunks = 100'000;

std::string_view behind(std::string_view data, std::size_t count) {
    return data.substr(std::min(count, data.size()));
}

std::string_view behindZero(std::string_view data) {
    const std::size_t zero = data.find('\0');
    return zero == std::string_view::npos ? std::string_view() : data.substr(zero + 1);
}

/// What of a chunk is packed; nothing where nothing is.
std::optional<std::string_view> packedIn(std::string_view kind, std::string_view data) {
    if (kind == "zTXt" || kind == "iCCP")
        return behind(behindZero(data), 1);
    if (kind != "iTXt")
        return std::nullopt;
    const std::string_view flags = behindZero(data);
    if (flags.empty() || flags.front() == '\0')
        return std::nullopt;
    return behindZero(behindZero(behind(flags, 2)));
}

/// The text as far as it can be unpacked.
void unpackInto(PackedTexts &found, std::string_view packed, std::size_t &room) {
    std::string text;
    const auto unpacker = inflating(Deflate::zlib);
    unpacker->feed(packed, [&](std::string_view piece) {
        if (piece.size() > room)
            return false;
        room -= piece.size();
        text += piece;
        return true;
    });
    found.areWhole &= unpacker->isWhole();
    found.texts.push_back(std::move(text));
}

} // namespace

PackedTexts packedTextsOf(std::string_view png) {
    PackedTexts found;
    if (!png.starts_with(kSignature))
        return found;
    std::size_t room = kMostBytes;
    std::size_t chunks = 0;
    std::string_view rest = png.substr(kSignature.size());
    while (rest.size() >= kHead && ++chunks <= kMostChunks) {
        const std::size_t size = viewOf(rest).u32be(0);
        const std::string_view kind = rest.substr(4, 4);
        const std::string_view data = behind(rest, kHead).substr(0, size);
        if (const auto packed = packedIn(kind, data))
            unpackInto(found, *packed, room);
        rest = behind(behind(rest, kHead + data.size()), kChecksum);
    }
    found.areWhole &= chunks <= kMostChunks;
    return found;
}

} // namespace nv
