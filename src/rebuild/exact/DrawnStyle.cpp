#include "rebuild/exact/DrawnStyle.h"

#include "base/Text.h"
#include "markup/CssItems.h"
#include "markup/CssWriter.h"

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
        : m_tokens(cssTokens(css)), m_names(names) {}

    CssRange all() const { return {0, m_tokens.size()}; }
    std::optional<std::string> value(CssRange part) const;
    std::string declarations(const std::vector<CssItem> &items) const;
    std::string declarations() const { return declarations(cssDeclarations(m_tokens, all())); }
    std::string sheet() const;

  private:
    bool writeAddress(std::string_view meant, CssWriter &writer) const;
    const CssToken *textIn(std::size_t at, CssRange part) const;
    bool writeToken(std::size_t &at, CssRange part, CssWriter &writer) const;
    std::optional<std::string> selectors(CssRange part) const;
    bool addToSelector(std::size_t &at, CssRange part, std::string &text) const;

    Tokens m_tokens;
    const DrawnNames &m_names;
};

/// A place of the drawing under its new name; false for any other address.
bool DrawnStyle::writeAddress(std::string_view meant, CssWriter &writer) const {
    if (meant.size() < 2 || !meant.starts_with('#'))
        return false;
    writer.url("#" + m_names.idOf(meant.substr(1)));
    return true;
}

/// The text in the brackets of "url(", whose name is at `at`; null for none.
const CssToken *DrawnStyle::textIn(std::size_t at, CssRange part) const {
    for (++at; at < part.end; ++at)
        if (m_tokens[at].kind == CssKind::string)
            return &m_tokens[at];
        else if (m_tokens[at].kind != CssKind::blank)
            break;
    return nullptr;
}

/// Writes the token at `at`, which is moved to the last one that was read. False when the whole has
/// to go.
bool DrawnStyle::writeToken(std::size_t &at, CssRange part, CssWriter &writer) const {
    const CssToken &token = m_tokens[at];
    if (opensBlock(token.kind) && token.partner >= part.end)
        return false;
    switch (token.kind) {
    case CssKind::url:
        return writeAddress(token.text, writer);
    case CssKind::function: {
        const std::string name = toLower(token.text);
        if (!isUrlFunction(name))
            return !namesOthers(name) && writer.token(token);
        const CssToken *address = textIn(at, part);
        at = token.partner;
        return address && writeAddress(address->text, writer);
    }
    case CssKind::openCurly:
    case CssKind::closeCurly:
    case CssKind::atKeyword:
        return false;
    default:
        return writer.token(token);
    }
}

/// Written anew: what stood apart by a comment doesn't run together.
std::optional<std::string> DrawnStyle::value(CssRange part) const {
    CssWriter writer;
    for (std::size_t at = part.begin; at < part.end; ++at)
        if (!writeToken(at, part, writer))
            return std::nullopt;
    return std::string(trim(writer.text()));
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
