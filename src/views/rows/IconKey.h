#pragma once

#include <string>
#include <string_view>

namespace nv {

/// What of a record decides its icon.
struct IconFacts {
    bool isHistory = false;
    bool isBookmark = false;
    bool isCookie = false;
    std::string_view cacheType;
    std::string_view category;
    std::string_view extension; ///< any case
    /// Of a cached answer, any case. It counts in caches of today's browsers only, whose addresses
    /// end in queries or in nothing. Rows of the first ones keep the icons of earlier cases.
    std::string_view mimeType = {};
};

/// The image key of a row's icon: the kind of record first, then the type that its server named,
/// then the extension, then the category. Empty when nothing is known of the record. Lives as long
/// as the program.
std::string_view iconKey(const IconFacts &facts);

/// The pictures that there are; several keys share one.
enum class IconFamily {
    Unknown,
    History,
    Cookie,
    Text,
    Picture,
    Script,
    Stylesheet,
    Audio,
    Spreadsheet,
    Document,
    Presentation,
    Database,
    Video,
    Animation,
    Archive,
    Program,
    DiscImage,
    Pdf,
    WebPage,
    Font,
};
IconFamily iconFamily(std::string_view key);
/// The family's name for resources: "history", "stylesheet", "disc-image", ...
std::string_view familyName(IconFamily family);

} // namespace nv
