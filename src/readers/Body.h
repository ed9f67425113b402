#pragma once

#include "base/Storage.h"
#include "readers/ByteSource.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// What of a cached body is kept in memory. Nearly all are smaller, and need no scratch file; a
/// larger one lies in a file, so that memory stays bounded. In bytes.
inline constexpr std::uint64_t kBodyInMemory = std::uint64_t{1} << 20;

/// The content of a record: bytes in memory, or those of a file of the evidence or of scratch.
struct Body {
    /// Where bytes in memory would lie, for those who have to name them.
    std::filesystem::path file;
    bool isInMemory = false;
    Bytes bytes;
    std::string unpackedFrom = {}; ///< the codings that were undone, as "gzip, br"
    std::string doubt = {}; ///< why it isn't the whole content as it was served; mostly empty

    std::string_view raw() const { return ByteView(bytes).raw(); }
};

/// Takes the bytes of a body one after the other: in memory as long as they are few, in a scratch
/// file from then on. What isn't taken leaves no file behind. Throws StorageFailure.
class BodyTarget {
  public:
    /// More than `inMemory` bytes go to `file`, whose folder is the program's own.
    BodyTarget(std::filesystem::path file, std::uint64_t inMemory);
    ~BodyTarget();
    BodyTarget(const BodyTarget &) = delete;
    BodyTarget &operator=(const BodyTarget &) = delete;

    void write(std::string_view bytes);
    /// The same; they are taken over where nothing stands before them.
    void write(Bytes &&bytes);
    /// Up to `count` bytes of `from`, beginning at `offset` (0-based). Returns how many there were.
    /// Throws FileFailure when they can't be read.
    std::uint64_t copy(const ByteSource &from, std::uint64_t offset, std::uint64_t count);

    const std::filesystem::path &file() const { return m_body.file; }
    /// Ends the writing. Its file is the caller's to remove.
    [[nodiscard]] Body take();

  private:
    void spill();

    Body m_body;
    std::uint64_t m_inMemory;
    std::optional<FileWriter> m_file;
};

} // namespace nv
