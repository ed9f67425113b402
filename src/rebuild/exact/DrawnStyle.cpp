#include "rebuild/exact/DrawnStyle.h"

#include "base/Text.h"
#include "markup/CssItems.h"

#include <algorithm>
#include <array>
#include <vector>

namespace nv {

namespace {

using Tokens = std::vector<CssToken>;

constexpr std::array<std::string_view, 7> kNaming = {
    "image-set", "image", "cross-fade", "attr", "element", "-moz-element", "paint"};

bool isPlainName(std::string_view name) {
    return !name.empty() && std::ranges::all_of(name, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '-' || c == '_';
    });
}

bool isUrlFunction(std::string_view name) {
    return name == "url" || name == "src";
}

bool namesOthers(std::string_view function) {
    return std::ranges::any_of(kNaming, [function](std::string_view name) {
        return function == name || function.ends_with("-" + std::string(name));
    });
}

class DrawnStyle {
  public:
    DrawnStyle(std::string_view css, const DrawnNames &names)
        : m_css(css), m_tokens(cssTokens(css)), m_names(names) {}

    CssRange all() const { return {0, m_tokens.size()}; }
    std::optional<std::string> value(CssRange part) const;
    std::string declarations(const std::vector<CssItem> &items) const;
    std::string declarations() const { return declarations(cssDeclarations(m_tokens, all())); }
    std::string sheet() const;

  private:
    std::optional<std::string> address(std::string_view meant) const;
    std::optional<std::string> selectors(CssRange part) const;
    bool addToSelector(std::size_t &at, CssRange part, std::string &text) const;

    std::string_view m_css;
    Tokens m_tokens;
    const DrawnNames &m_names;
};

std::optional<std::string> DrawnStyle::address(std::string_view meant) const {
    if (meant.size() < 2 || !meant.starts_with('#'))
        return std::nullopt;
    return "url(#" + m_names.idOf(meant.substr(1)) + ")";
}

std::optional<std::string> DrawnStyle::value(CssRange part) const {
    std::string text;
    for (std::size_t at = part.begin; at < part.end; ++at) {
        const CssToken &token = m_tokens[at];
        const std::string name =
            token.kind == CssKind::function ? toLower(token.text) : std::string();
        std::optional<std::string> own;
        if (token.kind == CssKind::url) {
            own = address(token.text);
        } else if (isUrlFunction(name)) {
            std::size_t inner = at + 1;
            while (inner < part.end && m_tokens[inner].kind == CssKind::blank)
                ++inner;
            own = inner < part.end && m_tokens[inner].kind == CssKind::string
                      ? address(m_tokens[inner].text)
                      : std::nullopt;
            at = token.partner;
        } else {
            own = std::string(token.at.in(m_css));
        }
        const bool isOpen = opensBlock(token.kind) && token.partner >= part.end;
        const bool goes = token.kind == CssKind::badUrl || token.kind == CssKind::badString ||
                          token.kind == CssKind::openCurly || token.kind == CssKind::closeCurly ||
                          token.kind == CssKind::atKeyword || !token.isClosed;
        if (!own || isOpen || goes || namesOthers(name))
            return std::nullopt;
        text += *own;
    }
    return std::string(trim(text));
}

std::string DrawnStyle::declarations(const std::vector<CssItem> &items) const {
    std::string text;
    for (const CssItem &item : items) {
        if (item.kind != CssItem::Kind::declaration || !isPlainName(item.name))
            continue;
        if (const auto own = value(item.value))
            text += item.name + ":" + *own + (item.isImportant ? "!important;" : ";");
    }
    return text;
}

/// Takes the token at `at` over. False for what isn't known.
bool DrawnStyle::addToSelector(std::size_t &at, CssRange part, std::string &text) const {
    const CssToken &token = m_tokens[at];
    switch (token.kind) {
    case CssKind::blank:
        text += ' ';
        return true;
    case CssKind::ident:
        text += token.text;
        return isPlainName(token.text);
    case CssKind::hash:
        text += '#' + m_names.idOf(token.text);
        return true;
    case CssKind::delim:
        break;
    default:
        return false;
    }
    if (token.text == ".") {
        if (++at >= part.end || m_tokens[at].kind != CssKind::ident)
            return false;
        text += '.' + m_names.classOf(m_tokens[at].text);
        return true;
    }
    text += token.text;
    return token.text == ">" || token.text == "+" || token.text == "~" || token.text == "*";
}

/// Each ends in what only the drawing has, which changes no order of rules among themselves.
std::optional<std::string> DrawnStyle::selectors(CssRange part) const {
    std::string all;
    std::string one;
    for (std::size_t at = part.begin; at <= part.end; ++at) {
        if (at < part.end && m_tokens[at].kind != CssKind::comma) {
            if (!addToSelector(at, part, one))
                return std::nullopt;
            continue;
        }
        const std::string_view own = trim(one);
        if (own.empty() || own.find_last_of(">+~") == own.size() - 1)
            return std::nullopt;
        all += (all.empty() ? "" : ",") + std::string(own) + '.' + m_names.mark;
        one.clear();
    }
    return all;
}

std::string DrawnStyle::sheet() const {
    std::string text;
    for (const CssItem &item : cssStyleSheet(m_tokens, all())) {
        if (item.kind != CssItem::Kind::qualifiedRule || !item.hasBlock)
            continue;
        const auto front = selectors(item.value);
        const std::string inner = declarations(cssBlock(m_tokens, item.block));
        if (front && !inner.empty())
            text += *front + "{" + inner + "}";
    }
    return text;
}

} // namespace

std::optional<std::string> drawnValue(std::string_view css, const DrawnNames &names) {
    const DrawnStyle style(css, names);
    return style.value(style.all());
}

std::string drawnDeclarations(std::string_view css, const DrawnNames &names) {
    return DrawnStyle(css, names).declarations();
}

std::string drawnSheet(std::string_view css, const DrawnNames &names) {
    return DrawnStyle(css, names).sheet();
}

} // namespace nv
