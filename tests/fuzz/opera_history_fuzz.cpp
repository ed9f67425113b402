// The input is read as a text history and as a list of typed addresses: nothing may be thrown, and
// every record lies in the file and has texts of it.

#include "fuzz/Reading.h"
#include "readers/opera/History.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <string>

namespace {

using nv::fuzz::require;

struct CheckingSink final : nv::RecordSink {
    explicit CheckingSink(std::size_t bytes) : size(bytes) {}
    void save(nv::UrlRecord &record) override {
        const auto offset = static_cast<std::uint64_t>(record.MapFileOffset);
        // XML may be in a code of its own, whose characters are up to four bytes in memory.
        require(offset <= 4 * size && record.URL.size() <= 4 * size);
        require(record.WebpageTitle.size() <= 4 * size && ++records <= size);
    }
    std::size_t size;
    std::size_t records = 0;
};

void read(const char *name, const std::string &bytes) {
    static const nv::test::TempFolder folder;
    const nv::Evidence evidence("");
    CheckingSink sink(bytes.size());
    nv::fuzz::Reading reading(folder.write(name, bytes), evidence, sink);
    nv::parseOperaHistoryFile(reading.context);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string input(data, data + size);
    read("global_history.dat", input);
    read("typed_history.xml", input);
    read("typed_history.xml", "<typed_history><typed_history_item content=\"" + input +
                                  "\" last_typed=\"2013-11-11T23:45:27Z\"/>");
    return 0;
}
