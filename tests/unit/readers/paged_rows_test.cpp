#include "readers/sqlite/PagedRows.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace nv {
namespace {

/// Bytes as a file, which counts how often it is read.
class CountedSource final : public ByteSource {
  public:
    explicit CountedSource(std::string bytes) : m_bytes(std::move(bytes)) {}
    const std::filesystem::path &path() const override { return m_path; }
    std::uint64_t size() const override { return m_bytes.size(); }
    Bytes read(std::uint64_t offset, std::uint64_t count) const override {
        ++reads;
        const std::string part = offset < m_bytes.size() ? m_bytes.substr(offset, count) : "";
        return {part.begin(), part.end()};
    }
    mutable std::size_t reads = 0;

  private:
    std::string m_bytes;
    std::filesystem::path m_path = "/nowhere";
};

constexpr std::size_t kPage = 65536;

std::string bigEndian(std::size_t bytes, std::uint64_t number) {
    std::string text;
    for (std::size_t i = bytes; i > 0; --i)
        text += static_cast<char>(number >> (8 * (i - 1)));
    return text;
}

/// An inner page of the schema whose cells, as many as fit, all name `child`.
std::string innerPage(std::uint64_t child, std::size_t head) {
    constexpr std::size_t kHead = 12;
    constexpr std::size_t kCell = 8;
    const std::size_t cells = (kPage - head - kHead - kCell) / 2;
    std::string page(head, '\0');
    page += "\x05" + bigEndian(2, 0) + bigEndian(2, cells) + bigEndian(3, 0) + bigEndian(4, child);
    for (std::size_t i = 0; i < cells; ++i)
        page += bigEndian(2, kPage - kCell);
    page.resize(kPage - kCell);
    return page + bigEndian(4, child) + bigEndian(4, 1);
}

std::string fileHead() {
    std::string head = "SQLite format 3";
    head += '\0';
    return head + bigEndian(2, 1) + std::string(82, '\0');
}

TEST(PagedRows, aSchemaThatLeadsBackIsWalkedOnce) {
    std::string bytes = fileHead() + innerPage(2, 100).substr(100);
    for (std::uint64_t page = 2; page < 50; ++page)
        bytes += innerPage(page + 1, 0);
    bytes += innerPage(1, 0);
    ASSERT_EQ(bytes.size(), 50 * kPage);
    const CountedSource file(std::move(bytes));
    EXPECT_EQ(PagedRows(file).rootOf("blobs"), 0U);
    EXPECT_EQ(file.reads, 51U) << "the head and each page";
}

} // namespace
} // namespace nv
