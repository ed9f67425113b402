// An address, alone and against a base. What comes out is ASCII and is read as the same again,
// alone and against any base; its query in any charset is one of the same address.
//   input = charset '\n' base '\n' address

#include "address/WebAddress.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

bool isAscii(const std::string &text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7F; });
}

void checkAddress(const nv::WebAddress &address, const nv::WebAddress *base) {
    const std::string href = address.href();
    require(isAscii(href) && href.starts_with(address.withoutFragment()) &&
            href.starts_with(address.upToPath()));
    require(!address.origin().empty());
    require(nv::WebAddress::parsed(href) == address);
    require(nv::WebAddress::parsed(href, base) == address);
    const auto bare = nv::WebAddress::parsed(address.withoutFragment());
    require(bare && !bare->fragment() && bare->query() == address.query());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string input(data, data + size);
    const std::size_t first = std::min(input.find('\n'), input.size());
    const std::size_t second = std::min(input.find('\n', first + 1), input.size());
    const std::string charset = input.substr(0, first);
    const std::string text = input.substr(std::min(second + 1, input.size()));
    const auto base = nv::WebAddress::parsed(
        input.substr(std::min(first + 1, input.size()), second - std::min(first + 1, second)));
    const nv::WebAddress *from = base ? &*base : nullptr;
    if (from != nullptr)
        checkAddress(*from, nullptr);
    const auto address = nv::WebAddress::parsed(text, from);
    if (address)
        checkAddress(*address, from);
    const auto inCharset = nv::WebAddress::parsed(text, from, charset);
    require(inCharset.has_value() == address.has_value());
    if (inCharset) {
        checkAddress(*inCharset, from);
        require(inCharset->upToPath() == address->upToPath());
    }
    return 0;
}
