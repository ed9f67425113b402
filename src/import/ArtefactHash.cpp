#include "import/ArtefactHash.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "import/SharedHashing.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

using GoOn = std::function<bool(std::uint64_t)>;

using Unread = std::vector<UnreadPlace>;

/// A name that can't be looked at would be missing from the list unseen.
void addFiles(const Evidence &evidence, const fs::path &folder, std::vector<fs::path> &files,
              Unread *unread) {
    FolderContents contents;
    const auto list = [&] { contents = evidence.contentsOf(folder); };
    NoLog unheard; // whoever asked for the hash tells of all
    if (!unread)
        list();
    else if (const auto failure = failureOf(unheard, {}, list))
        unread->push_back({folder, *failure});
    if (!unread && !contents.unreadable.empty())
        throw std::runtime_error(contents.unreadable.front().reason);
    if (unread)
        unread->insert(unread->end(), contents.unreadable.begin(), contents.unreadable.end());
    files.insert(files.end(), contents.files.begin(), contents.files.end());
    for (const fs::path &below : contents.folders)
        addFiles(evidence, below, files, unread);
}

std::optional<FileHashes> hashesOfPlain(const Evidence &evidence, const fs::path &file,
                                        const GoOn &goOn) {
    FileHashing hashing;
    const bool isWhole = inBlocks(evidence.open(file), [&](std::string_view block) {
        hashing.add(block);
        return goOn(hashing.size());
    });
    return isWhole ? std::optional(hashing.take()) : std::nullopt;
}

std::string lineOf(const std::string &digest, const std::string &name) {
    return fmt::format("{}  {}\n", digest.empty() ? "-" : digest, name);
}

std::optional<FileHashes> hashesOfFolder(const Evidence &evidence, const fs::path &folder,
                                         const GoOn &goOn, Unread *unread) {
    std::vector<fs::path> files;
    addFiles(evidence, folder, files, unread);
    std::ranges::sort(files, {}, [](const fs::path &path) { return path.native(); });
    const auto hashes = SharedHashing(evidence, files, unread).run(goOn);
    if (!hashes)
        return std::nullopt;
    Digest md5(DigestAlgorithm::md5);
    Digest sha256(DigestAlgorithm::sha256);
    std::uint64_t size = 0;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const std::string name = files[i].lexically_relative(folder).native();
        md5.add(lineOf((*hashes)[i].md5, name));
        sha256.add(lineOf((*hashes)[i].sha256, name));
        size += (*hashes)[i].size;
    }
    if (!goOn(size)) // a folder without files is told as well
        return std::nullopt;
    return FileHashes{md5.takeHex(), sha256.takeHex(), size};
}

} // namespace

std::optional<FileHashes> hashesOfArtefact(const Evidence &evidence, const fs::path &artefact,
                                           const GoOn &goOn, Unread *unread) {
    const GoOn always = [](std::uint64_t) { return true; };
    return evidence.kindOf(artefact) == PlaceKind::folder
               ? hashesOfFolder(evidence, artefact, goOn ? goOn : always, unread)
               : hashesOfPlain(evidence, artefact, goOn ? goOn : always);
}

} // namespace nv
