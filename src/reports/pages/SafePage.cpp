#include "reports/pages/SafePage.h"

#include "base/Files.h"
#include "base/Text.h"
#include "markup/HtmlDocument.h"
#include "markup/PageText.h"
#include "reports/pages/PageParts.h"
#include "reports/pages/PageWriter.h"
#include "reports/pages/SafeStyle.h"

#include <fmt/format.h>

#include <optional>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// Pages that people wrote are the same the first or the second time that they are written.
constexpr int kTries = 4;

const HtmlDocument::Node *firstPicture(const HtmlDocument &page) {
    std::vector<const HtmlDocument::Node *> open{&page.root()};
    while (!open.empty()) {
        const HtmlDocument::Node *node = open.back();
        open.pop_back();
        if (HtmlDocument::isElement(*node) && HtmlDocument::spaceOf(*node) == HtmlSpace::svg)
            return node;
        const auto children = HtmlDocument::childrenOf(*node);
        open.insert(open.end(), children.rbegin(), children.rend());
    }
    return nullptr;
}

/// Nothing for a page that is beyond a limit.
std::optional<std::string> writtenOnce(std::string_view html, PageForm form,
                                       const References &references, Detail detail) {
    const auto page = HtmlDocument::within(html);
    if (!page)
        return std::nullopt;
    PageWriter writer(*page, references, form, detail);
    const std::string doctype = writer.doctype();
    if (form != PageForm::svg)
        return doctype + writer.write(page->root());
    const HtmlDocument::Node *picture = firstPicture(*page);
    return picture ? writer.write(*picture)
                   : std::string(R"(<svg xmlns="http://www.w3.org/2000/svg"></svg>)");
}

/// A browser reads what was written, and may find another tree in it where elements were nested as
/// they can't be: so the parser reads it too, until both agree.
bool settle(std::string &page, PageForm form, const References &references, Detail detail) {
    for (int i = 0; i < kTries; ++i) {
        auto written = writtenOnce(page, form, references, detail);
        if (!written || written->size() > kLongestPage)
            return false;
        if (*written == page)
            return true;
        page = std::move(*written);
    }
    return false;
}

} // namespace

std::string textPage(std::string_view text, PageForm form) {
    const std::string_view nameSpace =
        form == PageForm::xhtml ? " xmlns=\"http://www.w3.org/1999/xhtml\"" : "";
    const std::string written = markupText(text);
    return fmt::format("<html{}><head>{}</head><body><pre>{}{}</pre></body></html>", nameSpace,
                       guardOfHead(), written.starts_with('\n') ? "\n" : "", written);
}

std::string guardedPage(std::string_view html, PageForm form, const References &references) {
    for (const Detail detail : {Detail::all, Detail::plain}) {
        std::string page(html);
        if (settle(page, form, references, detail))
            return page;
    }
    return form == PageForm::svg ? std::string(R"(<svg xmlns="http://www.w3.org/2000/svg"></svg>)")
                                 : textPage(html, form);
}

std::optional<std::string> withReferences(std::string_view guarded, PageForm form,
                                          const References &references) {
    auto page = writtenOnce(guarded, form, references, Detail::all);
    return page && page->size() <= kLongestPage ? page : std::nullopt;
}

namespace {

/// Nothing of a folder that was guarded in part may be handed over.
class HalfGuarded {
  public:
    explicit HalfGuarded(fs::path folder) : m_folder(std::move(folder)) {}
    ~HalfGuarded() {
        std::error_code ignored;
        if (!m_isWhole)
            fs::remove_all(m_folder, ignored);
    }
    HalfGuarded(const HalfGuarded &) = delete;
    HalfGuarded &operator=(const HalfGuarded &) = delete;
    void becomeWhole() { m_isWhole = true; }

  private:
    fs::path m_folder;
    bool m_isWhole = false;
};

std::string guardedBytes(const Bytes &bytes, PartKind kind, std::string_view charset,
                         const References &references) {
    const auto page = [&](PageForm form) {
        return std::string(kUtf8Mark) + guardedPage(decodedPart(bytes).text, form, references);
    };
    switch (kind) {
    case PartKind::style:
        return guardedStyle(decodedStyle(ByteView(bytes), {}, charset).text, references);
    case PartKind::xhtml:
        return page(PageForm::xhtml);
    case PartKind::svg:
        return page(PageForm::svg);
    case PartKind::xml:
        return std::string(kUtf8Mark) + textPage(decodedPart(bytes).text, PageForm::xhtml);
    default:
        return page(PageForm::html);
    }
}

/// Whether browsers find elements or styles in it; all else stays byte by byte.
bool isGuarded(PartKind kind) {
    return kind != PartKind::picture && kind != PartKind::media && kind != PartKind::plain;
}

} // namespace

void guardFolder(const fs::path &page) {
    HalfGuarded half(page.parent_path());
    const PageParts parts = partsBeside(page);
    const References references(parts.folder);
    for (const auto &[file, kind] : parts.kinds) {
        if (kind == PartKind::unknown)
            fs::remove(file);
        else if (isGuarded(kind))
            writeWhole(file, guardedBytes(readWhole(file), kind, parts.charset, references));
    }
    half.becomeWhole();
}

} // namespace nv
