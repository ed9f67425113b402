#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace nv {

/// The content of a cached file as text.
struct CachedText {
    std::string text;    ///< UTF-8, as the file has it: control characters among it
    std::string charset; ///< by which it was decoded
    std::string foundIn; ///< what named the charset, in plain words
    std::uint64_t fileSize = 0;
    std::uint64_t shownBytes = 0; ///< of the file

    bool isCut() const { return shownBytes < fileSize; }
};

/// Decodes the first `mostBytes` of the file as pages are: by its byte-order mark, its "meta" tag,
/// the record's HTTP header, else as Windows-1252. Throws FileFailure.
CachedText readCachedText(const std::filesystem::path &file, std::string_view httpHeader,
                          std::uint64_t mostBytes);

/// What is told of a text that wasn't read to its end; empty for a whole one.
std::string cutNotice(const CachedText &text);

} // namespace nv
