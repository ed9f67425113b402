#pragma once

#include "markup/HtmlDocument.h"
#include "readers/ByteSource.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A cached page larger than this isn't parsed: those that people wrote stay far below, and the
/// parser takes many times the memory. In bytes.
inline constexpr std::uint64_t kPageBytes = std::uint64_t{8} << 20;
/// Of one larger than this not even the text is taken. In bytes.
inline constexpr std::uint64_t kPageTextBytes = std::uint64_t{64} << 20;

/// What a browser's document says of a page, in UTF-8.
struct PageContent {
    /// The text between the tags of "body" as a browser shows it: no script, no style, no comment,
    /// white space as one blank, and a line break where a block begins or ends.
    std::string body;
    /// The targets of "a" and "area" in their order, as they stand in the page: what they lead to
    /// depends on the page's address, which is the record's. Without empty ones.
    std::vector<std::string> links;
};

/// The text of a page file in UTF-8. Throws FileFailure, and PageTooLarge for more than
/// kPageTextBytes.
std::string readPageText(const ByteSource &file, std::string_view httpHeader);

/// Reads a page in UTF-8; `file` is its name in failures. Throws PageTooLarge.
PageContent readPageContent(std::string_view html, const std::filesystem::path &file);

/// The body's text of one that readPageContent() refuses, without its links: no word may be lost to
/// a search because a page is large or deep. Throws PageTooLarge when it can't be had either.
PageContent readFlatContent(std::string_view html, const std::filesystem::path &file);

} // namespace nv
