#include "reports/report/SheetCount.h"

#include "base/Files.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#define ZLIB_CONST // zlib only reads its input
#include <zlib.h>

namespace nv {

namespace {

constexpr std::size_t kBlock = std::size_t{256} << 10;
constexpr int kRawWindow = -15; ///< zlib: the largest window, and no header

// Of the ZIP format; offsets are 0-based, numbers little-endian.
constexpr std::uint64_t kEndRecord = 22;
constexpr std::uint64_t kLocalHeader = 30;
constexpr std::uint64_t kEntry = 46;
constexpr std::uint32_t kEndMark = 0x06054B50;
constexpr std::uint32_t kEntryMark = 0x02014B50;

[[noreturn]] void damaged() {
    throw std::runtime_error("the spreadsheet could not be read back");
}

/// Counts the elements of a sheet's text, which comes in pieces.
class Elements {
  public:
    explicit Elements(SheetCount &count) : m_count(count) {}

    void take(std::string_view piece) {
        m_text.append(piece);
        std::string_view rest = m_text;
        for (std::size_t at = rest.find('<'); at != std::string_view::npos; at = rest.find('<')) {
            rest.remove_prefix(at);
            if (rest.size() < kLongest)
                break;
            m_count.rows += rest.starts_with("<row ") ? 1 : 0;
            m_count.cells += rest.starts_with("<c ") ? 1 : 0;
            rest.remove_prefix(1);
        }
        const bool cut = !rest.empty() && rest.front() == '<' && rest.size() < kLongest;
        m_text = cut ? std::string(rest) : std::string();
    }

  private:
    static constexpr std::size_t kLongest = std::string_view("<row ").size();
    SheetCount &m_count;
    std::string m_text; ///< the beginning of an element, on its way
};

struct EndInflate {
    void operator()(z_stream *stream) const { inflateEnd(stream); }
};

/// `from` is where the packed bytes begin.
void countSheet(const FileReader &file, std::uint64_t from, std::uint64_t packed,
                SheetCount &count) {
    z_stream stream{};
    if (inflateInit2(&stream, kRawWindow) != Z_OK)
        damaged();
    const std::unique_ptr<z_stream, EndInflate> end(&stream);
    Elements elements(count);
    std::string text(kBlock, '\0');
    int result = Z_OK;
    while (packed > 0 && result != Z_STREAM_END) {
        const Bytes block = file.read(from, std::min<std::uint64_t>(packed, kBlock));
        if (block.empty())
            damaged();
        from += block.size();
        packed -= block.size();
        stream.next_in = block.data();
        stream.avail_in = static_cast<uInt>(block.size());
        do {
            stream.next_out = reinterpret_cast<Bytef *>(text.data());
            stream.avail_out = kBlock;
            result = inflate(&stream, Z_NO_FLUSH);
            if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR)
                damaged();
            elements.take(std::string_view(text).substr(0, kBlock - stream.avail_out));
        } while (result != Z_STREAM_END && stream.avail_out == 0);
    }
    if (result != Z_STREAM_END)
        damaged();
}

} // namespace

SheetCount countSheets(const std::filesystem::path &spreadsheet) {
    const FileReader file(spreadsheet);
    if (file.size() < kEndRecord)
        damaged();
    const Bytes end = file.read(file.size() - kEndRecord, kEndRecord);
    if (ByteView(end).u32le(0) != kEndMark)
        damaged();
    const Bytes directory = file.read(ByteView(end).u32le(16), ByteView(end).u32le(12));
    SheetCount count;
    for (ByteView entry{directory}; !entry.empty();) {
        if (entry.u32le(0) != kEntryMark)
            damaged();
        const std::uint64_t name = entry.u16le(28);
        if (entry.sub(kEntry, name).raw().starts_with("xl/worksheets/sheet")) {
            const std::uint64_t local = entry.u32le(42);
            const Bytes header = file.read(local, kLocalHeader);
            const std::uint64_t names = ByteView(header).u16le(26) + ByteView(header).u16le(28);
            countSheet(file, local + kLocalHeader + names, entry.u32le(20), count);
        }
        entry = entry.from(kEntry + name + entry.u16le(30) + entry.u16le(32));
    }
    return count;
}

} // namespace nv
