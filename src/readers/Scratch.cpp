#include "readers/Scratch.h"

#include "base/Storage.h"

#include <system_error>

namespace nv::scratch {

namespace fs = std::filesystem;

bool isThere(const fs::path &file) {
    std::error_code none;
    return fs::is_regular_file(fs::symlink_status(file, none));
}

std::uint64_t sizeOf(const fs::path &file) {
    std::error_code failed;
    const std::uintmax_t size = fs::file_size(file, failed);
    if (failed)
        failStorage("cannot read back", file, failed.value());
    return size;
}

void remove(const fs::path &file) {
    std::error_code failed;
    fs::remove(file, failed);
    if (failed)
        failStorage("cannot remove", file, failed.value());
}

void drop(const fs::path &file) noexcept {
    std::error_code ignored;
    fs::remove(file, ignored);
}

void dropFolder(const fs::path &folder) noexcept {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

bool isEmptyFolder(const fs::path &folder) {
    std::error_code none;
    return fs::is_empty(folder, none) && !none;
}

} // namespace nv::scratch
