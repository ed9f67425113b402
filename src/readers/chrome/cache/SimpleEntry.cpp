#include "readers/chrome/cache/SimpleEntry.h"

#include "readers/Body.h"
#include "readers/Limits.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <zlib.h>

namespace nv {

namespace {

constexpr std::uint64_t kMagic = 0xFCFB'6D1B'A772'5C30;
constexpr std::uint64_t kEndMagic = 0xF4FA'6F45'970D'41D8;
constexpr std::string_view kEndBytes = "\xD8\x41\x0D\x97\x45\x6F\xFA\xF4";
constexpr std::string_view kStretchBytes = "\x6B\x67\x53\x65\x01\xBF\x97\xEB";
constexpr std::uint64_t kEnd = 24;
constexpr std::uint64_t kStretch = 32;
constexpr std::uint64_t kKeyDigest = 32;
constexpr std::uint64_t kPart = std::uint64_t{1} << 20;

struct End {
    std::optional<std::uint32_t> crc;
    std::uint32_t size = 0;
    bool hasKeyDigest = false;
};

std::optional<End> endAt(const ByteSource &file, std::uint64_t at) {
    enum Flag : std::uint32_t { kHasCrc = 1, kHasKeyDigest = 2 };
    const Bytes bytes = file.read(at, kEnd);
    const ByteView view(bytes);
    if (!view.has(0, kEnd) || view.u64le(0) != kEndMagic)
        return std::nullopt;
    const std::uint32_t flags = view.u32le(8);
    End end{{}, view.u32le(16), (flags & kHasKeyDigest) != 0};
    if ((flags & kHasCrc) != 0)
        end.crc = view.u32le(12);
    return end;
}

/// Where the magic stands first at or after `from`; the file's size when it doesn't.
std::uint64_t findMagic(const ByteSource &file, std::uint64_t from, std::string_view magic) {
    for (std::uint64_t at = from; at < file.size(); at += kPart) {
        const Bytes part = file.read(at, kPart + magic.size() - 1);
        if (const auto found = ByteView(part).find(magic))
            return at + *found;
    }
    return file.size();
}

std::uint64_t findEnd(const ByteSource &file, std::uint64_t from) {
    return findMagic(file, from, kEndBytes);
}

/// What can be told of a file whose end is missing.
SimpleEntry fromItsStart(const ByteSource &file, const SimpleHead &head) {
    const std::uint64_t bodyEnd = findEnd(file, head.end());
    SimpleEntry entry;
    entry.body = {head.end(), bodyEnd - head.end(), {}};
    if (const auto end = endAt(file, bodyEnd)) {
        entry.body.crc = end->crc;
        const std::uint64_t at = bodyEnd + kEnd;
        entry.head = {at, findEnd(file, at) - at, {}};
    }
    entry.damage = fmt::format("the record at the end of its {} bytes is missing or wrong, what is "
                               "left was found from the start",
                               file.size());
    return entry;
}

/// Nothing when the end says otherwise than the file.
std::optional<SimpleEntry> fromItsEnd(const ByteSource &file, const SimpleHead &head) {
    const std::uint64_t least = head.end() + 2 * kEnd;
    const auto last = file.size() < least ? std::nullopt : endAt(file, file.size() - kEnd);
    if (!last)
        return std::nullopt;
    const std::uint64_t behind = std::uint64_t{last->size} + (last->hasKeyDigest ? kKeyDigest : 0);
    if (file.size() - least < behind)
        return std::nullopt;
    const std::uint64_t headAt = file.size() - kEnd - behind;
    const auto first = endAt(file, headAt - kEnd);
    if (!first)
        return std::nullopt;
    SimpleEntry entry;
    entry.head = {headAt, last->size, last->crc};
    entry.body = {head.end(), headAt - kEnd - head.end(), first->crc};
    return entry;
}

/// As its head tells; nothing when there is none.
std::optional<SimpleStretch> stretchAt(const ByteSource &file, std::uint64_t at) {
    constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
    const Bytes bytes = file.read(at, kStretch);
    const ByteView view(bytes);
    if (!view.has(0, kStretch) || !view.raw().starts_with(kStretchBytes) ||
        (view.u64le(8) & kSign) != 0)
        return std::nullopt;
    return SimpleStretch{view.u64le(8), {at + kStretch, view.u64le(16), view.u32le(24)}};
}

/// Of what two have, the earlier one's bytes stand.
void skipOverlaps(SimpleStretches &stretches) {
    std::uint64_t end = 0;
    for (SimpleStretch &each : stretches.list) {
        if (each.offset < end && each.bytes.size > 0) {
            each.skipped = std::min(end - each.offset, each.bytes.size);
            ++stretches.overlapping;
        }
        end = std::max(end, each.offset + each.bytes.size);
    }
}

} // namespace

std::uint64_t SimpleStretches::size() const {
    std::uint64_t size = 0;
    for (const SimpleStretch &each : list)
        size += each.size();
    return size;
}

std::optional<SimpleHead> simpleHeadOf(const ByteSource &file) {
    const Bytes bytes = file.read(0, SimpleHead::kSize);
    const ByteView view(bytes);
    if (!view.has(0, SimpleHead::kSize) || view.u64le(0) != kMagic)
        return std::nullopt;
    const std::uint64_t length = view.u32le(12);
    if (length > limits::kChromeSeparateText)
        return std::nullopt;
    const Bytes key = file.read(SimpleHead::kSize, length);
    if (key.size() < length)
        return std::nullopt;
    return SimpleHead{view.u32le(8), view.u32le(16), std::string(key.begin(), key.end())};
}

SimpleEntry simpleEntryOf(const ByteSource &file, const SimpleHead &head) {
    const auto entry = fromItsEnd(file, head);
    return entry ? *entry : fromItsStart(file, head);
}

std::optional<SimpleStream> simpleLastStreamOf(const ByteSource &file, const SimpleHead &head) {
    if (file.size() < head.end() + kEnd)
        return std::nullopt;
    const auto end = endAt(file, file.size() - kEnd);
    if (!end)
        return std::nullopt;
    return SimpleStream{head.end(), file.size() - kEnd - head.end(), end->crc};
}

SimpleStretches simpleStretchesOf(const ByteSource &file, const SimpleHead &head) {
    SimpleStretches stretches;
    const auto tell = [&](std::uint64_t at, std::string_view what) {
        if (stretches.damage.empty())
            stretches.damage = fmt::format("{} at {} of {} bytes", what, at, file.size());
    };
    std::uint64_t at = head.end();
    while (at < file.size() && stretches.list.size() < limits::kChromeStretches) {
        const auto stretch = stretchAt(file, at);
        const std::uint64_t from = at + kStretch;
        if (stretch && stretch->bytes.size <= file.size() - from) {
            stretches.list.push_back(*stretch);
            at = from + stretch->bytes.size;
            continue;
        }
        // Its bytes go as far as the next one, or to the end of the file.
        const std::uint64_t next = findMagic(file, at + 1, kStretchBytes);
        tell(at, stretch ? "a stretch that is cut short" : "no whole stretch");
        if (stretch && next > from)
            stretches.list.push_back({stretch->offset, {from, next - from, {}}});
        at = next;
    }
    if (at < file.size())
        tell(at, "more stretches than are read");
    std::ranges::stable_sort(stretches.list, {}, &SimpleStretch::offset);
    skipOverlaps(stretches);
    return stretches;
}

bool hasItsChecksum(const ByteSource &file, const SimpleStream &stream, BodyTarget *copy) {
    if (!stream.crc && !copy)
        return true;
    uLong crc = crc32(0, nullptr, 0);
    for (std::uint64_t done = 0; done < stream.size;) {
        Bytes part = file.read(stream.at + done, std::min(kPart, stream.size - done));
        if (part.empty())
            return !stream.crc;
        if (stream.crc)
            crc = crc32_z(crc, part.data(), part.size());
        done += part.size();
        if (copy)
            copy->write(std::move(part));
    }
    return !stream.crc || crc == *stream.crc;
}

} // namespace nv
