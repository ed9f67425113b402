#include "reports/case/CaseTagRows.h"

#include "db/marks/RecordTags.h"

#include <algorithm>
#include <utility>

namespace nv {

CaseTagRows::CaseTagRows(SQLite::Database &project) {
    const std::vector<NamedTag> tags = NamedTags(project).list();
    m_tags.reserve(tags.size());
    for (const NamedTag &tag : tags) {
        std::vector<std::int32_t> rows = RecordTags(project).rowsOf(tag.tagID);
        if (!rows.empty())
            m_tags.push_back({tag, std::move(rows)});
    }
}

bool CaseTagRows::has(std::size_t tag, std::int32_t id) const {
    return std::ranges::binary_search(m_tags[tag].rows, id);
}

bool CaseTagRows::hasAny(std::int32_t id) const {
    return std::ranges::any_of(
        m_tags, [id](const Tag &each) { return std::ranges::binary_search(each.rows, id); });
}

} // namespace nv
