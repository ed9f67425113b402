#include "SiteExample.h"

#include "base/Files.h"
#include "base/Text.h"
#include "support/HostileWays.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/FirefoxProfile.h"
#include "support/builders/Places.h"
#include "support/builders/site/SiteCaches.h"

#include <fmt/format.h>

#include <array>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace nv::example {

namespace fs = std::filesystem;
using namespace nv::test;

namespace {

constexpr std::int64_t kOctober2026 = 1792220400; // 2026-10-17 07:00:00 UTC
constexpr std::int64_t kHour = 3600;
constexpr int kPageSize = 4096; ///< of databases

constexpr std::array<std::pair<std::string_view, LaterCache>, 4> kLater = {
    {{"simple", LaterCache::simple},
     {"blocks", LaterCache::blocks},
     {"sql", LaterCache::sql},
     {"cache2", LaterCache::cache2}}};
constexpr std::array<std::pair<std::string_view, SiteCache>, 5> kFirst = {
    {{"internet-explorer", SiteCache::internetExplorer},
     {"firefox", SiteCache::firefox},
     {"chrome", SiteCache::chrome},
     {"safari", SiteCache::safari},
     {"opera", SiteCache::opera}}};

/// A page for each way to reach out of a page's folder, to another host and to another folder.
MadeSite hostilePages() {
    constexpr std::array<std::string_view, 2> kOutside = {"https://outside.example",
                                                          "../../../outside"};
    MadeSite site;
    site.reserve((kHostileWays.size() + kHostileParts.size()) * kOutside.size());
    for (const std::string_view outside : kOutside)
        for (const HostileWay &way : kHostileWays) {
            SiteAnswer page;
            page.url = fmt::format("https://hostile.example/{}.html", site.size());
            page.type = "text/html; charset=utf-8";
            page.body = "<!doctype html><html><head><title>Hostile</title></head><body>" +
                        replaceAll(replaceAll(way.html, "@", outside), "%", "@") +
                        "</body></html>\n";
            page.group = "hostile";
            page.shows = way.name;
            site.push_back(std::move(page));
        }
    for (const std::string_view outside : kOutside)
        for (const HostilePart &each : kHostileParts) {
            SiteAnswer part;
            part.url = "https://hostile.example/" + replaceAll(each.path, "@", outside);
            part.type = each.type;
            part.body = replaceAll(replaceAll(each.body, "@", outside), "%", "@");
            site.push_back(std::move(part));
        }
    return site;
}

struct Visited {
    std::string url;
    std::string title;
    int visits = 1;
};

const std::string kNews = "https://www.harbour-news.example/";
const std::string kGuestBook = "https://www.hafenschaenke.example/gaestebuch/";
const Visited kFront = {kNews, "Harbour News - the day on the water", 4};
const Visited kGallery = {kNews + "gallery/", "Pictures of the week - Harbour News", 2};

/// In the order of the site; parts of several pages lie with the first.
template <class Wanted>
MadeSite chosen(const MadeSite &site, Wanted &&isWanted) {
    MadeSite some;
    for (const SiteAnswer &answer : site)
        if (isWanted(std::string_view(answer.url)))
            some.push_back(answer);
    return some;
}

bool isOfNews(std::string_view url) {
    return url.find("harbour-news.example/") != std::string_view::npos ||
           url.find("tidewater.example/") != std::string_view::npos;
}

void writeChromium(const fs::path &profile, const MadeSite &site) {
    const std::vector<Visited> pages = {
        kFront,
        {kNews + "2026/10/17/light.html", "The light on the north mole burns again - Harbour News"},
        kGallery,
        {kNews + "ferries/", "Ferries - Harbour News"}};
    writeSite(chosen(site, isOfNews), LaterCache::sql, profile / "Cache" / "Cache_Data",
              kOctober2026);
    writeWhole(profile / "Preferences", "{\"profile\":{\"name\":\"Mara\"}}\n");
    writeWhole(profile.parent_path() / "Local State", "{}\n");
    writeWhole(profile.parent_path() / "Last Version", "156.0.8078.79");
    ChromeHistory history(profile / "History", ChromeHistory::Version::schema70, kPageSize);
    std::int64_t id = 0;
    for (const Visited &page : pages) {
        ChromePage row{.id = id + 1,
                       .url = page.url,
                       .title = page.title,
                       .visitCount = page.visits,
                       .typedCount = id == 0 ? 2 : 0};
        for (int visit = page.visits - 1; visit >= 0; --visit)
            row.visitTimes.push_back(
                chromeTime(kOctober2026 + id * kPageSeconds - visit * 25 * kHour));
        row.lastVisitTime = row.visitTimes.back();
        history.add(row);
        ++id;
    }
}

void writeFirefox(const fs::path &appData, const MadeSite &site) {
    const fs::path place =
        fs::path("Mozilla") / "Firefox" / "Profiles" / "t4d6c8h2.default-release";
    constexpr std::int64_t kNextMorning = kOctober2026 + 26 * kHour;
    const MadeSite kept = chosen(site, [](std::string_view url) {
        return url.starts_with("https://www.hafenschaenke.example/") ||
               (isOfNews(url) && url.find("/2026/") == std::string_view::npos);
    });
    writeSite(kept, LaterCache::cache2, appData / "Local" / place / "cache2", kNextMorning);
    const fs::path profile = appData / "Roaming" / place;
    fs::create_directories(profile);
    writeWhole(profile / "compatibility.ini",
               "[Compatibility]\nLastVersion=153.0_20260901/20260901\n");
    CurrentPlaces places(profile / "places.sqlite", kPageSize);
    std::int64_t id = 0;
    for (const Visited &page :
         {kFront, kGallery,
          Visited{kGuestBook, "G\u00E4stebuch der Hafensch\u00E4nke \u201EM\u00F6we\u201C"}}) {
        const std::int64_t time = firefoxTime(kNextMorning + id * kPageSeconds);
        ++id;
        places.add(PlacesPage{id, page.url, page.title, 1});
        places.add(PlacesVisit{id, id, time, id == 1 ? 2 : 1, id - 1});
    }
}

} // namespace

void writeMadeSite(std::string_view kind, const fs::path &folder) {
    if (kind == "hostile")
        return writeSite(hostilePages(), LaterCache::simple, folder, kOctober2026);
    const MadeSite site = madeSite();
    if (kind == "server")
        return writeForServer(site, folder);
    for (const auto &[name, cache] : kLater)
        if (name == kind)
            return writeSite(site, cache, folder, kOctober2026);
    for (const auto &[name, cache] : kFirst)
        if (name == kind)
            return writeSite(asWebSite(site), cache, folder);
    throw std::invalid_argument(fmt::format("no kind \"{}\" of caches", kind));
}

void writeTodayExample(const fs::path &disk) {
    const MadeSite site = madeSite();
    const fs::path appData = disk / "Users" / "mara" / "AppData";
    writeChromium(appData / "Local" / "Chromium" / "User Data" / "Default", site);
    writeFirefox(appData, site);
}

} // namespace nv::example
