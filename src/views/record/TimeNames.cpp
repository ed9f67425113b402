#include "views/record/TimeNames.h"

#include "base/Text.h"
#include "markup/WordSet.h"

#include <string>
#include <vector>

namespace nv {

namespace {

/// Words of which the last one says that a time follows. "t" and "ts" are the commonest.
constexpr std::string_view kTimeWords =
    "accessed atime begin created creation ctime date datetime edited end epoch exp expire expires "
    "expiration expiry iat lastmod lastmodified lastseen lastupdate lastvisit lm lmt modified "
    "mtime "
    "nbf now posted published registered seen since stamp start t time timestamp tm ts tstamp "
    "until "
    "updated utime visit visited";

/// The session of a visit to a page with advertisements: the second at which it began.
constexpr std::string_view kSession = "ga_sid";

/// Stand behind such a word.
constexpr std::string_view kTails = "at gmt ms on sec seconds unix usec utc";

/// Of scripts of advertisers, counters and libraries. They hold times in milliseconds, or chance.
constexpr std::string_view kMillisecondNames =
    "_ _dc cachebust cachebuster cb correlator dt nocache utmht zx";

bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}

bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

/// "created_at", "createdAt" and "filter[created]" have two words each.
std::vector<std::string> partsOf(std::string_view name) {
    std::vector<std::string> words;
    bool isWithin = false;
    for (std::size_t at = 0; at < name.size(); ++at) {
        const char c = name[at];
        if (!isLower(c) && !isUpper(c)) {
            isWithin = false;
            continue;
        }
        const bool isHump = at > 0 && isUpper(c) && isLower(name[at - 1]);
        if (!isWithin || isHump)
            words.emplace_back();
        isWithin = true;
        words.back() += isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return words;
}

} // namespace

NameSays saysOfTime(std::string_view name) {
    static const WordSet times = wordSetOf(kTimeWords);
    static const WordSet tails = wordSetOf(kTails);
    static const WordSet milliseconds = wordSetOf(kMillisecondNames);
    if (milliseconds.contains(toLower(name)))
        return NameSays::milliseconds;
    if (name == kSession)
        return NameSays::time;
    std::vector<std::string> words = partsOf(name);
    while (words.size() > 1 && tails.contains(words.back()))
        words.pop_back();
    if (words.empty())
        return NameSays::nothing;
    const std::string &last = words.back();
    const bool isTime = times.contains(last) || last.ends_with("time") || last.ends_with("stamp");
    return isTime ? NameSays::time : NameSays::nothing;
}

} // namespace nv
