#include "reports/pages/SafeStyle.h"

#include "base/Text.h"
#include "markup/CssItems.h"
#include "markup/CssWriter.h"
#include "reports/pages/AllowedCss.h"

#include <utility>
#include <vector>

namespace nv {

namespace {

/// Rules within rules; what lies deeper goes.
constexpr int kDeepestRule = 32;
/// A style of more tokens isn't shown: each takes some hundred bytes while it is read.
constexpr std::size_t kMostTokens = 2'000'000;
/// Drawn as nothing, and nothing is fetched for it.
constexpr std::string_view kNothing = "data:,";

using Tokens = std::vector<CssToken>;

class StyleGuard {
  public:
    StyleGuard(std::string_view css, const References &references)
        : m_tokens(cssTokens(css)), m_references(references) {
        if (m_tokens.size() > kMostTokens)
            m_tokens.clear();
    }

    CssRange all() const { return {0, m_tokens.size()}; }
    std::string sheet() { return items(cssStyleSheet(m_tokens, all()), 0); }
    std::string declarations() { return items(cssDeclarations(m_tokens, all()), kDeepestRule); }
    std::optional<std::string> value(std::string_view property, CssRange part) const;

  private:
    struct Context {
        std::string_view property; ///< in lower case; empty in front of a block
        bool isCondition = false;  ///< in front of an at-rule's block, as in "not (color)"
        bool isOwn = false;        ///< a property that the page made up may end up in any other one
        std::vector<std::string> functions; ///< in lower case, those that the token stands in
        std::vector<CssKind> open;          ///< brackets
    };

    std::string items(const std::vector<CssItem> &items, int depth);
    std::string item(const CssItem &item, int depth);
    std::string atRule(const CssItem &item, int depth);
    std::string import(const CssItem &item) const;
    std::optional<std::string> condition(CssRange part) const;
    std::optional<std::string> written(CssRange part, Context context) const;
    bool write(std::size_t &at, CssRange part, Context &context, CssWriter &writer) const;
    bool writeFunction(std::size_t &at, CssRange part, Context &context, CssWriter &writer) const;
    bool writeAddress(std::string_view address, const Context &context, CssWriter &writer) const;
    bool isAsideCall(std::size_t at, CssRange part) const;
    bool writeString(const std::string &text, const Context &context, CssWriter &writer) const;
    const CssToken *addressIn(CssRange part, std::size_t &at) const;

    Tokens m_tokens;
    const References &m_references;
};

CssKind closingOf(CssKind open) {
    if (open == CssKind::openSquare)
        return CssKind::closeSquare;
    return open == CssKind::openCurly ? CssKind::closeCurly : CssKind::closeRound;
}

void close(CssKind open, CssWriter &writer) {
    const CssKind kind = closingOf(open);
    writer.sign(kind, kind == CssKind::closeSquare ? "]" : kind == CssKind::closeCurly ? "}" : ")");
}

Use useOf(std::string_view property) {
    return property == "src" ? Use::font : Use::image;
}

bool StyleGuard::writeAddress(std::string_view address, const Context &context,
                              CssWriter &writer) const {
    if (!context.isOwn && !mayHoldAddress(context.property))
        return false;
    writer.url(m_references.kept(address, useOf(context.property)).value_or(std::string(kNothing)));
    return true;
}

/// Outside of these places a text may be an address, as in `image-set("a.gif")`.
bool StyleGuard::writeString(const std::string &text, const Context &context,
                             CssWriter &writer) const {
    const bool inSelector = !context.open.empty() && context.open.back() == CssKind::openSquare;
    const bool isText = context.functions.empty() ? !context.isOwn && mayHoldText(context.property)
                                                  : takesText(context.functions.back());
    if (isText || (inSelector && context.property.empty())) {
        writer.string(text);
        return true;
    }
    if (context.property.empty())
        return false;
    writer.string(m_references.kept(text, useOf(context.property)).value_or(std::string(kNothing)));
    return true;
}

/// The text in the brackets of a function that takes an address; `at` is after its name, and moves
/// after the brackets.
const CssToken *StyleGuard::addressIn(CssRange part, std::size_t &at) const {
    const CssToken *found = nullptr;
    const std::size_t end = std::min(m_tokens[at - 1].partner, part.end);
    for (; at < end; ++at)
        if (!found && m_tokens[at].kind == CssKind::string)
            found = &m_tokens[at];
    at = std::min(end + 1, part.end);
    return found;
}

bool StyleGuard::writeFunction(std::size_t &at, CssRange part, Context &context,
                               CssWriter &writer) const {
    const CssToken &token = m_tokens[at];
    const std::string name = toLower(token.text);
    if (name == "url" || name == "src") {
        const CssToken *address = addressIn(part, ++at);
        return writeAddress(address ? std::string_view(address->text) : kNothing, context, writer);
    }
    // What stands in an attribute isn't looked at, so that it may only be shown.
    const bool isShown = context.property == "content" && context.functions.empty();
    if (!isAllowedFunction(name) || (name == "attr" && !isShown))
        return false;
    writer.token(token);
    context.functions.push_back(name);
    context.open.push_back(CssKind::function);
    ++at;
    return true;
}

/// Whether the bracket at `at` follows a name, with or without blanks: old browsers take
/// "expression (" and "url (" for functions as well, and no value has that otherwise.
bool StyleGuard::isAsideCall(std::size_t at, CssRange part) const {
    while (at > part.begin && m_tokens[at - 1].kind == CssKind::blank)
        --at;
    if (at == part.begin)
        return false;
    const CssKind before = m_tokens[at - 1].kind;
    return before == CssKind::ident || before == CssKind::hash || before == CssKind::dimension;
}

/// Writes the token at `at`, which is moved on. False when the whole has to go.
bool StyleGuard::write(std::size_t &at, CssRange part, Context &context, CssWriter &writer) const {
    const CssToken &token = m_tokens[at];
    switch (token.kind) {
    case CssKind::url:
        ++at;
        return writeAddress(token.text, context, writer);
    case CssKind::function:
        return writeFunction(at, part, context, writer);
    case CssKind::string:
        ++at;
        return writeString(token.text, context, writer);
    case CssKind::openCurly:
        if (!context.isOwn)
            return false;
        context.open.push_back(token.kind);
        break;
    case CssKind::openRound:
        if (!context.isCondition && isAsideCall(at, part))
            return false;
        [[fallthrough]];
    case CssKind::openSquare:
        context.open.push_back(token.kind);
        break;
    case CssKind::closeCurly:
    case CssKind::closeRound:
    case CssKind::closeSquare:
        if (context.open.empty() || closingOf(context.open.back()) != token.kind)
            return false;
        if (context.open.back() == CssKind::function)
            context.functions.pop_back();
        context.open.pop_back();
        break;
    case CssKind::atKeyword:
        return false;
    default:
        break;
    }
    ++at;
    return writer.token(token);
}

std::optional<std::string> StyleGuard::written(CssRange part, Context context) const {
    CssWriter writer;
    for (std::size_t at = part.begin; at < part.end;)
        if (!write(at, part, context, writer))
            return std::nullopt;
    for (; !context.open.empty(); context.open.pop_back())
        close(context.open.back(), writer);
    return std::string(trim(writer.text()));
}

std::optional<std::string> StyleGuard::value(std::string_view property, CssRange part) const {
    Context context;
    const std::string name = toLower(property);
    context.property = name;
    context.isOwn = name.starts_with("--");
    return written(part, context);
}

std::optional<std::string> StyleGuard::condition(CssRange part) const {
    Context context;
    context.isCondition = true;
    return written(part, context);
}

std::string StyleGuard::import(const CssItem &item) const {
    std::size_t at = item.value.begin;
    while (at < item.value.end && m_tokens[at].kind == CssKind::blank)
        ++at;
    if (at == item.value.end)
        return {};
    const CssToken *address = &m_tokens[at++];
    if (address->kind == CssKind::function && equalsNoCase(address->text, "url"))
        address = addressIn(item.value, at);
    else if (address->kind != CssKind::url && address->kind != CssKind::string)
        return {};
    const auto kept = address ? m_references.kept(address->text, Use::style) : std::nullopt;
    const auto rest = condition({at, item.value.end});
    if (!kept || !rest || item.hasBlock)
        return {};
    CssWriter writer;
    writer.url(*kept);
    return "@import " + writer.take() + (rest->empty() ? "" : " " + *rest) + ";\n";
}

std::string StyleGuard::atRule(const CssItem &item, int depth) {
    const std::string name = toLower(item.name);
    if (name == "import")
        return depth == 0 ? import(item) : std::string();
    if (!isAllowedRule(name))
        return {};
    const auto front = condition(item.value);
    if (!front || (!item.hasBlock && name != "layer"))
        return {};
    const std::string head = '@' + name + (front->empty() ? "" : " " + *front);
    if (!item.hasBlock)
        return head + ";\n";
    return head + " {\n" + items(cssBlock(m_tokens, item.block), depth + 1) + "}\n";
}

std::string StyleGuard::item(const CssItem &item, int depth) {
    if (item.kind == CssItem::Kind::atRule)
        return depth < kDeepestRule ? atRule(item, depth) : std::string();
    if (item.kind == CssItem::Kind::declaration) {
        const auto value = this->value(item.name, item.value);
        CssWriter name;
        name.name(item.name);
        return value ? name.take() + ":" + *value + (item.isImportant ? "!important;\n" : ";\n")
                     : "";
    }
    if (item.kind != CssItem::Kind::qualifiedRule || depth >= kDeepestRule)
        return {};
    const auto front = written(item.value, {});
    // No selector ends in a colon; within a rule the block would be read as a property's value.
    if (!front || front->empty() || front->ends_with(':'))
        return {};
    return *front + " {\n" + items(cssBlock(m_tokens, item.block), depth + 1) + "}\n";
}

std::string StyleGuard::items(const std::vector<CssItem> &items, int depth) {
    std::string text;
    for (const CssItem &each : items)
        text += item(each, depth);
    return text;
}

} // namespace

std::string guardedStyle(std::string_view css, const References &references) {
    return StyleGuard(css, references).sheet();
}

std::string guardedDeclarations(std::string_view css, const References &references) {
    return replaceAll(StyleGuard(css, references).declarations(), "\n", "");
}

std::optional<std::string> guardedValue(std::string_view property, std::string_view css,
                                        const References &references) {
    const StyleGuard guard(css, references);
    return guard.value(property, guard.all());
}

} // namespace nv
