#pragma once

#include <string>

namespace nv {

/// What each pane shows, as text; empty for a blank pane.
struct ViewerContent {
    std::string reportURL; ///< the last report made
    std::string picturePath;
    std::string hexFilePath;
    std::string textContent;
    std::string browserURL;

    /// Forgets the record in view. The report belongs to no record and stays.
    void clearAll() {
        picturePath.clear();
        hexFilePath.clear();
        textContent.clear();
        browserURL.clear();
    }
};

} // namespace nv
