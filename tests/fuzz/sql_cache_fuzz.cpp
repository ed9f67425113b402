// The pages of a part of Chromium's SQL cache, read without SQLite, with bytes of the input written
// over them: everything comes to an end, and no body is longer than its file.

#include "base/Files.h"
#include "fuzz/MemorySource.h"
#include "fuzz/RecordFuzz.h"
#include "readers/sqlite/PagedRows.h"
#include "support/TempFolder.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace {

/// With pages that rows were freed from.
std::string soundFile() {
    const nv::test::TempFolder folder;
    const std::filesystem::path golden = NV_GOLDEN_DIR;
    const std::filesystem::path part = folder.path() / "sqldb0";
    const nv::Bytes whole = nv::readWhole(golden / "chromium-sql-cache/three-parts/input/sqldb0");
    nv::writeWhole(part, nv::ByteView(whole).raw());
    {
        SQLite::Database file(part.native(), SQLite::OPEN_READWRITE);
        file.exec("PRAGMA secure_delete=OFF");
        file.exec("WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n WHERE i < 120) "
                  "INSERT INTO resources SELECT i, 1, 0, 9, 9, 0, 0, 1, 'https://gone.example/' || "
                  "hex(zeroblob(50)), zeroblob(i * 9) FROM n");
        file.exec("DELETE FROM resources WHERE res_id >= 100");
    }
    const nv::Bytes bytes = nv::readWhole(part);
    return std::string(nv::ByteView(bytes).raw());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using nv::fuzz::require;
    static const std::string sound = soundFile();
    const std::string bytes = nv::fuzz::damaged(sound, data, size);
    const nv::fuzz::MemorySource file(bytes);
    const nv::PagedRows rows(file);
    const std::uint64_t table = rows.rootOf("blobs");
    std::size_t freed = 0;
    const auto take = [&freed, &bytes](const nv::FreedRow &row) {
        require(row.values.size() == 10 && ++freed <= bytes.size());
    };
    rows.freedRows(10, take);
    freed = 0;
    rows.deletedRows(rows.rootOf("resources"), "niiiiiiitb", take);
    constexpr std::size_t kMost = 100;
    constexpr std::size_t kBlob = 5;
    for (std::int64_t entry = 1; entry <= 3; ++entry)
        for (const auto &row :
             rows.indexRows(rows.rootOf("index_blobs_res_id_start"), entry, kMost)) {
            std::size_t written = 0;
            static_cast<void>(rows.writeColumn(
                table, row.back(), kBlob, [&](std::string_view part) { written += part.size(); }));
            require(written <= bytes.size());
            static_cast<void>(rows.columnSize(table, row.back(), kBlob));
        }
    return 0;
}
