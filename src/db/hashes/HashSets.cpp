#include "db/hashes/HashSets.h"

#include "base/Digest.h"
#include "base/Replace.h"
#include "base/Text.h"
#include "db/hashes/HashList.h"
#include "db/hashes/HashSetMaker.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLongestName = 100; // bytes
constexpr std::size_t kRefusedTold = 5;
constexpr double kReading = 0.5; ///< part of the work, the rest is sorting

/// A file that is written beside its place, and gone at the end unless it took that.
class Aside {
  public:
    explicit Aside(const fs::path &place) : m_path(place.native() + ".~new") {}
    ~Aside() {
        std::error_code ignored;
        fs::remove(m_path, ignored);
    }
    Aside(const Aside &) = delete;
    Aside &operator=(const Aside &) = delete;

    const fs::path &path() const { return m_path; }

  private:
    fs::path m_path;
};

bool isNameSign(char c) {
    const auto byte = static_cast<unsigned char>(c);
    constexpr std::string_view kSigns = " -_.,()+";
    return byte >= 0x80 || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') ||
           (c >= 'A' && c <= 'Z') || kSigns.find(c) != std::string_view::npos;
}

/// A set that is being made, beside its place.
class Making {
  public:
    Making(const HashSetOrder &order, TaskMonitor &task) : m_maker(order.scratch), m_task(task) {
        for (const fs::path &list : order.lists) {
            std::error_code none;
            const std::uintmax_t size = fs::file_size(list, none);
            m_bytes += none ? 0 : static_cast<double>(size);
        }
    }

    /// False when it was cancelled.
    bool read(const fs::path &list, HashSetFacts &facts) {
        HashListReader reader([this](const HashValue &hash) { m_maker.add(hash); });
        FileHashing hashing;
        const bool isWhole = readInBlocks(list, [&](std::string_view block, std::uint64_t) {
            reader.add(block);
            hashing.add(block);
            m_read += static_cast<double>(block.size());
            return m_task.advance(m_bytes > 0 ? std::min(1.0, m_read / m_bytes) * kReading : 0);
        });
        if (!isWhole)
            return false;
        const HashListCounts &counts = reader.finish();
        made.lines += counts.lines;
        made.withoutHash += counts.withoutHash();
        for (const std::string &line : counts.refused)
            if (made.refused.size() < kRefusedTold)
                made.refused.push_back(fmt::format("\"{}\", {}", textOf(list), line));
        const FileHashes hashes = hashing.take();
        facts.sources.push_back(
            {textOf(list), hashes.size, hashes.md5, hashes.sha256, counts.withoutHash()});
        return true;
    }

    /// False when it was cancelled.
    bool write(const fs::path &target, const HashSetFacts &facts) {
        const auto hashes = m_maker.writeTo(target, facts, [this](double done) {
            return m_task.advance(kReading + done * (1 - kReading));
        });
        made.hashes = hashes.value_or(0);
        return hashes.has_value();
    }

    HashSetMade made;

  private:
    HashSetMaker m_maker;
    TaskMonitor &m_task;
    double m_bytes = 0; ///< of all lists
    double m_read = 0;
};

} // namespace

bool isHashSetName(std::string_view name) {
    return !name.empty() && name.size() <= kLongestName && isUtf8(name) && name.front() != '.' &&
           trim(name) == name && std::ranges::all_of(name, isNameSign);
}

fs::path hashSetPath(const fs::path &folder, std::string_view name) {
    return folder / (std::string(name) + std::string(kHashSetExtension));
}

std::vector<fs::path> hashSetPaths(const fs::path &folder) {
    std::vector<fs::path> paths;
    std::error_code none;
    for (const fs::directory_entry &entry : fs::directory_iterator(folder, none))
        if (entry.path().extension() == kHashSetExtension)
            paths.push_back(entry.path());
    std::ranges::sort(paths);
    return paths;
}

std::vector<HashSetFile> openHashSets(const fs::path &folder, std::span<const std::string> names) {
    std::vector<fs::path> paths;
    for (const std::string &name : names) {
        paths.push_back(hashSetPath(folder, name));
        if (!isHashSetName(name) || !fs::is_regular_file(paths.back()))
            throw StorageFailure(fmt::format("there is no hash set \"{}\" in \"{}\": hashsets list "
                                             "lists them",
                                             name, textOf(folder)));
    }
    std::vector<HashSetFile> sets;
    for (const fs::path &path : names.empty() ? hashSetPaths(folder) : paths)
        sets.emplace_back(path);
    return sets;
}

void removeHashSet(const fs::path &folder, std::string_view name) {
    const fs::path path = hashSetPath(folder, name);
    if (!isHashSetName(name) || !fs::is_regular_file(path))
        throw StorageFailure(
            fmt::format("there is no hash set \"{}\" in \"{}\"", name, textOf(folder)));
    std::error_code failed;
    fs::remove(path, failed);
    if (failed)
        failStorage("cannot remove", path, failed.value());
}

std::optional<HashSetMade> makeHashSet(HashSetOrder order, TaskMonitor &task) {
    makeFolder(order.folder);
    const fs::path target = hashSetPath(order.folder, order.facts.name);
    const Aside aside(target);
    Making making(order, task);
    for (const fs::path &list : order.lists)
        if (!making.read(list, order.facts))
            return std::nullopt;
    const bool isWhole =
        making.made.lines == making.made.withoutHash || making.write(aside.path(), order.facts);
    if (isWhole && making.made.hashes > 0)
        replaceDurably(aside.path(), target);
    return isWhole ? std::optional(making.made) : std::nullopt;
}

} // namespace nv
