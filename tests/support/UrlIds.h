#pragma once

#include "db/schema/Ids.h"

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace nv::test {

/// Keys, as tests write them.
inline std::vector<UrlId> urlIds(std::initializer_list<std::int64_t> numbers) {
    std::vector<UrlId> ids;
    for (const std::int64_t number : numbers)
        ids.push_back(UrlId{number});
    return ids;
}

} // namespace nv::test
