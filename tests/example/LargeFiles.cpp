#include "LargeFiles.h"

#include "ExampleEvidence.h"
#include "LargeCaches.h"
#include "LargeRecords.h"
#include "base/Files.h"
#include "support/builders/ChromeCache.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/Cookies.h"
#include "support/builders/FirefoxCache.h"
#include "support/builders/HistEx.h"
#include "support/builders/MacCache.h"
#include "support/builders/Mork.h"
#include "support/builders/NetAnalysisCase.h"
#include "support/builders/Nvd.h"
#include "support/builders/Opera.h"
#include "support/builders/Places.h"
#include "support/builders/Safari.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>

namespace nv::example {

namespace fs = std::filesystem;
using namespace nv::test;

namespace {

void firefoxCache(const Wanted &wanted) {
    FirefoxCache cache(FirefoxCache::kFirefox3, 8192);
    each(wanted, [&](std::size_t i) {
        cache.add({.key = "HTTP:" + urlOf(i), .body = bodyOf(i, wanted.bodyBytes)});
    });
    cache.writeTo(wanted.folder / "Cache");
}

void chromeCache(const Wanted &wanted) {
    ChromeCache cache(65536);
    each(wanted, [&](std::size_t i) {
        const auto time = static_cast<std::uint64_t>(chromeTime(secondsOf(i)));
        cache.add({.url = urlOf(i),
                   .requested = time,
                   .modified = time,
                   .body = bodyOf(i, wanted.bodyBytes)});
    });
    cache.write(wanted.folder / "Chrome" / "Cache");
}

void mork(const Wanted &wanted) {
    MorkHistory history;
    each(wanted, [&](std::size_t i) {
        history.add({.url = urlOf(i),
                     .lastVisit = morkTime(secondsOf(i)),
                     .firstVisit = morkTime(secondsOf(i)),
                     .host = "host.example",
                     .title = "A page"});
    });
    writeWhole(wanted.folder / "history.dat", history.bytes());
}

void places(const Wanted &wanted) {
    Places places(wanted.folder / "places.sqlite");
    each(wanted, [&](std::size_t i) {
        places.add({static_cast<std::int64_t>(i) + 1,
                    urlOf(i),
                    "A page",
                    1,
                    false,
                    {firefoxTime(secondsOf(i))}});
    });
}

void chromeHistory(const Wanted &wanted) {
    fs::create_directories(wanted.folder / "Chrome");
    ChromeHistory history(wanted.folder / "Chrome" / "History");
    each(wanted, [&](std::size_t i) {
        history.add({static_cast<std::int64_t>(i) + 1,
                     urlOf(i),
                     "A page",
                     1,
                     chromeTime(secondsOf(i)),
                     false,
                     0,
                     {chromeTime(secondsOf(i))}});
    });
}

/// The records are visits, four of each page, with what another table tells of each.
void chromiumHistory(const Wanted &wanted) {
    ChromeHistory history(wanted.folder / "Default" / "History", ChromeHistory::Version::schema70);
    const std::size_t pages = std::max<std::size_t>(1, wanted.records / 4);
    history.run("BEGIN");
    for (std::size_t i = 0; i < pages; ++i) {
        const std::size_t last = i + (wanted.records - 1 - i) / pages * pages;
        history.add({.id = static_cast<std::int64_t>(i) + 1,
                     .url = urlOf(i),
                     .title = "A page",
                     .visitCount = 4,
                     .lastVisitTime = chromeTime(secondsOf(last))});
    }
    SQLite::Statement visit = history.prepare(
        "INSERT INTO visits(id,url,visit_time,from_visit,transition,visit_duration) "
        "VALUES(?1,?2,?3,?1 - 1,805306368,1500000)");
    SQLite::Statement note =
        history.prepare("INSERT INTO context_annotations VALUES(?1,1250000,200)");
    each(wanted, [&](std::size_t i) {
        const auto id = static_cast<std::int64_t>(i) + 1;
        SQLite::bind(visit, id, static_cast<std::int64_t>(i % pages) + 1, chromeTime(secondsOf(i)));
        SQLite::bind(note, id);
        for (SQLite::Statement *row : {&visit, &note}) {
            row->exec();
            row->reset();
        }
    });
    history.run("COMMIT");
}

void safariCache(const Wanted &wanted) {
    SafariCache cache(wanted.folder / "Cache.db");
    each(wanted, [&](std::size_t i) {
        cache.add(
            {static_cast<std::int64_t>(i) + 1, urlOf(i),
             safariResponse(urlOf(i), headersOf("text/html", "Sun, 13 Mar 2011 07:06:40 GMT")),
             bodyOf(i, wanted.bodyBytes)});
    });
}

void safariHistory(const Wanted &wanted) {
    SafariHistory history;
    each(wanted, [&](std::size_t i) {
        history.add({.url = urlOf(i), .title = "A page", .lastVisited = "321692800.0"});
    });
    writeWhole(wanted.folder / "History.plist", history.text());
}

void operaCache(const Wanted &wanted) {
    OperaCache cache;
    each(wanted, [&](std::size_t i) {
        cache.add({.url = urlOf(i),
                   .visited = static_cast<std::uint32_t>(secondsOf(i)),
                   .status = 2,
                   .mimeType = "text/html",
                   .fileName = "opr00020.htm"});
    });
    writeWhole(wanted.folder / "dcache4.url", cache.bytes());
}

void operaHistory(const Wanted &wanted) {
    OperaHistory history;
    each(wanted,
         [&](std::size_t i) { history.add("A page", urlOf(i), std::to_string(secondsOf(i))); });
    writeWhole(wanted.folder / "global_history.dat", history.bytes());
}

/// Pages in files of their own, 500 to a folder.
void loosePages(const Wanted &wanted) {
    each(wanted, [&](std::size_t i) {
        const fs::path folder = wanted.folder / fmt::format("folder{}", i / 500);
        fs::create_directories(folder);
        writeWhole(folder / fmt::format("page{}.htm", i),
                   fmt::format("<html><head><title>Page {}</title></head><body>{}</body></html>", i,
                               bodyOf(2 * i + 1, wanted.bodyBytes)));
    });
}

IndexRecord carvedRecord(std::size_t i) {
    IndexRecord record;
    record.url = "Visited: mara@" + urlOf(i);
    record.secondDate = fileTime(2011, 3, 13, 7, 6, static_cast<int>(i % 60));
    return record;
}

void histEx(const Wanted &wanted) {
    HistEx carved;
    each(wanted, [&](std::size_t i) { carved.add(carvedRecord(i)); });
    writeWhole(wanted.folder / "0001-UC-index.dat", carved.bytes());
}

void nvd(const Wanted &wanted) {
    Nvd results;
    each(wanted, [&](std::size_t i) { results.add(carvedRecord(i)); });
    writeWhole(wanted.folder / "results.nvd", results.bytes());
}

void macCache(const Wanted &wanted) {
    MacCache cache;
    each(wanted, [&](std::size_t i) {
        cache.add({.url = urlOf(i), .mime = "text/html", .body = bodyOf(i, wanted.bodyBytes)});
    });
    writeWhole(wanted.folder / "cache.waf", cache.bytes());
}

void netAnalysis(const Wanted &wanted) {
    NetAnalysisCase made;
    each(wanted, [&](std::size_t i) {
        made.add({.lastVisited = jetDate(2011, 3, 13, 7, 6, static_cast<int>(i % 60)),
                  .hits = 1,
                  .internetHistory = urlOf(i)});
    });
    writeWhole(wanted.folder / "case.net", made.bytes());
}

void firefoxCookies(const Wanted &wanted) {
    FirefoxCookies cookies(wanted.folder / "cookies.sqlite");
    each(wanted, [&](std::size_t i) {
        Cookie cookie;
        cookie.name = fmt::format("name{}", i);
        cookie.lastAccess = firefoxTime(secondsOf(i));
        cookie.expiry = secondsOf(i);
        cookies.add(cookie);
    });
}

void chromeCookies(const Wanted &wanted) {
    fs::create_directories(wanted.folder / "Chrome");
    ChromeCookies cookies(wanted.folder / "Chrome" / "Cookies");
    each(wanted, [&](std::size_t i) {
        Cookie cookie;
        cookie.creation = chromeTime(secondsOf(i));
        cookie.lastAccess = cookie.creation;
        cookies.add(cookie);
    });
}

/// `folderName` makes the difference between cookies and a cache.
void index(const Wanted &wanted, std::string_view folderName) {
    fs::create_directories(wanted.folder / folderName);
    writeIndex(wanted.folder / folderName / "index.dat", wanted.records);
}

const std::map<std::string_view, std::function<void(const Wanted &)>> &makers() {
    static const std::map<std::string_view, std::function<void(const Wanted &)>> all = {
        {"firefox-cache", firefoxCache},
        {"chrome-cache", chromeCache},
        {"chrome-simple-cache", largeSimpleCache},
        {"chrome-sql-cache", largeSqlCache},
        {"firefox-cache2", largeFirefoxCache2},
        {"firefox-site-cache", largeFirefoxSiteCache},
        {"firefox-mork-history", mork},
        {"firefox3-history", places},
        {"chrome-history", chromeHistory},
        {"chromium-history", chromiumHistory},
        {"safari-cache", safariCache},
        {"safari-history", safariHistory},
        {"opera-cache", operaCache},
        {"opera-history", operaHistory},
        {"hist-ex", histEx},
        {"html", loosePages},
        {"nvd", nvd},
        {"mac-cache", macCache},
        {"netanalysis", netAnalysis},
        {"firefox-cookies", firefoxCookies},
        {"chrome-cookies", chromeCookies},
        {"ie-cache", [](const Wanted &wanted) { index(wanted, "Content.IE5"); }},
        {"ie-cookies", [](const Wanted &wanted) { index(wanted, "Cookies"); }},
    };
    return all;
}

} // namespace

void writeLarge(std::string_view key, std::size_t records, std::size_t bodyBytes,
                const fs::path &folder) {
    const auto maker = makers().find(key);
    if (maker == makers().end())
        throw std::invalid_argument(fmt::format("no file of the format \"{}\" can be made", key));
    fs::create_directories(folder);
    maker->second({records, bodyBytes, folder});
}

} // namespace nv::example
