#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A text in one case without its codings, and the way back to the bytes that each letter was
/// written with. Percent codes, character references of HTML and the escapes of styles and scripts
/// are undone once; blanks of all kinds, one or many, are one, and what has no width is passed
/// over.
struct PlainStream {
    enum class Codes {
        undo,      ///< digits behind a backslash are hexadecimal, as styles write them
        undoOctal, ///< or octal, as scripts do
        keep,
    };
    explicit PlainStream(std::string_view text, Codes codes = Codes::undo);

    std::string plain;
    /// For each byte of `plain` where its letter begins in the text; at last the text's end.
    std::vector<std::uint32_t> origin;
    bool hadCodes = false;
};

/// Whether digits behind a backslash may be octal ones: then the text can be read in two ways.
bool mayHaveOctal(std::string_view text);

/// The text without one layer of the same codings, its case and its "+" kept.
std::string withoutCodes(std::string_view text);

/// What stands between the tags of a page, without them.
std::string withoutMarkup(std::string_view text);

} // namespace nv
