#include "readers/sqlite/PagedRows.h"

#include <algorithm>
#include <set>

namespace nv {

using paged::bigEndian;
using paged::kInnerTable;
using paged::kLeafTable;
using paged::numberOf;
using paged::Value;
using paged::valuesOf;
using paged::varint;

namespace {

constexpr std::string_view kMagic = "SQLite format 3";
constexpr std::uint64_t kFileHead = 100;
constexpr std::uint8_t kInnerIndex = 0x02;
constexpr std::uint8_t kLeafIndex = 0x0A;
/// Pages within each other: a table of any size has fewer.
constexpr int kMostDepth = 20;
/// Schemas of browsers take 3 to 20.
constexpr std::size_t kMostSchemaPages = 400;

} // namespace

PagedRows::PagedRows(const ByteSource &file) : m_file(file) {
    const Bytes head = file.read(0, kFileHead);
    const ByteView view(head);
    if (head.size() < kFileHead || !view.raw().starts_with(kMagic))
        return;
    const std::uint64_t stored = bigEndian(view.sub(16, 2));
    m_pageSize = stored == 1 ? 65536 : stored;
    m_usable = m_pageSize - std::min<std::uint64_t>(view.u8(20), m_pageSize / 2);
    if (m_pageSize < 512)
        m_pageSize = 0;
}

std::optional<PagedRows::Page> PagedRows::page(std::uint64_t number) const {
    if (m_pageSize == 0 || number == 0 || number > m_file.size() / m_pageSize)
        return std::nullopt;
    Page page;
    page.at = (number - 1) * m_pageSize;
    page.bytes = m_file.read(page.at, m_pageSize);
    const ByteView view(page.bytes);
    const std::uint64_t head = number == 1 ? kFileHead : 0;
    if (!view.has(head, 12))
        return std::nullopt;
    page.kind = view.u8(head);
    const bool isInner = page.kind == kInnerTable || page.kind == kInnerIndex;
    page.cells = head + (isInner ? 12 : 8);
    page.count = std::min(bigEndian(view.sub(head + 3, 2)), (m_pageSize - page.cells) / 2);
    page.last = isInner ? bigEndian(view.sub(head + 8, 4)) : 0;
    return page;
}

std::optional<ByteView> PagedRows::cell(const Page &page, std::uint64_t i) const {
    const ByteView view(page.bytes, page.at);
    if (!view.has(page.cells + 2 * i, 2))
        return std::nullopt;
    const std::uint64_t at = bigEndian(view.sub(page.cells + 2 * i, 2));
    return view.has(at, 4) ? std::optional(view.from(at)) : std::nullopt;
}

/// How much of a row stays in its page is SQLite's own rule.
std::optional<PagedRows::Payload> PagedRows::payload(ByteView cell, std::uint64_t at,
                                                     std::uint64_t size, bool isIndex) const {
    const std::uint64_t most = isIndex ? (m_usable - 12) * 64 / 255 - 23 : m_usable - 35;
    const std::uint64_t least = (m_usable - 12) * 32 / 255 - 23;
    std::uint64_t local = size;
    if (size > most) {
        local = least + (size - least) % (m_usable - 4);
        if (local > most)
            local = least;
    }
    const bool goesOn = local < size;
    if (!cell.has(at, local + (goesOn ? 4 : 0)))
        return std::nullopt;
    return Payload{size, cell.sub(at, local), goesOn ? bigEndian(cell.sub(at + local, 4)) : 0};
}

std::uint64_t PagedRows::rootOf(std::string_view name) const {
    std::vector<std::uint64_t> pages{1}; // of the schema's tree, in the order of its rows
    std::set<std::uint64_t> known(pages.begin(), pages.end()); // damaged ones lead back
    std::uint64_t root = 0;
    for (std::size_t i = 0; i < pages.size() && root == 0; ++i) {
        const auto found = page(pages[i]);
        if (found && found->kind == kLeafTable)
            root = rootIn(*found, name);
        for (std::uint64_t child : found ? childrenOf(*found) : std::vector<std::uint64_t>())
            if (pages.size() < kMostSchemaPages && known.insert(child).second)
                pages.push_back(child);
    }
    return root;
}

/// Of an inner page of a table.
std::vector<std::uint64_t> PagedRows::childrenOf(const Page &page) const {
    std::vector<std::uint64_t> children;
    if (page.kind != kInnerTable)
        return children;
    for (std::uint64_t i = 0; i < page.count; ++i)
        if (const auto bytes = cell(page, i))
            children.push_back(bigEndian(bytes->sub(0, 4)));
    children.push_back(page.last);
    return children;
}

std::uint64_t PagedRows::rootIn(const Page &page, std::string_view name) const {
    enum Column : std::size_t { kName = 1, kRoot = 3 };
    for (std::uint64_t i = 0; i < page.count; ++i) {
        const auto bytes = cell(page, i);
        std::uint64_t at = 0;
        const auto size = bytes ? varint(*bytes, at) : std::nullopt;
        const auto id = size ? varint(*bytes, at) : std::nullopt;
        const auto row = id ? payload(*bytes, at, *size, false) : std::nullopt;
        const auto values = row ? valuesOf(row->local) : std::vector<Value>();
        if (values.size() <= kRoot || !row->local.has(values[kRoot].at, values[kRoot].size) ||
            row->local.sub(values[kName].at, values[kName].size).raw() != name)
            continue;
        const ByteView root = row->local.sub(values[kRoot].at, values[kRoot].size);
        if (const std::int64_t number = numberOf(values[kRoot].kind, root); number != 0)
            return static_cast<std::uint64_t>(number);
    }
    return 0;
}

std::vector<std::vector<std::int64_t>> PagedRows::indexRows(std::uint64_t root, std::int64_t first,
                                                            std::size_t most) const {
    std::vector<std::vector<std::int64_t>> rows;
    walkIndex(root, first, most, 0, rows);
    return rows;
}

std::vector<std::int64_t> PagedRows::numbersIn(ByteView cell, bool isInner) const {
    constexpr std::uint64_t kFirstText = 12; // kinds from here on are texts and blobs
    std::uint64_t at = isInner ? 4 : 0;
    const auto size = varint(cell, at);
    const auto row = size ? payload(cell, at, *size, true) : std::nullopt;
    std::vector<std::int64_t> numbers;
    if (!row)
        return numbers;
    const auto values = valuesOf(row->local);
    numbers.reserve(values.size());
    for (const Value &value : values)
        if (value.kind < kFirstText && row->local.has(value.at, value.size))
            numbers.push_back(numberOf(value.kind, row->local.sub(value.at, value.size)));
    return numbers;
}

void PagedRows::walkIndex(std::uint64_t number, std::int64_t first, std::size_t most, int depth,
                          std::vector<std::vector<std::int64_t>> &rows) const {
    const auto found = depth > kMostDepth ? std::nullopt : page(number);
    if (!found || (found->kind != kInnerIndex && found->kind != kLeafIndex))
        return;
    const bool isInner = found->kind == kInnerIndex;
    for (std::uint64_t i = 0; i < found->count && rows.size() < most; ++i) {
        const auto bytes = cell(*found, i);
        std::vector<std::int64_t> numbers =
            bytes ? numbersIn(*bytes, isInner) : std::vector<std::int64_t>();
        if (numbers.empty())
            continue;
        if (isInner && numbers.front() >= first)
            walkIndex(bigEndian(bytes->sub(0, 4)), first, most, depth + 1, rows);
        if (numbers.front() > first)
            return;
        if (numbers.front() == first && rows.size() < most)
            rows.push_back(std::move(numbers));
    }
    if (isInner && rows.size() < most)
        walkIndex(found->last, first, most, depth + 1, rows);
}

std::optional<PagedRows::RowCell> PagedRows::cellFrom(const Page &page, std::int64_t rowId) const {
    const bool isInner = page.kind == kInnerTable;
    for (std::uint64_t i = 0; i < page.count; ++i) {
        const auto bytes = cell(page, i);
        if (!bytes)
            continue;
        std::uint64_t at = isInner ? 4 : 0;
        const auto size = isInner ? std::optional<std::uint64_t>(0) : varint(*bytes, at);
        const std::uint64_t idAt = at;
        const auto id = size ? varint(*bytes, at) : std::nullopt;
        if (id && static_cast<std::int64_t>(*id) >= rowId)
            return RowCell{*bytes, idAt, at, *size, static_cast<std::int64_t>(*id)};
    }
    return std::nullopt;
}

bool PagedRows::atRow(std::uint64_t root, std::int64_t rowId,
                      const std::function<bool(const Payload &row)> &take) const {
    std::uint64_t number = root;
    for (int depth = 0; depth < kMostDepth; ++depth) {
        const auto found = page(number);
        if (!found || (found->kind != kInnerTable && found->kind != kLeafTable))
            return false;
        const auto at = cellFrom(*found, rowId);
        if (found->kind == kLeafTable) {
            auto row = at && at->rowId == rowId ? payload(at->bytes, at->at, at->size, false)
                                                : std::nullopt;
            if (row)
                row->id = at->bytes.sub(at->idAt, at->at - at->idAt);
            return row && take(*row);
        }
        number = at ? bigEndian(at->bytes.sub(0, 4)) : found->last;
    }
    return false;
}

std::uint64_t PagedRows::columnSize(std::uint64_t root, std::int64_t rowId,
                                    std::size_t column) const {
    std::uint64_t size = 0;
    const bool isThere = atRow(root, rowId, [&](const Payload &row) {
        const auto value = bytesIn(row, column);
        size = value ? value->second : 0;
        return true;
    });
    return isThere ? size : 0;
}

bool PagedRows::hasRow(std::uint64_t root, std::int64_t rowId) const {
    return atRow(root, rowId, [](const Payload &) { return true; });
}

std::optional<PagedRows::ValuePlace> PagedRows::placeOf(std::uint64_t root, std::int64_t rowId,
                                                        std::size_t column) const {
    std::optional<ValuePlace> place;
    static_cast<void>(atRow(root, rowId, [&](const Payload &row) {
        const std::vector<Value> values = valuesOf(row.local);
        if (column >= values.size())
            return false;
        std::uint64_t at = 0;
        static_cast<void>(varint(row.local, at));
        for (std::size_t before = 0; before < column; ++before)
            static_cast<void>(varint(row.local, at));
        const std::uint64_t kindAt = at;
        static_cast<void>(varint(row.local, at));
        const Value &value = values[column];
        if (value.size == 0)
            place = {value.kind, row.local.place() + kindAt, at - kindAt};
        else if (value.at < row.local.size())
            place = {value.kind, row.local.place() + value.at,
                     std::min<std::uint64_t>(value.size, row.local.size() - value.at)};
        return true;
    }));
    return place;
}

std::optional<PagedRows::ValuePlace> PagedRows::placeOfRowId(std::uint64_t root,
                                                             std::int64_t rowId) const {
    std::optional<ValuePlace> place;
    static_cast<void>(atRow(root, rowId, [&](const Payload &row) {
        place = {0, row.id.place(), row.id.size()};
        return true;
    }));
    return place;
}

bool PagedRows::writeColumn(std::uint64_t root, std::int64_t rowId, std::size_t column,
                            const Write &write) const {
    return atRow(root, rowId, [&](const Payload &row) {
        const auto value = bytesIn(row, column);
        return value && writeRest(row, value->first, value->second, write);
    });
}

/// Where a blob or text stands in its row, and how long it is.
std::optional<std::pair<std::uint64_t, std::uint64_t>> PagedRows::bytesIn(const Payload &row,
                                                                          std::size_t column) {
    const std::vector<Value> values = valuesOf(row.local);
    if (column >= values.size() || values[column].kind < 12)
        return std::nullopt;
    const Value &value = values[column];
    if (value.at > row.size || value.size > row.size - value.at)
        return std::nullopt;
    return std::pair(value.at, value.size);
}

/// The row's bytes from `from` on: what its own page has, and then page by page.
bool PagedRows::writeRest(const Payload &row, std::uint64_t from, std::uint64_t size,
                          const Write &write) const {
    std::uint64_t at = 0; // in the row
    Bytes held;
    ByteView part = row.local;
    std::uint64_t next = row.next;
    const std::uint64_t pages = m_file.size() / m_pageSize;
    for (std::uint64_t turn = 0; turn <= pages && size > 0; ++turn) {
        const std::uint64_t skipped =
            std::min<std::uint64_t>(from > at ? from - at : 0, part.size());
        const std::uint64_t count = std::min<std::uint64_t>(part.size() - skipped, size);
        write(part.sub(skipped, count).raw());
        size -= count;
        at += part.size();
        if (size == 0)
            return true;
        if (next == 0 || next > pages)
            return false;
        held = m_file.read((next - 1) * m_pageSize, m_usable);
        if (held.size() < m_usable)
            return false;
        next = bigEndian(ByteView(held).sub(0, 4));
        part = ByteView(held).from(4);
    }
    return size == 0;
}

/// trunk = next:u32 count:u32 page:u32{count}      the first is named in the file's head
void PagedRows::freedRows(std::size_t columns,
                          const std::function<void(const FreedRow &row)> &take) const {
    constexpr std::uint64_t kFirstTrunkAt = 32;
    constexpr std::uint64_t kNumber = 4;
    if (m_pageSize == 0)
        return;
    const Bytes first = m_file.read(kFirstTrunkAt, kNumber);
    std::uint64_t trunk = bigEndian(ByteView(first));
    const std::uint64_t pages = m_file.size() / m_pageSize;
    std::uint64_t left = pages;              // a page is freed once
    std::uint64_t bytesLeft = m_file.size(); // and rows don't lie over each other
    while (trunk > 0 && trunk <= pages && left > 0) {
        --left;
        const Bytes bytes = m_file.read((trunk - 1) * m_pageSize, m_usable);
        const ByteView view(bytes);
        const std::uint64_t count = view.has(0, 2 * kNumber) ? view.u32be(kNumber) : 0;
        for (std::uint64_t i = 0; i < count && left > 0 && view.has((i + 2) * kNumber, kNumber);
             ++i, --left)
            takeFreed(view.u32be((i + 2) * kNumber), columns, bytesLeft, take);
        trunk = view.has(0, kNumber) ? view.u32be(0) : 0;
    }
}

void PagedRows::takeFreed(std::uint64_t number, std::size_t columns, std::uint64_t &bytesLeft,
                          const std::function<void(const FreedRow &row)> &take) const {
    const auto found = page(number);
    if (!found || found->kind != kLeafTable)
        return;
    for (std::uint64_t i = 0; i < found->count; ++i) {
        const auto bytes = cell(*found, i);
        std::uint64_t at = 0;
        const auto size = bytes ? varint(*bytes, at) : std::nullopt;
        const auto id = size ? varint(*bytes, at) : std::nullopt;
        const auto row = id ? payload(*bytes, at, *size, false) : std::nullopt;
        const auto values = row ? valuesOf(row->local) : std::vector<Value>();
        if (values.size() != columns || values.back().at + values.back().size != row->size ||
            row->size > bytesLeft)
            continue;
        bytesLeft -= row->size;
        FreedRow freed{number, static_cast<std::int64_t>(*id), row->next != 0, {}};
        fill(freed, *row, values);
        take(freed);
    }
}

} // namespace nv
