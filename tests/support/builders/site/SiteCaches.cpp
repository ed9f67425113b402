#include "support/builders/site/SiteCaches.h"

#include "base/Digest.h"
#include "base/Text.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/ChromiumBlocks.h"
#include "support/builders/ChromiumCache.h"
#include "support/builders/ChromiumSql.h"
#include "support/builders/FirefoxCache2.h"
#include "support/builders/Places.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv::test {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kSecond = 1'000'000;
constexpr std::int64_t kApart = 40'000;    ///< microseconds between answers
constexpr std::int64_t kAnswered = 23'000; ///< after the request

std::string_view hostOf(std::string_view url) {
    return split(url, '/').at(2);
}

/// The last two words of the host.
std::string_view siteOf(std::string_view url) {
    const std::string_view host = hostOf(url);
    const std::size_t last = host.rfind('.');
    const std::size_t before = host.rfind('.', last - 1);
    return before == std::string_view::npos ? host : host.substr(before + 1);
}

/// Of the page in whose window the answer was asked for.
std::string_view topSiteOf(std::string_view url) {
    const std::string_view site = siteOf(url);
    if (site == "tidewater.example")
        return "harbour-news.example";
    return site.starts_with("xn--") ? "tide-tables.example" : site;
}

std::string chromiumKey(std::string_view url) {
    // Frames are asked for by the page around them, everything else by its own site.
    const std::string_view frame =
        siteOf(url) == "tidewater.example" ? siteOf(url) : topSiteOf(url);
    return fmt::format("1/0/_dk_https://{} https://{} {}", topSiteOf(url), frame, url);
}

struct Fetched {
    const SiteAnswer *answer;
    std::int64_t at; ///< microseconds since 1970, of the request
};

std::vector<Fetched> fetchedOf(const MadeSite &site, std::int64_t begun) {
    std::vector<Fetched> all;
    std::int64_t at = firefoxTime(begun);
    std::int64_t pages = 0;
    for (const SiteAnswer &answer : site) {
        if (!answer.isKept)
            continue;
        if (!answer.group.empty())
            at = firefoxTime(begun + kPageSeconds * pages++);
        all.push_back({&answer, at});
        at += kApart;
    }
    return all;
}

struct ChromiumFetched {
    std::string key;
    std::string head;
    std::string body;
    std::int64_t requested; ///< microseconds since 1601
};

template <class Take>
void eachForChromium(const MadeSite &site, std::int64_t begun, Take &&take) {
    for (const auto &[answer, at] : fetchedOf(site, begun)) {
        ChromiumAnswer head;
        head.lines = answer->head(at / kSecond);
        head.requested = chromeTime(0, at);
        head.answered = head.requested + kAnswered;
        take(ChromiumFetched{chromiumKey(answer->url), head.bytes(), answer->sent(),
                             head.requested});
    }
}

/// The first eight bytes of SHA-1, the lowest first.
std::uint64_t simpleHash(const std::string &key) {
    Digest sha1(DigestAlgorithm::sha1);
    sha1.add(key);
    const std::string digits = sha1.takeHex();
    std::uint64_t hash = 0;
    for (std::size_t i = 0; i < 8; ++i)
        hash |= std::uint64_t{std::stoul(digits.substr(i * 2, 2), nullptr, 16)} << (8 * i);
    return hash;
}

void writeSimple(const MadeSite &site, const fs::path &folder, std::int64_t begun) {
    SimpleCacheFiles files;
    eachForChromium(site, begun, [&files](const ChromiumFetched &each) {
        files.add(simpleHash(each.key), each.key, each.head, each.body, each.requested + kApart);
    });
    files.write(folder);
}

void writeBlocks(const MadeSite &site, const fs::path &folder, std::int64_t begun) {
    ChromiumBlocks files;
    eachForChromium(site, begun, [&files](const ChromiumFetched &each) {
        files.add({each.key, each.head, each.body, each.requested, each.requested + kApart});
    });
    files.write(folder);
}

void writeSql(const MadeSite &site, const fs::path &folder, std::int64_t begun) {
    ChromiumSql files(folder);
    eachForChromium(site, begun, [&files](const ChromiumFetched &each) {
        files.add({each.key, each.head, each.body, each.requested + kApart});
    });
    files.finish();
}

void writeCache2(const MadeSite &site, const fs::path &folder, std::int64_t begun) {
    for (const auto &[answer, at] : fetchedOf(site, begun)) {
        FirefoxCache2Entry entry;
        entry.key =
            fmt::format("O^partitionKey=%28https%2C{}%29,:{}", topSiteOf(answer->url), answer->url);
        entry.body = answer->sent();
        entry.headers.clear();
        for (const std::string &line : answer->head(at / kSecond))
            entry.headers += line + "\r\n";
        entry.elements = {{"request-method", "GET"}, {"peer-ip-address", "192.0.2.7"}};
        entry.fetchCount = 1;
        entry.fetched = static_cast<std::uint32_t>(at / kSecond);
        entry.modified = entry.fetched;
        entry.expires = entry.fetched + 86400;
        entry.writeTo(folder / "entries");
    }
}

} // namespace

void writeSite(const MadeSite &site, LaterCache cache, const fs::path &folder, std::int64_t begun) {
    fs::create_directories(folder);
    switch (cache) {
    case LaterCache::simple:
        return writeSimple(site, folder, begun);
    case LaterCache::blocks:
        return writeBlocks(site, folder, begun);
    case LaterCache::sql:
        return writeSql(site, folder, begun);
    case LaterCache::cache2:
        return writeCache2(site, folder, begun);
    }
}

WebSite asWebSite(const MadeSite &site) {
    const auto plain = [](const std::string &text) {
        return replaceAll(text, "https://", "http://");
    };
    WebSite items;
    items.reserve(site.size());
    for (const SiteAnswer &answer : site)
        if (answer.isKept && (answer.status == 200 || !answer.location.empty()))
            items.push_back({plain(answer.url), std::string(split(answer.type, ';').at(0)),
                             plain(answer.body), !answer.coding.empty(), false,
                             plain(answer.location)});
    return items;
}

} // namespace nv::test
