#include "readers/sqlite/VisitTable.h"

#include "base/Trap.h"
#include "readers/sqlite/KeptMessage.h"
#include "readers/sqlite/TableCursor.h"

#include <array>

namespace nv {

bool VisitTable::read(EvidenceDatabase &database, const Columns &columns, const GoOn &goOn) {
    KeptMessage failure;
    const bool wentOn = trapped(failure, Severity::Warning, "", "", true,
                                [&] { return readAll(database, columns, goOn); });
    if (!failure.text.empty())
        m_loss = failure.text;
    return wentOn;
}

bool VisitTable::readAll(EvidenceDatabase &database, const Columns &columns, const GoOn &goOn) {
    constexpr std::uint64_t kRowsBetweenQuestions = 1024;
    constexpr std::size_t kPage = 0;
    m_isThere = database.hasTable(columns.table);
    TableCursor cursor(database, columns.table, std::array{columns.page});
    while (cursor.next()) {
        if (cursor.given() % kRowsBetweenQuestions == 0 && !goOn(cursor.fraction()))
            return false;
        if (!cursor.isReadable())
            continue;
        const Row row = cursor.row();
        const std::optional<std::int64_t> page = row.number(kPage);
        if (!page) {
            ++m_withoutPage;
            continue;
        }
        ++m_pages[*page].visits;
    }
    if (cursor.lostRows())
        m_loss = cursor.lossText();
    return true;
}

const VisitTable::Page *VisitTable::listed(std::int64_t page) {
    const auto found = m_pages.find(page);
    if (found == m_pages.end())
        return nullptr;
    found->second.isListed = true;
    return &found->second;
}

std::uint64_t VisitTable::furtherVisits() const {
    std::uint64_t further = 0;
    for (const auto &[id, page] : m_pages)
        further += page.isListed ? page.visits - 1 : 0;
    return further;
}

std::uint64_t VisitTable::visitsOfUnlistedPages() const {
    std::uint64_t visits = m_withoutPage;
    for (const auto &[id, page] : m_pages)
        visits += page.isListed ? 0 : page.visits;
    return visits;
}

} // namespace nv
