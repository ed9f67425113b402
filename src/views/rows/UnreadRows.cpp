#include "views/rows/UnreadRows.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <iterator>

namespace nv {

void noteUnread(UnreadRows &rows, UrlId id) {
    rows.insert(static_cast<std::int32_t>(number(id)));
}

bool isUnread(const UnreadRows &rows, UrlId id) {
    return rows.contains(static_cast<std::int32_t>(number(id)));
}

std::string rangesOf(const UnreadRows &rows) {
    std::string text;
    for (auto first = rows.begin(); first != rows.end();) {
        auto last = first;
        for (auto next = std::next(last); next != rows.end() && *next - *last == 1; ++next)
            last = next;
        text += text.empty() ? "" : ", ";
        text += first == last ? fmt::format("{}", *first) : fmt::format("{} to {}", *first, *last);
        first = std::next(last);
    }
    return text;
}

std::string noteOf(const UnreadRows &rows) {
    if (rows.empty())
        return {};
    return fmt::format("{} of the project could not be read: {}", counted(rows.size(), "row"),
                       rangesOf(rows));
}

} // namespace nv
