#pragma once

#include "app/RecordTools.h"

#include <filesystem>
#include <string>

namespace nv {

/// What the Browser pane shows of a record, as a file of the program's own.
struct ShownPage {
    std::filesystem::path file; ///< empty when there is nothing that can be shown
    bool rebuilt = false;
    std::string reason; ///< why there is nothing, in plain words
};

/// The record's rebuilt page when its folder can be had, otherwise a copy of its cached content in
/// a folder by itself: a page is let to the files of its folder, which therefore never is one of
/// evidence.
ShownPage pageToShow(RecordTools &tools, URLClass &record);

} // namespace nv
