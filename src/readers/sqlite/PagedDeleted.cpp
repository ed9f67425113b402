// What a page goes on having of rows that were deleted from it:
//   page  = kind:u8 block:u16 cells:u16 content:u16 ... at:u16{cells} gap content
//   block = next:u16 size:u16 byte*             amid the content; the head has the first one
// In the gap rows lie as they were. Of a row in a block the first 4 bytes are overwritten: these
// are its length and mostly its number, and nearly never more than the length of its head.

#include "readers/sqlite/PagedRows.h"

#include <algorithm>
#include <set>

namespace nv {

using paged::bigEndian;
using paged::kLeafTable;
using paged::numberOf;
using paged::Value;
using paged::varint;

namespace {

constexpr std::uint64_t kFirstBytes = 12; ///< kinds of values from here on are texts and bytes
constexpr std::uint64_t kBlockHead = 4;

bool isOfForm(std::uint64_t kind, char form) {
    constexpr std::uint64_t kReal = 7;
    const bool isBytes = kind >= kFirstBytes && kind % 2 == 0;
    switch (form) {
    case 'n':
        return kind == 0;
    case 'i':
        return kind > 0 && kind < 10 && kind != kReal;
    case 't':
        return kind > kFirstBytes && kind % 2 == 1;
    default:
        return kind == 0 || isBytes;
    }
}

/// The values of a row whose first kind stands at `at`, places counted from the length of the head
/// before it, which may be overwritten. None when the kinds are other ones.
std::vector<Value> valuesFrom(ByteView space, std::uint64_t at, std::string_view columns) {
    constexpr std::uint64_t kMostOfHead = 127; // its length is one byte
    const std::uint64_t start = at - 1;
    std::vector<Value> values;
    values.reserve(columns.size());
    for (const char form : columns) {
        const auto kind = varint(space, at);
        if (!kind || !isOfForm(*kind, form) || at - start > kMostOfHead)
            return {};
        values.push_back({*kind, 0, paged::lengthOf(*kind)});
    }
    std::uint64_t place = at - start;
    for (Value &value : values) {
        value.at = place;
        place += value.size;
    }
    return values;
}

/// The number before a row, where its length before that is right; otherwise 0.
std::int64_t rowIdBefore(ByteView space, std::uint64_t row, std::uint64_t size,
                         std::uint64_t head) {
    constexpr std::uint64_t kMostBefore = 12;
    if (space.u8(row) != head)
        return 0;
    for (std::uint64_t back = 2; back <= std::min(kMostBefore, row); ++back) {
        std::uint64_t at = row - back;
        const auto told = varint(space, at);
        const auto id = told == size && at < row ? varint(space, at) : std::nullopt;
        if (id && at == row)
            return static_cast<std::int64_t>(*id);
    }
    return 0;
}

} // namespace

void PagedRows::deletedRows(std::uint64_t root, std::string_view columns,
                            const std::function<void(const FreedRow &row)> &take) const {
    std::vector<std::uint64_t> pages{root};
    std::set<std::uint64_t> known{root};     // damaged ones lead back
    std::uint64_t bytesLeft = m_file.size(); // rows don't lie over each other
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const auto found = page(pages[i]);
        if (!found)
            continue;
        for (const std::uint64_t child : childrenOf(*found))
            if (known.insert(child).second)
                pages.push_back(child);
        if (found->kind != kLeafTable)
            continue;
        for (const auto &[from, end] : freeSpaceOf(*found)) {
            const ByteView space = ByteView(found->bytes).sub(from, end - from);
            for (std::uint64_t at = 1; at < space.size(); ++at)
                if (space.u8(at) == 0)
                    at = takeDeleted({pages[i], space, at, columns}, bytesLeft, take).value_or(at);
        }
    }
}

std::vector<std::pair<std::uint64_t, std::uint64_t>>
PagedRows::freeSpaceOf(const Page &page) const {
    constexpr std::uint64_t kHeadOfLeaf = 8;
    const ByteView view(page.bytes);
    const std::uint64_t end = std::min<std::uint64_t>(view.size(), m_usable);
    const std::uint64_t head = page.cells - kHeadOfLeaf;
    const std::uint64_t told = bigEndian(view.sub(head + 5, 2));
    const std::uint64_t gap = page.cells + 2 * page.count;
    const std::uint64_t content = std::min(told == 0 ? end : told, end);
    std::vector<std::pair<std::uint64_t, std::uint64_t>> spaces;
    if (gap < content)
        spaces.emplace_back(gap, content);
    std::uint64_t last = gap;
    for (std::uint64_t at = bigEndian(view.sub(head + 1, 2)); at >= last && at + kBlockHead <= end;
         at = bigEndian(view.sub(at, 2))) {
        const std::uint64_t size = bigEndian(view.sub(at + 2, 2));
        last = at + std::max(size, kBlockHead); // in the order of their places
        spaces.emplace_back(at, std::min(last, end));
    }
    return spaces;
}

std::optional<std::uint64_t>
PagedRows::takeDeleted(const DeletedPlace &place, std::uint64_t &bytesLeft,
                       const std::function<void(const FreedRow &row)> &take) const {
    const std::vector<Value> values = valuesFrom(place.space, place.at, place.columns);
    const std::uint64_t size = values.empty() ? 0 : values.back().at + values.back().size;
    if (size == 0 || size > bytesLeft)
        return std::nullopt;
    const std::uint64_t start = place.at - 1;
    const auto row = payload(place.space.from(start), 0, size, false);
    if (!row)
        return std::nullopt;
    bytesLeft -= size;
    FreedRow freed{
        place.page, rowIdBefore(place.space, start, size, values.front().at), row->next != 0, {}};
    fill(freed, *row, values);
    take(freed);
    return start + row->local.size() - 1;
}

void PagedRows::fill(FreedRow &freed, const Payload &row, const std::vector<Value> &values) const {
    constexpr std::uint64_t kMostOfAValue = std::uint64_t{1} << 20;
    freed.values.reserve(values.size());
    for (const Value &value : values) {
        FreedRow::Value &into = freed.values.emplace_back();
        if (value.kind < kFirstBytes && row.local.has(value.at, value.size))
            into.number = numberOf(value.kind, row.local.sub(value.at, value.size));
        else if (value.kind >= kFirstBytes && value.size <= kMostOfAValue)
            static_cast<void>(writeRest(row, value.at, value.size,
                                        [&into](std::string_view part) { into.bytes += part; }));
    }
}

} // namespace nv
