#include "views/table/TableLayout.h"

#include "base/Text.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace nv {
namespace {

constexpr int kWidthWhenShown = 1300; ///< twips, of columns whose first width is 0
constexpr int kWidest = 60000; ///< 4000 pixels: wider than any screen that tables are read on

std::string nameOf(const UrlColumnFacts &facts, std::string_view ending) {
    return std::string(facts.key).append(ending);
}

std::optional<int> numberIn(std::string_view text) {
    text = trim(text);
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

} // namespace

TableLayout::TableLayout() {
    for (const UrlColumnFacts &facts : kTableColumns) {
        at(facts.column) = {facts.shown == Shown::No, facts.widthTwips, std::string(facts.header)};
        m_order.push_back(facts.column);
    }
}

int TableLayout::widthTwips(UrlColumn column) const {
    const Place &place = at(column);
    return place.widthTwips == 0 && !place.hidden ? kWidthWhenShown : place.widthTwips;
}

void TableLayout::setWidthTwips(UrlColumn column, int twips) {
    if (twips > 0 && twips <= kWidest)
        at(column).widthTwips = twips;
}

std::vector<UrlColumn> TableLayout::shownColumns() const {
    std::vector<UrlColumn> shown;
    std::copy_if(m_order.begin(), m_order.end(), std::back_inserter(shown),
                 [this](UrlColumn column) { return !hidden(column); });
    return shown;
}

int TableLayout::position(UrlColumn column) const {
    return static_cast<int>(std::find(m_order.begin(), m_order.end(), column) - m_order.begin());
}

void TableLayout::move(UrlColumn column, int position) {
    std::erase(m_order, column);
    const auto end = static_cast<int>(m_order.size());
    m_order.insert(m_order.begin() + std::clamp(position, 0, end), column);
}

void TableLayout::restore(const Read &read) {
    for (const UrlColumnFacts &facts : kTableColumns) {
        const std::string kept = read(nameOf(facts, "_ColIsHidden"));
        if (equalsNoCase(trim(kept), "True"))
            at(facts.column).hidden = true;
        else if (equalsNoCase(trim(kept), "False"))
            at(facts.column).hidden = false;
        const auto width = numberIn(read(nameOf(facts, "_ColWidth")));
        if (width == 0)
            fit(facts.column);
        else if (width)
            setWidthTwips(facts.column, *width);
    }
    restorePositions(read);
}

/// Columns with a kept place go there in rising order, so that a whole arrangement comes back as it
/// was; of two with one place the lower index stands first.
void TableLayout::restorePositions(const Read &read) {
    std::vector<std::pair<int, UrlColumn>> kept;
    for (const UrlColumnFacts &facts : kTableColumns)
        if (const auto place = numberIn(read(nameOf(facts, "_ColPos"))); place && *place >= 0)
            kept.emplace_back(*place, facts.column);
    std::sort(kept.begin(), kept.end());
    for (const auto &[place, column] : kept)
        std::erase(m_order, column);
    int next = 0;
    for (const auto &[place, column] : kept) {
        const int target = std::min(std::max(place, next), static_cast<int>(m_order.size()));
        m_order.insert(m_order.begin() + target, column);
        next = target + 1;
    }
}

void TableLayout::save(const Write &write) const {
    for (const UrlColumnFacts &facts : kTableColumns) {
        const Place &place = at(facts.column);
        write(nameOf(facts, "_ColIsHidden"), place.hidden ? "True" : "False");
        write(nameOf(facts, "_ColPos"), std::to_string(position(facts.column)));
        write(nameOf(facts, "_ColWidth"), std::to_string(place.widthTwips));
    }
}

} // namespace nv
