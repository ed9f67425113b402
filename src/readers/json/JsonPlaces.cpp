#include "readers/json/JsonPlaces.h"

#include "base/Base64.h"
#include "base/Text.h"
#include "readers/Dissection.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

/// What the readers make of a text, by the field.
std::string madeText(const JsonFieldRule &rule, std::string_view value) {
    const std::string text = jsonText(value);
    if (rule.form == SourceForm::encryptedBase64)
        return fmt::format("encrypted, {} bytes", fromBase64(text).size());
    return rule.field == "URL" ? percentDecode(parseURLFromRawURL(text)) : text;
}

void place(const JsonFieldRule &rule, const JsonSpan &member, TextPlaces &text) {
    const std::string what = fmt::format("member \"{}\"", rule.member);
    const bool isText = rule.form == SourceForm::text || rule.form == SourceForm::encryptedBase64;
    if (isText)
        return text.value(rule.field, member.value, madeText(rule, member.value), what,
                          std::string(wordsOf(rule.form)));
    // Numbers may stand as texts.
    std::string_view digits = member.value;
    if (digits.size() > 1 && digits.front() == '"')
        digits = digits.substr(1, digits.size() - 2);
    text.digits(rule.field, digits, rule.form, what);
}

} // namespace

void placeJsonMembers(const JsonFound &object, std::span<const JsonFieldRule> rules,
                      TextPlaces &text) {
    for (const JsonFieldRule &rule : rules) {
        const auto member = std::ranges::find(object.members, rule.member, &JsonSpan::path);
        if (member != object.members.end() && member->value != "null")
            place(rule, *member, text);
    }
}

} // namespace nv
