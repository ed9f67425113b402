#pragma once

#include "db/marks/NamedTags.h"
#include "db/schema/Ids.h"

#include <cstdint>
#include <span>
#include <vector>

namespace nv {

/// The tags of a project and the rows that have them: of each row its key is held once a tag.
class CaseTagRows {
  public:
    /// Throws the database's errors.
    explicit CaseTagRows(SQLite::Database &project);

    struct Tag {
        NamedTag tag;
        std::vector<std::int32_t> rows; ///< ascending
    };
    const std::vector<Tag> &tags() const { return m_tags; }
    bool has(std::size_t tag, std::int32_t id) const;
    bool hasAny(std::int32_t id) const;

  private:
    std::vector<Tag> m_tags; ///< those of some row, in their order
};

} // namespace nv
