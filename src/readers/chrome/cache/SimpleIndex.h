#pragma once

#include "base/ByteView.h"

#include <cstdint>
#include <string>
#include <unordered_map>

namespace nv {

/// The file "the-real-index" of a Simple cache: the list of its entries, by the hash that names
/// their files. Numbers are little-endian.
///   file  = size:u32 crc:u32 magic:u64 version:u32 entries:u64 bytes:u64 [reason:u32]
///           entry{entries} changed:i64
///   entry = hash:u64 used:i64 u64         version 7 and on have a reason for the last writing
/// Caches of service workers have another number in the place of the last use.
struct SimpleIndex {
    std::uint32_t version = 0;
    std::unordered_map<std::uint64_t, std::int64_t> lastUsed; ///< microseconds since 1601, by hash
    std::uint64_t firstAt = 0;                                ///< of the first entry, in the file
    bool isThere = false;
    std::string damage; ///< what is wrong with it; empty for nothing
};

/// Bytes of an entry, with its hash first and its last use behind that.
inline constexpr std::uint64_t kSimpleIndexEntry = 24;

SimpleIndex simpleIndexOf(ByteView file);

} // namespace nv
