#include "import/FolderHash.h"

#include "base/Files.h"
#include "import/FolderList.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// A name that can't be looked at would be missing from the list unseen.
void addFiles(const fs::path &folder, std::vector<fs::path> &files) {
    const FolderContents contents = contentsOf(folder);
    if (!contents.unreadable.empty())
        throw std::runtime_error(contents.unreadable.front().reason);
    files.insert(files.end(), contents.files.begin(), contents.files.end());
    for (const fs::path &below : contents.folders)
        addFiles(below, files);
}

} // namespace

std::optional<FileHashes> hashesOfFolder(const fs::path &folder,
                                         const std::function<bool(std::uint64_t)> &goOn) {
    std::vector<fs::path> files;
    addFiles(folder, files);
    std::ranges::sort(files, {}, [](const fs::path &path) { return path.native(); });
    Digest md5(DigestAlgorithm::md5);
    Digest sha256(DigestAlgorithm::sha256);
    std::uint64_t size = 0;
    for (const fs::path &file : files) {
        const auto hashes = hashesOfFile(
            file, [&](std::uint64_t readSoFar) { return !goOn || goOn(size + readSoFar); });
        if (!hashes)
            return std::nullopt;
        const std::string name = file.lexically_relative(folder).native();
        md5.add(fmt::format("{}  {}\n", hashes->MD5, name));
        sha256.add(fmt::format("{}  {}\n", hashes->SHA256, name));
        size += hashes->size;
    }
    if (goOn && !goOn(size)) // a folder without files is told as well
        return std::nullopt;
    return FileHashes{md5.takeHex(), sha256.takeHex(), size};
}

} // namespace nv
