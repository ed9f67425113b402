#include "rebuild/RebuildMethod.h"

#include "base/Text.h"
#include "db/records/RecordStore.h"

#include <algorithm>

namespace nv {

MethodChoice methodChoice(std::string_view word) {
    if (equalsNoCase(word, "classic"))
        return MethodChoice::classic;
    return equalsNoCase(word, "exact") ? MethodChoice::exact : MethodChoice::automatic;
}

RebuildMethod methodFor(const UrlRecord &page, MethodChoice choice, RecordStore &records) {
    if (choice != MethodChoice::automatic)
        return choice == MethodChoice::exact ? RebuildMethod::exact : RebuildMethod::classic;
    const FactList facts = records.factsOf(page.URLID);
    const bool isOfToday = std::any_of(facts.begin(), facts.end(), [](const RecordFact &fact) {
        return fact.name == FactName("cache_layout").word();
    });
    return isOfToday ? RebuildMethod::exact : RebuildMethod::classic;
}

bool isRebuiltExactly(const UrlRecord &page) {
    return page.CacheFileRebuilt && page.RebuiltMethod == kExactMethod;
}

RebuildMethod shownMethod(const UrlRecord &page) {
    const bool isOfTemplate = page.CacheFileRebuilt && page.RebuiltMethod == kExactTemplateMethod;
    return isOfTemplate || isRebuiltExactly(page) ? RebuildMethod::exact : RebuildMethod::classic;
}

std::string_view wordOf(RebuildMethod method) {
    return method == RebuildMethod::exact ? "exact" : "classic";
}

} // namespace nv
