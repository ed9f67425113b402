#include "OperaExample.h"

#include "base/Files.h"
#include "support/builders/Opera.h"
#include "support/builders/Packed.h"

#include <fmt/format.h>

#include <array>

namespace nv::example {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::string_view, 4> kHosts = {
    "www.harbour-news.example", "forum.tidewater.example", "shop.copperkettle.example",
    "search.wayfinder.example"};

constexpr std::uint32_t kMarch2011 = 1300266000; // 2011-03-16 09:00:00 UTC

/// A picture of 2 by 2 points.
std::string dots(int number) {
    std::string bytes = "GIF89a";
    bytes.append("\x02\0\x02\0\x80\0\0", 7);
    bytes += static_cast<char>(number * 20);
    bytes.append("\x60\x90\xFF\xFF\xFF", 5);
    bytes.append(",\0\0\0\0\x02\0\x02\0\0\x02\x03\x44\x02\x05\0;", 17);
    return bytes;
}

std::string page(std::string_view host, int number) {
    return fmt::format("<html><head><title>{0}, page {1}</title></head>\r\n<body><h1>{0}</h1>"
                       "<img src=\"http://{0}/dots{1}.gif\"><p>Tides of the week.</p>"
                       "<a href=\"http://{0}/page{2}.html\">Next</a></body></html>\r\n",
                       host, number, number + 1);
}

void writeCache(const fs::path &folder) {
    test::OperaCache cache;
    for (int i = 0; i < 24; ++i) {
        const std::string_view host = kHosts[static_cast<std::size_t>(i) % kHosts.size()];
        const bool isPicture = i % 3 == 2;
        const std::string body = isPicture ? dots(i) : page(host, i);
        const std::string name =
            fmt::format("opr0002{}{}", static_cast<char>('J' + i), isPicture ? ".gif" : ".htm");
        cache.add({.url = isPicture ? fmt::format("http://{}/dots{}.gif", host, i)
                                    : fmt::format("http://{}/page{}.html", host, i),
                   .visited = kMarch2011 + static_cast<std::uint32_t>(i) * 611,
                   .status = i % 8 == 7 ? 4U : 2U,
                   .size = static_cast<std::uint32_t>(body.size()),
                   .mimeType = isPicture ? "image/gif" : "text/html",
                   .fileName = name});
        if (i % 9 != 8) // some were cleared
            writeWhole(folder / name, i % 4 == 1 ? test::gzip(body) : body);
    }
    cache.add({.url = "http://mail.lanternpost.example/login", .visited = kMarch2011, .status = 5});
    writeWhole(folder / "dcache4.url", cache.bytes());
}

void writeHistory(const fs::path &folder) {
    test::OperaHistory history("\r\n");
    test::OperaTyped typed;
    for (int i = 0; i < 20; ++i) {
        const std::string_view host = kHosts[static_cast<std::size_t>(i) % kHosts.size()];
        history.add(i % 4 == 3 ? "Wayfinder: caf\xC3\xA9 Mara" : fmt::format("Page {}", i),
                    fmt::format("http://{}/page{}.html", host, i),
                    std::to_string(kMarch2011 + static_cast<std::uint32_t>(i) * 733));
    }
    for (int i = 0; i < 4; ++i)
        typed.add(kHosts[static_cast<std::size_t>(i)],
                  fmt::format("2011-03-16T09:{:02}:00Z", i * 7), i == 2 ? "selected" : "text");
    writeWhole(folder / "global_history.dat", history.bytes());
    writeWhole(folder / "typed_history.xml", typed.bytes());
}

} // namespace

void writeOperaExample(const fs::path &userFolder) {
    const fs::path profile = userFolder / "Application Data" / "Opera" / "Opera";
    const fs::path cache =
        userFolder / "Local Settings" / "Application Data" / "Opera" / "Opera" / "cache";
    fs::create_directories(profile);
    fs::create_directories(cache);
    writeHistory(profile);
    writeCache(cache);
}

} // namespace nv::example
