#include "MacCacheExample.h"

#include "base/Files.h"
#include "support/builders/MacCache.h"

#include <fmt/format.h>

namespace nv::example {

namespace fs = std::filesystem;
using namespace nv::test;

namespace {

/// A picture of one pixel.
constexpr std::string_view kDot("GIF89a\x01\0\x01\0\x80\0\0\x20\x60\x90\xFF\xFF\xFF,\0\0\0\0\x01\0"
                                "\x01\0\0\x02\x02\x44\x01\0;",
                                35);

std::string page(int number) {
    return fmt::format("<html><head><title>Harbour News - archive {0}</title></head><body>"
                       "<h1>Archive, page {0}</h1><img src=\"/images/dot.gif\">"
                       "<p>Tides and arrivals.</p><a href=\"/archive{1}.html\">Next</a>"
                       "</body></html>\r\n",
                       number, number + 1);
}

MacEntry entryOf(std::string url, std::string mime, std::string body, int day) {
    MacEntry entry;
    entry.url = std::move(url);
    entry.mime = std::move(mime);
    entry.body = std::move(body);
    entry.firstVisit = macTime(2011, 3, day, 8, 15);
    entry.lastVisit = macTime(2011, 3, day + 1, 17, 40, 20);
    return entry;
}

} // namespace

void writeMacCacheExample(const fs::path &userFolder) {
    MacCache cache;
    for (int i = 1; i <= 12; ++i)
        cache.add(entryOf(fmt::format("http://www.harbour-news.example/archive{}.html", i),
                          "text/html", page(i), i));
    cache.add(entryOf("http://www.harbour-news.example/images/dot.gif", "image/gif",
                      std::string(kDot), 14));
    MacEntry redirect;
    redirect.url = "http://forum.tidewater.example/login?user=mara%20quill";
    redirect.lastVisit = macTime(2011, 3, 20, 21, 5);
    cache.add(redirect);
    const fs::path folder = userFolder / "Old Mac" / "Preferences" / "Explorer";
    fs::create_directories(folder);
    writeWhole(folder / "cache.waf", cache.bytes());
}

} // namespace nv::example
