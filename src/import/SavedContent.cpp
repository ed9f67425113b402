#include "import/SavedContent.h"

#include "base/Storage.h"
#include "import/PageContent.h"
#include "markup/PageText.h"
#include "readers/EvidenceGaps.h"
#include "readers/Scratch.h"

#include <cerrno>

namespace nv {

const Body *SavedContent::body() {
    if (m_probe.held())
        return &*m_probe.held();
    if (!m_isSought)
        m_body = bodyOf(m_record, m_extraction, m_inMemory);
    m_isSought = true;
    return m_body ? &*m_body : nullptr;
}

bool SavedContent::isScratch(const Body &found) const {
    return m_probe.held() || found.file == m_record.RunTimeTempFilePath;
}

/// What was fetched into scratch and is gone again was taken by somebody else: that is no lack of
/// the evidence.
void SavedContent::expectScratch(const Body &found) const {
    if (isScratch(found) && !scratch::isThere(found.file))
        failStorage("cannot read back", found.file, ENOENT);
}

const ContentFacts &SavedContent::factsIn(const Body &found) {
    if (isScratch(found))
        return m_probe.scratchFacts(found.file);
    return tellingGaps(m_extraction.log, [&]() -> const ContentFacts & {
        return m_probe.facts(m_extraction.evidence, found.file);
    });
}

const ContentFacts *SavedContent::facts() {
    const Body *found = body();
    if (!found)
        return nullptr;
    if (!found->isInMemory) {
        expectScratch(*found);
        return &factsIn(*found);
    }
    if (!m_facts)
        m_facts = factsOf(found->raw());
    return &*m_facts;
}

std::filesystem::path SavedContent::file() {
    const Body *found = body();
    return found ? found->file : std::filesystem::path();
}

std::string SavedContent::pageText() {
    const Body *found = body();
    if (!found)
        return {};
    if (found->isInMemory)
        return decodePage(ByteView(found->bytes), m_record.MetaData);
    factsIn(*found);
    if (const auto bytes = m_probe.bytes())
        return decodePage(viewOf(*bytes), m_record.MetaData);
    if (isScratch(*found))
        return ReadPageText(ScratchFile(found->file), m_record.MetaData);
    return tellingGaps(m_extraction.log, [&] {
        return ReadPageText(m_extraction.evidence.open(found->file), m_record.MetaData);
    });
}

} // namespace nv
