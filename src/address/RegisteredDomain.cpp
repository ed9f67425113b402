#include "address/RegisteredDomain.h"

#include "base/Text.h"

#include <algorithm>
#include <libpsl.h>
#include <memory>

namespace nv {

namespace {

constexpr std::size_t kLongestName = 253; ///< bytes that DNS can ask for

struct FreeList {
    void operator()(psl_ctx_t *list) const { psl_free(list); }
};

/// The system's list where it is newer than the library's own; null when there is neither.
const psl_ctx_t *publicSuffixes() {
    static const std::unique_ptr<psl_ctx_t, FreeList> list(psl_latest(nullptr));
    return list.get();
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The list's rule for names that it doesn't know would take "3.4" for the domain of "1.2.3.4".
bool isName(std::string_view host) {
    if (host.empty() || host.size() > kLongestName || host.front() == '.' ||
        host.find_first_of(":[]/\\@ ") != std::string_view::npos ||
        host.find('\0') != std::string_view::npos || !isUtf8(host))
        return false;
    const std::string_view last = host.substr(host.rfind('.') + 1);
    return last.size() < host.size() && !std::ranges::all_of(last, isDigit);
}

} // namespace

std::string registeredDomain(std::string_view host) {
    while (host.ends_with('.'))
        host.remove_suffix(1);
    std::string name = toLower(host);
    const psl_ctx_t *list = publicSuffixes();
    if (list == nullptr || !isName(name))
        return name;
    // Points into the name.
    const char *domain = psl_registrable_domain(list, name.c_str());
    return domain == nullptr ? name : std::string(domain);
}

} // namespace nv
