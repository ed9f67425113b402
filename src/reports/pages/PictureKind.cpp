#include "reports/pages/PictureKind.h"

#include "base/Files.h"
#include "readers/ContentProbe.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace nv {

using namespace std::string_view_literals;

namespace {

constexpr std::size_t kHead = 64; ///< bytes

constexpr std::array kKinds = {"gif"sv, "jpg"sv, "png"sv, "bmp"sv, "ico"sv, "tif"sv, "webp"sv};

// Forms that categories don't tell apart: old GIFs, photographs with camera data, and others.
constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kMoreSignatures = {
    {{"GIF8"sv, "gif"sv}, {"\xFF\xD8\xFF"sv, "jpg"sv}, {"II*\0"sv, "tif"sv}, {"MM\0*"sv, "tif"sv}}};

} // namespace

std::string pictureKindOf(const std::filesystem::path &file) {
    const Bytes head = readHead(file, kHead);
    const std::string_view text = ByteView(head).raw();
    if (text.starts_with("RIFF") && text.size() > 12 && text.substr(8, 4) == "WEBP")
        return "webp";
    for (const auto &[signature, kind] : kMoreSignatures)
        if (text.starts_with(signature))
            return std::string(kind);
    const std::string kind = getExtBySignature(ByteView(head));
    return std::ranges::find(kKinds, kind) != kKinds.end() ? kind : "";
}

bool isShownByBrowsers(const std::string &kind) {
    return !kind.empty() && kind != "tif";
}

} // namespace nv
