#include "base/Storage.h"

#include "base/Files.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// Errors of the name and not of the disk.
constexpr std::array kBadNames = {ENAMETOOLONG, EISDIR, ELOOP, EINVAL, EILSEQ};

/// A file or a link goes, a device or a folder stays.
void removeFile(const fs::path &path) {
    std::error_code ignored; // what can't be removed can't be opened either
    const fs::file_status there = fs::symlink_status(path, ignored);
    if (fs::is_symlink(there) || fs::is_regular_file(there))
        fs::remove(path, ignored);
}

int openToWrite(const fs::path &path, Existing existing) {
    if (existing == Existing::replace)
        removeFile(path);
    // Between the two calls somebody may lay a link there again, into the evidence for one.
    const int noLinks = existing == Existing::replace ? O_NOFOLLOW : 0;
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | noLinks, 0600);
    if (fd >= 0)
        return fd;
    const int failed = errno;
    if (std::ranges::find(kBadNames, failed) != kBadNames.end())
        throw FileFailure("cannot write", path, failed);
    failStorage("cannot write", path, failed);
}

} // namespace

void failStorage(std::string_view what, const fs::path &path, int errorNumber) {
    throw StorageFailure(fmt::format("{} \"{}\" on the disk \"{}\": {}", what, textOf(path),
                                     textOf(diskOf(path)), std::strerror(errorNumber)));
}

fs::path diskOf(const fs::path &path) {
    std::error_code none;
    fs::path place = fs::weakly_canonical(fs::absolute(path, none), none);
    struct stat facts {};
    // What is to be made isn't there yet: the nearest folder above it tells the disk.
    while (::stat(place.c_str(), &facts) != 0 && place.has_relative_path())
        place = place.parent_path();
    const dev_t device = facts.st_dev;
    while (place.has_relative_path() && ::stat(place.parent_path().c_str(), &facts) == 0 &&
           facts.st_dev == device)
        place = place.parent_path();
    return place;
}

void makeFolder(const fs::path &folder) {
    std::error_code failed;
    fs::create_directories(folder, failed);
    if (failed)
        failStorage("cannot make the folder", folder, failed.value());
}

void makeEmptyFolder(const fs::path &folder) {
    std::error_code failed;
    fs::remove_all(folder, failed);
    if (failed)
        failStorage("cannot empty the folder", folder, failed.value());
    makeFolder(folder);
}

void moveFile(const fs::path &from, const fs::path &to) {
    std::error_code failed;
    fs::rename(from, to, failed);
    if (failed)
        failStorage("cannot write", to, failed.value());
}

void cutFile(const fs::path &path, std::uint64_t size) {
    std::error_code failed;
    fs::resize_file(path, size, failed);
    if (failed)
        failStorage("cannot write", path, failed.value());
}

FileWriter::FileWriter(const fs::path &path, Existing existing)
    : m_path(path), m_fd(openToWrite(path, existing)) {}

// Whoever has to know whether all was written calls close(); here a failure is on its way already.
FileWriter::~FileWriter() {
    if (m_fd >= 0)
        ::close(m_fd);
}

void FileWriter::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t put = ::write(m_fd, bytes.data(), bytes.size());
        if (put < 0 && errno != EINTR)
            failStorage("cannot write", m_path, errno);
        if (put > 0)
            bytes.remove_prefix(static_cast<std::size_t>(put));
    }
}

void FileWriter::close() {
    if (::close(std::exchange(m_fd, -1)) != 0)
        failStorage("cannot write", m_path, errno);
}

} // namespace nv
