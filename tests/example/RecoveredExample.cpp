#include "RecoveredExample.h"

#include "base/Files.h"
#include "support/builders/HistEx.h"
#include "support/builders/Nvd.h"

#include <fmt/format.h>

#include <array>
#include <string_view>

namespace nv::example {

namespace fs = std::filesystem;
using namespace nv::test;

namespace {

constexpr std::array<std::string_view, 5> kPages = {
    "http://www.harbour-news.example/archive/2011/03/storm.html",
    "http://mail.lanternpost.example/message?id=3977&folder=deleted",
    "http://search.wayfinder.example/?q=ferry%20timetable%20night",
    "http://shop.copperkettle.example/order/confirm?no=1182",
    "http://forum.tidewater.example/thread/55?page=2",
};

IndexRecord visit(std::size_t number) {
    const int day = 3 + static_cast<int>(number) * 2 % 25;
    IndexRecord record;
    record.url = fmt::format("Visited: mara@{}", kPages[number % kPages.size()]);
    record.firstDate = record.secondDate = fileTime(2011, 3, day, 21, 14, 33);
    record.created = dosDate(2011, 3, day, 21, 14, 34);
    record.hits = static_cast<std::uint32_t>(1 + number % 4);
    return record;
}

void writeCarved(const fs::path &file, std::string_view mark) {
    HistEx carved;
    carved.mark(mark);
    for (std::size_t i = 0; i < 12; ++i) {
        IndexRecord record = visit(i);
        record.signature = i % 5 == 4 ? "LEAK" : "URL ";
        carved.add(record);
        carved.filler(i % 3);
    }
    carved.addRedirect("http://mail.lanternpost.example/login?user=mara");
    writeWhole(file, carved.bytes());
}

void writeResults(const fs::path &file) {
    Nvd results;
    for (std::size_t i = 12; i < 20; ++i)
        results.add(visit(i));
    results.entry(0, 0); // one that the script gave up
    results.addRedirect("http://www.harbour-news.example/front");
    writeWhole(file, results.bytes());
}

std::string page(std::string_view title, std::string_view text) {
    return fmt::format("<html>\r\n<head><title>{}</title></head>\r\n<body>\r\n<h1>{}</h1>\r\n"
                       "<p>{}</p>\r\n<a href=\"http://www.harbour-news.example/\">Harbour News</a>"
                       "\r\n</body></html>\r\n",
                       title, title, text);
}

} // namespace

void writeRecoveredExample(const fs::path &userFolder) {
    const fs::path folder = userFolder / "Recovered";
    fs::create_directories(folder / "carved");
    fs::create_directories(folder / "pages");
    writeCarved(folder / "0001-UC-index.dat", "");
    writeCarved(folder / "carved" / "index.dat", "NetAnalysisURLCacheMSIE5Hstex");
    writeResults(folder / "search results.nvd");
    writeWhole(folder / "visits.csv", "url,visits\r\nhttp://www.harbour-news.example/,12\r\n");
    writeWhole(folder / "pages" / "ferry%20times.htm",
               page("Ferry times", "The night boat leaves at 23:40 from the north quay."));
    writeWhole(folder / "pages" / "order.html",
               page("The Copper Kettle: your order", "Order 1182: one kettle, two cups."));
}

} // namespace nv::example
