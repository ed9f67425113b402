#pragma once

#include "base/Files.h"
#include "fuzz/Reading.h"
#include "readers/chrome/cache/Cache.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <map>
#include <string>

namespace nv::fuzz {

/// The files of a cache by name.
using CacheFiles = std::map<std::string, std::string>;

/// Which bytes of a file changes reach: where all that matters is.
struct Reach {
    std::size_t from = 0;
    std::size_t size = 0;
};

/// The input is a list of a file (one byte, the top bit cuts it), a place (two bytes) and what to
/// write there (four bytes). `reachOf` is asked with a file's size.
template <class ReachOf>
CacheFiles damaged(CacheFiles files, const std::uint8_t *data, std::size_t size,
                   ReachOf &&reachOf) {
    for (; size >= 7; data += 7, size -= 7) {
        std::string &bytes =
            std::next(files.begin(), static_cast<std::ptrdiff_t>((data[0] & 0x7F) % files.size()))
                ->second;
        if (bytes.empty())
            continue;
        const Reach reach = reachOf(bytes.size());
        const std::size_t at =
            reach.from + (std::size_t{data[1]} | std::size_t{data[2]} << 8) % reach.size;
        if ((data[0] & 0x80) != 0)
            bytes.resize(at);
        for (std::size_t i = 0; i < 4 && at + i < bytes.size(); ++i)
            bytes[at + i] = static_cast<char>(data[3 + i]);
    }
    return files;
}

/// Reads a cache of block files with those in a folder; of the last input what stays the same isn't
/// written again. `Sink` is made of the evidence and a place for bodies.
template <class Sink>
void readBlockFiles(const CacheFiles &files) {
    static const test::TempFolder folder;
    static CacheFiles written;
    for (const auto &[name, bytes] : files)
        if (std::string &old = written[name];
            old != bytes || !std::filesystem::exists(folder.path() / name))
            writeWhole(folder.path() / name, old = bytes);
    const Evidence evidence(folder.path());
    Sink sink(evidence, folder.path() / "~body");
    Reading reading(folder.path() / "index", evidence, sink);
    require(parseChromeCache(reading.context).state != ReadState::cancelled);
}

} // namespace nv::fuzz
