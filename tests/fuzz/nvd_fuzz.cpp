// The input as a results file, and a sound one with the input written over it.

#include "fuzz/RecordFuzz.h"
#include "readers/results/Nvd.h"
#include "support/builders/Nvd.h"

namespace {

std::string soundFile() {
    nv::test::Nvd file;
    nv::test::IndexRecord record;
    record.url = "Visited: user@http://one.example/a?b=c";
    record.secondDate = nv::test::fileTime(2011, 3, 1);
    file.add(record);
    file.addRedirect("http://two.example/");
    file.entry(0x80, 0);
    record.signature = "LEAK";
    file.add(record);
    return file.bytes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const std::string sound = soundFile();
    const auto type = nv::HistoryFileType::norvelaneNVD;
    nv::fuzz::readRecords(nv::readNvd, nv::ByteView({data, size}), type);
    const std::string file = nv::fuzz::damaged(sound, data, size);
    nv::fuzz::readRecords(nv::readNvd, nv::viewOf(file), type);
    return 0;
}
