#include "address/Schemes.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

struct Scheme {
    std::string_view name;
    std::optional<std::uint16_t> port;
};

constexpr std::array<Scheme, 6> kSpecial = {{
    {"ftp", 21},
    {"file", std::nullopt},
    {"http", 80},
    {"https", 443},
    {"ws", 80},
    {"wss", 443},
}};

const Scheme *special(std::string_view name) {
    const auto *found = std::ranges::find_if(
        kSpecial, [name](const Scheme &scheme) { return scheme.name == name; });
    return found == kSpecial.end() ? nullptr : found;
}

} // namespace

bool isSpecialScheme(std::string_view scheme) {
    return special(scheme) != nullptr;
}

std::optional<std::uint16_t> defaultPort(std::string_view scheme) {
    const Scheme *found = special(scheme);
    return found == nullptr ? std::nullopt : found->port;
}

} // namespace nv
