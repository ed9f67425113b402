// A small sound index of a cookies folder with bytes of the input written over it.

#include "fuzz/RecordFuzz.h"
#include "readers/ie/Cookies.h"
#include "support/builders/IndexDat.h"

namespace {

std::string soundIndex() {
    nv::test::IndexDat index(2, 2);
    for (const char *host : {"one.example", "two.example"}) {
        nv::test::IndexRecord record;
        record.url = "Cookie:user@" + std::string(host) + "/a?b=c";
        record.firstDate = record.secondDate = nv::test::fileTime(2011, 3, 1);
        record.fileName = "user@" + std::string(host) + "[1].txt";
        index.add(record);
    }
    index.addRedirect("http://three.example/");
    return index.bytes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const std::string sound = soundIndex();
    const std::string index = nv::fuzz::damaged(sound, data, size);
    nv::fuzz::readRecords(nv::readIECookies, nv::viewOf(index), nv::HistoryFileType::ieCookies);
    return 0;
}
