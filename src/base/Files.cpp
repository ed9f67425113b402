#include "base/Files.h"

#include "base/Storage.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace nv {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;
constexpr std::size_t kLeastBlock = 4096;

/// Where the system lets it, the time of the last access stays: it is evidence, and a field of some
/// records. Only owners and administrators may ask for that.
int openForReading(const std::filesystem::path &path) {
    constexpr int kFlags = O_RDONLY | O_CLOEXEC;
#ifdef O_NOATIME
    const int fd = ::open(path.c_str(), kFlags | O_NOATIME);
    if (fd >= 0 || errno != EPERM)
        return fd;
#endif
    return ::open(path.c_str(), kFlags);
}

/// A file that is being read, closed at the end of the scope.
class File {
  public:
    explicit File(const std::filesystem::path &path) : m_path(path), m_fd(openForReading(path)) {
        if (m_fd < 0)
            throw FileFailure("cannot open", path, errno);
    }
    ~File() { ::close(m_fd); }
    File(const File &) = delete;
    File &operator=(const File &) = delete;

    /// In bytes; 0 for what has no size of its own.
    std::uint64_t size() const {
        struct stat facts {};
        return ::fstat(m_fd, &facts) == 0 ? static_cast<std::uint64_t>(facts.st_size) : 0;
    }

    std::size_t read(void *into, std::size_t count) const {
        for (;;) {
            const ssize_t got = ::read(m_fd, into, count);
            if (got >= 0)
                return static_cast<std::size_t>(got);
            if (errno != EINTR)
                throw FileFailure("cannot read", m_path, errno);
        }
    }

  private:
    const std::filesystem::path &m_path;
    int m_fd;
};

/// What a file holds after the size that it had: it grew, or it is one without a size.
void readOn(const File &file, std::uint64_t limit, Bytes &bytes) {
    std::array<std::uint8_t, kLeastBlock> block{};
    while (bytes.size() < limit) {
        const std::size_t got =
            file.read(block.data(), std::min<std::uint64_t>(block.size(), limit - bytes.size()));
        if (got == 0)
            return;
        bytes.insert(bytes.end(), block.begin(), block.begin() + got);
    }
}

/// Room for all at once: room that grows is twice the file while it is moved.
Bytes readUpTo(const std::filesystem::path &path, std::uint64_t limit) {
    const File file(path);
    Bytes bytes(std::min(file.size(), limit));
    std::size_t done = 0;
    while (const std::size_t got = file.read(bytes.data() + done, bytes.size() - done))
        done += got;
    const bool isWhole = done == bytes.size();
    bytes.resize(done);
    if (isWhole)
        readOn(file, limit, bytes);
    return bytes;
}

} // namespace

FileFailure::FileFailure(std::string_view what, const std::filesystem::path &path, int errorNumber)
    : std::runtime_error(
          fmt::format("{} \"{}\": {}", what, textOf(path), std::strerror(errorNumber))) {}

Bytes readHead(const std::filesystem::path &path, std::size_t count) {
    return readUpTo(path, count);
}

Bytes readWhole(const std::filesystem::path &path) {
    return readUpTo(path, UINT64_MAX);
}

bool readInBlocks(
    const std::filesystem::path &path,
    const std::function<bool(std::string_view block, std::uint64_t readSoFar)> &take) {
    const File file(path);
    // No more room than the file needs, and not cleared: most cached bodies are small.
    const std::size_t size = std::clamp<std::uint64_t>(file.size(), kLeastBlock, kBlock);
    const auto block = std::make_unique_for_overwrite<char[]>(size);
    std::uint64_t readSoFar = 0;
    while (const std::size_t got = file.read(block.get(), size)) {
        readSoFar += got;
        if (!take({block.get(), got}, readSoFar))
            return false;
    }
    return true;
}

FileReader::FileReader(const std::filesystem::path &path)
    : m_path(path), m_fd(openForReading(path)) {
    if (m_fd < 0)
        throw FileFailure("cannot open", path, errno);
    struct stat facts {};
    m_size = ::fstat(m_fd, &facts) == 0 ? static_cast<std::uint64_t>(facts.st_size) : 0;
}

FileReader::~FileReader() {
    if (m_fd >= 0)
        ::close(m_fd);
}

FileReader::FileReader(FileReader &&other) noexcept
    : m_path(std::move(other.m_path)), m_fd(std::exchange(other.m_fd, -1)), m_size(other.m_size) {}

namespace {

/// Fills `bytes` from the offset on and cuts it where the file ends.
void fillAt(int fd, const std::filesystem::path &path, std::uint64_t offset, Bytes &bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t got = ::pread(fd, bytes.data() + done, bytes.size() - done,
                                    static_cast<off_t>(offset + done));
        if (got < 0 && errno != EINTR)
            throw FileFailure("cannot read", path, errno);
        if (got == 0)
            break;
        done += got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    bytes.resize(done);
}

} // namespace

Bytes FileReader::read(std::uint64_t offset, std::uint64_t count) const {
    // A length from a file is no reason to ask for memory: only what is there is read.
    Bytes bytes(offset < m_size ? std::min(count, m_size - offset) : 0);
    fillAt(m_fd, m_path, offset, bytes);
    // Some file systems tell no size: there the file ends where nothing more comes.
    Bytes more(m_size == 0 ? std::min<std::uint64_t>(count, kLeastBlock) : 0);
    for (; !more.empty(); more.resize(std::min<std::uint64_t>(count - bytes.size(), kLeastBlock))) {
        fillAt(m_fd, m_path, offset + bytes.size(), more);
        if (more.empty())
            break;
        bytes.insert(bytes.end(), more.begin(), more.end());
    }
    return bytes;
}

std::uint64_t copyRange(const FileReader &from, std::uint64_t offset, std::uint64_t count,
                        const std::filesystem::path &to) {
    FileWriter target(to);
    std::uint64_t done = 0;
    while (done < count) {
        const Bytes block = from.read(offset + done, std::min<std::uint64_t>(kBlock, count - done));
        if (block.empty())
            break;
        target.write(ByteView(block).raw());
        done += block.size();
    }
    target.close();
    return done;
}

void copyToScratch(const std::filesystem::path &from, const std::filesystem::path &to) {
    FileWriter target(to);
    readInBlocks(from, [&target](std::string_view block, std::uint64_t) {
        target.write(block);
        return true;
    });
    target.close();
}

void writeWhole(const std::filesystem::path &path, std::string_view bytes) {
    FileWriter target(path, Existing::overwrite);
    target.write(bytes);
    target.close();
}

std::string textOf(const std::filesystem::path &path) {
    // Name by name: one that is no UTF-8 says nothing of the others.
    std::string text;
    for (const std::string_view name : split(path.native(), '/')) {
        text += decodeText(name);
        text += '/';
    }
    text.pop_back();
    return text;
}

} // namespace nv
