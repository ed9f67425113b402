#include "base/Files.h"
#include "readers/sqlite/CellBytes.h"
#include "support/TempFolder.h"
#include "support/builders/SqliteFile.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

/// Where the cells of an SQLite file lie in it.
class CellBytesTest : public testing::Test {
  protected:
    test::SqliteFile &make(int pageSize = 4096, const std::string &encoding = "UTF-8") {
        file = std::make_unique<test::SqliteFile>(path, pageSize, encoding);
        return *file;
    }
    std::optional<CellBytes> found(const CellName &cell, const CellValue &value) {
        const fs::path copy = folder.path() / "copy";
        for (const char *end : {"", "-wal"}) {
            fs::remove(copy.string() + end);
            if (fs::exists(path.string() + end))
                fs::copy_file(path.string() + end, copy.string() + end);
        }
        EvidenceDatabase database(copy, fs::file_size(copy));
        const Evidence evidence(path.parent_path());
        return CellFinder(evidence, path).find(database, cell, value);
    }
    /// The bytes that are named, as they lie.
    std::string bytesOf(const CellName &cell, const CellValue &value) {
        const auto place = found(cell, value);
        if (!place)
            return "none";
        const Bytes all = readWhole(place->file);
        return std::string(ByteView(all).sub(place->offset, place->length).raw());
    }

    test::TempFolder folder;
    fs::path path = folder.path() / "evidence" / "History";
    std::unique_ptr<test::SqliteFile> file;

    CellBytesTest() { fs::create_directories(path.parent_path()); }
};

TEST_F(CellBytesTest, valuesOfEachKindLieWhereTheyAreRead) {
    make().run("CREATE TABLE t (id INTEGER PRIMARY KEY, small, big, no, yes, none, text, blob, "
               "real REAL, whole REAL)");
    file->run("INSERT INTO t VALUES (300, -2, 12943324800123456, 0, 1, NULL, 'tide table', "
              "x'00FF10', 1.5, 7)");
    file->close();
    const auto cell = [](const char *column) { return CellName{"t", 300, column}; };
    EXPECT_EQ(bytesOf(cell("id"), std::int64_t{300}), "\x82\x2C") << "the row's own number";
    EXPECT_EQ(bytesOf(cell("rowid"), std::int64_t{300}), "\x82\x2C");
    EXPECT_EQ(bytesOf(cell("small"), std::int64_t{-2}), "\xFE");
    EXPECT_EQ(bytesOf(cell("big"), std::int64_t{12943324800123456}),
              std::string("\x00\x2D\xFB\xE2\xA4\xEC\x82\x40", 8));
    EXPECT_EQ(bytesOf(cell("no"), std::int64_t{0}), "\x08") << "its kind, in the row's head";
    EXPECT_EQ(bytesOf(cell("yes"), std::int64_t{1}), "\x09");
    EXPECT_EQ(bytesOf(cell("none"), {}), std::string(1, '\0'));
    EXPECT_EQ(bytesOf(cell("text"), "tide table"), "tide table");
    EXPECT_EQ(bytesOf(cell("blob"), std::string("\x00\xFF\x10", 3)),
              std::string("\x00\xFF\x10", 3));
    EXPECT_EQ(bytesOf(cell("real"), 1.5), std::string("\x3F\xF8\0\0\0\0\0\0", 8));
    EXPECT_EQ(bytesOf(cell("whole"), 7.0), "\x07") << "kept as a whole number";
}

TEST_F(CellBytesTest, otherValuesThanTheCopysAreNotFound) {
    make().run("CREATE TABLE t (id INTEGER PRIMARY KEY, n, text)");
    file->run("INSERT INTO t VALUES (3, 17, 'tide')").close();
    EXPECT_EQ(bytesOf({"t", 3, "n"}, std::int64_t{18}), "none");
    EXPECT_EQ(bytesOf({"t", 3, "text"}, "ebbs"), "none");
    EXPECT_EQ(bytesOf({"t", 3, "text"}, "tid"), "none");
    EXPECT_EQ(bytesOf({"t", 3, "text"}, std::int64_t{17}), "none");
    EXPECT_EQ(bytesOf({"t", 4, "n"}, std::int64_t{17}), "none");
    EXPECT_EQ(bytesOf({"t", 3, "other"}, std::int64_t{3}), "none");
    EXPECT_EQ(bytesOf({"other", 3, "n"}, std::int64_t{17}), "none");
}

TEST_F(CellBytesTest, ofALongValueTheBytesInItsOwnPage) {
    const std::string text(20'000, 'a');
    make(1024).run("CREATE TABLE t (id INTEGER PRIMARY KEY, text)");
    file->run("INSERT INTO t VALUES (1, '" + text + "')").close();
    const auto place = found({"t", 1, "text"}, text);
    ASSERT_TRUE(place);
    EXPECT_GT(place->length, 30U);
    EXPECT_LT(place->length, 1024U);
    EXPECT_EQ(bytesOf({"t", 1, "text"}, text), std::string(place->length, 'a'));
}

TEST_F(CellBytesTest, rowsOfManyPagesAreFound) {
    make(512).run("CREATE TABLE t (id INTEGER PRIMARY KEY, text); WITH RECURSIVE n(i) AS (SELECT 1 "
                  "UNION ALL SELECT i + 1 FROM n WHERE i < 3000) INSERT INTO t SELECT i, 'row ' || "
                  "i FROM n");
    file->close();
    for (const std::int64_t row : {1, 999, 3000})
        EXPECT_EQ(bytesOf({"t", row, "text"}, "row " + std::to_string(row)),
                  "row " + std::to_string(row));
}

TEST_F(CellBytesTest, whatTheLogHasLiesInTheLog) {
    make().run("CREATE TABLE t (id INTEGER PRIMARY KEY, text)");
    file->run("INSERT INTO t VALUES (1, 'before'), (2, 'other')");
    file->keepInLog();
    file->run("UPDATE t SET text = 'behind' WHERE id = 1");
    file->run("CREATE TABLE later (text)").run("INSERT INTO later VALUES ('new')");
    EXPECT_EQ(bytesOf({"t", 1, "text"}, "behind"), "behind");
    EXPECT_EQ(found({"t", 1, "text"}, "behind")->file.filename(), "History-wal");
    EXPECT_EQ(bytesOf({"later", 1, "text"}, "new"), "new") << "on a page that the file lacks";
    EXPECT_EQ(bytesOf({"t", 1, "text"}, "before"), "none") << "the file's own page is past";
}

TEST_F(CellBytesTest, whereItCantBeToldThereIsNone) {
    make(4096, "UTF-16le").run("CREATE TABLE t (id INTEGER PRIMARY KEY, text, n)");
    file->run("INSERT INTO t VALUES (1, 'tide', 5)");
    file->run("CREATE TABLE k (key TEXT PRIMARY KEY, n) WITHOUT ROWID").close();
    EXPECT_EQ(bytesOf({"t", 1, "text"}, "tide"), "none");
    EXPECT_EQ(bytesOf({"t", 1, "n"}, std::int64_t{5}), "\x05");
    EXPECT_EQ(bytesOf({"k", 1, "n"}, std::int64_t{5}), "none");
}

/// Whatever is written over the file after it was copied: no byte of it is read as another's.
TEST_F(CellBytesTest, damageEndsInNoBytes) {
    make(512).run(
        "CREATE TABLE t (id INTEGER PRIMARY KEY, text); WITH RECURSIVE n(i) AS (SELECT 1 "
        "UNION ALL SELECT i + 1 FROM n WHERE i < 100) INSERT INTO t SELECT i, 'row ' || i "
        "FROM n");
    file->close();
    const Bytes whole = readWhole(path);
    const fs::path copy = folder.path() / "whole";
    fs::copy_file(path, copy);
    EvidenceDatabase database(copy, fs::file_size(copy));
    const Evidence evidence(path.parent_path());
    const std::string bytes(ByteView(whole).raw());
    for (std::size_t cut = 0; cut < bytes.size(); cut += 97) {
        std::string damaged = bytes.substr(0, cut);
        damaged += std::string(std::min<std::size_t>(97, bytes.size() - cut), '\xFF');
        damaged += bytes.substr(std::min(bytes.size(), cut + 97));
        for (const std::string &each : {damaged, bytes.substr(0, cut)}) {
            writeWhole(path, each);
            const auto place =
                CellFinder(evidence, path).find(database, {"t", 50, "text"}, "row 50");
            if (place) {
                EXPECT_EQ(each.substr(place->offset, place->length), "row 50");
            }
        }
    }
}

} // namespace
} // namespace nv
