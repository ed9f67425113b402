#include "SafariExample.h"

#include "base/Files.h"
#include "support/builders/IndexDat.h"
#include "support/builders/Safari.h"

#include <fmt/format.h>

#include <array>

namespace nv::example {

namespace fs = std::filesystem;
using namespace nv::test;

namespace {

struct Site {
    std::string_view host;
    std::string_view title;
};

constexpr std::array<Site, 4> kSites = {{{"www.harbour-news.example", "Harbour News"},
                                         {"maps.wayfinder.example", "Wayfinder maps"},
                                         {"shop.copperkettle.example", "The Copper Kettle"},
                                         {"forum.tidewater.example", "Tidewater forum"}}};
constexpr int kPages = 16;

std::string page(const Site &site, int number) {
    return fmt::format("<html><head><title>{0} - tide {1}</title></head>\r\n"
                       "<body><h1>{0}</h1><img src=\"/images/tide{2}.bmp\">\r\n"
                       "<p>High water at the quay.</p>"
                       "<a href=\"http://{3}/tide{4}.html\">Next</a></body></html>\r\n",
                       site.title, number, number % 4, site.host, number + 1);
}

/// A bitmap of waves: rows from below, three bytes a point.
std::string picture(int shade) {
    constexpr std::uint32_t kWidth = 32;
    constexpr std::uint32_t kHeight = 20;
    constexpr std::size_t kPoints = 54;
    std::string bytes(kPoints + std::size_t{3} * kWidth * kHeight, '\0');
    bytes.replace(0, 2, "BM");
    put32(bytes, 2, static_cast<std::uint32_t>(bytes.size()));
    put32(bytes, 10, kPoints);
    put32(bytes, 14, 40);
    put32(bytes, 18, kWidth);
    put32(bytes, 22, kHeight);
    put16(bytes, 26, 1);
    put16(bytes, 28, 24);
    for (std::size_t at = kPoints; at < bytes.size(); ++at)
        bytes[at] = static_cast<char>(shade + static_cast<int>((at - kPoints) / 96 % 5) * 24);
    return bytes;
}

std::string stamp(int day, int minute) {
    constexpr std::array<std::string_view, 7> kDays = {"Mon", "Tue", "Wed", "Thu",
                                                       "Fri", "Sat", "Sun"};
    // 1 March 2011 was a Tuesday.
    return fmt::format("{}, {:02} Mar 2011 19:{:02}:30 GMT",
                       kDays[static_cast<std::size_t>(day) % kDays.size()], day, minute);
}

void writeCache(const fs::path &file) {
    SafariCache cache(file);
    std::int64_t id = 0;
    const auto add = [&](const std::string &url, const std::string &type, const std::string &body) {
        const int day = 1 + static_cast<int>(id) % 28;
        ++id;
        cache.add({.id = id,
                   .url = url,
                   .response = safariResponse(url, headersOf(type, stamp(day, 10), stamp(1, 5))),
                   .body = body});
    };
    for (int i = 0; i < kPages; ++i) {
        const Site &site = kSites[static_cast<std::size_t>(i) % kSites.size()];
        add(fmt::format("http://{}/tide{}.html", site.host, i), "text/html; charset=utf-8",
            page(site, i));
    }
    for (int i = 0; i < 8; ++i)
        add(fmt::format("http://{}/images/tide{}.bmp",
                        kSites[static_cast<std::size_t>(i) % kSites.size()].host, i),
            "image/bmp", picture(40 + i * 20));
    cache.addWithoutBlobs(++id, "http://www.harbour-news.example/caf%C3%A9/");
}

void writeHistory(const fs::path &file) {
    constexpr int kMarch2011 = 321000000; // 2011-03-05 06:40:00, in seconds since 2001
    SafariHistory history;
    for (int i = 0; i < kPages; ++i) {
        const Site &site = kSites[static_cast<std::size_t>(i) % kSites.size()];
        history.add({.url = fmt::format("http://{}/tide{}.html", site.host, i),
                     .title = std::string(site.title),
                     .lastVisited = fmt::format("{}.{}", kMarch2011 + i * 7919, i % 10),
                     .visitCount = std::to_string(1 + i % 5)});
    }
    history.add({.url = "http://www.harbour-news.example/caf%C3%A9/",
                 .lastVisited = "321200000.0",
                 .redirects = {"http://harbour-news.example/cafe"}});
    fs::create_directories(file.parent_path());
    writeWhole(file, history.text());
}

} // namespace

void writeSafariExample(const fs::path &userFolder) {
    const fs::path maker = fs::path("Application Data") / "Apple Computer" / "Safari";
    writeCache(userFolder / "Local Settings" / maker / "Cache.db");
    writeHistory(userFolder / maker / "History.plist");
}

} // namespace nv::example
