#pragma once

#include <cstddef>
#include <cstdint>

// Caps that keep hostile files from taking the program down, each with its reason.
namespace nv::limits {

/// Content tests look no further: every signature stands in the first block of its format.
inline constexpr std::size_t kHeadBytes = std::size_t{64} << 10;

/// Hash tables of one Internet Explorer index. A chain that loops ends here; earlier cases were
/// counted with this cap.
inline constexpr std::size_t kIndexHashTables = 201;

/// What a packed body may unpack to. Cached bodies are pages, scripts and pictures of a few MB; a
/// body that grows beyond this is built to fill the disk and stays packed.
inline constexpr std::uint64_t kUnpackedBytes = std::uint64_t{256} << 20;

/// How long the program that reads Jet databases may say nothing: it writes a line a row, so that
/// silence means that a damaged file keeps it busy for nothing.
inline constexpr int kJetSilenceMs = 60'000;

/// A row of it has 16 values of at most 1 MB, whose bytes take up to six in JSON.
inline constexpr std::size_t kJetLineBytes = std::size_t{128} << 20;

} // namespace nv::limits
