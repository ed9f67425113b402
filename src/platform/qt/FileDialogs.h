#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace nv {

/// The system's dialogs for files and folders; nothing is the examiner's Cancel. Tests have their
/// own.
class FileDialogs {
  public:
    virtual ~FileDialogs() = default;
    virtual std::optional<std::filesystem::path> openProject() = 0;
    virtual std::optional<std::filesystem::path> newProject() = 0;
    virtual std::optional<std::filesystem::path> saveProjectAs() = 0;
    virtual std::optional<std::filesystem::path>
    chooseFolder(const std::string &title, const std::filesystem::path &start) = 0;
};

/// Names without an extension get "nvp". Whether an existing file may be overwritten is the
/// program's own question, so the dialogs don't ask it.
class QtFileDialogs final : public FileDialogs {
  public:
    std::optional<std::filesystem::path> openProject() override;
    std::optional<std::filesystem::path> newProject() override;
    std::optional<std::filesystem::path> saveProjectAs() override;
    std::optional<std::filesystem::path> chooseFolder(const std::string &title,
                                                      const std::filesystem::path &start) override;
};

} // namespace nv
