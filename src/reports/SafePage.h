#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace nv {

// Whoever gets a report opens it in an ordinary browser, perhaps online. What was cached must not
// reach the site it came from then: that would tell the site of the examination, and show what it
// holds today among what was found. See docs/reports.md.

/// A cached page with a policy in front of it that lets it show the files of its own folder and
/// nothing else, and run nothing. What a policy doesn't reach is disarmed in the text: moving on to
/// another page by itself, asking for a name ahead of time, and addresses that become those of a
/// file server when a page is opened as a file.
std::string guardedPage(std::string_view page);

enum class Scripts { keep, remove };

/// Guards all files of a rebuilt page's folder that a browser may take for a page. `remove` turns
/// the scripts of `page`, the rebuilt page, into comments where no rebuild has done so. Throws
/// FileFailure.
void guardFolder(const std::filesystem::path &page, Scripts scripts);

} // namespace nv
