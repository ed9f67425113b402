#include "reports/events/SameDates.h"

#include "base/Text.h"
#include "readers/RecordKind.h"
#include "readers/chrome/Kinds.h"
#include "readers/firefox/Kinds.h"
#include "readers/ie/Kinds.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

using C = UrlColumn;

struct SameDate {
    const RecordKind *kind;
    UrlColumn column;
    std::string_view fact;
};

// As the readers fill columns and facts.
constexpr auto kSameDates = std::to_array<SameDate>({
    {&kChromeDownload, C::ActionDateUtc, "start_time"},
    {&kChromeDownload, C::DateOther, "end_time"},
    {&kChromeCookies, C::DateOther, "created"},
    {&kChromeCache, C::DateOther, "request_time"},
    {&kChromeFormValue, C::ActionDateUtc, "last_used"},
    {&kChromeFormValue, C::DateOther, "first_used"},
    {&kChromeAddress, C::ActionDateUtc, "last_used"},
    {&kChromeAddress, C::DateOther, "last_updated"},
    {&kChromeCard, C::ActionDateUtc, "last_used"},
    {&kChromeCard, C::DateOther, "last_updated"},
    {&kChromeSearchEngine, C::ActionDateUtc, "last_used"},
    {&kChromeSearchEngine, C::ActionDateUtc, "created"}, // of one that was never used
    {&kChromeLogin, C::ActionDateUtc, "created"},
    {&kChromeLogin, C::DateOther, "last_used"},
    {&kChromeBookmark, C::ActionDateUtc, "created"},
    {&kChromeSiteSetting, C::ActionDateUtc, "last_modified"},
    {&kChromeAccount, C::ActionDateUtc, "last_used"},
    {&kChromeAccount, C::ActionDateUtc, "created"}, // of a profile's own settings
    {&kChromeIcon, C::DateOther, "last_updated"},
    {&kChromeTopSite, C::DateOther, "last_updated"},
    {&kFirefoxDownload, C::ActionDateUtc, "start_time"},
    {&kFirefoxDownload, C::DateOther, "end_time"},
    {&kFirefoxBookmark, C::ActionDateUtc, "created"},
    {&kFirefoxFormValue, C::ActionDateUtc, "last_used"},
    {&kFirefoxFormValue, C::DateOther, "first_used"},
    {&kFirefoxPermission, C::ActionDateUtc, "last_updated"},
    {&kFirefoxLogin, C::ActionDateUtc, "created"},
    {&kIECookies, C::ActionDateUtc, "created"},
});

} // namespace

bool isSameDate(std::string_view cacheType, UrlColumn column, std::string_view meaning,
                std::string_view fact, std::string_view factMeaning) {
    if (equalsNoCase(meaning, factMeaning))
        return true;
    const RecordKind *kind = recordKind(cacheType);
    return std::ranges::any_of(kSameDates, [&](const SameDate &each) {
        return each.kind == kind && each.column == column && each.fact == fact;
    });
}

std::string_view actionMeaningOf(std::string_view cacheType) {
    const RecordKind *kind = recordKind(cacheType);
    return kind == &kChromeCookies || kind == &kFirefoxCookies ? "Last Accessed" : "";
}

} // namespace nv
