#include "address/DefangedAddress.h"

#include "base/Text.h"

#include <algorithm>

namespace nv {

namespace {

std::string defangedScheme(std::string_view scheme) {
    for (const std::string_view known : {"https", "http"})
        if (equalsNoCase(scheme, known))
            return "hxxp" + std::string(scheme.substr(4)) + "://";
    if (equalsNoCase(scheme, "ftp"))
        return "fxp://";
    return std::string(scheme) + "[:]//";
}

} // namespace

std::string defangedAddress(std::string_view address) {
    const std::size_t sign = address.find("://");
    const std::size_t hostAt = sign == std::string_view::npos ? 0 : sign + 3;
    const std::size_t hostEnd = std::min(address.find_first_of("/?#\\", hostAt), address.size());
    std::string text = hostAt == 0 ? std::string() : defangedScheme(address.substr(0, sign));
    text += replaceAll(address.substr(hostAt, hostEnd - hostAt), ".", "[.]");
    text += address.substr(hostEnd);
    return text;
}

} // namespace nv
