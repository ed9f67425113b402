// The standard's own cases for CSS Syntax level 3, read from the folder that NV_STANDARDS names.
// docs/formats/markup.md says how many hold.

#include "base/Files.h"
#include "markup/CssItems.h"
#include "markup/PageText.h"
#include "support/Samples.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <charconv>
#include <cstdlib>
#include <functional>

namespace nv {
namespace {

using nlohmann::json;
using Tokens = std::vector<CssToken>;

json valuesOf(const Tokens &tokens, CssRange part);

json numberOf(const char *type, const CssToken &token) {
    const double value = std::strtod(token.text.c_str(), nullptr);
    json written = {type, token.text, value, token.isInteger ? "integer" : "number"};
    if (token.kind == CssKind::dimension)
        written.push_back(token.unit);
    return written;
}

json rangeOf(std::string text) {
    text.erase(0, 2);
    const std::size_t dash = text.find('-');
    std::string first = text.substr(0, dash);
    std::string last = dash == std::string::npos ? first : text.substr(dash + 1);
    std::replace(first.begin(), first.end(), '?', '0');
    std::replace(last.begin(), last.end(), '?', 'F');
    return {"unicode-range", std::strtol(first.c_str(), nullptr, 16),
            std::strtol(last.c_str(), nullptr, 16)};
}

json blockOf(const char *type, const Tokens &tokens, std::size_t at, CssRange part) {
    json block = {type};
    if (tokens[at].kind == CssKind::function)
        block.push_back(tokens[at].text);
    const CssRange within{at + 1, std::min(tokens[at].partner, part.end)};
    for (const json &value : valuesOf(tokens, within))
        block.push_back(value);
    return block;
}

json valueOf(const Tokens &tokens, std::size_t at, CssRange part) {
    const CssToken &token = tokens[at];
    switch (token.kind) {
    case CssKind::ident:
        return {"ident", token.text};
    case CssKind::atKeyword:
        return {"at-keyword", token.text};
    case CssKind::hash:
        return {"hash", token.text, token.isId ? "id" : "unrestricted"};
    case CssKind::string:
        return {"string", token.text};
    case CssKind::url:
        return {"url", token.text};
    case CssKind::badString:
        return {"error", "bad-string"};
    case CssKind::badUrl:
        return {"error", "bad-url"};
    case CssKind::number:
        return numberOf("number", token);
    case CssKind::percentage:
        return numberOf("percentage", token);
    case CssKind::dimension:
        return numberOf("dimension", token);
    case CssKind::unicodeRange:
        return rangeOf(token.text);
    case CssKind::function:
        return blockOf("function", tokens, at, part);
    case CssKind::openCurly:
        return blockOf("{}", tokens, at, part);
    case CssKind::openSquare:
        return blockOf("[]", tokens, at, part);
    case CssKind::openRound:
        return blockOf("()", tokens, at, part);
    case CssKind::closeCurly:
    case CssKind::closeSquare:
    case CssKind::closeRound:
        return {"error", token.text};
    default:
        return token.text;
    }
}

json valuesOf(const Tokens &tokens, CssRange part) {
    json values = json::array();
    for (std::size_t at = part.begin; at < part.end; at = behindValue(tokens, at, part)) {
        values.push_back(valueOf(tokens, at, part));
        if (!tokens[at].isClosed)
            values.push_back(
                {"error", tokens[at].kind == CssKind::url ? "eof-in-url" : "eof-in-string"});
    }
    return values;
}

json itemOf(const Tokens &tokens, const CssItem &item) {
    const json block = item.hasBlock ? valuesOf(tokens, item.block) : json();
    switch (item.kind) {
    case CssItem::Kind::declaration:
        return {"declaration", item.name, valuesOf(tokens, item.value), item.isImportant};
    case CssItem::Kind::atRule:
        return {"at-rule", item.name, valuesOf(tokens, item.value), block};
    case CssItem::Kind::qualifiedRule:
        return {"qualified rule", valuesOf(tokens, item.value), block};
    default:
        return {"error", "invalid"};
    }
}

json itemsOf(const Tokens &tokens, const std::vector<CssItem> &items) {
    json all = json::array();
    for (const CssItem &item : items)
        all.push_back(itemOf(tokens, item));
    return all;
}

/// What `read` finds of one thing that fills the text.
json onlyOf(const json &all) {
    if (all.empty())
        return {"error", "empty"};
    return all.size() == 1 ? all[0] : json{"error", "extra-input"};
}

json withoutBlanks(const json &values) {
    json rest = json::array();
    for (const json &value : values)
        if (value != " ")
            rest.push_back(value);
    return rest;
}

struct Reading {
    const char *file;
    std::function<json(const Tokens &, CssRange)> read;
    std::size_t cases;
};

class CssCases : public testing::Test {
  protected:
    void SetUp() override {
        const auto folder = test::standardsFolder();
        if (!folder)
            GTEST_SKIP() << "no folder of the standards' cases: NV_STANDARDS names it";
        m_folder = *folder / "css";
    }
    json casesOf(const char *file) const {
        const Bytes bytes = readWhole(m_folder / file);
        return json::parse(ByteView(bytes).raw());
    }
    void check(const Reading &reading) const {
        const json cases = casesOf(reading.file);
        EXPECT_GE(cases.size(), 2 * reading.cases);
        for (std::size_t i = 0; i + 1 < cases.size(); i += 2) {
            const auto css = cases[i].get<std::string>();
            const Tokens tokens = cssTokens(css);
            EXPECT_EQ(reading.read(tokens, {0, tokens.size()}), cases[i + 1]) << css;
        }
    }

  private:
    std::filesystem::path m_folder;
};

TEST_F(CssCases, componentValues) {
    check({"component_value_list.json", valuesOf, 50});
}

TEST_F(CssCases, oneComponentValue) {
    check({"one_component_value.json",
           [](const Tokens &tokens, CssRange part) {
               return onlyOf(withoutBlanks(valuesOf(tokens, part)));
           },
           10});
}

TEST_F(CssCases, declarations) {
    check({"declaration_list.json",
           [](const Tokens &tokens, CssRange part) {
               return itemsOf(tokens, cssDeclarations(tokens, part));
           },
           10});
}

TEST_F(CssCases, blocks) {
    check({"blocks_contents.json",
           [](const Tokens &tokens, CssRange part) {
               return itemsOf(tokens, cssBlock(tokens, part));
           },
           13});
}

TEST_F(CssCases, oneDeclaration) {
    check({"one_declaration.json",
           [](const Tokens &tokens, CssRange part) -> json {
               const json values = withoutBlanks(valuesOf(tokens, part));
               return values.empty() ? json{"error", "empty"}
                                     : itemOf(tokens, cssDeclaration(tokens, part));
           },
           21});
}

TEST_F(CssCases, styleSheets) {
    check({"stylesheet.json",
           [](const Tokens &tokens, CssRange part) {
               return itemsOf(tokens, cssStyleSheet(tokens, part));
           },
           16});
}

TEST_F(CssCases, encodings) {
    const json cases = casesOf("stylesheet_bytes.json");
    EXPECT_GE(cases.size(), 56U);
    for (std::size_t i = 0; i + 1 < cases.size(); i += 2) {
        const json &input = cases[i];
        std::string bytes;
        const auto text = input["css_bytes"].get<std::string>();
        for (std::size_t at = 0; at < text.size(); ++at) // a character up to U+00FF is a byte
            bytes += (text[at] & 0x80) == 0
                         ? text[at]
                         : static_cast<char>((text[at] << 6) | (text[at + 1] & 0x3F)),
                at += (text[at] & 0x80) == 0 ? 0 : 1;
        const auto named = [&input](const char *key) {
            return input.contains(key) && input[key].is_string() ? input[key].get<std::string>()
                                                                 : std::string();
        };
        const std::string protocol = named("protocol_encoding");
        const std::string environment = named("environment_encoding");
        const DecodedPage decoded = decodedStyle(viewOf(bytes), protocol, environment);
        const Tokens tokens = cssTokens(decoded.text);
        EXPECT_EQ(
            json({itemsOf(tokens, cssStyleSheet(tokens, {0, tokens.size()})), decoded.charset}),
            cases[i + 1])
            << input;
    }
}

} // namespace
} // namespace nv
