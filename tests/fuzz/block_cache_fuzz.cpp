// A small sound cache of Chromium's later block files with bytes of the input written over them,
// which may be cut too: nothing may be thrown, records are no more than slots and blocks, and
// bodies no longer than their files.

#include "fuzz/BlockFiles.h"
#include "readers/chrome/cache/CacheBody.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;
using nv::fuzz::CacheFiles;
using nv::fuzz::require;

/// Bytes that a change can reach: the files' heads, tables and first blocks.
constexpr std::size_t kReach = 65536;

struct CheckingSink final : nv::RecordSink {
    CheckingSink(const nv::Evidence &files, fs::path folder)
        : evidence(files), target(std::move(folder)) {}
    void save(nv::UrlRecord &record) override {
        constexpr std::size_t kMost = 200'000;
        constexpr std::uint64_t kInMemory = std::uint64_t{8} << 20;
        require(++count <= kMost);
        nv::BodyTarget body(target, kInMemory);
        if (count < 50 && nv::fetchChromeBody(record, evidence, body))
            require(body.take().isInMemory);
    }
    const nv::Evidence &evidence;
    fs::path target;
    std::size_t count = 0;
};

CacheFiles soundFiles() {
    CacheFiles files;
    const fs::path golden = NV_GOLDEN_DIR;
    for (const auto &entry :
         fs::recursive_directory_iterator(golden / "chromium-block-cache/every-kind/input")) {
        if (!entry.is_regular_file())
            continue;
        const nv::Bytes bytes = nv::readWhole(entry.path());
        files[entry.path().filename().string()] = std::string(nv::ByteView(bytes).raw());
    }
    return files;
}

nv::fuzz::Reach reachOf(std::size_t size) {
    return {0, std::min(size, kReach)};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const CacheFiles sound = soundFiles();
    nv::fuzz::readBlockFiles<CheckingSink>(nv::fuzz::damaged(sound, data, size, reachOf));
    return 0;
}
