// An entry of Firefox's cache2: what comes out of its metadata lies in the file, and what can't be
// read is said by the two failures that its reader knows.

#include "fuzz/Reading.h"
#include "readers/firefox/cache/Cache2Entry.h"
#include "readers/firefox/cache/Cache2Hash.h"

#include <cstdint>
#include <stdexcept>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using nv::fuzz::require;
    constexpr std::size_t kWord = 4;
    const nv::ByteView file = nv::viewOf({reinterpret_cast<const char *>(data), size});
    if (size < kWord)
        return 0;
    try {
        const std::uint64_t at = nv::cache2MetaDataAt(file.from(size - kWord), size);
        require(at <= size);
        const nv::Cache2Entry entry = nv::parseCache2Entry(file.from(at), at);
        require(entry.body <= entry.stored && entry.stored == at && entry.size <= size);
        require(entry.chunks.size() <= at / nv::kCache2Chunk + 1);
        require(entry.key.size() <= size && entry.element("alt-data").size() <= size);
        const nv::Cache2Key key = nv::parseCache2Key(entry.key);
        require(key.url.size() <= entry.key.size());
    } catch (const nv::OutOfBytes &) {
        return 0;
    } catch (const std::runtime_error &) {
        return 0;
    }
    return 0;
}
