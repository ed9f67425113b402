#include "reports/SafePage.h"

#include "base/Files.h"
#include "base/Text.h"
#include "markup/PageText.h"
#include "rebuild/LocalNames.h"
#include "rebuild/PageText.h"
#include "rebuild/Scripts.h"
#include "reports/PictureKind.h"
#include "reports/WaysOut.h"

#include <algorithm>
#include <array>

namespace nv {

namespace fs = std::filesystem;

namespace {

// Short: browsers look for a page's encoding in its first 1024 bytes. "base-uri" keeps a page from
// calling its parts those of its site.
constexpr std::string_view kGuard =
    R"(<meta http-equiv="Content-Security-Policy" content="default-src 'none'; img-src 'self' data:; )"
    R"(style-src 'self' 'unsafe-inline' data:; font-src 'self' data:; media-src 'self'; )"
    R"(frame-src 'self'; base-uri 'none'; form-action 'none'">)"
    R"(<meta http-equiv="x-dns-prefetch-control" content="off">)"
    R"(<meta name="referrer" content="no-referrer">)";

constexpr std::string_view kEquivalent = "http-equiv";
constexpr std::string_view kDisarmed = "void-equiv";
constexpr std::string_view kBlanks = " \t\r\n\f\"'=/";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

// Shown as what their names say, whatever they hold.
constexpr std::array<std::string_view, 11> kHarmless = {"gif", "jpg", "jpeg", "jpe", "png", "bmp",
                                                        "tif", "ico", "css",  "js",  "txt"};
constexpr std::array<std::string_view, 8> kPages = {"htm", "html", "shtm", "xht",
                                                    "xml", "xsl",  "svg",  "mht"};

bool holds(std::span<const std::string_view> words, std::string_view word) {
    return std::ranges::find(words, word) != words.end();
}

/// Only "Content-Type" keeps its meaning: of the others one moves on to another page.
std::string withoutRefresh(std::string_view page) {
    std::string disarmed;
    std::size_t from = 0;
    for (std::size_t at = findNoCase(page, kEquivalent); at != std::string_view::npos;
         at = findNoCase(page, kEquivalent, from)) {
        const std::size_t end = at + kEquivalent.size();
        const std::size_t value = std::min(page.find_first_not_of(kBlanks, end), page.size());
        const bool kept = startsWithNoCase(page.substr(value), "content-type");
        disarmed.append(page.substr(from, at - from));
        disarmed.append(kept ? page.substr(at, end - at) : kDisarmed);
        from = end;
    }
    return disarmed.append(page.substr(from));
}

constexpr std::string_view kSpaces = " \t\r\n\f";

/// The value of the first attribute `wanted` of a tag, as browsers read it; `tag` begins behind the
/// element's name. Empty when there is none.
std::string_view attributeOf(std::string_view tag, std::string_view wanted) {
    const auto skip = [&tag](std::size_t at, std::string_view what) {
        return std::min(tag.find_first_not_of(what, at), tag.size());
    };
    const auto until = [&tag](std::size_t at, std::string_view what) {
        return std::min(tag.find_first_of(what, at), tag.size());
    };
    std::size_t at = skip(0, " \t\r\n\f/");
    while (at < tag.size() && tag[at] != '>') {
        const std::size_t nameEnd = until(at + 1, " \t\r\n\f/>=");
        const std::string_view name = tag.substr(at, nameEnd - at);
        std::string_view value;
        at = skip(nameEnd, kSpaces);
        if (at < tag.size() && tag[at] == '=') {
            at = skip(at + 1, kSpaces);
            const bool quoted = at < tag.size() && (tag[at] == '"' || tag[at] == '\'');
            const std::size_t begin = quoted ? at + 1 : at;
            at = quoted ? until(begin, tag.substr(at, 1)) : until(begin, " \t\r\n\f>");
            value = tag.substr(begin, at - begin);
            at += quoted && at < tag.size() ? 1 : 0;
        }
        if (equalsNoCase(name, wanted))
            return value;
        at = skip(at, " \t\r\n\f/");
    }
    return {};
}

bool isShown(std::string_view relation) {
    return equalsNoCase(relation, "stylesheet") || equalsNoCase(relation, "icon") ||
           equalsNoCase(relation, "shortcut icon");
}

/// Elements for which browsers look up a host before they ask the policy. Those that lead to a part
/// of the page stay.
struct LeadingElement {
    std::string_view tag;
    std::string_view attribute;
    bool (*stays)(std::string_view value);
};
constexpr std::array<LeadingElement, 3> kLeading = {
    {{"<iframe", "src", isPart}, {"<frame", "src", isPart}, {"<link", "rel", isShown}}};

/// Of a longer one the rest isn't read, and it goes: else reading tags without an end takes for
/// ever.
constexpr std::size_t kLongestTag = 4096;

std::string withoutLeads(std::string_view page, const LeadingElement &element) {
    std::string disarmed;
    std::size_t from = 0;
    for (std::size_t at = findNoCase(page, element.tag); at != std::string_view::npos;
         at = findNoCase(page, element.tag, from)) {
        const std::size_t end = at + element.tag.size();
        const std::string_view tag = page.substr(end, kLongestTag);
        const bool whole = tag.empty() || std::string_view(" \t\r\n\f/>").find(tag.front()) !=
                                              std::string_view::npos;
        const bool stays = !whole || element.stays(attributeOf(tag, element.attribute));
        disarmed.append(page.substr(from, at - from));
        disarmed.append(stays ? "<" : "<void-").append(page.substr(at + 1, end - at - 1));
        from = end;
    }
    return disarmed.append(page.substr(from));
}

/// Of a list of addresses no reader here would see all: browsers take the plain one then.
std::string withoutChoices(std::string_view page) {
    return ReplaceAllText(page, "srcset", "void-srcset");
}

std::string withoutHints(std::string_view page) {
    std::string disarmed(page);
    for (const LeadingElement &element : kLeading)
        disarmed = withoutLeads(disarmed, element);
    return disarmed;
}

/// Behind a mark of the encoding and a document type: in front of these the page would look as one
/// without.
std::size_t placeForGuard(std::string_view page) {
    std::size_t at = page.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0;
    const std::size_t text = std::min(page.find_first_not_of(" \t\r\n\f", at), page.size());
    const std::size_t end = page.find('>', text);
    if (startsWithNoCase(page.substr(text), "<!doctype") && end != std::string_view::npos)
        at = end + 1;
    return at;
}

bool isWide(std::string_view page) {
    return page.starts_with("\xFF\xFE") || page.starts_with("\xFE\xFF");
}

/// The policy is read in the page's own encoding, so that a page of 16 bits a letter becomes one of
/// 8.
std::string narrow(std::string_view page) {
    if (!isWide(page))
        return std::string(page);
    const std::string text = decodePage(viewOf(page), {});
    return std::string(kUtf8Mark) + (text.starts_with(kUtf8Mark) ? text.substr(3) : text);
}

bool isToBeGuarded(const fs::path &file) {
    if (file.filename() == kPartsList)
        return false;
    const std::string extension = toLower(textOf(file.extension()));
    const std::string_view word = std::string_view(extension).substr(extension.empty() ? 0 : 1);
    if (holds(kHarmless, word))
        return false;
    // Of any other name browsers look at the first bytes.
    return holds(kPages, word) || pictureKindOf(file).empty();
}

/// A style has no policy of its own, but fetches by that of its page, which lets files through.
bool isStyle(const fs::path &file) {
    return toLower(textOf(file.extension())) == ".css";
}

bool hasLiveScripts(std::string_view page) {
    constexpr std::string_view kScript = "<script";
    constexpr std::string_view kComment = "<!-- ";
    for (std::size_t at = findNoCase(page, kScript); at != std::string_view::npos;
         at = findNoCase(page, kScript, at + 1))
        if (!page.substr(0, at).ends_with(kComment))
            return true;
    return false;
}

std::string contentsOf(const fs::path &file) {
    const Bytes bytes = readWhole(file);
    return std::string(ByteView(bytes).raw());
}

} // namespace

std::string guardedPage(std::string_view page) {
    std::string text = withoutHints(withoutWaysOut(withoutRefresh(withoutChoices(narrow(page)))));
    return text.insert(placeForGuard(text), kGuard);
}

void guardFolder(const fs::path &page, Scripts scripts) {
    for (const fs::directory_entry &entry : fs::directory_iterator(page.parent_path())) {
        if (!entry.is_regular_file())
            continue;
        if (isStyle(entry.path()))
            writeWhole(entry.path(), withoutWaysOut(contentsOf(entry.path())));
        if (!isToBeGuarded(entry.path()))
            continue;
        std::string text = contentsOf(entry.path());
        if (scripts == Scripts::remove && entry.path() == page && hasLiveScripts(text))
            text = StriptScriptTags(text);
        writeWhole(entry.path(), guardedPage(text));
    }
}

} // namespace nv
