#include "base/Files.h"

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

/// An open file descriptor, closed at the end of the scope.
class File {
  public:
    File(const std::filesystem::path &path, int flags, mode_t mode = 0)
        : m_path(path), m_fd(::open(path.c_str(), flags | O_CLOEXEC, mode)) {
        if (m_fd < 0)
            throw FileFailure("cannot open", path, errno);
    }
    ~File() { ::close(m_fd); }
    File(const File &) = delete;
    File &operator=(const File &) = delete;

    std::size_t read(void *into, std::size_t count) const {
        for (;;) {
            const ssize_t got = ::read(m_fd, into, count);
            if (got >= 0)
                return static_cast<std::size_t>(got);
            if (errno != EINTR)
                throw FileFailure("cannot read", m_path, errno);
        }
    }

    void writeAll(std::string_view bytes) const {
        while (!bytes.empty()) {
            const ssize_t put = ::write(m_fd, bytes.data(), bytes.size());
            if (put < 0 && errno != EINTR)
                throw FileFailure("cannot write", m_path, errno);
            if (put > 0)
                bytes.remove_prefix(static_cast<std::size_t>(put));
        }
    }

  private:
    const std::filesystem::path &m_path;
    int m_fd;
};

Bytes readUpTo(const std::filesystem::path &path, std::uint64_t limit) {
    const File file(path, O_RDONLY);
    std::error_code none;
    Bytes bytes;
    const std::uint64_t size = std::filesystem::file_size(path, none);
    bytes.reserve(none ? 0 : std::min(size, limit));
    while (bytes.size() < limit) {
        const std::size_t before = bytes.size();
        bytes.resize(before + std::min<std::uint64_t>(kBlock, limit - before));
        const std::size_t got = file.read(bytes.data() + before, bytes.size() - before);
        bytes.resize(before + got);
        if (got == 0)
            break;
    }
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
    const File file(path, O_RDONLY);
    const auto block = std::make_unique<std::array<char, kBlock>>();
    std::uint64_t readSoFar = 0;
    while (const std::size_t got = file.read(block->data(), block->size())) {
        readSoFar += got;
        if (!take({block->data(), got}, readSoFar))
            return false;
    }
    return true;
}

FileReader::FileReader(const std::filesystem::path &path)
    : m_path(path), m_fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
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

Bytes FileReader::read(std::uint64_t offset, std::uint64_t count) const {
    // A length from a file is no reason to ask for memory: only what is there is read.
    Bytes bytes(offset < m_size ? std::min(count, m_size - offset) : 0);
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t got = ::pread(m_fd, bytes.data() + done, bytes.size() - done,
                                    static_cast<off_t>(offset + done));
        if (got < 0 && errno != EINTR)
            throw FileFailure("cannot read", m_path, errno);
        if (got == 0)
            break;
        done += got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    bytes.resize(done);
    return bytes;
}

std::uint64_t copyRange(const FileReader &from, std::uint64_t offset, std::uint64_t count,
                        const std::filesystem::path &to) {
    std::error_code ignored;
    std::filesystem::remove(to, ignored);
    const File target(to, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, 0600);
    std::uint64_t done = 0;
    while (done < count) {
        const Bytes block = from.read(offset + done, std::min<std::uint64_t>(kBlock, count - done));
        if (block.empty())
            break;
        target.writeAll(ByteView(block).raw());
        done += block.size();
    }
    return done;
}

void copyToScratch(const std::filesystem::path &from, const std::filesystem::path &to) {
    std::error_code ignored;
    std::filesystem::remove(to, ignored);
    const File target(to, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, 0600);
    readInBlocks(from, [&target](std::string_view block, std::uint64_t) {
        target.writeAll(block);
        return true;
    });
}

void writeWhole(const std::filesystem::path &path, std::string_view bytes) {
    File(path, O_WRONLY | O_CREAT | O_TRUNC, 0600).writeAll(bytes);
}

std::string textOf(const std::filesystem::path &path) {
    return decodeText(path.native());
}

} // namespace nv
