#pragma once

#include "base/ByteView.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>

namespace nv {

/// An open file, of the evidence (EvidenceFile) or of the program's own (ScratchFile), read where a
/// format's addresses point. Each call reads anew: nothing of the file is kept.
class ByteSource {
  public:
    virtual ~ByteSource() = default;
    virtual const std::filesystem::path &path() const = 0;
    /// In bytes, when the file was opened.
    virtual std::uint64_t size() const = 0;
    /// Up to `count` bytes from `offset` (0-based), fewer where the file ends. Throws FileFailure.
    virtual Bytes read(std::uint64_t offset, std::uint64_t count) const = 0;
};

/// Hands the file on in blocks until `take` says false; true when it was read to its end. Throws
/// FileFailure.
[[nodiscard]] bool inBlocks(const ByteSource &file,
                            const std::function<bool(std::string_view block)> &take);

/// Copies the file over `to`, which is the program's own. Throws FileFailure when it can't be read,
/// StorageFailure when the copy can't be written.
void copyTo(const ByteSource &file, const std::filesystem::path &to);

} // namespace nv
