// A small sound cache with bytes of the input written over its files, which may be cut too: nothing
// may be thrown, records are no more than slots and blocks, and texts and bodies no longer than
// their files.

#include "fuzz/BlockFiles.h"
#include "readers/chrome/cache/CacheBody.h"
#include "support/builders/ChromeCache.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;
using nv::fuzz::CacheFiles;
using nv::fuzz::require;

struct CheckingSink final : nv::RecordSink {
    CheckingSink(const nv::Evidence &files, fs::path folder)
        : evidence(files), target(std::move(folder)) {}
    void save(nv::UrlRecord &record) override {
        require(++count <= kSlotsAndBlocks && record.URL.size() <= kLongestUrl);
        nv::BodyTarget body(target, kLongestFile);
        if (nv::fetchChromeBody(record, evidence, body)) {
            const nv::Body fetched = body.take();
            require(fetched.isInMemory && fetched.bytes.size() <= kLongestFile);
        }
    }

    static constexpr std::size_t kSlotsAndBlocks = 256;
    static constexpr std::size_t kLongestFile = 40'000;
    static constexpr std::size_t kLongestUrl = kLongestFile * 3; // as UTF-8
    const nv::Evidence &evidence;
    fs::path target;
    std::size_t count = 0;
};

constexpr std::array<const char *, 6> kFiles = {"index",  "data_0", "data_1",
                                                "data_2", "data_3", "f_000001"};

CacheFiles soundFiles() {
    nv::test::ChromeCache cache(8);
    const auto first =
        cache.add({.url = "http://one.example/", .requested = 1, .modified = 2, .body = "one"});
    cache.addBehind(first.entry, {.url = "http://two.example/", .body = std::string(2000, '2')});
    cache.add({.url = "http://three.example/", .body = std::string(5000, '3')});
    cache.add({.url = "http://four.example/", .body = std::string(20'000, '4')});
    CacheFiles files;
    for (const char *name : kFiles)
        files[name] = cache.file(name);
    return files;
}

/// Behind the heads.
nv::fuzz::Reach reachOf(std::size_t size) {
    constexpr std::size_t kHead = 0x2000;
    const std::size_t from = size > kHead ? kHead : 0;
    return {from, size - from + 1};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const CacheFiles sound = soundFiles();
    nv::fuzz::readBlockFiles<CheckingSink>(nv::fuzz::damaged(sound, data, size, reachOf));
    return 0;
}
