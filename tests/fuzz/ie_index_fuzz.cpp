// A small sound index.dat with bytes of the input written over it, read as every kind: nothing may
// be thrown, and a record lies in the file and has a URL's worth of bytes at most.

#include "fuzz/RecordFuzz.h"
#include "readers/ie/Index.h"
#include "support/builders/IndexDat.h"

namespace {

std::string soundIndex() {
    nv::test::IndexDat index;
    index.folder("ABCDEFGH").folder("IJKLMNOP");
    for (const char *url : {"Visited: user@http://one.example/", "http://two.example/a?b=c"}) {
        nv::test::IndexRecord record;
        record.url = url;
        record.firstDate = nv::test::fileTime(2011, 3, 1);
        record.fileName = "page[1].htm";
        record.headers = "HTTP/1.1 200 OK\r\n\r\n";
        record.folder = 1;
        index.add(record);
    }
    index.addRedirect("http://three.example/");
    return index.bytes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const std::string sound = soundIndex();
    const std::string index = nv::fuzz::damaged(sound, data, size);
    for (const auto type :
         {nv::HistoryFileType::none, nv::HistoryFileType::ieHistory, nv::HistoryFileType::ieWeekly,
          nv::HistoryFileType::ieCache, nv::HistoryFileType::norvelaneNVD})
        nv::fuzz::readRecords(nv::readIEIndex, nv::viewOf(index), type);
    return 0;
}
