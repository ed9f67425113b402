#include "IECookiesExample.h"

#include "base/Files.h"
#include "support/builders/IndexDat.h"

#include <fmt/format.h>

#include <array>
#include <string_view>

namespace nv::example {

namespace fs = std::filesystem;
using namespace nv::test;

namespace {

struct Cookie {
    std::string_view host;
    std::string_view file; ///< empty: its text file is gone
    std::string_view name;
    std::string_view value;
};

constexpr std::array<Cookie, 7> kCookies = {{
    {"harbour-news.example/", "mara@harbour-news[1].txt", "reader", "8841-mq"},
    {"www.harbour-news.example/weather/", "mara@weather[1].txt", "town", "Saltmarsh"},
    {"mail.lanternpost.example/", "mara@mail.lanternpost[2].txt", "session", "5f0c77e1"},
    {"wayfinder.example/", "mara@wayfinder[1].txt", "lastsearch", "ferry%20times"},
    {"shop.copperkettle.example/", "mara@shop.copperkettle[1].txt", "basket", "kettle+2"},
    {"forum.tidewater.example/", "", "", ""},
    {"ads.brightlane.example/track", "", "", ""},
}};

IndexRecord recordOf(const Cookie &cookie, int day) {
    IndexRecord record;
    record.url = fmt::format("Cookie:mara@{}", cookie.host);
    record.firstDate = fileTime(2011, 3, day, 18, 20, 11);
    record.secondDate = fileTime(2011, 3, day + 3, 7, 45, 2);
    record.expiry = fileTime(2012, 3, day, 18, 20, 11);
    record.hits = static_cast<std::uint32_t>(day + 2);
    record.fileName =
        cookie.file.empty() ? fmt::format("mara@gone[{}].txt", day) : std::string(cookie.file);
    return record;
}

/// Name, value, place, flags, then expiry and creation as the two words of a FILETIME.
std::string textOf(const Cookie &cookie, const IndexRecord &record) {
    const auto low = [](std::uint64_t ticks) { return ticks & 0xFFFFFFFF; };
    const auto high = [](std::uint64_t ticks) { return ticks >> 32; };
    return fmt::format("{}\n{}\n{}\n1024\n{}\n{}\n{}\n{}\n*\n", cookie.name, cookie.value,
                       cookie.host, low(record.expiry), high(record.expiry), low(record.firstDate),
                       high(record.firstDate));
}

} // namespace

void writeIECookiesExample(const fs::path &userFolder) {
    const fs::path folder = userFolder / "Cookies";
    fs::create_directories(folder);
    IndexDat index;
    int day = 0;
    for (const Cookie &cookie : kCookies) {
        IndexRecord record = recordOf(cookie, ++day);
        const std::string text = textOf(cookie, record);
        record.fileSize = static_cast<std::uint32_t>(text.size());
        index.add(record);
        if (!cookie.file.empty())
            writeWhole(folder / cookie.file, text);
    }
    IndexRecord leak = recordOf(kCookies.back(), day + 1);
    leak.signature = "LEAK";
    index.add(leak);
    writeWhole(folder / "index.dat", index.bytes());
}

} // namespace nv::example
