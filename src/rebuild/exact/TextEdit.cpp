#include "rebuild/exact/TextEdit.h"

#include <algorithm>
#include <utility>

namespace nv {

namespace {

bool isInsertion(const TextEdit &edit) {
    return edit.at.begin == edit.at.end;
}

bool standsBefore(const TextEdit &one, const TextEdit &other) {
    if (one.at.begin != other.at.begin)
        return one.at.begin < other.at.begin;
    if (isInsertion(one) != isInsertion(other))
        return isInsertion(one);
    return one.at.end > other.at.end;
}

} // namespace

std::vector<TextEdit> settledEdits(std::vector<TextEdit> edits, std::size_t size) {
    std::stable_sort(edits.begin(), edits.end(), standsBefore);
    std::vector<TextEdit> settled;
    settled.reserve(edits.size());
    std::size_t done = 0; // after what the last edit took
    for (TextEdit &edit : edits) {
        if (edit.at.begin < done || edit.at.end < edit.at.begin || edit.at.end > size)
            continue;
        done = edit.at.end;
        settled.push_back(std::move(edit));
    }
    return settled;
}

std::string edited(std::string_view text, std::vector<TextEdit> edits) {
    std::string made;
    made.reserve(text.size());
    std::size_t done = 0;
    for (const TextEdit &edit : settledEdits(std::move(edits), text.size())) {
        made += text.substr(done, edit.at.begin - done);
        made += edit.text;
        done = edit.at.end;
    }
    made += text.substr(done);
    return made;
}

} // namespace nv
