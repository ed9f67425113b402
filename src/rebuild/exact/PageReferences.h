#pragma once

#include "rebuild/exact/Reference.h"
#include "rebuild/exact/TextEdit.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What a page names and what it does by itself, as an HTML parser without scripts finds it.
struct PageScan {
    /// The first base element's address as it is meant; empty for none. It may be one that browsers
    /// pass over.
    std::string base;
    /// What content policies of "meta" elements in front of it say of it, see isBaseAllowed().
    std::vector<std::string> baseSources;
    bool isQuirky = false; ///< shown as old browsers did, by its document type
    /// In the order of the text; addresses that are empty, data, or a place in the page itself are
    /// not among them.
    std::vector<Reference> references;
    /// Takes off what would run, lead away, or fetch without being shown: scripts, handlers,
    /// refreshing, content policies, the base, preloads, the tags of "noscript" (what they hold
    /// shows). Brings lazy images to where browsers look for them.
    std::vector<TextEdit> disarming;
    std::size_t headAt = 0; ///< where what is ours goes in: first thing in the head
    std::size_t bodyAt = 0; ///< first thing in the body; npos for a page of frames
    /// Last thing in the body, where it changes the least of a layout (a banner stands here); the
    /// same as bodyAt where the page's body isn't ended, as in one that was cut short.
    std::size_t endAt = 0;

    static constexpr std::size_t npos = std::string_view::npos;
};

/// `html` is UTF-8: a page, or a picture in SVG, into which nothing of ours can be put (headAt and
/// bodyAt are npos). `file` is its name in failures. Time is in proportion to the text. Throws
/// PageTooLarge.
PageScan scanPage(std::string_view html, const std::filesystem::path &file);

/// Of a style sheet, in the order of the text.
std::vector<Reference> scanStyle(std::string_view css);

/// The text that stands for the reference at its place: `address` with the character references,
/// CSS escapes and signs for commas that are needed there, so that it is read as it is meant, and
/// what stands around it as before. ASCII, whatever the address. `source` is the text that was
/// scanned.
std::string spelled(const Reference &reference, std::string_view address, std::string_view source);

} // namespace nv
