#pragma once

#include "markup/PageText.h"
#include "reports/pages/PageFolder.h"

#include <filesystem>
#include <map>
#include <string>

namespace nv {

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
