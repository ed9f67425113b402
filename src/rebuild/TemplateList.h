#pragma once

#include "base/Clock.h"
#include "base/FailureLog.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace nv {

/// A template file as lists show it.
struct TemplateRow {
    std::filesystem::path file;
    std::string webpageTitle;
    std::string method;      ///< "classic" or "exact"; empty when the file doesn't say
    std::size_t files = 0;   ///< stored in it, the page included
    std::uint64_t bytes = 0; ///< of the file itself
    Clock::TimePoint changed;
    /// A file without a page is no template, whatever its name says; it can only be deleted.
    bool isTemplate() const { return files > 0; }
};

/// The templates of the folder by name. A file that can't be read has no title and no files, and is
/// logged.
std::vector<TemplateRow> listTemplates(const std::filesystem::path &folder, FailureLog &log);

} // namespace nv
