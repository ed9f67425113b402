#pragma once

#include "markup/SourceSpan.h"

#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What stands at a place of a text, and what is to stand there instead. An empty span puts in.
struct TextEdit {
    SourceSpan at;
    std::string text;
};

/// The edits by their places. Of two that overlap the outer one stays, else the earlier one; what
/// is put in at the same place keeps its order, and comes in front of what is replaced there. Those
/// beyond `size` go.
std::vector<TextEdit> settledEdits(std::vector<TextEdit> edits, std::size_t size);

/// The text with the edits made; all other bytes stay.
std::string edited(std::string_view text, std::vector<TextEdit> edits);

} // namespace nv
