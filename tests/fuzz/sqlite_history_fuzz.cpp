// The bytes of a history as a file of Chrome and as one of Firefox: the readers end, leave nothing
// behind in the scratch folder, and lose nothing without saying so.
//   input = log:u8 database     with an odd first byte the second half is the database's log

#include "base/Files.h"
#include "fuzz/Reading.h"
#include "readers/chrome/history/History.h"
#include "readers/firefox/profile/Places.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <string_view>

namespace {

void read(nv::ReadResult (*reader)(nv::ReadContext &), const nv::test::TempFolder &folder) {
    const nv::Evidence evidence(folder.path() / "evidence");
    const auto scratch = folder.path() / "scratch";
    nv::fuzz::CountingSink sink;
    nv::fuzz::Reading reading(folder.path() / "evidence" / "history", evidence, sink, scratch);
    const nv::ReadResult result = reader(reading.context);
    nv::fuzz::require(std::filesystem::is_empty(scratch));
    reading.requireNothingLost(result, sink.records);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char *>(data), size);
    if (input.empty())
        return 0;
    const bool hasLog = input[0] % 2 != 0;
    const std::string_view bytes = input.substr(1);
    const std::size_t end = hasLog ? bytes.size() / 2 : bytes.size();
    const nv::test::TempFolder folder;
    folder.write("evidence/history", bytes.substr(0, end));
    if (hasLog)
        folder.write("evidence/history-wal", bytes.substr(end));
    std::filesystem::create_directory(folder.path() / "scratch");
    read(nv::parseChromeHistoryFile, folder);
    read(nv::parseFirefox3HistoryFile, folder);
    return 0;
}
