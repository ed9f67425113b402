// The input is the fields of a cache index, after its header: nothing may be thrown, and every
// record lies in the file and has texts of it.

#include "fuzz/Reading.h"
#include "readers/opera/Cache.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <string>

namespace {

using nv::fuzz::require;

struct CheckingSink final : nv::RecordSink {
    explicit CheckingSink(std::size_t bytes) : size(bytes) {}
    void save(nv::UrlRecord &record) override {
        const auto offset = static_cast<std::uint64_t>(record.MapFileOffset);
        // A byte of the file is three in memory at most; no cached file is there.
        require(offset >= next && offset < size && record.CacheFileSize == 0);
        require(!record.URL.empty() && record.URL.size() <= 3 * size);
        require(("/" + record.CacheFileRelativePath + "/").find("/../") == std::string::npos);
        next = offset + 1;
    }
    std::size_t size;
    std::uint64_t next = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string bytes = std::string(15, '\0') + std::string(data, data + size);
    static const nv::test::TempFolder folder;
    const nv::Evidence evidence("");
    CheckingSink sink(bytes.size());
    nv::fuzz::Reading reading(folder.write("dcache4.url", bytes), evidence, sink);
    nv::parseOperaCache(reading.context);
    return 0;
}
