#include "views/record/SnowflakeTimes.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>

namespace nv {

namespace {

/// Ids that count milliseconds since the site's own beginning, 22 bits up.
struct IdClock {
    std::array<std::string_view, 2> domains;
    std::array<std::string_view, 2> folders; ///< ids stand behind one of these
    std::size_t most;                        ///< ids that may follow it
    std::int64_t begin;                      ///< milliseconds since 1970
    std::string_view rule;
};

constexpr IdClock kClocks[] = {
    {{"twitter.com", "x.com"},
     {"status", "statuses"},
     1,
     1'288'834'974'657,
     "Id of a post on twitter.com or x.com: milliseconds since 2010-11-04 01:42:54, 22 bits up"},
    {{"discord.com", "discordapp.com"},
     {"channels", "attachments"},
     3,
     1'420'070'400'000,
     "Id of discord.com: milliseconds since 2015-01-01, 22 bits up"},
};

constexpr int kLowBits = 22; ///< which machine, and its count
/// Ids of before were counted from 1 and would all lie in the first seconds.
constexpr std::int64_t kADay = 86'400'000;
constexpr std::int64_t kYear2040 = 2'208'988'800'000;

bool isOf(std::string_view host, std::string_view domain) {
    host = host.substr(0, host.find(':'));
    return equalsNoCase(host, domain) ||
           (host.size() > domain.size() && host[host.size() - domain.size() - 1] == '.' &&
            equalsNoCase(host.substr(host.size() - domain.size()), domain));
}

std::optional<ReadTime> timeOf(std::string_view digits, const IdClock &clock) {
    std::uint64_t id = 0;
    const char *const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, id);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    const auto since = static_cast<std::int64_t>(id >> kLowBits);
    if (since < kADay || since >= kYear2040 - clock.begin)
        return std::nullopt;
    return ReadTime{Date::fromUnixSeconds((clock.begin + since) / 1000), clock.rule};
}

bool contains(const std::array<std::string_view, 2> &names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

} // namespace

std::vector<ReadTime> timesOfIds(std::string_view host, std::string_view path) {
    std::vector<ReadTime> times;
    for (const IdClock &clock : kClocks) {
        if (std::ranges::none_of(clock.domains, [host](auto each) { return isOf(host, each); }))
            continue;
        std::size_t left = 0; // ids that may follow
        for (const std::string_view piece : split(path, '/')) {
            if (left > 0) {
                --left;
                if (const auto time = timeOf(piece, clock))
                    times.push_back(*time);
            }
            if (contains(clock.folders, piece))
                left = clock.most;
        }
    }
    return times;
}

} // namespace nv
