// A small sound cache with bytes of the input written over its files, which may be cut too: nothing
// may be thrown, records are no more than slots and blocks, and texts and bodies no longer than
// their files.

#include "base/Files.h"
#include "fuzz/Reading.h"
#include "readers/chrome/Cache.h"
#include "readers/chrome/CacheBody.h"
#include "support/TempFolder.h"
#include "support/builders/ChromeCache.h"

#include <array>
#include <cstdint>
#include <map>

namespace {

namespace fs = std::filesystem;
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

std::map<std::string, std::string> soundFiles() {
    nv::test::ChromeCache cache(8);
    const auto first =
        cache.add({.url = "http://one.example/", .requested = 1, .modified = 2, .body = "one"});
    cache.addBehind(first.entry, {.url = "http://two.example/", .body = std::string(2000, '2')});
    cache.add({.url = "http://three.example/", .body = std::string(5000, '3')});
    cache.add({.url = "http://four.example/", .body = std::string(20'000, '4')});
    std::map<std::string, std::string> files;
    for (const char *name : kFiles)
        files[name] = cache.file(name);
    return files;
}

/// The input is a list of a file (one byte, the top bit cuts it), a place (two bytes) and what to
/// write there (four bytes). Places count from the end of the heads, where all that matters is.
std::map<std::string, std::string> damagedFiles(const std::uint8_t *data, std::size_t size) {
    static const std::map<std::string, std::string> sound = soundFiles();
    std::map<std::string, std::string> files = sound;
    for (; size >= 7; data += 7, size -= 7) {
        std::string &bytes = files.at(kFiles[(data[0] & 0x7F) % kFiles.size()]);
        const std::size_t head = bytes.size() > 0x2000 ? 0x2000 : 0;
        const std::size_t at =
            head + (std::size_t{data[1]} | std::size_t{data[2]} << 8) % (bytes.size() - head + 1);
        if ((data[0] & 0x80) != 0)
            bytes.resize(at);
        for (std::size_t i = 0; i < 4 && at + i < bytes.size(); ++i)
            bytes[at + i] = static_cast<char>(data[3 + i]);
    }
    return files;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const nv::test::TempFolder folder;
    static std::map<std::string, std::string> written;
    for (const auto &[name, bytes] : damagedFiles(data, size))
        if (std::string &old = written[name]; old != bytes)
            nv::writeWhole(folder.path() / name, old = bytes);
    const nv::Evidence evidence(folder.path());
    CheckingSink sink(evidence, folder.path() / "~body");
    nv::fuzz::Reading reading(folder.path() / "index", evidence, sink);
    require(nv::parseChromeCache(reading.context).state != nv::ReadState::cancelled);
    return 0;
}
