#include "import/PageContent.h"

#include "base/Text.h"
#include "markup/HtmlTags.h"
#include "markup/PageText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <unordered_map>

namespace nv {

namespace {

// What an element does to the text around it and in it.
enum Look : std::uint8_t {
    kUnseen = 1, ///< a browser doesn't show its text as text of the page
    kBlock = 2,  ///< begins a line and ends one
    kCell = 4,   ///< parted from its neighbours by a blank
    kLines = 8,  ///< the line breaks of its text are shown
    kLink = 16,
};

struct LookRow {
    unsigned look;          ///< of `Look`
    std::string_view names; ///< separated by blanks
};

constexpr std::array<LookRow, 5> kLooks = {{
    {kUnseen, "script style noscript template iframe noembed noframes title"},
    {kBlock, "address article aside blockquote br caption center dd dir div dl dt fieldset "
             "figcaption figure footer form h1 h2 h3 h4 h5 h6 header hr legend li main menu nav ol "
             "optgroup option p section select table tr ul"},
    {kBlock | kLines, "listing plaintext pre textarea xmp"},
    {kCell, "td th"},
    {kLink, "a area"},
}};

/// `name` is in lower case.
unsigned lookOf(std::string_view name) {
    using Looks = std::unordered_map<std::string_view, unsigned>;
    static const Looks looks = [] {
        Looks made;
        for (const LookRow &row : kLooks)
            for (const std::string_view each : split(row.names, ' '))
                made.emplace(each, row.look);
        return made;
    }();
    const auto found = looks.find(name);
    return found == looks.end() ? 0 : found->second;
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
    void run(const HtmlDocument::Node &body) {
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
        m_content.body = m_text.take();
        return std::move(m_content);
    }

  private:
    struct Step {
        const HtmlDocument::Node *node;
        unsigned look;
        std::size_t next = 0; ///< 0-based, of its children
    };

    void enter(const HtmlDocument::Node &node) {
        m_text.add(HtmlDocument::writtenIn(node), m_keepsLines > 0);
        if (!HtmlDocument::isElement(node))
            return;
        unsigned look = lookOf(HtmlDocument::plainNameOf(node));
        if (HtmlDocument::isShadowTree(node))
            look = kBlock;
        if (look & kUnseen)
            return;
        if (look & kLink)
            addLink(node);
        part(look);
        m_keepsLines += look & kLines ? 1 : 0;
        m_path.push_back({&node, look});
    }

    void leave() {
        const unsigned look = m_path.back().look;
        m_path.pop_back();
        m_keepsLines -= look & kLines ? 1 : 0;
        part(look);
    }

    void part(unsigned look) {
        if (look & kBlock)
            m_text.endLine();
        else if (look & kCell)
            m_text.blank();
    }

    void addLink(const HtmlDocument::Node &element) {
        const auto href = HtmlDocument::valueOf(element, "href");
        std::string link(trim(href.value_or(std::string_view())));
        std::erase_if(link, [](char c) { return c == '\n' || c == '\r' || c == '\t'; });
        if (!link.empty())
            m_content.links.push_back(std::move(link));
    }

    PageContent m_content;
    ShownText m_text;
    std::vector<Step> m_path;
    std::size_t m_keepsLines = 0;
};

const HtmlDocument::Node *bodyOf(const HtmlDocument &document) {
    for (const HtmlDocument::Node *child : HtmlDocument::childrenOf(document.root()))
        if (HtmlDocument::isElement(*child) && HtmlDocument::plainNameOf(*child) == "body")
            return child;
    return nullptr;
}

PageContent contentOf(const HtmlDocument &document) {
    BodyWalk walk;
    if (const HtmlDocument::Node *body = bodyOf(document))
        walk.run(*body);
    return walk.take();
}

void expectWithin(std::uint64_t limit, std::uint64_t bytes, const std::filesystem::path &file) {
    if (bytes > limit)
        throw PageTooLarge(file,
                           fmt::format("its {} bytes are more than the limit of {}", bytes, limit));
}

/// One element with the text of all that a page shows, a line for each block: what the parser takes
/// of any page.
std::string flattened(std::string_view html) {
    std::string flat = "<pre>";
    HtmlTags tags(html);
    HtmlTag tag;
    for (bool more = true; more;) {
        const std::size_t from = flat.size();
        more = tags.next(tag, &flat);
        std::replace(flat.begin() + static_cast<std::ptrdiff_t>(from), flat.end(), '\n', ' ');
        const unsigned look = more ? lookOf(toLower(tag.name)) : 0;
        if (look & kUnseen && !tag.isEnd)
            tags.skipText(tag.name);
        else if (look & (kBlock | kCell))
            flat += look & kBlock ? '\n' : ' ';
    }
    return flat;
}

} // namespace

std::string readPageText(const ByteSource &file, std::string_view httpHeader) {
    expectWithin(kPageTextBytes, file.size(), file.path());
    const Bytes bytes = file.read(0, file.size());
    return decodePage(ByteView(bytes), httpHeader);
}

PageContent readPageContent(std::string_view html, const std::filesystem::path &file) {
    expectWithin(kPageBytes, html.size(), file);
    return contentOf(HtmlDocument(html, file));
}

PageContent readFlatContent(std::string_view html, const std::filesystem::path &file) {
    return contentOf(HtmlDocument(flattened(html), file));
}

} // namespace nv
