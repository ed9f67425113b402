#include "rebuild/exact/RecordAddress.h"

#include "address/PercentSets.h"
#include "address/WebAddress.h"
#include "base/Text.h"
#include "readers/Dissection.h"

#include <algorithm>
#include <utility>

namespace nv {

namespace {

/// Firefox's first cache puts the name of the part that asked in front of its keys, and what it
/// asked for without saying who it is is marked, as fonts are. The reader takes the name off in
/// front of "http:" only.
constexpr std::string_view kClient = "HTTP:";
constexpr std::string_view kNameless = "HTTP:anon&uri=";

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// By no server's rules do these mean anything else when they are escaped.
bool isUnreserved(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

bool isEscape(std::string_view text, std::size_t at) {
    return text[at] == '%' && at + 2 < text.size() && hexDigitOf(text[at + 1]) >= 0 &&
           hexDigitOf(text[at + 2]) >= 0;
}

char byteOfEscape(std::string_view text, std::size_t at) {
    return static_cast<char>(hexDigitOf(text[at + 1]) * 16 + hexDigitOf(text[at + 2]));
}

template <class Put>
std::string eachEscape(std::string_view text, Put &&put) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!isEscape(text, at)) {
            out += text[at];
            continue;
        }
        put(out, byteOfEscape(text, at));
        at += 2;
    }
    return out;
}

/// Escapes stay where the character means something by itself, all in one spelling.
std::string withoutNeedlessEscapes(std::string_view normal) {
    return eachEscape(normal, [](std::string &out, char byte) {
        if (isUnreserved(byte))
            out += byte;
        else
            appendEscape(out, byte);
    });
}

/// Escaped letters become texts as readers make them; "/" and what else parts an address stays.
std::string withLetters(std::string_view plain) {
    return percentDecode(eachEscape(plain, [](std::string &out, char byte) {
        const std::size_t behindSign = out.size() + 1;
        appendEscape(out, byte);
        if (static_cast<unsigned char>(byte) < 0x80)
            out.insert(behindSign, "25"); // "%252F" comes out as "%2F"
    }));
}

std::string withoutClient(std::string_view url) {
    for (const std::string_view front : {kNameless, kClient}) {
        const std::string_view rest = url.substr(std::min(front.size(), url.size()));
        if (url.starts_with(front) && (rest.starts_with("http:") || rest.starts_with("https:")))
            return std::string(rest);
    }
    return std::string(url);
}

} // namespace

std::string askedAddress(const std::string &url, const std::string &raw) {
    if (raw != url && !raw.empty())
        if (std::string stored = parseURLFromRawURL(raw); percentDecode(stored) == url)
            return stored;
    return withoutClient(url);
}

ComparedAddress::ComparedAddress(std::string text)
    : m_text(std::move(text)), m_isAscii(isAscii(m_text)) {
    const auto parsed = WebAddress::parsed(m_text);
    if (!parsed)
        return;
    m_normal = parsed->href();
    m_plain = withoutNeedlessEscapes(m_normal);
    m_letters = withLetters(m_plain);
}

AddressMatch ComparedAddress::to(const ComparedAddress &wanted) const {
    if (m_normal.empty())
        return m_text == wanted.m_text ? AddressMatch::exact : AddressMatch::other;
    if (m_isAscii && (m_text == wanted.m_text || m_normal == wanted.m_normal))
        return AddressMatch::exact;
    const bool isSame = m_isAscii ? m_plain == wanted.m_plain : m_letters == wanted.m_letters;
    return isSame ? AddressMatch::decoded : AddressMatch::other;
}

std::vector<std::string> spellingsOf(const std::string &address, bool hasClientKeys) {
    std::vector<std::string> spellings{address};
    if (std::string decoded = percentDecode(address); decoded != address)
        spellings.push_back(std::move(decoded));
    if (!hasClientKeys)
        return spellings;
    if (address.starts_with("https:"))
        spellings.push_back(std::string(kClient) + address);
    if (address.starts_with("http"))
        spellings.push_back(std::string(kNameless) + address);
    return spellings;
}

} // namespace nv
