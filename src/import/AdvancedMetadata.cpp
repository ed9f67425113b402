#include "import/AdvancedMetadata.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "import/PageContent.h"

#include <fmt/format.h>

#include <string>
#include <string_view>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainBAS.ParseAdvancedMetaData()";

} // namespace

PageFindings AdvancedMetadata::ParseAdvancedMetadata(URLClass &record,
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

void AdvancedMetadata::examine(URLClass &record, SavedContent &content, PageFindings &found) const {
    const ContentFacts *facts = content.facts();
    if (!facts || (!facts->hasHtml && !facts->hasBody))
        return;
    found.isPage = !equalsNoCase(record.URLFileExt, "js");
    record.IsWebPage = found.isPage; // scripts write pages: what they hold isn't one
    if (!found.isPage)
        return;
    const bool hasTitle = !facts->title.empty();
    if (hasTitle)
        record.WebpageTitle = facts->title;
    // With a trap of its own: a page that can't be parsed stays one, and keeps its title.
    trapped(m_log, Severity::Warning, kProcedure, kContactSupport, [&] {
        const std::string html = content.pageText();
        // The probe knows whether there is a title, but not the page's encoding.
        if (std::string title = hasTitle ? titleOf(html) : ""; !title.empty())
            record.WebpageTitle = std::move(title);
        PageContent page = ReadPageContent(html, content.file());
        found.links = page.Links.size();
        if (!page.Body.empty())
            record.HTMLBody = std::move(page.Body);
    });
}

void AdvancedMetadata::store(URLClass &record, const PageFindings &found, RecordStore &rows) const {
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
