#pragma once

#include "views/overview/ImportOverview.h"

#include <string>

namespace nv {

/// What the overview doesn't know of itself.
struct ImportPageFacts {
    std::string project; ///< name of its file
    std::string version; ///< of the program that writes the page
};

/// The summary of an import as one HTML file that asks for nothing else and runs nothing: values of
/// evidence are text. It reads on narrow screens and on paper.
std::string importPage(const ImportOverview &overview, const ImportPageFacts &facts);

/// The same as lines of text for a terminal.
std::string importText(const ImportOverview &overview);

} // namespace nv
