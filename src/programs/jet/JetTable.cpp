// Page = kind:u8@0 (1 data) owner:u32@4 rows:u16@12 entry[rows]:u16@14      numbers little-endian
// An entry is the row's offset on the page, with two flags:
//   0x8000  not met in a walk: another page refers to the row, or, with both flags, it is deleted
//   0x4000  the row lies elsewhere: here is only the reference (row:u8 page:u24)
// The rows lie from the end of the page downwards.

#include "programs/jet/JetTable.h"

#include "base/Text.h"
#include "programs/jet/JetPages.h"
#include "programs/jet/JetValue.h"

#include <algorithm>
#include <tuple>

namespace nv::jet {

namespace {

constexpr int kOffsetMask = 0x1FFF;
constexpr int kDeleted = 0x8000;
constexpr int kElsewhere = 0x4000;

/// Rows that moved twice refer to a row that refers on. More steps than this lead in a circle.
constexpr int kReferenceSteps = 8;

/// Where every file has the definition of its list of tables.
constexpr std::uint32_t kListPage = 2;
/// In the list: the type of a table, and the part of an id that is the definition's page.
constexpr std::int64_t kTableType = 1;
constexpr std::int64_t kTypeMask = 0x7F;
constexpr std::int64_t kPageMask = 0xFFFFFF;

} // namespace

JetTable JetTable::named(const JetFile &file, std::string_view name) {
    JetTable list(file, kListPage);
    const auto idAt = list.column("Id");
    const auto nameAt = list.column("Name");
    const auto typeAt = list.column("Type");
    if (!idAt || !nameAt || !typeAt)
        throw JetFailure("the file's list of tables can't be read");
    std::optional<std::uint32_t> page;
    list.eachRow([&](const Row &row) {
        if (page || !row.damage.empty())
            return;
        const auto value = [&](std::size_t column) {
            return valueOf(file, list.typeOf(column), row.fields.at(column)).json;
        };
        const auto [id, text, type] = std::tuple(value(*idAt), value(*nameAt), value(*typeAt));
        if (id.is_number_integer() && type.is_number_integer() && text.is_string() &&
            (type.get<std::int64_t>() & kTypeMask) == kTableType &&
            equalsNoCase(text.get<std::string>(), name))
            page = static_cast<std::uint32_t>(id.get<std::int64_t>() & kPageMask);
    });
    if (!page)
        throw JetFailure("the file has no table \"" + std::string(name) + "\"");
    return {file, *page};
}

JetTable::JetTable(const JetFile &file, std::uint32_t definitionPage)
    : m_file(file), m_entry(std::make_unique<MdbCatalogEntry>()) {
    m_entry->mdb = &file.handle();
    m_entry->object_type = MDB_TABLE;
    m_entry->table_pg = definitionPage;
    if (file.begins(definitionPage))
        m_table.reset(mdb_read_table(m_entry.get()));
    if (!m_table || mdb_read_columns(m_table.get()) == nullptr || m_table->columns->len == 0)
        throw JetFailure("the definition of a table can't be read");
    m_rowsCounted = m_table->num_rows;
    // The library fills one for each column, however many the definition says there are.
    m_fields.resize(std::max<std::size_t>(m_table->columns->len, MDB_MAX_COLS));
}

MdbColumn &JetTable::columnAt(std::size_t index) const {
    return *static_cast<MdbColumn *>(g_ptr_array_index(m_table->columns, index));
}

std::optional<std::size_t> JetTable::column(std::string_view name) const {
    for (std::size_t i = 0; i < m_table->columns->len; ++i)
        if (equalsNoCase(columnAt(i).name, name))
            return i;
    return std::nullopt;
}

// The library's own walk takes a damaged row for none, and gives rows that another page refers to
// where they lie, whether or not anything refers to them. So only its knowledge of rows and columns
// is used.
void JetTable::eachRow(const std::function<void(const Row &row)> &take) {
    std::uint64_t sound = 0;
    const auto count = [&](const Row &row) {
        sound += row.damage.empty() ? 1 : 0;
        take(row);
    };
    const std::vector<std::uint32_t> listed = listedPages(m_file, *m_table);
    for (const std::uint32_t page : listed)
        readPage(page, count);
    // Pages that the table gave up still name it, so the others are looked at only in need.
    const std::uint64_t soundListed = sound;
    if (soundListed < m_rowsCounted)
        for (const std::uint32_t page : unlistedPages(m_file, *m_table, listed))
            readPage(page, count);
    m_unlisted = sound - soundListed;
}

std::uint64_t JetTable::deletedRows() const {
    return m_deleted - std::min(m_deleted, m_referredTo);
}

void JetTable::readPage(std::uint32_t page, const std::function<void(const Row &row)> &take) {
    MdbHandle &handle = m_file.handle();
    mdb_read_pg(&handle, page);
    const int first = handle.fmt->row_count_offset + 2;
    const int rows = mdb_get_int16(handle.pg_buf, handle.fmt->row_count_offset);
    int lowest = static_cast<int>(m_file.pageSize()); // where the rows met so far begin
    for (int i = 0; i < rows; ++i) {
        mdb_read_pg(&handle, page); // a row that lies elsewhere has turned to its own page
        const int entryAt = first + 2 * i;
        const std::uint64_t place = page * m_file.pageSize() + static_cast<std::uint64_t>(entryAt);
        if (static_cast<std::uint64_t>(entryAt) + 2 > m_file.bytesOf(page))
            return; // the rows that the table counts tell how many are missing
        if (entryAt + 2 > lowest || mdb_get_int16(handle.pg_buf, entryAt) == 0) {
            take({place, {}, "the page's number of rows makes no sense"});
            return;
        }
        const std::optional<Slot> slot = slotAt(i);
        lowest = slot ? slot->start : lowest;
        if (slot && slot->isDeleted) {
            m_deleted += slot->length > 0 ? 1 : 0;
            continue;
        }
        Row row = read(slot.value_or(Slot{}));
        row.place = place;
        take(row);
    }
}

/// Nothing when the entry makes no sense; the library then says why on its error output.
std::optional<JetTable::Slot> JetTable::slotAt(int row) const {
    int entry = 0;
    std::size_t length = 0;
    if (mdb_find_row(&m_file.handle(), row, &entry, &length) != 0)
        return std::nullopt;
    const int start = entry & kOffsetMask;
    if (static_cast<std::uint64_t>(start) + length > m_file.pageSize())
        return std::nullopt;
    return Slot{start, length, (entry & kDeleted) != 0, (entry & kElsewhere) != 0};
}

Row JetTable::read(const Slot &slot) {
    Row row;
    if (slot.length == 0)
        row.damage = "its entry on the page makes no sense";
    else if (slot.isElsewhere)
        row = readElsewhere(slot);
    else
        crack(slot, row);
    return row;
}

Row JetTable::readElsewhere(const Slot &slot) {
    MdbHandle &handle = m_file.handle();
    Row result;
    Slot at = slot;
    for (int step = 0; step < kReferenceSteps && at.isElsewhere && at.length >= 4; ++step) {
        const auto reference = static_cast<std::uint32_t>(mdb_get_int32(handle.pg_buf, at.start));
        at = {};
        if (m_file.begins(reference >> 8) && mdb_read_pg(&handle, reference >> 8) > 0 &&
            handle.pg_buf[0] == MDB_PAGE_DATA)
            at = slotAt(static_cast<int>(reference & 0xFF)).value_or(Slot{});
    }
    if (at.isElsewhere || at.length == 0)
        result.damage = "the reference to its bytes leads nowhere";
    else
        crack(at, result);
    m_referredTo += at.isDeleted ? 1 : 0;
    return result;
}

void JetTable::crack(const Slot &slot, Row &row) {
    MdbHandle &handle = m_file.handle();
    if (static_cast<std::uint64_t>(slot.start) + slot.length > m_file.bytesOf(handle.cur_pg)) {
        row.damage = "the file ends before its bytes do";
        return;
    }
    // A row begins with the number of its columns, which is never 0.
    if (slot.length < 3 || mdb_get_int16(handle.pg_buf, slot.start) == 0 ||
        mdb_crack_row(m_table.get(), slot.start, slot.length, m_fields.data()) < 0) {
        row.damage = "its bytes make no sense";
        return;
    }
    const ByteView page(std::span(handle.pg_buf, m_file.pageSize()));
    row.fields.resize(m_table->columns->len);
    for (std::size_t i = 0; i < row.fields.size(); ++i) {
        const MdbField &field = m_fields[i];
        const auto start = static_cast<std::uint64_t>(std::max(field.start, 0));
        const auto size = static_cast<std::uint64_t>(std::max(field.siz, 0));
        row.fields[i].isNull = field.is_null != 0;
        if (!page.has(start, size))
            continue;
        row.fields[i].bytes = page.sub(start, size);
        row.fields[i].place = handle.cur_pg * m_file.pageSize() + start;
    }
}

} // namespace nv::jet
