#pragma once

#include "readers/ByteSource.h"

#include <cstdint>
#include <map>

namespace nv {

/// An SQLite file with the pages that stand in the log beside it ("-wal") in place of its own, as
/// far as the log was committed. The sums of the log aren't looked at, and a journal isn't, so that
/// a caller has to check what it gets. Numbers are big-endian.
///   log   = magic:u32 version:u32 page size:u32 turn:u32 salt:u32{2} sum:u32{2} frame{}
///   frame = page:u32 pages after a commit:u32 salt:u32{2} sum:u32{2} bytes of the page
class LoggedFile final : public ByteSource {
  public:
    /// `log` may be null. Both must outlive this. Throws FileFailure.
    LoggedFile(const ByteSource &file, const ByteSource *log);

    const std::filesystem::path &path() const override { return m_file.path(); }
    std::uint64_t size() const override { return m_size; }
    Bytes read(std::uint64_t offset, std::uint64_t count) const override;

    /// The file in which the byte at the offset lies, and where.
    struct Place {
        const ByteSource *file = nullptr;
        std::uint64_t offset = 0;
    };
    Place placeOf(std::uint64_t offset) const;

  private:
    void readLog(const ByteSource &log);

    const ByteSource &m_file;
    const ByteSource *m_log;
    std::uint64_t m_size;
    std::uint64_t m_pageSize = 0;
    std::map<std::uint64_t, std::uint64_t> m_pages; ///< where they lie in the log, by number from 1
};

} // namespace nv
