#pragma once

#include "base/ByteView.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// The library's header needs GLib's before it.
#include <glib.h>
#include <mdbtools.h>

namespace nv::jet {

/// The file, or a table that was asked for, can't be read at all.
class JetFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// One field of a row as it is stored. Lives until the next page is read.
struct Field {
    bool isNull = true; ///< the whole value of a field of type bool
    ByteView bytes;
    std::uint64_t place = 0; ///< of the first one in the file, 0-based
};

/// A row, or why it can't be read.
struct Row {
    std::uint64_t place = 0; ///< of its entry in the file, 0-based
    std::vector<Field> fields;
    std::string damage;
};

/// A Jet database, opened for reading only.
class JetFile {
  public:
    /// Throws JetFailure.
    explicit JetFile(const std::filesystem::path &path);

    MdbHandle &handle() const { return *m_handle; }
    /// Before Jet 4 text was kept in a code page.
    bool hasUnicode() const { return m_handle->f->jet_version != MDB_VER_JET3; }
    std::uint64_t pageSize() const { return static_cast<std::uint64_t>(m_handle->fmt->pg_size); }
    bool endsAmidPage() const { return m_size % pageSize() != 0; }
    /// How many bytes of the page the file has. The library takes those that are missing for zeros.
    std::uint64_t bytesOf(std::uint64_t page) const {
        return begins(page) ? std::min(pageSize(), m_size - page * pageSize()) : 0;
    }
    /// True for the last page too where the file ends amid it.
    bool begins(std::uint64_t page) const { return page * pageSize() < m_size; }
    /// The row that a reference (page << 8 | row) leads to; nothing when there is none. It stays
    /// valid until the next reference is followed.
    std::optional<ByteView> target(std::uint32_t reference) const;

  private:
    struct Close {
        void operator()(MdbHandle *handle) const { mdb_close(handle); }
    };
    std::unique_ptr<MdbHandle, Close> m_handle;
    std::uint64_t m_size;
};

} // namespace nv::jet
