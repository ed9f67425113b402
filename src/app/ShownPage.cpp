#include "app/ShownPage.h"

#include "base/Files.h"
#include "base/Text.h"
#include "readers/ContentProbe.h"
#include "rebuild/LocalNames.h"

#include <algorithm>
#include <array>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kHead = 4096; ///< bytes that tell what a content is
constexpr std::uintmax_t kLargest = std::uintmax_t{64} << 20;
constexpr std::array<std::string_view, 4> kPageMarks = {"<html", "<!doctype html", "<xml", "<body"};
constexpr std::array<std::string_view, 7> kPictures = {"gif", "jpg", "jpeg", "png",
                                                       "bmp", "ico", "webp"};

/// Zeros stand between the letters of pages that are written in 16 bits.
bool isPage(std::string_view head) {
    const std::string text = toLower(replaceAll(head, std::string_view("\0", 1), ""));
    return std::any_of(kPageMarks.begin(), kPageMarks.end(), [&text](std::string_view mark) {
        return text.find(mark) != std::string::npos;
    });
}

bool isText(std::string_view head) {
    return std::none_of(head.begin(), head.end(), [](char c) {
        const auto code = static_cast<unsigned char>(c);
        return code < 0x20 && c != '\t' && c != '\n' && c != '\r' && c != '\f';
    });
}

/// The name that makes a browser take the content for what its first bytes say; empty for what no
/// browser shows. What the cache or the address says is not to be trusted.
std::string extensionFor(const fs::path &content) {
    const Bytes bytes = readHead(content, kHead);
    const std::string signature = GetExtBySignature(ByteView(bytes));
    if (std::find(kPictures.begin(), kPictures.end(), signature) != kPictures.end())
        return signature;
    const std::string_view head = ByteView(bytes).raw();
    if (isPage(head))
        return "htm";
    return isText(head) ? "txt" : "";
}

ShownPage cachedPage(RebuildTools &tools, URLClass &record) {
    const auto content = contentOf(record, tools.context().extraction());
    if (!content)
        return {{}, false, "This record has no cached content."};
    const std::string extension = extensionFor(*content);
    if (extension.empty())
        return {{}, false, "The cached content is neither a page, a picture nor text."};
    if (fs::file_size(*content) > kLargest)
        return {{}, false, "The cached content is too large to be shown."};
    const fs::path folder = tools.context().TempFolderPath / (sidOf(record.URLID) + ".VIEW");
    fs::remove_all(folder);
    fs::create_directories(folder);
    ShownPage shown;
    shown.file = folder / (sidOf(record.URLID) + "." + extension);
    copyToScratch(*content, shown.file);
    return shown;
}

} // namespace

ShownPage pageToShow(RebuildTools &tools, URLClass &record) {
    if (record.CacheFileRebuilt && bringBackFolder(tools, record))
        return {record.RunTimeRebuiltFilePath, true, {}};
    return cachedPage(tools, record);
}

} // namespace nv
