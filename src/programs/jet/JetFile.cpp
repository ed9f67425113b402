#include "programs/jet/JetFile.h"

namespace nv::jet {

namespace {

/// A row's offset on its page without its two flags.
constexpr int kOffsetMask = 0x1FFF;

} // namespace

JetFile::JetFile(const std::filesystem::path &path)
    : m_handle(mdb_open(path.c_str(), MDB_NOFLAGS)), m_size(std::filesystem::file_size(path)) {
    if (!m_handle)
        throw JetFailure("the file is no Jet database");
}

std::optional<ByteView> JetFile::target(std::uint32_t reference) const {
    void *page = nullptr;
    int start = 0;
    std::size_t length = 0;
    const std::uint64_t there = bytesOf(reference >> 8);
    if (there == 0 ||
        mdb_find_pg_row(m_handle.get(), static_cast<int>(reference), &page, &start, &length) != 0)
        return std::nullopt;
    const ByteView bytes(std::span(static_cast<const std::uint8_t *>(page), there));
    const auto offset = static_cast<std::uint64_t>(start & kOffsetMask);
    return bytes.has(offset, length) ? std::optional(bytes.sub(offset, length)) : std::nullopt;
}

} // namespace nv::jet
