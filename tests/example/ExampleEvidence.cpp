#include "ExampleEvidence.h"

#include "ChromeCacheExample.h"
#include "FirefoxCacheExample.h"
#include "IECookiesExample.h"
#include "MacCacheExample.h"
#include "MorkExample.h"
#include "NetAnalysisExample.h"
#include "OperaExample.h"
#include "RecoveredExample.h"
#include "SafariExample.h"
#include "SiteExample.h"
#include "base/Files.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/Cookies.h"
#include "support/builders/IndexDat.h"
#include "support/builders/Places.h"

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

constexpr std::array<Site, 6> kSites = {{{"www.harbour-news.example", "Harbour News"},
                                         {"mail.lanternpost.example", "Lanternpost: Inbox"},
                                         {"search.wayfinder.example", "Wayfinder search"},
                                         {"maps.wayfinder.example", "Wayfinder maps"},
                                         {"shop.copperkettle.example", "The Copper Kettle"},
                                         {"forum.tidewater.example", "Tidewater forum"}}};
constexpr std::array<std::string_view, 4> kFolders = {"A1B2C3D4", "K9L8M7N6", "P0Q1R2S3",
                                                      "W4X5Y6Z7"};
constexpr int kYear = 2011;

fs::path write(const fs::path &file, std::string_view bytes) {
    fs::create_directories(file.parent_path());
    writeWhole(file, bytes);
    return file;
}

/// A picture of one colour, so that the viewers have something to show.
std::string bitmap(std::uint32_t width, std::uint32_t height, std::uint32_t colour) {
    const std::uint32_t row = (width * 3 + 3) / 4 * 4;
    std::string bytes(54 + std::size_t{row} * height, '\0');
    bytes.replace(0, 2, "BM");
    put32(bytes, 2, static_cast<std::uint32_t>(bytes.size()));
    put32(bytes, 10, 54);
    put32(bytes, 14, 40);
    put32(bytes, 18, width);
    put32(bytes, 22, height);
    put16(bytes, 26, 1);
    put16(bytes, 28, 24);
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x)
            for (std::uint32_t channel = 0; channel < 3; ++channel)
                bytes[54 + std::size_t{y} * row + x * 3 + channel] =
                    static_cast<char>(colour >> (channel * 8));
    return bytes;
}

std::string page(const Site &site, int number) {
    return fmt::format("<html><head><title>{} - page {}</title>\r\n"
                       "<link rel=\"stylesheet\" href=\"/style/main.css\"></head>\r\n"
                       "<body><h1>{}</h1><img src=\"/images/banner{}.bmp\">\r\n"
                       "<p>Stories of the day.</p><a href=\"http://{}/story{}.html\">Next</a>"
                       "</body></html>\r\n",
                       site.title, number, site.title, number % 4, site.host, number + 1);
}

std::string headers(std::string_view type, std::size_t size) {
    return fmt::format(
        "HTTP/1.1 200 OK\r\nContent-Type: {}\r\nContent-Length: {}\r\n\r\n~U:mara\r\n", type, size);
}

/// A cache index with its files in the folders beside it.
class CacheFolder {
  public:
    explicit CacheFolder(fs::path folder) : m_folder(std::move(folder)) {
        for (const std::string_view name : kFolders)
            m_index.folder(name);
    }

    void add(std::string_view url, std::string_view fileName, std::string_view type,
             const std::string &content) {
        const auto folder =
            static_cast<std::uint8_t>(static_cast<std::size_t>(m_count) % kFolders.size());
        write(m_folder / kFolders[folder] / fileName, content);
        IndexRecord record = recordOf(url);
        record.fileSize = static_cast<std::uint32_t>(content.size());
        record.folder = folder;
        record.fileName = fileName;
        record.headers = headers(type, content.size());
        m_index.add(record);
    }
    /// Its file was deleted.
    void addGone(std::string_view url, std::string_view fileName) {
        IndexRecord record = recordOf(url);
        record.folder = 1;
        record.fileName = fileName;
        m_index.add(record);
    }
    void addRedirect(std::string_view url) { m_index.addRedirect(url); }
    void finish() { write(m_folder / "index.dat", m_index.bytes()); }

  private:
    IndexRecord recordOf(std::string_view url) {
        ++m_count;
        IndexRecord record;
        record.url = url;
        record.firstDate = fileTime(kYear, 3, 1 + m_count % 28, 8, m_count % 60);
        record.secondDate = fileTime(kYear, 3, 1 + m_count % 28, 18, m_count % 60, 30);
        record.created = dosDate(kYear, 3, 1 + m_count % 28, 18, m_count % 60, 30);
        record.hits = static_cast<std::uint32_t>(1 + m_count % 5);
        return record;
    }

    fs::path m_folder;
    IndexDat m_index;
    int m_count = 0;
};

void writeCache(const fs::path &folder) {
    CacheFolder cache(folder);
    for (int i = 0; i < 60; ++i) {
        const Site &site = kSites[static_cast<std::size_t>(i) % kSites.size()];
        cache.add(fmt::format("http://{}/story{}.html", site.host, i),
                  fmt::format("story{}[1].htm", i), "text/html", page(site, i));
    }
    for (std::uint32_t i = 0; i < 24; ++i)
        cache.add(fmt::format("http://{}/images/banner{}.bmp", kSites[i % 6].host, i),
                  fmt::format("banner{}[1].bmp", i), "image/bmp",
                  bitmap(40 + i * 4, 30, 0x306090 + i * 0x0A0503));
    cache.add("http://www.harbour-news.example/style/main.css", "main[1].css", "text/css",
              "body { background: url(/images/banner1.bmp) }\r\n");
    cache.add("http://www.harbour-news.example/script/menu.js", "menu[1].js",
              "application/x-javascript", "document.title = 'Harbour News';\r\n");
    for (int i = 0; i < 12; ++i)
        cache.addGone(fmt::format("http://mail.lanternpost.example/message?id={}", 4000 + i),
                      fmt::format("message{}[1].htm", i));
    cache.addRedirect("http://mail.lanternpost.example/login?user=mara%20quill");
    cache.addRedirect("http://search.wayfinder.example/r?to=shop.copperkettle.example");
    cache.finish();
}

/// `prefix` is "Visited: " or a date range such as ":2011032120110322: ".
void writeHistory(const fs::path &file, std::string_view prefix, int day, int entries) {
    IndexDat index;
    for (int i = 0; i < entries; ++i) {
        IndexRecord record;
        const Site &site = kSites[static_cast<std::size_t>(i) % kSites.size()];
        record.url =
            fmt::format("{}mara@http://{}/{}", prefix, site.host,
                        i % 7 == 6 ? "caf%E9/men%FC.html" : fmt::format("story{}.html", i));
        record.firstDate = fileTime(kYear, 3, day, 9 + i % 10, i % 60);
        record.secondDate = fileTime(kYear, 3, day, 8 + i % 10, i % 60);
        record.created = dosDate(kYear, 3, day, 8 + i % 10, i % 60);
        record.hits = static_cast<std::uint32_t>(1 + i % 9);
        index.add(record);
    }
    write(file, index.bytes());
}

constexpr std::int64_t kMarch2011 = 1300000000; // 2011-03-13 07:06:40 UTC

void writePlaces(const fs::path &file) {
    fs::create_directories(file.parent_path());
    fs::remove(file);
    Places places(file);
    for (int i = 1; i <= 40; ++i) {
        const Site &site = kSites[static_cast<std::size_t>(i) % kSites.size()];
        PlacesRow row{i,
                      fmt::format("http://{}/story{}.html", site.host, i),
                      std::string(site.title),
                      i % 4,
                      i % 9 == 0,
                      {}};
        for (int visit = 0; visit < i % 4; ++visit)
            row.visitDates.push_back(firefoxTime(kMarch2011 + i * 977 + visit * 86400));
        places.add(row);
    }
}

void writeChrome(const fs::path &file) {
    fs::create_directories(file.parent_path());
    fs::remove(file);
    ChromeHistory history(file);
    for (int i = 1; i <= 50; ++i) {
        const Site &site = kSites[static_cast<std::size_t>(i) % kSites.size()];
        history.add({i,
                     fmt::format("http://{}/search?q=tide+table+{}", site.host, i),
                     std::string(site.title),
                     1 + i % 3,
                     chromeTime(kMarch2011 + i * 1237),
                     i % 11 == 0,
                     i % 2,
                     {chromeTime(kMarch2011 + i * 1237)}});
    }
}

Cookie cookieOf(const Site &site, int number) {
    Cookie cookie;
    cookie.host = fmt::format(".{}", site.host);
    cookie.name = fmt::format("visit{}", number);
    cookie.value = fmt::format("from=start&n={}", number * 17);
    return cookie;
}

void writeFirefoxCookies(const fs::path &file) {
    FirefoxCookies cookies(file);
    for (int i = 0; i < 9; ++i) {
        Cookie cookie = cookieOf(kSites[static_cast<std::size_t>(i) % kSites.size()], i);
        cookie.lastAccess = firefoxTime(kMarch2011 + i * 4711);
        cookie.expiry = kMarch2011 + i * 4711 + 31536000; // a year
        cookies.add(cookie);
    }
}

void writeChromeCookies(const fs::path &file) {
    ChromeCookies cookies(file);
    for (int i = 0; i < 11; ++i) {
        Cookie cookie = cookieOf(kSites[static_cast<std::size_t>(i) % kSites.size()], i);
        cookie.creation = chromeTime(kMarch2011 + i * 3313);
        cookie.lastAccess = chromeTime(kMarch2011 + i * 3313 + 600);
        cookie.expiry = chromeTime(kMarch2011 + i * 3313 + 31536000);
        cookies.add(cookie);
    }
}

/// What came of the formats that have a file of their own here.
void writeOtherBrowsers(const fs::path &user) {
    writeIECookiesExample(user);
    writeMorkExample(user);
    writeFirefoxCacheExample(user);
    writeChromeCacheExample(user);
    writeSafariExample(user);
    writeOperaExample(user);
    writeMacCacheExample(user);
    writeRecoveredExample(user);
    writeNetAnalysisExample(user);
}

} // namespace

void writeEvidence(const fs::path &folder) {
    const fs::path user = folder / "Documents and Settings" / "mara";
    const fs::path local = user / "Local Settings";
    const fs::path history = local / "History" / "History.IE5";
    writeCache(local / "Temporary Internet Files" / "Content.IE5");
    writeHistory(history / "index.dat", "Visited: ", 20, 35);
    writeHistory(history / "MSHist012011032120110322" / "index.dat", ":2011032120110322: ", 21, 14);
    writeHistory(history / "MSHist012011031420110321" / "index.dat", ":2011031420110321: ", 16, 21);
    const fs::path firefox =
        user / "Application Data" / "Mozilla" / "Firefox" / "Profiles" / "q7w8e9r0.default";
    const fs::path chrome =
        local / "Application Data" / "Google" / "Chrome" / "User Data" / "Default";
    writePlaces(firefox / "places.sqlite");
    writeFirefoxCookies(firefox / "cookies.sqlite");
    writeChrome(chrome / "History");
    writeChromeCookies(chrome / "Cookies");
    writeOtherBrowsers(user);
    writeTodayExample(folder);
}

void writeIndex(const fs::path &file, std::size_t records) {
    // The chain of tables is followed 201 times only: more records need larger tables than browsers
    // make.
    constexpr std::size_t kReached = std::size_t{201} * 448;
    const bool large = records > kReached;
    IndexDat index = large ? IndexDat(1024, 0) : IndexDat();
    for (const std::string_view name : kFolders)
        index.folder(name);
    IndexRecord record;
    for (std::size_t i = 0; i < records; ++i) {
        const auto second = static_cast<int>(i % 60);
        record.url =
            fmt::format("http://host{}.example/folder/page{}.html?q={}", i % 997, i, i * 7);
        record.firstDate = fileTime(kYear, 1 + static_cast<int>(i % 12), 2, 3, 4, second);
        record.secondDate = fileTime(kYear, 1 + static_cast<int>(i % 12), 3, 4, 5, second);
        record.fileSize = static_cast<std::uint32_t>(i % 65536);
        record.folder = static_cast<std::uint8_t>(i % kFolders.size());
        record.fileName = fmt::format("page{}[1].htm", i);
        record.headers = headers("text/html", i % 65536);
        index.add(record);
    }
    // An index that says it has 16 MiB or more isn't read: its size lies in the bytes that the
    // offset of the first hash table is taken from.
    if (large)
        index.sizeField(0);
    write(file, index.bytes());
}

} // namespace nv::example
