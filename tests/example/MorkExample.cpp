#include "MorkExample.h"

#include "base/Files.h"
#include "support/builders/Mork.h"

#include <fmt/format.h>

#include <array>

namespace nv::example {

namespace {

struct Visited {
    std::string_view host;
    std::string_view page;
    std::string_view title;
};

constexpr std::array<Visited, 5> kPages = {
    {{"www.harbour-news.example", "", "Harbour News"},
     {"www.harbour-news.example", "story", "Harbour News"},
     {"search.wayfinder.example", "search?q=tide+table+", ""},
     {"forum.tidewater.example", "thread", "Tidewater forum"},
     {"shop.copperkettle.example", "item?id=", "Kettles"}}};

constexpr std::int64_t kMarch2011 = 1299402000; // 2011-03-06 09:00:00 UTC

} // namespace

void writeMorkExample(const std::filesystem::path &userFolder) {
    test::MorkHistory history;
    for (int i = 0; i < 30; ++i) {
        const Visited &visited = kPages[static_cast<std::size_t>(i) % kPages.size()];
        const std::string number = visited.page.empty() ? "" : std::to_string(i);
        const std::int64_t last = kMarch2011 + i * 7919;
        if (i == 20)
            history.beginGroup();
        history.add({.url = fmt::format("http://{}/{}{}", visited.host, visited.page, number),
                     .lastVisit = test::morkTime(last),
                     .firstVisit = test::morkTime(last - i % 3 * 86400),
                     .host = std::string(visited.host),
                     .title = std::string(visited.title),
                     .visitCount = i % 3 > 0 ? std::to_string(1 + i % 3) : "",
                     .typed = i % 5 == 0,
                     .hidden = i % 11 == 10});
    }
    const auto folder =
        userFolder / "Application Data" / "Mozilla" / "Firefox" / "Profiles" / "b3n4m5k6.default";
    std::filesystem::create_directories(folder);
    writeWhole(folder / "history.dat", history.bytes());
}

} // namespace nv::example
