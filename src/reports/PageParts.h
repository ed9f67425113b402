#pragma once

#include "markup/PageText.h"
#include "reports/References.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace nv {

/// What a browser takes a file for that it opens from a folder.
enum class PartKind : std::uint8_t {
    page,
    text, ///< of a name that says nothing: browsers make a page of it where it looks like one
    xhtml,
    svg,
    xml, ///< may name a program that makes a page of it
    style,
    harmless, ///< shown, drawn or played, and never a page
    unknown,  ///< bytes that nothing of a guarded page shows
};

struct PageParts {
    PageFolder folder; ///< without what is unknown
    std::map<std::filesystem::path, PartKind> kinds;
    std::string charset; ///< of the page; its styles have the same where they name none
};

/// A page in UTF-8. Of one that names no encoding browsers look whether it is UTF-8 when they open
/// it as a file.
DecodedPage decodedPart(const Bytes &bytes);

/// The files of a folder of which `page` is the one to open. Throws FileFailure.
PageParts partsBeside(const std::filesystem::path &page);

} // namespace nv
