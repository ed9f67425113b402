#pragma once

#include "readers/HeldBody.h"
#include "readers/Reader.h"
#include "readers/chrome/cache/ByteRanges.h"
#include "readers/sqlite/PagedRows.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace nv {

/// A piece of a body, by its row of table `blobs`.
struct SqlPiece {
    ByteRange range;
    std::int64_t rowId = 0;
    std::optional<std::int64_t> checksum;
};

/// The bodies in one part of an SQL cache, by the pages of the file: where rows lie in a journal
/// these don't have them, and whoever wants the body asks the database.
class SqlBodies {
  public:
    static constexpr std::size_t kBlob = 5; ///< of the columns of table `blobs`

    struct Measure {
        std::uint64_t size = 0; ///< of the bytes there are
        std::uint64_t told = 0; ///< by the table
        bool isInPages = true;
    };

    /// `rows` must outlive this, as the context must. Throws FileFailure.
    SqlBodies(ReadContext &ctx, const PagedRows &rows, std::string_view procedure);

    /// Puts them into the order of their places, each as long as its bytes are.
    Measure measure(std::vector<SqlPiece> &pieces) const;
    /// Adds to the record what is wrong with the body or missing of it. `bodyEnd` is how long the
    /// whole is to be, 0 when nobody knows.
    void addDoubts(UrlRecord &record, const std::vector<SqlPiece> &pieces, const Measure &measure,
                   std::uint64_t bodyEnd, ReadResult &result) const;
    /// Keeps the body for those who look into the record that is saved next. A failure is logged.
    void hold(UrlRecord &record, const std::vector<SqlPiece> &pieces,
              std::optional<std::int64_t> keyHash, HeldBody &held, ReadResult &result) const;
    /// Whether the piece has a checksum, and it is the one of its bytes and that key.
    bool isOfKey(const SqlPiece &piece, std::int64_t keyHash) const;

  private:
    bool measure(SqlPiece &piece) const;
    void holdBytes(UrlRecord &record, const std::vector<SqlPiece> &pieces,
                   std::optional<std::int64_t> keyHash, HeldBody &held, ReadResult &result) const;

    ReadContext &m_ctx;
    const PagedRows &m_rows;
    std::string_view m_procedure;
    std::uint64_t m_blobs; ///< first page of the table
    bool m_hasJournal;
};

/// Adds the fact "body", and counts it.
void addDoubt(UrlRecord &record, std::string_view what, std::uint64_t &count);

} // namespace nv
