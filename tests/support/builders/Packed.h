#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace nv::test {

/// The text as a gzip stream, the same bytes on every run.
std::string gzip(std::string_view text);
/// In other codings of servers; "deflate" in zlib's form and in the bare one.
std::string zlibDeflate(std::string_view text);
std::string rawDeflate(std::string_view text);
std::string brotli(std::string_view text);
std::string zstd(std::string_view text);
/// A small gzip stream that unpacks to `count` zero bytes.
std::string gzipOfZeros(std::uint64_t count);

} // namespace nv::test
