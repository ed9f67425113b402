#include "ChromeCacheExample.h"

#include "support/builders/ChromeCache.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/IndexDat.h"
#include "support/builders/Packed.h"

#include <fmt/format.h>

#include <string_view>

namespace nv::example {

namespace fs = std::filesystem;
using namespace nv::test;

namespace {

constexpr std::int64_t kMarch2011 = 1300000000; // 2011-03-13 07:06:40 UTC

/// Of the `number`th object that the browser fetched; `type` is its MIME type.
ChromeCacheEntry fetched(int number, std::string url, std::string_view type, std::string body) {
    const std::int64_t asked = chromeTime(kMarch2011 + number * 1531, 250'000);
    ChromeCacheEntry entry;
    entry.url = std::move(url);
    entry.requested = static_cast<std::uint64_t>(asked);
    entry.modified = static_cast<std::uint64_t>(asked + 430'000);
    entry.answer = fmt::format("HTTP/1.1 200 OK{0}Content-Type: {1}{0}", '\0', type);
    entry.body = std::move(body);
    return entry;
}

std::string page(std::string_view title, int number) {
    return fmt::format("<html><head><title>{0} - page {1}</title>\r\n"
                       "<script src=\"/script/menu.js\"></script></head>\r\n"
                       "<body><h1>{0}</h1><img src=\"/images/tide{1}.bmp\">\r\n"
                       "<p>High water at {1} o'clock.</p></body></html>\r\n",
                       title, number);
}

/// A square of one colour.
std::string bitmap(std::uint32_t side, std::uint32_t colour) {
    std::string bytes(54 + std::size_t{side} * side * 4, '\0');
    bytes.replace(0, 2, "BM");
    put32(bytes, 2, static_cast<std::uint32_t>(bytes.size()));
    put32(bytes, 10, 54);
    put32(bytes, 14, 40);
    put32(bytes, 18, side);
    put32(bytes, 22, side);
    put16(bytes, 26, 1);
    put16(bytes, 28, 32);
    for (std::size_t at = 54; at < bytes.size(); at += 4)
        put32(bytes, at, colour);
    return bytes;
}

void addPages(ChromeCache &cache) {
    for (int i = 1; i <= 6; ++i)
        cache.add(fetched(i, fmt::format("http://www.harbour-news.example/tides/page{}.html", i),
                          "text/html", page("Harbour News", i)));
    const auto first = cache.add(fetched(7, "http://mail.lanternpost.example/inbox", "text/html",
                                         page("Lanternpost: Inbox", 7)));
    cache.addBehind(first.entry, fetched(8, "http://mail.lanternpost.example/sent", "text/html",
                                         page("Lanternpost: Sent", 8)));
    cache.add(fetched(9, "http://search.wayfinder.example/search?q=caf\xE9+harbour", "text/html",
                      page("Wayfinder search", 9)));
}

void addParts(ChromeCache &cache) {
    for (std::uint32_t i = 1; i <= 6; ++i)
        cache.add(fetched(10 + static_cast<int>(i),
                          fmt::format("http://www.harbour-news.example/images/tide{}.bmp", i),
                          "image/bmp", bitmap(i * 12, 0x204060 + i * 0x0A0503)));
    cache.add(fetched(20, "http://www.harbour-news.example/script/menu.js",
                      "application/x-javascript", gzip("document.title = 'Harbour News';\r\n")));
    ChromeCacheEntry none =
        fetched(21, "http://shop.copperkettle.example/basket/add?item=17", "text/plain", "");
    none.where = ChromeCacheEntry::Body::none;
    cache.add(none);
}

/// The browser had cleared the body when it was seized.
void addGone(ChromeCache &cache) {
    ChromeCacheEntry gone =
        fetched(22, "http://maps.wayfinder.example/quay.bmp", "image/bmp", bitmap(30, 0x808080));
    gone.where = ChromeCacheEntry::Body::separate;
    cache.remove(fmt::format("f_{:06x}", cache.add(gone).body & 0xFFFFFF));
}

} // namespace

void writeChromeCacheExample(const fs::path &userFolder) {
    ChromeCache cache(64);
    addPages(cache);
    addParts(cache);
    addGone(cache);
    cache.write(userFolder / "Local Settings" / "Application Data" / "Google" / "Chrome" /
                "User Data" / "Default" / "Cache");
}

} // namespace nv::example
