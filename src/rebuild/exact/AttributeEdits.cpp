#include "rebuild/exact/AttributeEdits.h"

#include "base/Text.h"

#include <algorithm>
#include <utility>

namespace nv {

const HtmlAttribute *attributeOf(const HtmlAttributes &attributes, std::string_view name) {
    const auto found = std::ranges::find_if(attributes, [name](const HtmlAttribute &attribute) {
        return attribute.name == name && !attribute.isPrefixed;
    });
    return found == attributes.end() ? nullptr : &*found;
}

std::string_view valueOf(const HtmlAttributes &attributes, std::string_view name) {
    const HtmlAttribute *found = attributeOf(attributes, name);
    return found ? trim(found->value) : std::string_view();
}

bool AttributeEdits::isQuoted(const HtmlAttribute &attribute) const {
    const auto [begin, end] = attribute.valueAt;
    return begin > 0 && end < m_html.size() && m_html[begin - 1] == m_html[end] &&
           (m_html[end] == '"' || m_html[end] == '\'');
}

void AttributeEdits::set(const HtmlAttribute &attribute, std::string_view value) {
    const bool hasValue = attribute.valueAt.begin > attribute.nameAt.end;
    if (!hasValue && value.empty())
        return;
    std::string text(value);
    if (!hasValue)
        text = "=\"" + text + '"';
    else if (!isQuoted(attribute))
        text = '"' + text + '"';
    replace(attribute.valueAt, std::move(text));
}

void AttributeEdits::rename(const HtmlAttribute &attribute, std::string_view name) {
    replace(attribute.nameAt, std::string(name));
}

void AttributeEdits::shelve(const HtmlAttribute &attribute) {
    replace({attribute.nameAt.begin, attribute.nameAt.begin}, "data-was-");
}

void AttributeEdits::replace(SourceSpan at, std::string text) {
    m_edits.push_back({at, std::move(text)});
}

} // namespace nv
