#include "support/builders/WebSite.h"

#include "base/Files.h"
#include "support/builders/ChromeCache.h"
#include "support/builders/FirefoxCache.h"
#include "support/builders/IndexDat.h"
#include "support/builders/Opera.h"
#include "support/builders/Packed.h"
#include "support/builders/Safari.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>

namespace nv::test {

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kMarch2011 = 1300266000; // 2011-03-16 09:00:00 UTC
constexpr std::string_view kHome = "http://www.harbour-news.example";

/// A picture of one point that no other is like.
std::string dot(std::string_view name) {
    std::string bytes = "GIF89a";
    bytes.append("\x01\0\x01\0\x80\0\0\x10\x60\x90\xFF\xFF\xFF", 13);
    bytes.append(",\0\0\0\0\x01\0\x01\0\0\x02\x02\x44\x01\0;", 16);
    return bytes.append(name);
}

std::string mainPage() {
    return "<html><head><title>Harbour News</title>\r\n"
           "<link rel=\"stylesheet\" href=\"/style/main.css\" >\r\n"
           "<script src=\"/script/menu.js\" ></script>\r\n"
           "<script>commonCss.setAttribute(\"href\", \"/style/extra.css\" );</script>\n"
           "<style>a { background:url(/pics/one.gif) }\r\nb { background: url(/pics/two.gif) }\r\n"
           "c { list-style: url(/pics/three.gif) }\r\nd { background-image:url(/pics/four.gif) }"
           "</style></head>\r\n"
           "<body background=\"/pics/paper.gif\" onload=\"start()\" >\r\n"
           "<iframe src=\"/frame.html\" ></iframe>\r\n"
           "<img src=\"/pics/logo.gif\" alt = \"x\" ><IMG SRC='../pics/logo.gif' >"
           "<img src=/pics/logo.gif >\r\n"
           "<img src=\"http://cdn.tidewater.example/far/away.gif\" >\r\n"
           "<img src=\"/pics/chart.php?tide=5\" ><img src=\"/pics/caf\xE9.gif\" >\r\n"
           "<img src=\"/pics/cleared.gif\" ><img src=\"/pics/never.gif\" >\r\n"
           "<object><param value=\"/pics/button.gif\" ></object>\r\n</body></html>\r\n";
}

SiteItem picture(std::string_view url) {
    return {std::string(url), "image/gif", dot(url)};
}

SiteItem text(std::string_view path, std::string_view type, std::string_view body) {
    return {std::string(kHome).append(path), std::string(type), std::string(body), true};
}

/// Of a cache's table: a power of two.
std::uint32_t slotsFor(const WebSite &site) {
    std::uint32_t slots = 64;
    while (slots < site.size() * 2)
        slots *= 2;
    return slots;
}

std::string kept(const SiteItem &item) {
    return item.isPacked ? gzip(item.body) : item.body;
}

/// Status line and headers, without line ends.
std::vector<std::string> answerOf(const SiteItem &item) {
    if (!item.location.empty())
        return {"HTTP/1.1 302 Found", "Location: " + item.location};
    return {"HTTP/1.1 200 OK", "Content-Type: " + item.type};
}

/// What is kept by the caches that have no headers of a redirect.
WebSite withoutRedirects(WebSite site) {
    std::erase_if(site, [](const SiteItem &item) { return !item.location.empty(); });
    return site;
}

void writeInternetExplorer(const WebSite &site, const fs::path &folder) {
    constexpr std::string_view kFolder = "QRSTUVWX";
    IndexDat index;
    index.folder(kFolder);
    fs::create_directories(folder / kFolder);
    std::map<std::string, int> times;
    for (const SiteItem &item : site) {
        const std::string name = item.fileName(++times[item.fileName()]);
        if (!item.isCleared)
            writeWhole(folder / kFolder / name, item.body);
        index.add(
            {.url = item.url,
             .firstDate = fileTime(2011, 3, 16, 9),
             .secondDate = fileTime(2011, 3, 16, 9),
             .fileSize = static_cast<std::uint32_t>(item.body.size()),
             .folder = 0,
             .fileName = name,
             .headers = fmt::format("HTTP/1.1 200 OK\r\nContent-Type: {}\r\n\r\n", item.type)});
    }
    writeWhole(folder / "index.dat", index.bytes());
}

void writeFirefox(const WebSite &site, const fs::path &folder) {
    FirefoxCache cache(FirefoxCache::kFirefox3, slotsFor(site));
    for (const SiteItem &item : site) {
        const std::size_t before = cache.separateFiles.size();
        cache.add({.key = "HTTP:" + item.url,
                   .headers = cacheHeaders(answerOf(item)),
                   .body = kept(item),
                   .fetched = kMarch2011,
                   .bodyFile = item.isCleared ? 0 : -1});
        if (item.isCleared && cache.separateFiles.size() > before)
            cache.separateFiles.clear(); // no other item is large enough for one
    }
    cache.writeTo(folder);
}

void writeChrome(const WebSite &site, const fs::path &folder) {
    ChromeCache cache(slotsFor(site));
    for (const SiteItem &item : site) {
        ChromeCacheEntry entry;
        entry.url = item.url;
        entry.requested = (std::uint64_t{kMarch2011} + 11644473600U) * 1'000'000U;
        entry.modified = entry.requested;
        entry.body = kept(item);
        entry.answer.clear();
        for (const std::string &line : answerOf(item))
            entry.answer.append(line).push_back('\0');
        if (item.isCleared)
            entry.where = ChromeCacheEntry::Body::separate;
        const ChromeCachePlace place = cache.add(entry);
        if (item.isCleared)
            cache.remove(fmt::format("f_{:06x}", place.body & 0xFFFFFF));
    }
    cache.write(folder);
}

void writeSafari(const WebSite &site, const fs::path &folder) {
    fs::create_directories(folder);
    SafariCache cache(folder / "Cache.db");
    std::int64_t id = 0;
    for (const SiteItem &item : site) {
        const Headers headers = headersOf(item.type, "Wed, 16 Mar 2011 09:00:00 GMT");
        SafariEntry entry{
            .id = ++id, .url = item.url, .response = safariResponse(item.url, headers)};
        if (!item.isCleared)
            entry.body = item.body; // the browser unpacks before it keeps
        cache.add(entry);
    }
}

void writeOpera(const WebSite &site, const fs::path &folder) {
    OperaCache cache;
    fs::create_directories(folder);
    int number = 0;
    for (const SiteItem &item : site) {
        const std::string name = fmt::format("opr{:05X}.{}", ++number, "tmp");
        cache.add({.url = item.url,
                   .visited = kMarch2011,
                   .status = 2,
                   .size = static_cast<std::uint32_t>(item.body.size()),
                   .mimeType = item.type,
                   .fileName = name});
        if (!item.isCleared)
            writeWhole(folder / name, item.body);
    }
    writeWhole(folder / "dcache4.url", cache.bytes());
}

} // namespace

std::string SiteItem::fileName(int number) const {
    const std::string path = url.substr(0, url.find('?'));
    const std::string name = path.substr(path.rfind('/') + 1);
    const std::size_t point = std::min(name.rfind('.'), name.size());
    return fmt::format("{}[{}]{}", name.substr(0, point), number, name.substr(point));
}

WebSite exampleSite() {
    WebSite site;
    site.push_back(text("/news/index.html", "text/html", mainPage()));
    site.push_back(text("/frame.html", "text/html",
                        "<html><img src=\"/pics/logo.gif\" ><p>Tides</p></html>\r\n"));
    site.push_back(text("/style/main.css", "text/css",
                        "a { color: red }\r\nb { background: url('../pics/back.gif') }\r\n"));
    site.push_back(text("/style/extra.css", "text/css", "b { color: blue }\r\n"));
    site.push_back(text("/script/menu.js", "text/javascript", "document.title = 'x';\r\n"));
    for (const std::string_view name :
         {"one", "two", "three", "four", "paper", "logo", "button", "back", "caf\xE9"})
        site.push_back(picture(fmt::format("{}/pics/{}.gif", kHome, name)));
    site.push_back(picture("http://cdn.tidewater.example/far/away.gif"));
    site.push_back(picture(fmt::format("{}/pics/chart.php?tide=5", kHome)));
    site.push_back(picture(fmt::format("{}/pics/cleared.gif", kHome)));
    site.back().isCleared = true;
    return site;
}

void writeSite(const WebSite &site, SiteCache cache, const fs::path &folder) {
    switch (cache) {
    case SiteCache::internetExplorer:
        return writeInternetExplorer(withoutRedirects(site), folder);
    case SiteCache::firefox:
        return writeFirefox(site, folder);
    case SiteCache::chrome:
        return writeChrome(site, folder);
    case SiteCache::safari:
        return writeSafari(withoutRedirects(site), folder);
    case SiteCache::opera:
        return writeOpera(withoutRedirects(site), folder);
    }
}

} // namespace nv::test
