#include "NetAnalysisExample.h"

#include "base/Files.h"
#include "support/builders/NetAnalysisCase.h"

#include <fmt/format.h>

#include <array>
#include <string>
#include <string_view>

namespace nv::example {

namespace fs = std::filesystem;
using namespace nv::test;

namespace {

constexpr std::array<std::string_view, 4> kHosts = {
    "www.harbour-news.example", "mail.lanternpost.example", "search.wayfinder.example",
    "shop.copperkettle.example"};

/// Each third page was exported with the case.
NetAnalysisEvent visit(int number) {
    const std::string_view host = kHosts[static_cast<std::size_t>(number) % kHosts.size()];
    NetAnalysisEvent event;
    event.Type = number % 5 == 4 ? "LEAK" : "URL";
    event.LastVisited = jetDate(2011, 3, 1 + number % 28, 8 + number % 12, number % 60, 17);
    event.SecondaryDate = jetDate(2011, 2, 1 + number % 28, 20, number % 60);
    event.User = "mara";
    event.Hits = 1 + number % 7;
    event.InternetHistory = fmt::format("http://{}/story{}.html?from=caf\u00e9", host, number);
    event.SearchCriteria = "from=caf\u00e9";
    event.Hostname = host;
    event.URLFileName = fmt::format("story{}[1].htm", number);
    event.FileExists = number % 3 == 0;
    event.fileOffset = 0x5000 + number * 0x180;
    event.HistoryVersion = "5.2";
    event.ContentData = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n~U:mara\r\n";
    event.Comment = number == 12 ? "see the message of 13 March" : "";
    event.Status = number % 8 == 1 ? "typed" : "";
    event.place = number == 20 ? JetPlace::deleted : JetPlace::here;
    return event;
}

} // namespace

void writeNetAnalysisExample(const fs::path &userFolder) {
    const fs::path documents = userFolder / "My Documents";
    const fs::path pages = documents / "Export";
    fs::create_directories(pages);
    NetAnalysisCase made("C:\\Documents and Settings\\mara\\My Documents\\Export");
    for (int i = 0; i < 36; ++i) {
        const NetAnalysisEvent event = visit(i);
        made.add(event);
        if (event.FileExists)
            writeWhole(pages / event.URLFileName,
                       fmt::format("<html><head><title>Story {}</title></head><body><p>News of {}."
                                   "</p></body></html>\r\n",
                                   i, event.Hostname));
    }
    writeWhole(documents / "harbour.net", made.bytes());
}

} // namespace nv::example
