#include "readers/chrome/history/PageTable.h"

#include "base/Trap.h"
#include "readers/sqlite/KeptMessage.h"
#include "readers/sqlite/TableCursor.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;

constexpr std::array<std::string_view, 5> kColumns = {"id", "url", "title", "hidden",
                                                      "last_visit_time"};
enum Column : std::size_t { kId, kUrl, kTitle, kHidden, kLastVisit };

} // namespace

bool PageTable::read(EvidenceDatabase &database, TaskMonitor &task) {
    TableCursor cursor(database, "urls", kColumns);
    KeptMessage unread; // whoever makes records of the pages tells of those that can't be read
    RecordTrap trap(unread, "");
    while (cursor.next()) {
        if (!task.advance(cursor.fraction()))
            return false;
        trap.attempt(0, [&] {
            const Row row = cursor.row();
            m_pages.push_back({row.number(kId).value_or(0), row.number(kLastVisit).value_or(0),
                               keep(row.text(kUrl)), keep(row.text(kTitle)), ListedPage::kNoVisit,
                               row.truth(kHidden)});
        });
    }
    if (!std::ranges::is_sorted(m_pages, {}, &ListedPage::id))
        std::ranges::stable_sort(m_pages, {}, &ListedPage::id);
    return true;
}

ListedPage *PageTable::find(std::int64_t id) {
    const auto found = std::ranges::lower_bound(m_pages, id, {}, &ListedPage::id);
    return found == m_pages.end() || found->id != id ? nullptr : &*found;
}

const ListedPage *PageTable::find(std::int64_t id) const {
    const auto found = std::ranges::lower_bound(m_pages, id, {}, &ListedPage::id);
    return found == m_pages.end() || found->id != id ? nullptr : &*found;
}

std::string_view PageTable::keep(std::string_view text) {
    if (m_texts.empty() || m_texts.back().capacity() - m_texts.back().size() < text.size())
        m_texts.emplace_back().reserve(std::max(kBlock, text.size()));
    std::string &block = m_texts.back();
    const std::size_t at = block.size();
    block.append(text);
    return std::string_view(block).substr(at);
}

} // namespace nv
