#pragma once

#include "readers/ByteSource.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nv {

class BodyTarget;

// The files of one entry of Chromium's Simple cache, opened. Numbers are little-endian.
//   file 0 = head key stream1 end stream0 [SHA-256 of the key] end
//   file 1 = head key stream2 end
//   file s = head key (stretch byte[length])*
//   head    = FCFB6D1BA7725C30:u64 version:u32 length:u32 hash:u32 u32
//   end     = F4FA6F45970D41D8:u64 flags:u32 crc:u32 size:u32 u32
//   stretch = EB97BF016553676B:u64 offset:i64 length:i64 crc:u32 u32

/// A stretch of a file with what its checksum has to be, where one is stored.
struct SimpleStream {
    std::uint64_t at = 0;
    std::uint64_t size = 0;
    std::optional<std::uint32_t> crc;
};

/// What all files of an entry begin with.
struct SimpleHead {
    static constexpr std::uint64_t kSize = 24;

    std::uint32_t version = 0;
    std::uint32_t keyHash = 0;
    std::string key; ///< as its bytes are

    std::uint64_t end() const { return kSize + key.size(); }
};

struct SimpleEntry {
    SimpleStream body;  ///< stream 1
    SimpleStream head;  ///< stream 0
    std::string damage; ///< why they were not found from the file's end; empty otherwise
};

struct SimpleStretch {
    std::uint64_t offset = 0; ///< in the whole body
    SimpleStream bytes;
    std::uint64_t skipped = 0; ///< of the bytes' start: an earlier stretch has these

    std::uint64_t first() const { return offset + skipped; } ///< in the whole body
    std::uint64_t at() const { return bytes.at + skipped; }  ///< in the file
    std::uint64_t size() const { return bytes.size - skipped; }
};

struct SimpleStretches {
    std::vector<SimpleStretch> list; ///< in the order of their offsets
    std::string damage;
    std::uint64_t overlapping = 0; ///< how many lie over others
    std::uint64_t size() const;    ///< of all of them, in bytes, each place once
};

// These throw FileFailure.

/// Nothing when the file is none of this cache or ends before its key does.
std::optional<SimpleHead> simpleHeadOf(const ByteSource &file);
SimpleEntry simpleEntryOf(const ByteSource &file, const SimpleHead &head);
/// Stream 2, of file 1.
std::optional<SimpleStream> simpleLastStreamOf(const ByteSource &file, const SimpleHead &head);
SimpleStretches simpleStretchesOf(const ByteSource &file, const SimpleHead &head);
/// True also where no checksum is stored. `copy`, where there is one, gets the stream's bytes.
bool hasItsChecksum(const ByteSource &file, const SimpleStream &stream, BodyTarget *copy = nullptr);

} // namespace nv
