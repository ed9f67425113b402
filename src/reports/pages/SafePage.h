#pragma once

#include "reports/pages/References.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

// Whoever gets a page that was cached opens it in an ordinary browser, perhaps online. It must not
// reach the site it came from then: that would tell the site of the examination, and show what it
// holds today among what was found. So only what is known to be harmless leaves, see
// docs/reports.md.

/// How the file will be read, by its name.
enum class PageForm : std::uint8_t {
    html,
    xhtml, ///< as XML
    svg,   ///< a picture, of which browsers make a page too; as XML
};

/// The page read by a parser and written anew: elements and attributes that are known, references
/// that stay within the page's folder, and a policy in front for what a browser may know besides.
/// Whatever reads it finds the same page, and guarding it again changes nothing. Text in UTF-8.
std::string guardedPage(std::string_view html, PageForm form, const References &references);

/// A page that was guarded already, with the references as `references` has them now; nothing when
/// it is beyond a limit.
std::optional<std::string> withReferences(std::string_view guarded, PageForm form,
                                          const References &references);

/// A page that shows a text as it stands.
std::string textPage(std::string_view text, PageForm form);

/// Guards all files of a folder that a browser may take for a page or a style, of which `page` is
/// the one to open. What is neither of these, nor a picture, a font, a sound, a film or a text, is
/// taken out. A folder that can't be guarded whole is removed. Throws FileFailure.
void guardFolder(const std::filesystem::path &page);

} // namespace nv
