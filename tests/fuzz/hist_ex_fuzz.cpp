// The input as a file of carved records, and a sound one with the input written over it.

#include "fuzz/RecordFuzz.h"
#include "readers/results/HistEx.h"
#include "support/builders/HistEx.h"

namespace {

std::string soundFile() {
    nv::test::HistEx file;
    nv::test::IndexRecord record;
    record.url = "Visited: user@http://one.example/a?b=c";
    record.secondDate = nv::test::fileTime(2011, 3, 1);
    file.add(record);
    file.addRedirect("http://two.example/");
    file.filler(1);
    record.signature = "LEAK";
    file.add(record);
    return file.bytes();
}

/// No two records share a block, whatever they say of their length.
void carve(nv::ByteView bytes) {
    const auto records = nv::fuzz::readRecords(nv::readHistEx, bytes, nv::HistoryFileType::histEx);
    nv::fuzz::require(records * 0x80 <= bytes.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const std::string sound = soundFile();
    carve(nv::ByteView({data, size}));
    const std::string file = nv::fuzz::damaged(sound, data, size);
    carve(nv::viewOf(file));
    return 0;
}
