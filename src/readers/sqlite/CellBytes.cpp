#include "readers/sqlite/CellBytes.h"

#include "base/Files.h"
#include "base/Text.h"
#include "db/sql/SideFiles.h"
#include "readers/sqlite/LoggedFile.h"
#include "readers/sqlite/PagedRows.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>

namespace nv {

namespace {

using Place = PagedRows::ValuePlace;

/// First page of the table; 0 where there is none.
std::uint64_t rootOf(EvidenceDatabase &database, const std::string &table) {
    SQLite::Statement query = database.prepare("SELECT rootpage FROM main.sqlite_master WHERE type "
                                               "= 'table' AND name = ?1 COLLATE NOCASE");
    query.bind(1, table);
    database.expectWholeTable();
    const std::int64_t root = query.executeStep() ? query.getColumn(0).getInt64() : 0;
    return root > 0 ? static_cast<std::uint64_t>(root) : 0;
}

/// Which value of a row is the column's, from 0. Computed columns that aren't stored have none.
std::optional<std::size_t> valueOf(EvidenceDatabase &database, const CellName &cell) {
    constexpr int kName = 1;
    constexpr int kHidden = 6;
    constexpr int kComputed = 2;
    SQLite::Statement query =
        database.prepare(fmt::format("PRAGMA main.table_xinfo(\"{}\")", cell.table));
    database.expectWholeTable();
    for (std::size_t place = 0; query.executeStep();) {
        const bool isStored = query.getColumn(kHidden).getInt() != kComputed;
        if (equalsNoCase(query.getColumn(kName).getString(), cell.column))
            return isStored ? std::optional(place) : std::nullopt;
        place += isStored ? 1 : 0;
    }
    return std::nullopt;
}

constexpr std::uint64_t kReal = 7;
constexpr std::uint64_t kFirstBytes = 12; ///< kinds from here on are texts and blobs

std::optional<std::int64_t> numberOf(std::uint64_t kind, ByteView bytes) {
    if (kind == 0 || kind == kReal || kind >= kFirstBytes)
        return std::nullopt;
    const bool isConstant = kind == 8 || kind == 9;
    return paged::numberOf(kind, isConstant ? ByteView() : bytes);
}

/// Whether the bytes at the place are the value.
bool isThere(const ByteSource &file, const Place &place, const CellValue &value) {
    const Bytes read = file.read(place.at, place.size);
    const ByteView bytes(read);
    if (bytes.size() < place.size)
        return false;
    if (std::holds_alternative<std::monostate>(value))
        return place.kind == 0;
    if (const auto *text = std::get_if<std::string>(&value))
        return place.kind >= kFirstBytes && paged::lengthOf(place.kind) == text->size() &&
               (text->empty() || text->starts_with(bytes.raw()));
    const auto stored = numberOf(place.kind, bytes);
    if (const auto *number = std::get_if<std::int64_t>(&value))
        return stored == *number;
    const double real = std::get<double>(value);
    if (place.kind == kReal)
        return std::bit_cast<double>(paged::bigEndian(bytes)) == real;
    return stored && static_cast<double>(*stored) == real; // kept as a whole number, to save room
}

} // namespace

struct CellFinder::Files {
    Files(const Evidence &evidence, const std::filesystem::path &path)
        : file(evidence.open(path)), log(logOf(evidence, path)),
          pages(file, log ? &*log : nullptr) {}

    static std::optional<EvidenceFile> logOf(const Evidence &evidence,
                                             const std::filesystem::path &path) {
        const auto beside =
            evidence.find(path.parent_path(), textOf(path.filename()).append(kLogSuffix));
        return beside ? std::optional(evidence.open(*beside)) : std::nullopt;
    }

    EvidenceFile file;
    std::optional<EvidenceFile> log;
    LoggedFile pages;
};

CellFinder::CellFinder(const Evidence &evidence, const std::filesystem::path &file)
    : m_files(std::make_unique<Files>(evidence, file)) {}

CellFinder::~CellFinder() = default;

std::optional<CellBytes> CellFinder::find(EvidenceDatabase &database, const CellName &cell,
                                          const CellValue &value) const {
    const std::uint64_t root = rootOf(database, cell.table);
    const PagedRows rows(m_files->pages);
    std::optional<Place> place;
    if (const auto column = valueOf(database, cell))
        place = rows.placeOf(root, cell.rowId, *column);
    const auto *number = std::get_if<std::int64_t>(&value);
    // The column that is the row's number is empty in the row.
    const bool isRowId = equalsNoCase(cell.column, "rowid") || (place && place->kind == 0);
    if (number && *number == cell.rowId && isRowId)
        place = rows.placeOfRowId(root, cell.rowId);
    else if (place && !isThere(m_files->pages, Place(*place), value))
        place.reset();
    if (!place)
        return std::nullopt;
    const LoggedFile::Place own = m_files->pages.placeOf(place->at);
    return CellBytes{own.file->path(), own.offset, place->size};
}

} // namespace nv
