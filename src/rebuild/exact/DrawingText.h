#pragma once

#include "base/ByteView.h"
#include "markup/PageText.h"

#include <string>
#include <string_view>

namespace nv {

/// Pictures in XML are UTF-8 where nothing else is said. `headers` are those of the server's
/// answer.
DecodedPage decodedDrawing(const Bytes &bytes, std::string_view headers);

/// A picture in SVG as it can stand by itself: nothing runs, and it names nothing but its own
/// places and data. In the encoding that it came in. Throws PageTooLarge.
std::string selfContained(const Bytes &bytes, std::string_view headers);

} // namespace nv
