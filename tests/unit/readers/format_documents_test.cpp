#include "base/Files.h"
#include "base/Text.h"
#include "readers/Registry.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace nv {
namespace {

namespace fs = std::filesystem;

const fs::path kRoot = NV_DOCUMENTS;

/// The row of a table that has the word as code; empty when there is none.
std::string rowWith(const std::string &page, std::string_view word) {
    const Bytes bytes = readWhole(kRoot / page);
    for (const std::string_view line : split(ByteView(bytes).raw(), '\n'))
        if (line.starts_with('|') && line.find(fmt::format("`{}`", word)) != std::string_view::npos)
            return std::string(line);
    return {};
}

TEST(FormatDocuments, haveEachFormat) {
    for (const Reader *reader : registry()) {
        SCOPED_TRACE(reader->key);
        const std::string page = fmt::format("docs/formats/{}.md", reader->page);
        if (!reader->read) {
            EXPECT_NE(rowWith(page, reader->key), "") << page << ": a row that says what it is";
            continue;
        }
        EXPECT_TRUE(fs::is_regular_file(kRoot / page)) << page;
        EXPECT_NE(rowWith("README.md", reader->key).find(page), std::string::npos)
            << "README.md: a row with the key and a link to the page";
        EXPECT_NE(rowWith("docs/guide/artefacts.md", reader->key), "")
            << "docs/guide/artefacts.md: a row that says how such a file is found";
    }
}

} // namespace
} // namespace nv
