// The input is read as a history.dat after a sound beginning, and once as it is: nothing may be
// thrown, and an entry's texts come from the file.

#include "fuzz/Reading.h"
#include "readers/firefox/mork/MorkHistory.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <string>

namespace {

struct CheckingSink final : nv::RecordSink {
    explicit CheckingSink(std::size_t bytes) : size(bytes) {}
    void save(nv::UrlRecord &record) override {
        const auto offset = static_cast<std::uint64_t>(record.MapFileOffset);
        // A byte of the file is three in memory at most.
        nv::fuzz::require(offset <= size && record.URL.size() <= 3 * size && ++records <= size);
    }
    std::size_t size;
    std::size_t records = 0;
};

void read(const std::string &bytes) {
    static const nv::test::TempFolder folder;
    const nv::Evidence evidence("");
    CheckingSink sink(bytes.size());
    nv::fuzz::Reading reading(folder.write("history.dat", bytes), evidence, sink);
    nv::parseMorkFile(reading.context);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string input(data, data + size);
    read(input);
    read("// <!-- <mdb:mork:z v=\"1.4\"/> -->\n< <(a=c)> // (f=iso-8859-1)\n  (82=URL)>\n"
         "<(80=LE)(81=http://x/)(82=1205364946314923)>\n{1:^80 {(k^81:c)(s=9)[1(^8C=LE)]} \n" +
         input);
    return 0;
}
