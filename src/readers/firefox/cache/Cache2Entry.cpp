// file     = body metadata length of body:u32be
// metadata = hash:u32be chunk hash:u16be{one for each 256 KiB} version:u32be fetch count:u32be
//            last fetched:u32be last modified:u32be frecency:u32be expires:u32be key length:u32be
//            [flags:u32be] key 00 {name 00 value 00}... [version:u32be]
// The hash is that of the metadata behind it, without the version at their end, which late
// browsers write. Flags are there from version 2 on.

#include "readers/firefox/cache/Cache2Entry.h"

#include "readers/Limits.h"
#include "readers/firefox/cache/Cache2Hash.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <stdexcept>

namespace nv {

namespace {

constexpr std::uint64_t kWord = 4;

/// The numbers of the metadata, one after the other.
class Words {
  public:
    Words(ByteView bytes, std::uint64_t at) : m_bytes(bytes), m_at(at) {}
    std::uint32_t next() {
        m_at += kWord;
        return m_bytes.u32be(m_at - kWord);
    }
    std::uint64_t at() const { return m_at; }

  private:
    ByteView m_bytes;
    std::uint64_t m_at;
};

std::uint16_t u16be(ByteView bytes, std::uint64_t at) {
    return static_cast<std::uint16_t>(bytes.u8(at) << 8 | bytes.u8(at + 1));
}

/// The hash covers all, or all but the version at the end.
bool isHashRight(ByteView bytes, std::uint32_t version) {
    const std::uint32_t hash = bytes.u32be(0);
    const ByteView behind = bytes.sub(kWord, bytes.size() - 2 * kWord);
    if (cache2Hash(behind) == hash)
        return true;
    if (behind.size() < kWord)
        return false;
    const std::uint64_t end = behind.size() - kWord;
    return behind.u32be(end) == version && cache2Hash(behind.sub(0, end)) == hash;
}

/// An empty name is the version at the end, or what is no element any more.
void parseElements(ByteView bytes, Cache2Entry &entry) {
    std::uint64_t at = 0;
    while (at < bytes.size()) {
        const std::string_view name = bytes.untilZero(at).raw();
        at += name.size() + 1;
        if (name.empty() || at >= bytes.size())
            return;
        const std::string_view value = bytes.untilZero(at).raw();
        at += value.size() + 1;
        entry.elements.emplace_back(name, value);
    }
}

/// Of "1;19264,script" the number, before which the server's bytes end.
std::optional<std::uint64_t> alternativeAt(std::string_view element) {
    constexpr std::string_view kForm = "1;";
    if (!element.starts_with(kForm))
        return std::nullopt;
    element.remove_prefix(kForm.size());
    std::uint64_t at = 0;
    const auto [end, error] = std::from_chars(element.data(), element.data() + element.size(), at);
    const bool isNumber =
        error == std::errc() && end != element.data() + element.size() && *end == ',';
    return isNumber ? std::optional(at) : std::nullopt;
}

} // namespace

std::string_view Cache2Entry::element(std::string_view name) const {
    for (const auto &[each, value] : elements)
        if (each == name)
            return value;
    return {};
}

/// Each has a zero byte behind its name and one behind its value.
std::optional<std::uint64_t> Cache2Entry::elementAt(std::string_view name) const {
    std::uint64_t at = keyAt + key.size() + 1;
    for (const auto &[each, value] : elements) {
        at += each.size() + 1;
        if (each == name)
            return at;
        at += value.size() + 1;
    }
    return std::nullopt;
}

/// Each mark is a letter and its text, which a comma ends; two commas are one of the text. The
/// address stands behind a colon in a mark's place.
Cache2Key parseCache2Key(std::string_view key) {
    Cache2Key parsed;
    std::size_t at = 0;
    while (at < key.size() && key[at] != ':') {
        const char mark = key[at++];
        std::string text;
        for (; at < key.size(); ++at) {
            if (key[at] == ',' && !key.substr(at + 1).starts_with(','))
                break;
            at += key[at] == ',' ? 1 : 0;
            text += key[at];
        }
        ++at;
        if (mark == 'O')
            parsed.originAttributes = std::move(text);
        parsed.isAnonymous |= mark == 'a';
    }
    if (at >= key.size())
        return {key, {}, false};
    parsed.url = key.substr(at + 1);
    return parsed;
}

std::uint64_t cache2MetaDataAt(ByteView lastWord, std::uint64_t size) {
    const std::uint64_t at = lastWord.u32be(0);
    if (at + 2 * kWord > size)
        throw std::runtime_error(fmt::format(
            "its last bytes say that its metadata begin at {}, and it has {} bytes", at, size));
    if (size - at > limits::kFirefoxCache2MetaData)
        throw std::runtime_error(
            fmt::format("its last bytes say that {} bytes of it are metadata", size - at));
    return at;
}

Cache2Entry parseCache2Entry(ByteView bytes, std::uint64_t stored) {
    Cache2Entry entry;
    entry.stored = stored;
    entry.size = bytes.size();
    const std::uint64_t chunks = (stored + kCache2Chunk - 1) / kCache2Chunk;
    const ByteView behind = bytes.sub(0, bytes.size() - kWord);
    for (std::uint64_t i = 0; i < chunks; ++i)
        entry.chunks.push_back(u16be(behind, kWord + 2 * i));
    entry.fieldsAt = kWord + 2 * chunks;
    Words words(behind, entry.fieldsAt);
    entry.version = words.next();
    if (entry.version == 0 || entry.version > 2 * kCache2LastVersion)
        throw std::runtime_error(fmt::format("its metadata are of version {}", entry.version));
    entry.fetchCount = words.next();
    entry.lastFetched = words.next();
    entry.lastModified = words.next();
    entry.frecency = words.next();
    entry.expires = words.next();
    const std::uint32_t keySize = words.next();
    if (entry.version > 1)
        entry.flags = words.next();
    entry.keyAt = words.at();
    entry.key = behind.sub(words.at(), keySize).raw();
    const std::uint64_t end = words.at() + keySize;
    if (keySize == 0 || behind.u8(end) != 0)
        throw std::runtime_error("its metadata have no key that ends where they say");
    entry.isHashRight = isHashRight(bytes, entry.version);
    parseElements(behind.from(end + 1), entry);
    entry.body = std::min(stored, alternativeAt(entry.element("alt-data")).value_or(stored));
    return entry;
}

} // namespace nv
