#include "base/OneLine.h"

#include "base/DisplayText.h"
#include "base/Text.h"

namespace nv {

std::string oneLine(std::string_view text) {
    return isUtf8(text) ? displayText(text, std::string::npos)
                        : displayText(decodeText(text), std::string::npos);
}

} // namespace nv
