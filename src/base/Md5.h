#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

// MD5s are lower-case hexadecimal, 32 digits.

std::string md5Hex(std::string_view bytes);

/// MD5 of a whole file, read once in blocks. `goOn` is asked after each block with the number of
/// bytes read so far; false ends the reading and gives nothing. Throws FileFailure.
std::optional<std::string> fileMD5(const std::filesystem::path &path,
                                   const std::function<bool(std::uint64_t)> &goOn = {});

/// MD5 of the URL's text in the ANSI code page, not case-folded: links and history rows are
/// matched by this value.
std::string hashOfUrl(std::string_view url);

} // namespace nv
