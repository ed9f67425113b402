// The bytes of a property list, as a history of Safari and as the headers of a cached file: both
// readers end, and the history's loses nothing without saying so.

#include "fuzz/Reading.h"
#include "readers/safari/CacheResponse.h"
#include "readers/safari/History.h"
#include "support/TempFolder.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    nv::readCacheResponse(nv::ByteView({data, size}));
    const nv::test::TempFolder folder;
    const auto file = folder.write("History.plist", {reinterpret_cast<const char *>(data), size});
    const nv::Evidence evidence(folder.path());
    nv::fuzz::CountingSink sink;
    nv::fuzz::Reading reading(file, evidence, sink, folder.path());
    reading.requireNothingLost(nv::parseSafariHistoryFile(reading.context), sink.records);
    return 0;
}
