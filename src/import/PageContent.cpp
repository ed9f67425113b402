#include "import/PageContent.h"

#include "base/Text.h"
#include "markup/PageText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <gumbo.h>

namespace nv {

namespace {

// What a browser doesn't show as text.
constexpr std::array kUnseen = {GUMBO_TAG_SCRIPT,   GUMBO_TAG_STYLE,  GUMBO_TAG_NOSCRIPT,
                                GUMBO_TAG_TEMPLATE, GUMBO_TAG_IFRAME, GUMBO_TAG_NOEMBED,
                                GUMBO_TAG_NOFRAMES, GUMBO_TAG_TITLE};

constexpr std::array kBlocks = {
    GUMBO_TAG_ADDRESS,  GUMBO_TAG_ARTICLE,    GUMBO_TAG_ASIDE,  GUMBO_TAG_BLOCKQUOTE,
    GUMBO_TAG_BR,       GUMBO_TAG_CAPTION,    GUMBO_TAG_CENTER, GUMBO_TAG_DD,
    GUMBO_TAG_DIR,      GUMBO_TAG_DIV,        GUMBO_TAG_DL,     GUMBO_TAG_DT,
    GUMBO_TAG_FIELDSET, GUMBO_TAG_FIGCAPTION, GUMBO_TAG_FIGURE, GUMBO_TAG_FOOTER,
    GUMBO_TAG_FORM,     GUMBO_TAG_H1,         GUMBO_TAG_H2,     GUMBO_TAG_H3,
    GUMBO_TAG_H4,       GUMBO_TAG_H5,         GUMBO_TAG_H6,     GUMBO_TAG_HEADER,
    GUMBO_TAG_HR,       GUMBO_TAG_LEGEND,     GUMBO_TAG_LI,     GUMBO_TAG_LISTING,
    GUMBO_TAG_MAIN,     GUMBO_TAG_MENU,       GUMBO_TAG_NAV,    GUMBO_TAG_OL,
    GUMBO_TAG_OPTGROUP, GUMBO_TAG_OPTION,     GUMBO_TAG_P,      GUMBO_TAG_PLAINTEXT,
    GUMBO_TAG_PRE,      GUMBO_TAG_SECTION,    GUMBO_TAG_SELECT, GUMBO_TAG_TABLE,
    GUMBO_TAG_TEXTAREA, GUMBO_TAG_TR,         GUMBO_TAG_UL,     GUMBO_TAG_XMP};

constexpr std::array kCells = {GUMBO_TAG_TD, GUMBO_TAG_TH};

// In these the line breaks of the text are shown.
constexpr std::array kLines = {GUMBO_TAG_LISTING, GUMBO_TAG_PLAINTEXT, GUMBO_TAG_PRE,
                               GUMBO_TAG_TEXTAREA, GUMBO_TAG_XMP};

constexpr std::array kLinks = {GUMBO_TAG_A, GUMBO_TAG_AREA};

template <std::size_t Count>
bool isOneOf(const std::array<GumboTag, Count> &tags, GumboTag tag) {
    return std::ranges::find(tags, tag) != tags.end();
}

/// Text whose white space is drawn together, line by line.
class ShownText {
  public:
    void add(std::string_view text, bool keepsLines) {
        for (std::size_t at = 0; at < text.size(); ++at) {
            if (text.substr(at).starts_with(kHardBlank)) {
                m_blank = true;
                ++at;
            } else if (text[at] == '\n' && keepsLines) {
                endLine();
            } else if (kBlanks.find(text[at]) != std::string_view::npos) {
                m_blank = true;
            } else {
                put(text[at]);
            }
        }
    }
    void blank() { m_blank = true; }
    void endLine() { m_lineEnd = true; }
    std::string take() { return std::move(m_text); }

  private:
    /// Searches for two words must find them whatever parts them.
    static constexpr std::string_view kHardBlank = "\xC2\xA0";
    static constexpr std::string_view kBlanks = " \t\n\f\r";

    void put(char c) {
        if (m_lineEnd && !m_text.empty())
            m_text += "\r\n";
        else if (m_blank && !m_text.empty())
            m_text += ' ';
        m_lineEnd = m_blank = false;
        m_text += c;
    }

    std::string m_text;
    bool m_blank = false;
    bool m_lineEnd = false;
};

/// Walks through a body. Pages nest deeper than a stack may be: it keeps its own.
class BodyWalk {
  public:
    void run(const GumboNode &body) {
        enter(body);
        while (!m_path.empty()) {
            Step &step = m_path.back();
            const auto children = HtmlDocument::childrenOf(*step.node);
            if (step.next == children.size())
                leave();
            else
                enter(*children[step.next++]);
        }
    }
    PageContent take() {
        m_content.Body = m_text.take();
        return std::move(m_content);
    }

  private:
    struct Step {
        const GumboNode *node;
        std::size_t next; ///< 0-based, of its children
    };

    void enter(const GumboNode &node) {
        if (node.type == GUMBO_NODE_TEXT || node.type == GUMBO_NODE_WHITESPACE ||
            node.type == GUMBO_NODE_CDATA)
            m_text.add(node.v.text.text, m_keepsLines > 0);
        if (node.type != GUMBO_NODE_ELEMENT || isOneOf(kUnseen, node.v.element.tag))
            return;
        addLink(node.v.element);
        part(node.v.element.tag);
        m_keepsLines += isOneOf(kLines, node.v.element.tag) ? 1 : 0;
        m_path.push_back({&node, 0});
    }

    void leave() {
        const GumboTag tag = m_path.back().node->v.element.tag;
        m_path.pop_back();
        m_keepsLines -= isOneOf(kLines, tag) ? 1 : 0;
        part(tag);
    }

    void part(GumboTag tag) {
        if (isOneOf(kBlocks, tag))
            m_text.endLine();
        else if (isOneOf(kCells, tag))
            m_text.blank();
    }

    void addLink(const GumboElement &element) {
        if (!isOneOf(kLinks, element.tag))
            return;
        const GumboAttribute *href = gumbo_get_attribute(&element.attributes, "href");
        if (!href)
            return;
        std::string link(trim(href->value));
        std::erase_if(link, [](char c) { return c == '\n' || c == '\r' || c == '\t'; });
        if (!link.empty())
            m_content.Links.push_back(std::move(link));
    }

    PageContent m_content;
    ShownText m_text;
    std::vector<Step> m_path;
    std::size_t m_keepsLines = 0;
};

const GumboNode *bodyOf(const HtmlDocument &document) {
    for (const GumboNode *child : HtmlDocument::childrenOf(document.root()))
        if (child->type == GUMBO_NODE_ELEMENT && child->v.element.tag == GUMBO_TAG_BODY)
            return child;
    return nullptr;
}

} // namespace

std::string ReadPageText(const ByteSource &file, std::string_view httpHeader) {
    if (file.size() > kPageBytes)
        throw PageTooLarge(file.path(), fmt::format("its {} bytes are more than the limit of {}",
                                                    file.size(), kPageBytes));
    const Bytes bytes = file.read(0, file.size());
    return decodePage(ByteView(bytes), httpHeader);
}

PageContent ReadPageContent(std::string_view html, const std::filesystem::path &file) {
    const HtmlDocument document(html, file);
    BodyWalk walk;
    if (const GumboNode *body = bodyOf(document))
        walk.run(*body);
    return walk.take();
}

} // namespace nv
