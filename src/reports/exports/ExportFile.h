#pragma once

#include "base/Storage.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A file that is written beside its place and takes it when it is whole. Until finish() what was
/// there stays, and an unfinished file leaves nothing behind. All throw StorageFailure.
class ExportFile {
  public:
    explicit ExportFile(std::filesystem::path place);
    ~ExportFile();
    ExportFile(const ExportFile &) = delete;
    ExportFile &operator=(const ExportFile &) = delete;

    /// Where it is written, for those that write it themselves.
    const std::filesystem::path &aside() const { return m_aside; }
    void write(std::string_view bytes);
    /// In the place of what was written comes `beginning`, and then what `converted` makes of each
    /// block of it.
    void rewrite(std::string_view beginning,
                 const std::function<std::string(std::string_view)> &converted);
    void finish();

  private:
    std::filesystem::path m_place;
    std::filesystem::path m_aside;
    std::unique_ptr<FileWriter> m_writer;
};

/// What lies in the project and can't be written over.
struct Untouchable {
    std::filesystem::path project;
    std::vector<std::filesystem::path> evidence; ///< its folders; empty or "/" is none
};
/// Why nothing is written to `target`: it is the project, lies in the evidence or is no plain file.
std::optional<std::string> refusalOf(const std::filesystem::path &target,
                                     const Untouchable &untouchable);

} // namespace nv
