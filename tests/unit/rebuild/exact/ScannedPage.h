#pragma once

#include "markup/HtmlDocument.h"
#include "rebuild/exact/PageReferences.h"

#include <string>
#include <string_view>
#include <vector>

namespace nv::test {

/// What a page names, each as "element attribute=address", in the page's order.
inline std::vector<std::string> namedIn(std::string_view html) {
    std::vector<std::string> named;
    for (const Reference &reference : scanPage(html, "page").references)
        named.push_back(reference.element + ' ' + reference.attribute + '=' + reference.address);
    return named;
}

/// The page without what would act or ask for something.
inline std::string disarmed(std::string_view html) {
    return edited(html, scanPage(html, "page").disarming);
}

} // namespace nv::test
