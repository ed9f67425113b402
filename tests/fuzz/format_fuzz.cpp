// Any format of the table: NV_FORMAT names its key, and the input is read as the artefact of its
// sound case, the other files of which lie beside it. Without the variable the input's first byte
// chooses the format. Nothing but a failure of reading may come out, nothing is lost without a
// word, and bodies are fetched or are not there. The cases of tests/golden are a corpus to start
// from.

#include "base/Files.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "fuzz/Reading.h"
#include "readers/CachedBody.h"
#include "readers/Registry.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;
using nv::fuzz::require;

/// Keeps the first records, whose bodies are fetched in the end.
struct FirstSink final : nv::RecordSink {
    void save(nv::URLClass &record) override {
        constexpr std::size_t kKept = 3;
        if (first.size() < kKept)
            first.push_back(record);
        ++records;
    }
    std::vector<nv::URLClass> first;
    std::uint64_t records = 0;
};

const nv::Reader &namedFormat(const char *key) {
    const nv::Reader *reader = nv::readerByKey(key);
    require(reader && reader->read);
    return *reader;
}

const nv::Reader &formatOf(std::uint8_t byte) {
    std::vector<const nv::Reader *> read;
    for (const nv::Reader *reader : nv::registry())
        if (reader->read)
            read.push_back(reader);
    return *read[byte % read.size()];
}

/// Where the format's artefact lies in a copy of its sound case.
fs::path artefactIn(const fs::path &input, const nv::Reader &reader) {
    for (const auto &entry : fs::recursive_directory_iterator(input))
        for (const std::string_view name : nv::split(reader.cases.artefact, ';'))
            if (entry.path().filename() == name)
                return entry.path();
    return input / "artefact";
}

void readAs(const nv::Reader &reader, std::string_view bytes) {
    const nv::test::TempFolder folder;
    const fs::path input = folder.path() / "evidence";
    const fs::path sound = fs::path(NV_GOLDEN_DIR) / reader.cases.sound / "input";
    fs::create_directory(input);
    if (fs::is_directory(sound))
        fs::copy(sound, input, fs::copy_options::recursive);
    const fs::path file = artefactIn(input, reader);
    nv::writeWhole(file, bytes);
    const fs::path scratch = folder.path() / "scratch";
    fs::create_directory(scratch);
    const nv::Evidence evidence(input);
    FirstSink sink;
    nv::fuzz::Reading reading(file, evidence, sink, scratch);
    reading.file.HistoryFileType = reader.type;
    reading.file.FileSize = bytes.size();
    try {
        const nv::ReadResult result = reader.read(reading.context);
        if (result.state != nv::ReadState::notReadYet)
            reading.requireNothingLost(result, sink.records);
    } catch (const nv::StorageFailure &) {
        require(false);
    } catch (const std::exception &) {
        return; // the driver tells it of the whole file
    }
    for (nv::URLClass &record : sink.first)
        static_cast<void>(
            nv::bodyOf(record, {evidence, scratch, reading.log, reader.type}, nv::kBodyInMemory));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const char *key = std::getenv("NV_FORMAT");
    const std::string_view input(reinterpret_cast<const char *>(data), size);
    if (key)
        readAs(namedFormat(key), input);
    else if (!input.empty())
        readAs(formatOf(data[0]), input.substr(1));
    return 0;
}
