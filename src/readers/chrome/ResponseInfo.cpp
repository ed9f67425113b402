#include "readers/chrome/ResponseInfo.h"

#include "base/Text.h"
#include "readers/HttpHeaders.h"

namespace nv {

std::string answerOf(ByteView response) {
    constexpr std::uint64_t kLength = 0x18;
    constexpr std::uint64_t kLines = 0x1C;
    if (!response.has(kLength, 4) || !response.has(kLines, response.u32le(kLength)))
        return {};
    const ByteView lines = response.sub(kLines, response.u32le(kLength));
    if (!startsWithNoCase(lines.raw(), "HTTP"))
        return {};
    return fromAnsi(viewOf(headersInLines(lines.raw())));
}

} // namespace nv
