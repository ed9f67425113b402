#include "readers/RecordKind.h"

#include "base/Text.h"
#include "readers/Registry.h"

#include <algorithm>
#include <array>
#include <vector>

namespace nv {

namespace {

constexpr std::array<const BrowserFamily *, 7> kFamilies = {
    &families::internetExplorer, &families::firefox, &families::chrome,
    &families::safari,           &families::opera,   &families::macIE,
    &families::netAnalysis};

std::vector<const RecordKind *> kindsOfAllFormats() {
    std::vector<const RecordKind *> kinds;
    for (const Reader *reader : registry())
        for (const RecordKind *kind : reader->kinds)
            if (std::ranges::find(kinds, kind) == kinds.end())
                kinds.push_back(kind);
    return kinds;
}

bool goesBy(const RecordKind &kind, std::string_view word) {
    return equalsNoCase(kind.word, word) ||
           (!kind.otherWord.empty() && equalsNoCase(kind.otherWord, word));
}

} // namespace

std::span<const BrowserFamily *const> browserFamilies() {
    return kFamilies;
}

std::string_view groupWord(RecordGroup group) {
    switch (group) {
    case RecordGroup::cache:
        return "Cache";
    case RecordGroup::history:
        return "History";
    case RecordGroup::cookies:
        return "Cookies";
    case RecordGroup::bookmarks:
        return "Bookmarks";
    case RecordGroup::other:
        break;
    }
    return "Other";
}

std::span<const RecordKind *const> recordKinds() {
    static const std::vector<const RecordKind *> kinds = kindsOfAllFormats();
    return kinds;
}

const RecordKind *recordKind(std::string_view cacheType) {
    const std::string_view word = trim(cacheType);
    const auto kinds = recordKinds();
    const auto found =
        std::ranges::find_if(kinds, [word](const RecordKind *kind) { return goesBy(*kind, word); });
    return found == kinds.end() ? nullptr : *found;
}

RecordGroup groupOf(std::string_view cacheType) {
    if (const RecordKind *kind = recordKind(cacheType))
        return kind->group;
    if (containsNoCase(cacheType, "cache"))
        return RecordGroup::cache;
    if (containsNoCase(cacheType, "cookie"))
        return RecordGroup::cookies;
    return containsNoCase(cacheType, "history") ? RecordGroup::history : RecordGroup::other;
}

CacheParts partsOf(std::string_view cacheType) {
    const RecordKind *kind = recordKind(cacheType);
    return kind ? kind->parts : CacheParts::none;
}

const BrowserFamily *familyOf(std::string_view cacheType) {
    if (const RecordKind *kind = recordKind(cacheType))
        return kind->family;
    const std::string_view word = trim(cacheType);
    const auto *found = std::ranges::find_if(kFamilies, [word](const BrowserFamily *family) {
        return startsWithNoCase(word, family->words);
    });
    return found == kFamilies.end() ? nullptr : *found;
}

const BrowserFamily *browserOf(std::string_view cacheType) {
    const BrowserFamily *family = familyOf(cacheType);
    return family && family->engine != Engine::unknown ? family : nullptr;
}

} // namespace nv
