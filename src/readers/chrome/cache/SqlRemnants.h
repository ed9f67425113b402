#pragma once

#include "readers/chrome/cache/SqlBodies.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace nv {

/// What is left of entries that the browser deleted from one part of an SQL cache: rows of table
/// `resources` in freed pages and in free space of those in use, and pieces of bodies whose entry
/// isn't there.
class SqlRemnants {
  public:
    using Pieces = std::map<std::int64_t, std::vector<SqlPiece>>; ///< by entry

    struct Part {
        const std::filesystem::path &folder;
        const std::string &file;
        const PagedRows &rows;
        const SqlBodies &bodies;
    };

    /// All must outlive this.
    SqlRemnants(ReadContext &ctx, const Part &part) : m_ctx(ctx), m_part(part) {}

    /// An entry that is there: copies of its row are no remnants.
    void know(std::int64_t id, std::string_view key, std::string_view head);
    /// Saves them all, and gives their number. `strays` are the pieces that no entry has.
    std::int64_t save(Pieces strays, ReadResult &result);

  private:
    void take(const FreedRow &row, std::string_view place);
    std::int64_t bodyOf(const FreedRow &row);
    UrlRecord recordOf(const FreedRow &row, std::uint64_t size) const;
    void saveOrphan(std::int64_t id, std::vector<SqlPiece> pieces);
    void saveWithBody(UrlRecord &record, const std::vector<SqlPiece> &pieces,
                      const SqlBodies::Measure &measure, const FreedRow *row);

    ReadContext &m_ctx;
    Part m_part;
    std::unordered_set<std::int64_t> m_ids;
    std::unordered_set<std::uint64_t> m_contents; ///< of keys and heads, as hashes
    Pieces m_strays;
    std::multimap<std::uint64_t, std::int64_t> m_sizes; ///< of their bodies
    ReadResult *m_result = nullptr;
    std::int64_t m_count = 0;
};

} // namespace nv
