#include "import/AdvancedMetadata.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "import/SentPages.h"

#include <fmt/format.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace nv {

namespace {

constexpr const char *kPageText = "page_text";
constexpr std::string_view kProcedure = "MainBAS.ParseAdvancedMetaData()";

} // namespace

PageFindings AdvancedMetadata::parseAdvancedMetadata(UrlRecord &record,
                                                     SavedContent &content) const {
    PageFindings found;
    // A reader that knows of no content names the artefact itself as the record's file, and the
    // text of a cookie is no page, whatever a site wrote into it.
    if (!record.CacheFileExists || record.IsCookie)
        return found;
    trapped(m_log, Severity::Warning, kProcedure, kContactSupport,
            [&] { examine(record, content, found); });
    return found;
}

void AdvancedMetadata::examine(UrlRecord &record, SavedContent &content,
                               PageFindings &found) const {
    const ContentFacts *facts = content.facts();
    const bool isSent = facts && isSentAsPage(record, *facts);
    if (!facts || (!facts->hasHtml && !facts->hasBody && !isSent))
        return;
    found.isPage = !equalsNoCase(record.URLFileExt, "js");
    record.IsWebPage = found.isPage; // scripts write pages: what they hold isn't one
    if (!found.isPage)
        return;
    const bool hasTitle = !facts->title.empty();
    if (hasTitle)
        record.WebpageTitle = facts->title;
    // With a trap of its own: a page that can't be read stays one, and keeps its title.
    const auto read = [&] {
        const std::string html = content.pageText();
        // The probe knows whether there is a title, but not the page's encoding: in one of two
        // bytes a letter it finds none.
        if (std::string title = hasTitle || isSent ? titleOf(html) : ""; !title.empty())
            record.WebpageTitle = std::move(title);
        PageContent page = contentOf(html, content.file(), record.facts);
        found.links = page.links.size();
        if (!page.body.empty())
            record.HTMLBody = std::move(page.body);
        return true;
    };
    if (!trapped(m_log, Severity::Warning, kProcedure, kContactSupport, false, read))
        record.facts.add(kPageText, "none: the page can't be read");
}

PageContent AdvancedMetadata::contentOf(std::string_view html, const std::filesystem::path &file,
                                        FactList &facts) const {
    auto page =
        trapped(m_log, Severity::Warning, kProcedure, kContactSupport, std::optional<PageContent>(),
                [&] { return std::optional(readPageContent(html, file)); });
    if (page)
        return *std::move(page);
    facts.add(kPageText, "its words without its links: too large or too deep to be parsed");
    return readFlatContent(html, file);
}

void AdvancedMetadata::store(UrlRecord &record, const PageFindings &found,
                             RecordStore &rows) const {
    if (!found.isPage || record.URLID == UrlId::none)
        return;
    const auto write = [&] {
        // The name of a picture or a text takes the mark away when the record is saved.
        if (!record.IsWebPage)
            rows.markAsWebPage(record);
        rows.addLinksToItself(record, found.links);
    };
    trapped(m_log, Severity::Warning, kProcedure, kContactSupport, write);
}

} // namespace nv
