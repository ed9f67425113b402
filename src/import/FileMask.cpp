#include "import/FileMask.h"

#include "base/Text.h"

#include <algorithm>

namespace nv {

namespace {

/// Only the last "*" is ever gone back to, so hostile names cost no more than name times mask.
bool matchesOne(std::string_view name, std::string_view mask) {
    std::size_t n = 0, m = 0;
    std::size_t star = std::string_view::npos, resume = 0;
    while (n < name.size()) {
        if (m < mask.size() && mask[m] == '*') {
            star = m++;
            resume = n;
        } else if (m < mask.size() && (mask[m] == '?' || mask[m] == name[n])) {
            ++n, ++m;
        } else if (star != std::string_view::npos) {
            m = star + 1;
            n = ++resume;
        } else {
            return false;
        }
    }
    return mask.find_first_not_of('*', m) == std::string_view::npos;
}

} // namespace

FileMask::FileMask(std::string_view text) {
    for (const std::string_view mask : split(text, ';'))
        if (const std::string_view trimmed = trim(mask); !trimmed.empty())
            m_masks.push_back(toLower(trimmed));
}

bool FileMask::matches(std::string_view fileName) const {
    const std::string name = toLower(fileName);
    return std::ranges::any_of(m_masks,
                               [&](const std::string &mask) { return matchesOne(name, mask); });
}

} // namespace nv
