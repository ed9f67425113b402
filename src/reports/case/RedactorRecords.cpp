#include "base/Text.h"
#include "readers/Dissection.h"
#include "reports/case/Redactor.h"

#include <algorithm>

namespace nv {

namespace {

bool isBelow(std::string_view host, std::string_view domain) {
    return equalsNoCase(host, domain) ||
           (host.size() > domain.size() && host[host.size() - domain.size() - 1] == '.' &&
            equalsNoCase(host.substr(host.size() - domain.size()), domain));
}

bool isSameWord(std::string_view one, std::string_view other) {
    return PlainStream(one, PlainStream::Codes::keep).plain ==
           PlainStream(other, PlainStream::Codes::keep).plain;
}

} // namespace

std::string hostOf(const UrlRecord &record) {
    return record.host.empty() ? parseHost(record.URL) : record.host;
}

bool Redactor::leavesOutRows() const {
    return std::ranges::any_of(m_rules, [](const RedactionRule &rule) {
        return rule.way == RedactionWay::leaveOut && rule.thing != RedactedThing::picture;
    });
}

bool Redactor::isOfHost(std::string_view host) const {
    return std::ranges::any_of(m_rules, [host](const RedactionRule &rule) {
        return rule.thing == RedactedThing::host && isBelow(host, rule.what);
    });
}

bool Redactor::hidesHost(std::string_view host) const {
    bool isHidden = false;
    for (std::size_t at = 0; at < m_rules.size(); ++at) {
        const RedactionRule &rule = m_rules[at];
        if (rule.thing != RedactedThing::host || rule.way != RedactionWay::blur ||
            !isBelow(host, rule.what))
            continue;
        meet(at);
        isHidden = true;
    }
    return isHidden;
}

bool Redactor::fits(const RedactionRule &rule, const UrlRecord &record, std::string_view host,
                    const std::vector<std::string_view> &texts) {
    switch (rule.thing) {
    case RedactedThing::host:
        return isBelow(host, rule.what);
    case RedactedThing::person:
        return isSameWord(record.Person, rule.what) || isSameWord(record.User, rule.what);
    case RedactedThing::value: {
        const Redactor alone({rule});
        return std::ranges::any_of(
            texts, [&alone](std::string_view text) { return alone.holdsAny(text); });
    }
    case RedactedThing::picture:
        break;
    }
    return false;
}

/// By whichever rule: none counts as of no use because another took the row before.
bool Redactor::leavesOut(const UrlRecord &record,
                         const std::vector<std::string_view> &texts) const {
    const std::string host = hostOf(record);
    bool isOut = false;
    for (std::size_t at = 0; at < m_rules.size(); ++at) {
        const RedactionRule &rule = m_rules[at];
        if (rule.way != RedactionWay::leaveOut || (isOut && m_met[at]) ||
            !fits(rule, record, host, texts))
            continue;
        meet(at);
        isOut = true;
    }
    return isOut;
}

std::optional<RedactionWay> Redactor::pictureOf(UrlId id) const {
    const std::string digits = std::to_string(number(id));
    for (const RedactionRule &rule : m_rules)
        if (rule.thing == RedactedThing::picture && rule.what == digits)
            return rule.way;
    return std::nullopt;
}

std::vector<UrlId> Redactor::pictureRows() const {
    std::vector<UrlId> rows;
    for (const RedactionRule &rule : m_rules)
        if (rule.thing == RedactedThing::picture)
            rows.push_back(UrlId{std::stoll(rule.what)});
    return rows;
}

void Redactor::notePicture(UrlId id) {
    const std::string digits = std::to_string(number(id));
    for (std::size_t at = 0; at < m_rules.size(); ++at)
        if (m_rules[at].thing == RedactedThing::picture && m_rules[at].what == digits)
            meet(at);
}

RedactionRules Redactor::unmet() const {
    RedactionRules rules;
    for (std::size_t at = 0; at < m_rules.size(); ++at)
        if (!m_met[at])
            rules.push_back(m_rules[at]);
    return rules;
}

} // namespace nv
