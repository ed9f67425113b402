#include "import/RecordLook.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "import/SentPages.h"

#include <string_view>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ImportForm.HashContent()";

Extraction telling(Extraction extraction, FailureLog &log) {
    return {extraction.evidence, std::move(extraction.folder), log,
            extraction.source,   extraction.isAsStored,        extraction.classicOnly};
}

} // namespace

void KeptLog::tell() {
    auto *gaps = dynamic_cast<GapLog *>(&m_log);
    for (const auto &each : std::exchange(m_kept, {})) {
        if (const auto *failure = std::get_if<Failure>(&each))
            m_log.write(*failure);
        else if (const auto *gap = std::get_if<Gap>(&each); gap && gaps)
            gaps->unread(gap->file, gap->reason);
    }
}

RecordLook::RecordLook(UrlRecord taken, const Extraction &extraction, ContentProbe &content,
                       const ContentLooks &looks)
    : record(std::move(taken)), m_looks(looks), m_log(extraction.log),
      m_extraction(telling(extraction, m_log)), m_categories(looks.signatures, m_log),
      m_metadata(m_log), m_probe(std::exchange(content, ContentProbe())),
      m_content(std::in_place, record, m_extraction, m_probe) {}

/// Where its name does, the content isn't fetched for nothing. What can't be found here is told by
/// the step that asks for it.
bool RecordLook::mayRunBeside() {
    NoLog unheard;
    return m_categories.looksAtContent(record) &&
           trapped(unheard, Severity::Warning, kProcedure, kContactSupport, false,
                   [this] { return m_content->isOutsideScratch(); });
}

/// The category is found before the row is written, which so is written once.
void RecordLook::look() {
    verdict = m_categories.verdictOn(record, *m_content);
    record.Category = verdict.category;
    // Classic caches have rows by the ten thousand whose bodies nobody else reads while they are
    // imported, so theirs are hashed for hash sets only.
    const bool isOfToday = record.CacheFileExists && isOfTodaysCache(record);
    if (isOfToday && !record.MIMEType.empty())
        trapped(m_log, Severity::Warning, kProcedure, kContactSupport, [this] {
            if (const ContentFacts *facts = m_content->facts())
                record.IsWebPage = isSentAsPage(record, *facts) || facts->extension == "html";
        });
    if (isOfToday || (record.CacheFileExists && m_looks.hashesAll))
        trapped(m_log, Severity::Warning, kProcedure, kContactSupport,
                [this] { m_content->addFacts(); });
    if (m_looks.intoPages)
        page = m_metadata.parseAdvancedMetadata(record, *m_content);
    m_content.reset();
    m_probe.forget();
}

} // namespace nv
