#pragma once

#include "readers/Registry.h"

#include <vector>

namespace nv::test {

/// The formats of the first version. What is listed of them in a certain order stays so, whatever
/// formats come anew.
inline std::vector<const Reader *> firstFormats() {
    std::vector<const Reader *> formats;
    for (const Reader *reader : registry())
        if (reader->type <= HistoryFileType::chromeCookies)
            formats.push_back(reader);
    return formats;
}

} // namespace nv::test
