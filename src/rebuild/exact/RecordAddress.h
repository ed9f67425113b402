#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// How a record's address stands to one that is looked for.
enum class AddressMatch : std::uint8_t {
    other,
    decoded, ///< the same letters, but which bytes they were asked for by isn't known
    exact,
};

/// What a record was asked for by, as far as its row tells: the raw value where the reader has only
/// undone its escapes, without what a browser puts in front of its keys. Both are as stored.
std::string askedAddress(const std::string &url, const std::string &raw);

/// The forms in which an address is compared.
class ComparedAddress {
  public:
    explicit ComparedAddress(std::string text);

    /// `wanted` is one that the URL standard's serialiser wrote.
    AddressMatch to(const ComparedAddress &wanted) const;
    const std::string &text() const { return m_text; }

  private:
    std::string m_text;
    bool m_isAscii;
    std::string m_normal;  ///< by the URL standard; empty for what is no address
    std::string m_plain;   ///< without needless escapes
    std::string m_letters; ///< with its letters read as texts, whatever their bytes
};

/// All texts under which readers store a record of the address, itself the first. `hasClientKeys`
/// asks for those that hold a name of the browser's part in front too.
std::vector<std::string> spellingsOf(const std::string &address, bool hasClientKeys);

} // namespace nv
