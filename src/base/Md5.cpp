#include "base/Md5.h"

#include "base/Digest.h"
#include "base/Files.h"
#include "base/Text.h"

namespace nv {

std::string md5Hex(std::string_view bytes) {
    thread_local Digest hash(DigestAlgorithm::md5);
    hash.add(bytes);
    return hash.takeHex();
}

std::optional<std::string> fileMD5(const std::filesystem::path &path,
                                   const std::function<bool(std::uint64_t)> &goOn) {
    Digest hash(DigestAlgorithm::md5);
    const bool whole = readInBlocks(path, [&](std::string_view block, std::uint64_t readSoFar) {
        hash.add(block);
        return !goOn || goOn(readSoFar);
    });
    return whole ? std::optional(hash.takeHex()) : std::nullopt;
}

std::string hashOfUrl(std::string_view url) {
    return md5Hex(toAnsi(url));
}

} // namespace nv
