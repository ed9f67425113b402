#include "readers/ByteSource.h"

#include "base/Storage.h"

namespace nv {

namespace {

constexpr std::uint64_t kBlock = std::uint64_t{1} << 20; ///< bytes

} // namespace

bool inBlocks(const ByteSource &file, const std::function<bool(std::string_view block)> &take) {
    std::uint64_t at = 0;
    for (Bytes block = file.read(at, kBlock); !block.empty(); block = file.read(at, kBlock)) {
        at += block.size();
        if (!take(ByteView(block).raw()))
            return false;
    }
    return true;
}

void copyTo(const ByteSource &file, const std::filesystem::path &to) {
    FileWriter target(to);
    static_cast<void>(inBlocks(file, [&target](std::string_view block) {
        target.write(block);
        return true;
    }));
    target.close();
}

} // namespace nv
