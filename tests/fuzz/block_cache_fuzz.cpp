// A small sound cache of Chromium's later block files with bytes of the input written over them,
// which may be cut too: nothing may be thrown, records are no more than slots and blocks, and
// bodies no longer than their files.

#include "base/Files.h"
#include "fuzz/Reading.h"
#include "readers/chrome/Cache.h"
#include "readers/chrome/CacheBody.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
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

std::map<std::string, std::string> soundFiles() {
    std::map<std::string, std::string> files;
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

/// The input is a list of a file (one byte, the top bit cuts it), a place (two bytes) and what to
/// write there (four bytes).
std::map<std::string, std::string> damagedFiles(const std::uint8_t *data, std::size_t size) {
    static const std::map<std::string, std::string> sound = soundFiles();
    std::map<std::string, std::string> files = sound;
    for (; size >= 7; data += 7, size -= 7) {
        auto file = files.begin();
        std::advance(file, (data[0] & 0x7F) % files.size());
        std::string &bytes = file->second;
        if (bytes.empty())
            continue;
        const std::size_t at =
            (std::size_t{data[1]} | std::size_t{data[2]} << 8) % std::min(bytes.size(), kReach);
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
        if (std::string &old = written[name]; old != bytes || !fs::exists(folder.path() / name))
            nv::writeWhole(folder.path() / name, old = bytes);
    const nv::Evidence evidence(folder.path());
    CheckingSink sink(evidence, folder.path() / "~body");
    nv::fuzz::Reading reading(folder.path() / "index", evidence, sink);
    require(nv::parseChromeCache(reading.context).state != nv::ReadState::cancelled);
    return 0;
}
