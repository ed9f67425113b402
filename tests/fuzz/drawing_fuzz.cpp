// A drawing that a page uses, and subtitles. What is put into the page names nothing but itself,
// runs nothing and moves nothing, whatever the file holds; subtitles are the same the second time.
//   input = text

#include "markup/HtmlDocument.h"
#include "rebuild/exact/PageReferences.h"
#include "rebuild/exact/UsedDrawings.h"
#include "reports/pages/SafeTrack.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t kRoom = std::size_t{1} << 20;

void require(bool condition) {
    if (!condition)
        std::abort();
}

void checkDrawing(const std::string &text) {
    constexpr nv::UrlId kOne{1};
    std::size_t room = kRoom;
    nv::UsedDrawings used("page", room);
    used.add(kOne, text);
    for (const std::string_view id : {"a", "b", "", "a"})
        if (const auto place = used.place(kOne, id))
            require(place->starts_with("#nv-"));
    const std::string made = used.markup();
    require(made.size() <= 2 * kRoom && room <= kRoom);
    const nv::PageScan scan = nv::scanPage(made, "page");
    require(scan.references.empty() && scan.disarming.empty());
}

void checkTrack(const std::string &text) {
    const std::string made = nv::guardedTrack(text);
    require(nv::guardedTrack(made) == made);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string text(data, data + size);
    checkDrawing(text);
    checkDrawing("<svg><g id=a>" + text);
    checkTrack(text);
    checkTrack("WEBVTT\n\n" + text);
    return 0;
}
