// What an address and a cookie hold in another form, and a host's registered domain. Nothing is
// beyond its bounds, values are text, and a domain is one of its own.

#include "address/DefangedAddress.h"
#include "address/RegisteredDomain.h"
#include "base/Text.h"
#include "views/record/DecodedValues.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

void check(const std::vector<nv::DecodedValue> &values, bool isText) {
    require(values.size() <= nv::kMostDecodedValues);
    for (const nv::DecodedValue &value : values) {
        require(value.value.size() <= nv::kLongestDecodedValue + 3);
        require(!value.rule.empty());
        require(!isText || nv::isUtf8(value.value));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string text(data, data + size);
    const bool isText = nv::isUtf8(text);
    check(nv::decodedAddress("URL", text), isText);
    check(nv::decodedAddress("URL", "http://h/?a=" + text), isText);
    check(nv::decodedText("value", text), isText);
    const std::string domain = nv::registeredDomain(text);
    require(nv::registeredDomain(domain) == domain);
    require(nv::defangedAddress(text).size() <= 3 * size + 8);
    return 0;
}
