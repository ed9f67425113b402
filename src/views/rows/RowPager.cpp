#include "views/rows/RowPager.h"

#include "base/NoLog.h"
#include "base/Succeeds.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace nv {

namespace {
constexpr std::string_view kProcedure = "MainForm.LoadURLs()";
}

RowPager::RowPager(SQLite::Database &database, FailureLog &log, const RowIds &ids)
    : m_database(database), m_log(log), m_ids(ids), m_trap(log, kProcedure) {}

RowPager::~RowPager() = default;

void RowPager::setColumns(std::span<const UrlColumn> columns) {
    // What is read already stays; nothing is read that nobody asks for.
    const bool held =
        m_reader && std::all_of(columns.begin(), columns.end(),
                                [this](UrlColumn column) { return m_held.at(indexOf(column)); });
    if (held)
        return;
    m_columns.assign(columns.begin(), columns.end());
    m_held.fill(false);
    for (const UrlColumn column : columns)
        m_held.at(indexOf(column)) = true;
    dropPages();
}

void RowPager::need(UrlColumn column) {
    if (m_held.at(indexOf(column)))
        return;
    std::vector<UrlColumn> more = m_columns;
    more.push_back(column);
    setColumns(more);
}

void RowPager::dropPages() {
    m_pages.clear();
    m_reader.reset();
}

void RowPager::forget() {
    dropPages();
    m_unread.clear();
}

void RowPager::prepare() {
    if (m_reader)
        return;
    NoLog unheard; // it is thrown again
    const auto failure = failureOf(unheard, kProcedure, [this] {
        m_reader = std::make_unique<RowReader>(m_database, m_columns);
    });
    if (failure)
        throw std::runtime_error(fmt::format("the rows can't be read: {}. An upgrade brings the "
                                             "project to the columns of this build",
                                             *failure));
}

const UrlRow *RowPager::row(std::size_t place) {
    if (place >= m_ids.size())
        return nullptr;
    const std::size_t wanted = place / kPageRows;
    auto page = std::find_if(m_pages.begin(), m_pages.end(),
                             [wanted](const Page &known) { return known.number == wanted; });
    if (page == m_pages.end()) {
        if (m_pages.size() == kPages)
            m_pages.pop_back();
        m_pages.push_front(readPage(wanted));
        page = m_pages.begin();
    }
    // In front stands the page asked for last; the one that goes is the one unasked for longest.
    m_pages.splice(m_pages.begin(), m_pages, page);
    return &page->rows.at(place % kPageRows);
}

const UrlRow *RowPager::known(std::size_t place) const {
    for (const Page &page : m_pages)
        if (page.number == place / kPageRows && place % kPageRows < page.rows.size())
            return &page.rows[place % kPageRows];
    return nullptr;
}

RowPager::Page RowPager::readPage(std::size_t number) {
    const std::size_t first = number * kPageRows;
    const std::size_t end = std::min(first + kPageRows, m_ids.size());
    Page page{number, std::vector<UrlRow>(end - first)};
    ++m_pagesRead;
    // Without a reader every row of the page is one that can't be read, and is told so.
    const bool ready =
        succeeds(m_log, Severity::Warning, kProcedure, kContactSupport, [this] { prepare(); });
    for (std::size_t at = first; at < end; ++at) {
        UrlRow &row = page.rows[at - first];
        row.id = UrlId{m_ids[at]};
        const auto read = [&] {
            row = m_reader->read(row.id);
            if (!row.found)
                throw std::runtime_error("it is listed, but the table doesn't hold it");
        };
        if (!ready || !m_trap.run(static_cast<std::uint64_t>(m_ids[at]), read))
            m_unread.insert(m_ids[at]);
    }
    return page;
}

void RowPager::noteTagged(UrlId id, bool tagged) {
    for (Page &page : m_pages)
        for (UrlRow &row : page.rows)
            if (row.id == id)
                row.tagged = tagged;
}

} // namespace nv
