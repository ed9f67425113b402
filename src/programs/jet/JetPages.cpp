// List   = 0:u8 first:u32 pages:bits           short: a bit a page, from page `first`
//        | 1:u8 map[]:u32                      long: pages of bits, each for as many pages; 0: none
// Map    = kind:u8@0 (5) pages:bits@4          numbers little-endian, the lowest bit first

#include "programs/jet/JetPages.h"

#include <algorithm>
#include <iterator>

namespace nv::jet {

namespace {

constexpr std::uint64_t kMapBitsAt = 4;

using Pages = std::vector<std::uint32_t>;

/// Adds a page number, counted from `first`, for each bit that is set.
void addBits(ByteView bits, std::uint64_t first, const JetFile &file, Pages &pages) {
    for (std::uint64_t i = 0; i < bits.size() * 8; ++i)
        if ((bits.u8(i / 8) >> (i % 8) & 1) != 0 && file.begins(first + i))
            pages.push_back(static_cast<std::uint32_t>(first + i));
}

void addLongList(ByteView maps, const JetFile &file, Pages &pages) {
    const std::uint64_t pagesOfMap = (file.pageSize() - kMapBitsAt) * 8;
    for (std::uint64_t i = 0; maps.has(i * 4, 4); ++i) {
        const std::uint32_t map = maps.u32le(i * 4);
        if (map == 0 || !file.begins(map) || !file.begins(i * pagesOfMap) ||
            mdb_read_pg(&file.handle(), map) <= 0)
            continue;
        const ByteView page(std::span(file.handle().pg_buf, file.pageSize()));
        if (page.u8(0) == MDB_PAGE_MAP)
            addBits(page.from(kMapBitsAt), i * pagesOfMap, file, pages);
    }
}

bool belongsTo(const JetFile &file, const MdbTableDef &table, std::uint32_t page) {
    MdbHandle &handle = file.handle();
    return mdb_read_pg(&handle, page) > 0 && handle.pg_buf[0] == MDB_PAGE_DATA &&
           static_cast<std::uint32_t>(mdb_get_int32(handle.pg_buf, 4)) == table.entry->table_pg;
}

Pages allPages(const JetFile &file, const MdbTableDef &table) {
    Pages pages;
    for (std::uint32_t page = 1; file.begins(page); ++page)
        if (belongsTo(file, table, page))
            pages.push_back(page);
    return pages;
}

} // namespace

Pages listedPages(const JetFile &file, const MdbTableDef &table) {
    const ByteView list(std::span(table.usage_map, table.map_sz));
    Pages named;
    if (list.has(0, 5) && list.u8(0) == 0)
        addBits(list.from(5), list.u32le(1), file, named);
    else if (list.has(0, 5) && list.u8(0) == 1)
        addLongList(list.from(1), file, named);
    else
        return allPages(file, table);
    Pages pages;
    std::copy_if(named.begin(), named.end(), std::back_inserter(pages),
                 [&](std::uint32_t page) { return belongsTo(file, table, page); });
    return pages;
}

Pages unlistedPages(const JetFile &file, const MdbTableDef &table, const Pages &listed) {
    const Pages all = allPages(file, table);
    Pages pages;
    std::set_difference(all.begin(), all.end(), listed.begin(), listed.end(),
                        std::back_inserter(pages));
    return pages;
}

} // namespace nv::jet
