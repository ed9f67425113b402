#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace nv::test {

/// The text as a gzip stream, the same bytes on every run.
std::string gzip(std::string_view text);
/// A small gzip stream that unpacks to `count` zero bytes.
std::string gzipOfZeros(std::uint64_t count);

} // namespace nv::test
