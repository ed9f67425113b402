#include "FirefoxCacheExample.h"

#include "support/builders/FirefoxCache.h"
#include "support/builders/IndexDat.h"
#include "support/builders/Packed.h"

#include <fmt/format.h>

#include <iterator>
#include <map>
#include <utility>

namespace nv::example {

namespace fs = std::filesystem;
using namespace nv::test;

namespace {

constexpr std::string_view kSite = "http://www.harbour-news.example";
constexpr std::uint32_t kMarch2011 = 1300000000; // 2011-03-13 07:06:40 UTC
constexpr std::uint32_t kDay = 86400;

std::string page(int number, int repeats) {
    std::string text =
        fmt::format("<html><head><title>Harbour News - ferry {0}</title>\r\n"
                    "<link rel=\"stylesheet\" href=\"/style/ferry.css\">"
                    "<script src=\"/script/ferry.js\"></script></head>\r\n"
                    "<body><h1>Harbour News</h1><img src=\"/images/ferry{1}.bmp\">\r\n"
                    "<a href=\"{2}/ferry{3}.html\">Next</a>\r\n",
                    number, number % 6, kSite, number + 1);
    for (int i = 0; i < repeats; ++i)
        text += fmt::format("<p>The ferry of {:02}:{:02} leaves from quay {}.</p>\r\n", 6 + i % 16,
                            i % 4 * 15, 1 + i % 3);
    return text + "</body></html>\r\n";
}

/// Stripes, rows from below, three bytes a point: from 2 to 22 KB as `width` grows.
std::string picture(std::uint32_t width, int shade) {
    constexpr std::uint32_t kHeight = 40;
    constexpr std::size_t kPoints = 54;
    std::string bytes(kPoints + std::size_t{3} * width * kHeight, '\0');
    bytes.replace(0, 2, "BM");
    put32(bytes, 2, static_cast<std::uint32_t>(bytes.size()));
    put32(bytes, 10, kPoints);
    put32(bytes, 14, 40);
    put32(bytes, 18, width);
    put32(bytes, 22, kHeight);
    put16(bytes, 26, 1);
    put16(bytes, 28, 24);
    for (std::size_t at = kPoints; at < bytes.size(); ++at)
        bytes[at] = static_cast<char>(shade + static_cast<int>((at - kPoints) / 120 % 6) * 20);
    return bytes;
}

/// Entries in the order in which they were fetched, a few seconds apart.
class Entries {
  public:
    void add(std::string_view path, std::string_view type, std::string body) {
        const auto count = static_cast<std::uint32_t>(++m_count);
        m_cache.add({.key = fmt::format("HTTP:{}{}", kSite, path),
                     .headers = cacheHeaders(type),
                     .body = std::move(body),
                     .fetched = kMarch2011 + count * 4321,
                     .modified = kMarch2011 + count * 4321 - count % 5 * kDay,
                     .expires = kMarch2011 + count * 4321 + kDay,
                     .fetchCount = 1 + count % 4});
    }
    FirefoxCache &cache() { return m_cache; }

  private:
    FirefoxCache m_cache{FirefoxCache::kFirefox3, 64};
    int m_count = 0;
};

} // namespace

void writeFirefoxCacheExample(const fs::path &userFolder) {
    Entries entries;
    for (int i = 0; i < 12; ++i)
        entries.add(fmt::format("/ferry{}.html", i), "text/html", page(i, i * 8));
    for (int i = 0; i < 6; ++i)
        entries.add(fmt::format("/images/ferry{}.bmp", i), "image/bmp",
                    picture(16 + static_cast<std::uint32_t>(i) * 16, i * 9));
    entries.add("/style/ferry.css", "text/css", "h1 { background: url(/images/ferry1.bmp) }\r\n");
    entries.add("/script/ferry.js", "text/javascript", "document.title = 'Ferries';\r\n");
    entries.add("/packed.html?quay=2", "text/html", gzip(page(40, 30)));
    entries.add("/film.avi", "video/avi", "RIFF" + std::string(20000, 'f'));
    entries.add("/gone.html", "text/html", std::string(17000, 'g'));
    std::map<std::string, std::string> &files = entries.cache().separateFiles;
    files.erase(std::prev(files.end())); // the last one's: it was cleared, and its entry stayed
    entries.cache().writeTo(userFolder / "Local Settings" / "Application Data" / "Mozilla" /
                            "Firefox" / "Profiles" / "q7w8e9r0.default" / "Cache");
}

} // namespace nv::example
