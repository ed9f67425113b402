#include "markup/CssItems.h"

#include "base/Text.h"

#include <algorithm>
#include <optional>

namespace nv {

namespace {

using Tokens = std::vector<CssToken>;
using Kind = CssItem::Kind;

class ItemReader {
  public:
    ItemReader(const Tokens &tokens, CssRange part)
        : m_tokens(tokens), m_part(part), m_at(part.begin) {}

    template <class Read>
    std::vector<CssItem> all(std::initializer_list<CssKind> passed, Read read) {
        std::vector<CssItem> items;
        for (;;) {
            while (!isEnd() && std::ranges::find(passed, kind()) != passed.end())
                ++m_at;
            if (isEnd())
                return items;
            items.push_back(read(*this));
        }
    }

    CssItem rule() { return kind() == CssKind::atKeyword ? atRule() : qualifiedRule(false); }
    CssItem declarationOrAtRule();
    CssItem blockItem();

  private:
    bool isEnd() const { return m_at >= m_part.end; }
    CssKind kind() const { return m_tokens[m_at].kind; }
    void pass() { m_at = behindValue(m_tokens, m_at, m_part); }

    CssItem atRule();
    CssItem qualifiedRule(bool nested);
    void readBlock(CssItem &item);
    std::optional<CssItem> declarationHere();

    const Tokens &m_tokens;
    CssRange m_part;
    std::size_t m_at;
};

/// At the "{".
void ItemReader::readBlock(CssItem &item) {
    item.hasBlock = true;
    item.block = {m_at + 1, std::min(m_tokens[m_at].partner, m_part.end)};
    pass();
}

CssItem ItemReader::atRule() {
    CssItem item;
    item.kind = Kind::atRule;
    item.name = m_tokens[m_at].text;
    item.value.begin = ++m_at;
    while (!isEnd() && kind() != CssKind::semicolon && kind() != CssKind::openCurly)
        pass();
    item.value.end = m_at;
    if (isEnd())
        return item;
    if (kind() == CssKind::openCurly)
        readBlock(item);
    else
        ++m_at;
    return item;
}

/// Among declarations a ";" ends what was no rule.
CssItem ItemReader::qualifiedRule(bool nested) {
    CssItem item;
    item.value.begin = m_at;
    while (!isEnd() && kind() != CssKind::openCurly && !(nested && kind() == CssKind::semicolon))
        pass();
    item.value.end = m_at;
    if (isEnd() || kind() != CssKind::openCurly)
        return item;
    item.kind = Kind::qualifiedRule;
    readBlock(item);
    return item;
}

CssItem ItemReader::declarationOrAtRule() {
    if (kind() == CssKind::atKeyword)
        return atRule();
    const CssRange rest{m_at, m_part.end};
    while (!isEnd() && kind() != CssKind::semicolon)
        pass();
    return cssDeclaration(m_tokens, {rest.begin, m_at});
}

/// Nothing where a rule begins, such as "a:hover {".
std::optional<CssItem> ItemReader::declarationHere() {
    std::size_t at = m_at;
    const auto skip = [&] {
        while (at < m_part.end && m_tokens[at].kind == CssKind::blank)
            ++at;
    };
    if (m_tokens[at++].kind != CssKind::ident)
        return std::nullopt;
    skip();
    if (at >= m_part.end || m_tokens[at].kind != CssKind::colon)
        return std::nullopt;
    const bool isOwn = m_tokens[m_at].text.starts_with("--"); // any brackets may be in its value
    ++at;
    std::size_t values = 0;
    bool hasBlock = false;
    while (at < m_part.end && m_tokens[at].kind != CssKind::semicolon) {
        hasBlock |= m_tokens[at].kind == CssKind::openCurly;
        values += m_tokens[at].kind == CssKind::blank ? 0 : 1;
        if (hasBlock && values > 1 && !isOwn)
            return std::nullopt;
        at = behindValue(m_tokens, at, m_part);
    }
    CssItem item = cssDeclaration(m_tokens, {m_at, at});
    m_at = at;
    return item;
}

CssItem ItemReader::blockItem() {
    if (kind() == CssKind::atKeyword)
        return atRule();
    if (auto item = declarationHere())
        return std::move(*item);
    return qualifiedRule(true);
}

/// Takes "!important" off the value's end.
void readImportant(const Tokens &tokens, CssItem &item) {
    std::size_t at = item.value.end;
    const auto previous = [&]() -> const CssToken * {
        while (at > item.value.begin && tokens[at - 1].kind == CssKind::blank)
            --at;
        return at > item.value.begin ? &tokens[--at] : nullptr;
    };
    const CssToken *word = previous();
    if (!word || word->kind != CssKind::ident || !equalsNoCase(word->text, "important"))
        return;
    const CssToken *sign = previous();
    if (!sign || sign->kind != CssKind::delim || sign->text != "!")
        return;
    item.isImportant = true;
    item.value.end = at;
}

} // namespace

std::size_t behindValue(const Tokens &tokens, std::size_t at, CssRange part) {
    if (!opensBlock(tokens[at].kind))
        return at + 1;
    return std::min(tokens[at].partner + 1, part.end);
}

CssItem cssDeclaration(const Tokens &tokens, CssRange part) {
    std::size_t at = part.begin;
    const auto skip = [&] {
        while (at < part.end && tokens[at].kind == CssKind::blank)
            ++at;
    };
    CssItem item;
    skip();
    if (at == part.end || tokens[at].kind != CssKind::ident)
        return item;
    const std::size_t name = at++;
    skip();
    if (at == part.end || tokens[at].kind != CssKind::colon)
        return item;
    item.kind = Kind::declaration;
    item.name = tokens[name].text;
    item.value = {at + 1, part.end};
    readImportant(tokens, item);
    return item;
}

std::vector<CssItem> cssStyleSheet(const Tokens &tokens, CssRange part) {
    return ItemReader(tokens, part).all({CssKind::blank, CssKind::cdo, CssKind::cdc}, [](auto &r) {
        return r.rule();
    });
}

std::vector<CssItem> cssDeclarations(const Tokens &tokens, CssRange part) {
    return ItemReader(tokens, part).all({CssKind::blank, CssKind::semicolon}, [](auto &r) {
        return r.declarationOrAtRule();
    });
}

std::vector<CssItem> cssBlock(const Tokens &tokens, CssRange part) {
    return ItemReader(tokens, part).all({CssKind::blank, CssKind::semicolon}, [](auto &r) {
        return r.blockItem();
    });
}

} // namespace nv
