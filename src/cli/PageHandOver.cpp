#include "cli/PageHandOver.h"

#include "app/jobs/ArchiveSource.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "cli/Session.h"
#include "rebuild/LocalNames.h"
#include "reports/pages/PartsInside.h"
#include "reports/warc/WarcWriter.h"
#include "views/record/Audit.h"

#include <fmt/format.h>

#include <set>

namespace nv::cli {

namespace fs = std::filesystem;

void PageHandOver::take(const RebuiltPage &page) {
    const fs::path file = page.folder / pageNameOf(page.urlID);
    if (m_forms.warc)
        writeArchive(page);
    if (m_forms.single)
        m_tooLarge += handOverSingle(file, m_out) ? 0 : 1;
    else if (!m_forms.warc)
        handOver(file, m_out);
    else
        fs::remove_all(page.folder);
}

/// The page's record first, then those of its parts.
void PageHandOver::writeArchive(const RebuiltPage &page) {
    makeFolder(m_out);
    const auto record = m_tools.record(page.urlID);
    if (!record)
        return noteUnread(m_unread, page.urlID);
    std::set<UrlId> parts;
    for (const AuditRow &row :
         loadAudit(*record, page.folder, m_tools.context()).value_or(std::vector<AuditRow>()))
        if (row.isThere && row.tagURLID > 0)
            parts.insert(UrlId{row.tagURLID});
    parts.erase(page.urlID);
    WarcWriter warc(m_out / archiveNameOf(page.urlID), warcSource(m_program, m_tools));
    static_cast<void>(warc.add(page.urlID));
    for (const UrlId part : parts)
        if (warc.add(part) == WarcAdded::unread)
            noteUnread(m_unread, part);
    warc.finish();
}

Exit PageHandOver::tell(Session &session, Exit exit) const {
    if (m_tooLarge > 0)
        session.err << fmt::format("{} would be larger than {} MB as one file and {} not written; "
                                   "without --single each gets a folder\n",
                                   nv::counted(m_tooLarge, "page"), kLongestSinglePage >> 20U,
                                   m_tooLarge == 1 ? "was" : "were");
    if (!m_unread.empty())
        session.err << noteOf(m_unread) << ". They aren't in the archives.\n";
    return m_tooLarge == 0 && m_unread.empty() ? exit : Exit::nothingDone;
}

} // namespace nv::cli
