#pragma once

#include "rebuild/exact/Reference.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

// What is ours in a page that was rebuilt: a policy in front of it, marked places for parts that
// are in no cache, a banner. All of it is ASCII, so that it stands in a page of any encoding, and
// well-formed for pages that are XML.

/// What a browser may fetch for the page: its folder and data, and nothing is run.
std::string_view contentPolicy();

/// For the head of a page: our policy, and the encoding that the page was read in, which browsers
/// can't know without the server's word. `charset` may be empty.
std::string ownHead(std::string_view charset);

/// In front of a style sheet whose encoding only its server or its page said; empty when the sheet
/// itself says it. `foundIn` is decodedStyle()'s.
std::string ownSheetStart(std::string_view charset, std::string_view foundIn);

/// A picture with the address in it, as large as the page draws the one that is missing, else 240
/// by 32 pixels. An address of the kind "data:".
std::string missingPicture(std::string_view address);
/// The same that fills what it is the ground of, and isn't repeated over it.
std::string missingBackground(std::string_view address);

/// What stands for a part that is in no cache: a picture or a page with its address; of a style, a
/// font, a sound an empty one. For links, `address` as it is.
std::string missingPart(RefUse use, std::string_view address, RefForm form = RefForm::attribute);

/// What the banner says. Texts are for people, dates with their time zone.
struct BannerFacts {
    std::vector<std::string> caches; ///< "Chrome Cache: /evidence/Default/Cache"
    std::string address;             ///< the page's
    std::string pageDate;            ///< empty when unknown
    std::string oldestPart;          ///< empty where there are no parts
    std::string newestPart;
    std::size_t found = 0; ///< parts that the caches hold
    std::size_t parts = 0; ///< that the page names
};

/// A banner at the page's edge, which takes no room of the page's own layout. It can be folded and
/// put away without scripts; an address that ends in kBannerOff shows the page without it.
std::string bannerFor(const BannerFacts &facts);
inline constexpr std::string_view kBannerOff = "#nv-rebuilt";

} // namespace nv
