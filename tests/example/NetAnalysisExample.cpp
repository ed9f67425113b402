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
    event.type = number % 5 == 4 ? "LEAK" : "URL";
    event.lastVisited = jetDate(2011, 3, 1 + number % 28, 8 + number % 12, number % 60, 17);
    event.secondaryDate = jetDate(2011, 2, 1 + number % 28, 20, number % 60);
    event.user = "mara";
    event.hits = 1 + number % 7;
    event.internetHistory = fmt::format("http://{}/story{}.html?from=caf\u00e9", host, number);
    event.searchCriteria = "from=caf\u00e9";
    event.hostname = host;
    event.urlFileName = fmt::format("story{}[1].htm", number);
    event.fileExists = number % 3 == 0;
    event.fileOffset = 0x5000 + number * 0x180;
    event.historyVersion = "5.2";
    event.contentData = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n~U:mara\r\n";
    event.comment = number == 12 ? "see the message of 13 March" : "";
    event.status = number % 8 == 1 ? "typed" : "";
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
        if (event.fileExists)
            writeWhole(pages / event.urlFileName,
                       fmt::format("<html><head><title>Story {}</title></head><body><p>News of {}."
                                   "</p></body></html>\r\n",
                                   i, event.hostname));
    }
    writeWhole(documents / "harbour.net", made.bytes());
}

} // namespace nv::example
