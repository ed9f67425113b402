#include "rebuild/exact/LazyParts.h"

#include "base/Text.h"
#include "rebuild/exact/StyleReferences.h"

#include <algorithm>
#include <array>
#include <span>

namespace nv {

namespace {

struct Row {
    std::string_view elements; ///< with blanks around each
    std::string_view target;
    std::array<std::string_view, 5> names; ///< in the order of trust; the rest empty
};

constexpr std::array<Row, 3> kRows = {{
    {" img iframe video audio source embed ",
     "src",
     {"data-src", "data-lazy-src", "data-original", "data-lazy", "data-orig-src"}},
    {" img source ",
     "srcset",
     {"data-srcset", "data-lazy-srcset", "data-original-set", "data-orig-srcset", ""}},
    {" video ", "poster", {"data-poster", "data-lazy-poster", "", "", ""}},
}};

constexpr std::array<std::string_view, 3> kBackgrounds = {"data-bg", "data-background-image",
                                                          "data-background"};

/// Parts of the names that pictures are given which only keep a place free.
constexpr std::array<std::string_view, 14> kPlaceholders = {
    "blank", "spacer", "placeholder", "loading", "lazy", "1x1",   "pixel",
    "trans", "empty",  "grey",        "gray",    "dot.", "load.", "loader"};

/// An address, and not a template that a script would have filled in.
bool isAddress(std::string_view value) {
    value = trimmedAddress(value);
    return !value.empty() && value.find_first_of("{}<>\"") == std::string_view::npos;
}

/// "data-background" may as well be "dark": a name of a file has a point, a path a slash.
bool isPath(std::string_view value) {
    return value.find_first_of("/.") != std::string_view::npos &&
           value.find('(') == std::string_view::npos;
}

bool isPlaceholder(std::string_view value, std::string_view lazy) {
    value = trimmedAddress(value);
    if (!isFollowed(value) || value == trimmedAddress(lazy))
        return true;
    const std::string_view name = value.substr(value.find_last_of('/') + 1);
    return std::ranges::any_of(
        kPlaceholders, [name](std::string_view word) { return containsNoCase(name, word); });
}

/// Scripts find their pictures by such a class.
bool isMarkedLazy(const HtmlAttributes &attributes) {
    return containsNoCase(valueOf(attributes, "class"), "lazy");
}

} // namespace

std::vector<LazyPart> lazyParts(std::string_view element, const HtmlAttributes &attributes) {
    std::vector<LazyPart> found;
    const std::string word = ' ' + std::string(element) + ' ';
    for (const Row &row : kRows) {
        if (row.elements.find(word) == std::string_view::npos)
            continue;
        const HtmlAttribute *lazy = nullptr;
        for (const std::string_view name : row.names)
            if (const HtmlAttribute *each = name.empty() ? nullptr : attributeOf(attributes, name);
                each && !lazy && isAddress(each->value))
                lazy = each;
        const HtmlAttribute *shown = attributeOf(attributes, row.target);
        if (lazy &&
            (!shown || isMarkedLazy(attributes) || isPlaceholder(shown->value, lazy->value)))
            found.push_back({row.target, lazy, shown});
    }
    return found;
}

const HtmlAttribute *lazyBackground(const HtmlAttributes &attributes) {
    for (const std::string_view name : kBackgrounds)
        if (const HtmlAttribute *each = attributeOf(attributes, name);
            each && isFollowed(each->value) &&
            (containsNoCase(each->value, "url(") ||
             (isAddress(each->value) && (name != "data-background" || isPath(each->value)))))
            return each;
    return nullptr;
}

} // namespace nv
