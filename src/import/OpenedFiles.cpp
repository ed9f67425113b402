#include "import/OpenedFiles.h"

#include <utility>

namespace nv {

int OpenedFiles::errorBefore(Step step, const std::filesystem::path &path) {
    if (step == Step::open)
        add(path);
    return 0;
}

void OpenedFiles::add(const std::filesystem::path &path) {
    const std::scoped_lock guard(m_lock);
    m_files.insert(path);
}

std::set<std::filesystem::path> OpenedFiles::take() {
    const std::scoped_lock guard(m_lock);
    return std::exchange(m_files, {});
}

} // namespace nv
