#include "views/record/TextKind.h"

#include "base/Text.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::array<std::string_view, 4> kPageMarks = {"<html", "<!doctype html", "<xml", "<body"};

/// Zeros stand between the letters of pages that are written in 16 bits.
bool isPage(std::string_view head) {
    const std::string text = toLower(replaceAll(head, std::string_view("\0", 1), ""));
    return std::any_of(kPageMarks.begin(), kPageMarks.end(), [&text](std::string_view mark) {
        return text.find(mark) != std::string::npos;
    });
}

bool isText(std::string_view head) {
    return std::none_of(head.begin(), head.end(), [](char c) {
        const auto code = static_cast<unsigned char>(c);
        return code < 0x20 && c != '\t' && c != '\n' && c != '\r' && c != '\f';
    });
}

} // namespace

TextKind textKindOf(std::string_view head) {
    if (isPage(head))
        return TextKind::page;
    return isText(head) ? TextKind::text : TextKind::none;
}

} // namespace nv
