#include "readers/chrome/history/HistoryBeside.h"

#include "readers/sqlite/DatabaseBeside.h"
#include "readers/sqlite/TableCursor.h"

#include <array>

namespace nv {

namespace {

constexpr std::array<std::string_view, 1> kColumns = {"url"};

} // namespace

HistoryBeside::HistoryBeside(ReadContext &ctx, std::string_view procedure) {
    for (const char *name : {"History", "Archived History"}) {
        const Beside found = readBeside(ctx, name, procedure, [this](EvidenceDatabase &database) {
            TableCursor cursor(database, "urls", kColumns);
            while (cursor.next())
                if (cursor.isReadable())
                    m_urls.insert(cursor.row().text(0));
        });
        m_isRead |= found == Beside::read;
        m_isUnreadable |= found == Beside::notReadable;
    }
}

bool HistoryBeside::holds(const std::string &url) {
    const bool isHeld = m_urls.contains(url);
    ++(isHeld ? m_held : m_missing);
    return isHeld;
}

void HistoryBeside::note(ReadResult &result) const {
    if (m_held > 0)
        result.noted["pages that the history lists have no row of their own"] += m_held;
    if (m_isUnreadable)
        result.noted["the history beside the file can't be read: it may list these pages"] +=
            m_missing;
    else if (!m_isRead)
        result.noted["no history lies beside the file: one may list these pages"] += m_missing;
}

} // namespace nv
