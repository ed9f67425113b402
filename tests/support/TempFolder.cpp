#include "support/TempFolder.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

namespace nv::test {

TempFolder::TempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "nv-test-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::runtime_error("no temporary folder");
    m_path = name;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::filesystem::path TempFolder::write(const std::filesystem::path &name,
                                        std::string_view bytes) const {
    std::filesystem::path target = m_path / name;
    std::filesystem::create_directories(target.parent_path());
    std::ofstream(target, std::ios::binary) << bytes;
    return target;
}

} // namespace nv::test
