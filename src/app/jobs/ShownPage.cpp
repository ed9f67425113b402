#include "app/jobs/ShownPage.h"

#include "app/jobs/RebuildJob.h"
#include "base/Files.h"
#include "base/Storage.h"
#include "readers/ContentProbe.h"
#include "rebuild/LocalNames.h"
#include "views/record/TextKind.h"

#include <algorithm>
#include <array>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t kLargest = std::uintmax_t{64} << 20;
constexpr std::array<std::string_view, 7> kPictures = {"gif", "jpg", "jpeg", "png",
                                                       "bmp", "ico", "webp"};

/// The name that makes a browser take the content for what its first bytes say; empty for what no
/// browser shows. What the cache or the address says is not to be trusted.
std::string extensionFor(const fs::path &content) {
    const Bytes bytes = readHead(content, kTextHead);
    const std::string signature = getExtBySignature(ByteView(bytes));
    if (std::find(kPictures.begin(), kPictures.end(), signature) != kPictures.end())
        return signature;
    const TextKind kind = textKindOf(ByteView(bytes).raw());
    if (kind == TextKind::page)
        return "htm";
    return kind == TextKind::text ? "txt" : "";
}

ShownPage cachedPage(RecordTools &tools, UrlRecord &record) {
    const auto content = contentOf(record, tools.context().extraction());
    if (!content)
        return {{}, false, "This record has no cached content."};
    const std::string extension = extensionFor(*content);
    if (extension.empty())
        return {{}, false, "The cached content is neither a page, a picture nor text."};
    if (fs::file_size(*content) > kLargest)
        return {{}, false, "The cached content is too large to be shown."};
    const fs::path folder = tools.context().tempFolderPath / (sidOf(record.URLID) + ".VIEW");
    makeEmptyFolder(folder);
    ShownPage shown;
    shown.file = folder / (sidOf(record.URLID) + "." + extension);
    copyToScratch(*content, shown.file);
    return shown;
}

} // namespace

ShownPage pageToShow(RecordTools &tools, UrlRecord &record) {
    if (record.CacheFileRebuilt && bringBackFolder(tools, record))
        return {record.RunTimeRebuiltFilePath, true, {}};
    return cachedPage(tools, record);
}

} // namespace nv
