#include "markup/HtmlDocument.h"

#include <gtest/gtest.h>

#include <functional>

namespace nv {
namespace {

using Node = HtmlDocument::Node;

/// All elements, in the order of the tree.
std::vector<const Node *> elementsOf(const HtmlDocument &page) {
    std::vector<const Node *> all;
    const std::function<void(const Node &)> walk = [&](const Node &node) {
        if (HtmlDocument::isElement(node))
            all.push_back(&node);
        for (const Node *child : HtmlDocument::childrenOf(node))
            walk(*child);
    };
    walk(page.root());
    return all;
}

const Node *find(const HtmlDocument &page, std::string_view name) {
    for (const Node *node : elementsOf(page))
        if (HtmlDocument::nameOf(*node) == name)
            return node;
    return nullptr;
}

TEST(HtmlDocument, saysWhereAttributesStand) {
    const std::string html = "<p>\xC3\xA9<IMG Src = \"a&amp;b.gif\"\n alt='x' width=10 ismap></p>";
    const HtmlDocument page(html, "page");
    const Node *img = find(page, "img");
    ASSERT_NE(img, nullptr);
    const auto attributes = page.attributesOf(*img);
    ASSERT_EQ(attributes.size(), 4U);
    EXPECT_EQ(attributes[0].name, "src");
    EXPECT_EQ(attributes[0].value, "a&b.gif");
    EXPECT_EQ(attributes[0].nameAt.in(html), "Src");
    EXPECT_EQ(attributes[0].valueAt.in(html), "a&amp;b.gif");
    EXPECT_EQ(attributes[1].valueAt.in(html), "x");
    EXPECT_EQ(attributes[2].valueAt.in(html), "10");
    EXPECT_EQ(attributes[3].valueAt.begin, attributes[3].valueAt.end);
}

TEST(HtmlDocument, valuesThatBeginWithACharacterReferenceStandInTheirPlace) {
    const std::string html =
        "<p id=&amp;a class = &#98;\r\n lang=&quot\r\nx=y=&lt; dir=\n&lt;&lt;&gt; "
        "rel='&lt;' title>";
    const HtmlDocument page(html, "page");
    std::vector<std::string> values;
    for (const HtmlAttribute &attribute : page.attributesOf(*find(page, "p")))
        values.emplace_back(attribute.valueAt.in(html));
    EXPECT_EQ(values, (std::vector<std::string>{"&amp;a", "&#98;", "&quot", "y=&lt;",
                                                "&lt;&lt;&gt;", "&lt;", ""}));
}

TEST(HtmlDocument, saysWhereTagsAndTextsStand) {
    const std::string html =
        "<body a=b>x&amp;y<p>z</p ><svg><g/><style><![CDATA[c]]></style></svg>";
    const HtmlDocument page(html, "page");
    EXPECT_EQ(page.tagOf(*find(page, "body")).in(html), "<body a=b>");
    EXPECT_EQ(page.tagOf(*find(page, "p")).in(html), "<p>");
    EXPECT_EQ(page.endTagOf(*find(page, "p")).in(html), "</p >");
    EXPECT_EQ(page.tagOf(*find(page, "g")).in(html), "<g/>");
    EXPECT_EQ(page.endTagOf(*find(page, "g")), SourceSpan());
    EXPECT_EQ(page.tagOf(page.root()), SourceSpan());
    const Node &text = *HtmlDocument::childrenOf(*find(page, "body"))[0];
    EXPECT_EQ(page.textAt(text).in(html), "x&amp;y");
    EXPECT_FALSE(HtmlDocument::isCdata(text));
    EXPECT_TRUE(HtmlDocument::isCdata(*HtmlDocument::childrenOf(*find(page, "style"))[0]));
}

TEST(HtmlDocument, tellsTheNamespacesApart) {
    const std::string html = "<svg viewbox='0 0 1 1'><lineargradient xlink:href='#a'/>"
                             "<foreignobject><p>x</foreignobject></svg><math><mi>x</math><odd-one>";
    const HtmlDocument page(html, "page");
    EXPECT_EQ(HtmlDocument::spaceOf(*find(page, "svg")), HtmlSpace::svg);
    EXPECT_EQ(page.attributesOf(*find(page, "svg"))[0].name, "viewBox");
    const Node *gradient = find(page, "linearGradient");
    ASSERT_NE(gradient, nullptr);
    EXPECT_EQ(page.attributesOf(*gradient)[0].name, "href");
    EXPECT_TRUE(page.attributesOf(*gradient)[0].isPrefixed);
    EXPECT_EQ(HtmlDocument::spaceOf(*find(page, "p")), HtmlSpace::html);
    EXPECT_EQ(HtmlDocument::spaceOf(*find(page, "mi")), HtmlSpace::mathMl);
    EXPECT_NE(find(page, "odd-one"), nullptr);
}

TEST(HtmlDocument, namesElementsAsHtmlDoesWhateverTheirNamespace) {
    const std::string html = "<body><DIV></DIV><svg><title>t</title><a xlink:href=\"x\"></a></svg>"
                             "<made-up></made-up>";
    const HtmlDocument page(html, "page");
    std::string names;
    for (const Node *node : elementsOf(page))
        names.append(HtmlDocument::plainNameOf(*node)).append(" ");
    EXPECT_EQ(names, "html head body div svg title a  ");
    EXPECT_EQ(HtmlDocument::valueOf(*find(page, "a"), "href"), "x");
    EXPECT_EQ(HtmlDocument::valueOf(*find(page, "div"), "href"), std::nullopt);
}

TEST(HtmlDocument, refusesWhatIsBuiltToExhaust) {
    std::string deep;
    for (int i = 0; i < 50'000; ++i)
        deep += "<div>";
    EXPECT_THROW(HtmlDocument(deep, "page"), PageTooLarge);
}

} // namespace
} // namespace nv
