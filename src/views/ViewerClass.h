#pragma once

#include <string>

namespace nv {

/// What each pane shows, as text; empty for a blank pane.
struct ViewerClass {
    std::string ReportURL; ///< the last report made
    std::string PicturePath;
    std::string HexFilePath;
    std::string TextContent;
    std::string BrowserURL;

    /// Forgets the record in view. The report belongs to no record and stays.
    void ClearAll() {
        PicturePath.clear();
        HexFilePath.clear();
        TextContent.clear();
        BrowserURL.clear();
    }
};

} // namespace nv
