#include "views/record/CachedText.h"

#include "base/Files.h"
#include "markup/PageText.h"

#include <fmt/format.h>

namespace nv {

CachedText readCachedText(const std::filesystem::path &file, std::string_view httpHeader,
                          std::uint64_t mostBytes) {
    const FileReader reader(file);
    const Bytes bytes = reader.read(0, mostBytes);
    DecodedPage page = decodedPage(ByteView(bytes), httpHeader);
    CachedText text;
    text.text = std::move(page.text);
    text.charset = std::move(page.charset);
    text.foundIn = page.foundIn;
    text.fileSize = reader.size();
    text.shownBytes = bytes.size();
    return text;
}

std::string cutNotice(const CachedText &text) {
    if (!text.isCut())
        return {};
    return fmt::format("Only the first {} of {} bytes are shown.", text.shownBytes, text.fileSize);
}

} // namespace nv
