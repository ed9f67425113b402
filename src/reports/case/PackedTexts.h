#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What lies packed in a picture beside its points.
struct PackedTexts {
    std::vector<std::string> texts;
    bool areWhole = true; ///< otherwise something is damaged, or too large to be unpacked
};

/// Descriptions (`zTXt`, packed `iTXt`) and the colour profile (`iCCP`) of a PNG, unpacked; none of
/// any other bytes. They are damaged as evidence is: nothing is thrown.
PackedTexts packedTextsOf(std::string_view png);

} // namespace nv
