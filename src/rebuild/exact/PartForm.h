#pragma once

#include "base/ByteView.h"
#include "db/records/UrlRecord.h"
#include "db/schema/Ids.h"
#include "rebuild/exact/Reference.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace nv {

/// What is made of a cached file beside the page. A record that serves as two of these lies there
/// as two files: a page that is named as a picture must not stand as it is where a frame shows it.
enum class PartForm : std::uint8_t {
    plain, ///< byte by byte
    style,
    page,
    svg,
};

/// How many of its first bytes say what a part is.
inline constexpr std::size_t kPartHead = 1024;

/// What a part is by its use, by what its server said of it, and by its first bytes.
PartForm partForm(RefUse use, std::string_view mimeType, std::string_view head);

/// The MIME type of a part by the extension that partExtension() gave it; empty for what is neither
/// a picture nor subtitles.
std::string_view insideTypeOf(std::string_view extension);

/// Whether the first bytes are those of a page, by the signs that browsers go by.
bool beginsLikePage(std::string_view head);

/// The extension of the part's file: by what it is, so that browsers take the file for it without
/// a server that says so. Never that of a page, a style or a script for a plain part. May be empty.
std::string partExtension(PartForm form, const UrlRecord &record, std::string_view head);

} // namespace nv
