#include "import/Categories.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "import/SentPages.h"
#include "readers/RecordKind.h"

#include <algorithm>
#include <array>
#include <span>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ParserClass.SetURLCategory()";

struct Row {
    std::string_view extensions; ///< separated by blanks
    std::string_view category;
};

// The first row that names the extension decides. "wav" therefore is "Movies, Animation" and its
// own row at the end is never reached: stored queries count on that.
constexpr std::array<Row, 14> kRows = {{
    {"jpg jpe jpeg bmp png gif ico", "Pictures"},
    {"html htm", "HTML"},
    {"asp php aspx cgi", "Scripts, HTML"},
    {"xml", "XML"},
    {"pdf", "Adobe"},
    {"js", "Javascripts"},
    {"css", "Stylesheets"},
    {"zip gzip rar", "Archive, Compressed"},
    {"ppt doc mdb xls rtf", "Office Documents"},
    {"txt log", "ASCII Files"},
    {"exe dll bak cab msi iso", "Binary, Executables"},
    {"wav swf wmf avi mpg mpeg wmv wma asx mov", "Movies, Animation"},
    {"mp3", "Music, Audio"},
    {"wav", "Audio"},
}};

bool hasWord(std::string_view words, std::string_view word) {
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(' '), words.size());
        if (equalsNoCase(words.substr(0, end), word))
            return true;
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return false;
}

bool isXhtml(const UrlRecord &record, const ContentFacts &facts) {
    const bool isPage = facts.extension == "xml" && (facts.hasHtml || facts.hasBody);
    const RecordKind *kind = isPage ? recordKind(record.cacheType) : nullptr;
    return kind && kind->hasXhtmlPages;
}

std::string extensionOf(const UrlRecord &record, const ContentFacts &facts) {
    if (isXhtml(record, facts) || isSentAsPage(record, facts))
        return "html";
    if (!facts.extension.empty())
        return facts.extension;
    if (facts.hasHtml || facts.hasBody || facts.hasTable)
        return "html";
    return facts.hasXml ? "xml" : "";
}

} // namespace

std::string_view categoryOfExtension(std::string_view extension) {
    if (extension.empty())
        return {};
    const auto *row = std::ranges::find_if(
        kRows, [extension](const Row &each) { return hasWord(each.extensions, extension); });
    return row == kRows.end() ? std::string_view() : row->category;
}

void Verdict::applyTo(UrlRecord &record) const {
    record.cacheType = toUpper(record.cacheType);
    record.Category = category;
    if (!extension.empty())
        record.CacheFileExt = extension;
}

Verdict Categories::verdictOn(const UrlRecord &record, SavedContent &content) const {
    if (record.IsCookie)
        return {"", record.Category};
    Verdict verdict;
    if (looksAtContent(record))
        verdict.extension = extensionByContent(record, content);
    if (verdict.extension.empty())
        verdict.extension = record.URLFileExt.empty() ? record.CacheFileExt : record.URLFileExt;
    const std::string_view category = categoryOfExtension(verdict.extension);
    verdict.category = category.empty() ? record.Category : std::string(category);
    return verdict;
}

/// A cookie is one whatever its file, or the address that it belongs to, is called.
bool Categories::looksAtContent(const UrlRecord &record) const {
    return !record.IsCookie && !record.IsHistory && record.CacheFileExists &&
           (m_signatures == Signatures::verify || record.CacheFileExt.empty());
}

std::string Categories::extensionByContent(const UrlRecord &record, SavedContent &content) const {
    return trapped(m_log, Severity::Warning, kProcedure, kContactSupport, std::string(), [&] {
        const ContentFacts *facts = content.facts();
        return facts ? extensionOf(record, *facts) : std::string();
    });
}

} // namespace nv
