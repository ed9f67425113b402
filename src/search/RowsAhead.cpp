#include "search/RowsAhead.h"

#include <cstddef>
#include <utility>

namespace nv {

namespace {

constexpr std::size_t kMostRows = 1000;
constexpr std::size_t kMostBytes = 4 << 20; // a page can be as long itself

std::size_t sizeOf(const SearchedRow &row) {
    std::size_t size = 0;
    for (const std::string &text : row.texts)
        size += text.size();
    return size;
}

} // namespace

RowsAhead::RowsAhead(SearchedRowReader &reader) : m_reader(reader) {
    readOn();
}

void RowsAhead::readOn() {
    m_coming = std::async(std::launch::async, [this] { return batch(); });
}

RowBatch RowsAhead::batch() {
    RowBatch batch;
    batch.rows.reserve(kMostRows);
    std::size_t bytes = 0;
    while (batch.rows.size() < kMostRows && bytes < kMostBytes) {
        m_isAtEnd = !m_reader.next();
        if (m_isAtEnd)
            break;
        batch.rows.push_back({m_reader.row(), printOf(m_reader.row())});
        bytes += sizeOf(m_reader.row());
    }
    if (m_reader.unread().size() != std::exchange(m_toldUnread, m_reader.unread().size()))
        batch.unread = m_reader.unread();
    batch.fraction = m_reader.fraction();
    return batch;
}

RowBatch RowsAhead::next() {
    if (!m_coming.valid())
        return {};
    RowBatch batch = m_coming.get();
    if (!m_isAtEnd)
        readOn();
    return batch;
}

} // namespace nv
