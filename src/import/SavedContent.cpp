#include "import/SavedContent.h"

#include "base/Digest.h"
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
        return m_probe.scratchFacts(found.file, m_record.MetaData);
    return tellingGaps(m_extraction.log, [&]() -> const ContentFacts & {
        return m_probe.facts(m_extraction.evidence, found.file, m_record.MetaData);
    });
}

bool SavedContent::isOutsideScratch() {
    const Body *found = body();
    return found && (found->isInMemory || !isScratch(*found));
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
        m_facts = factsOf(found->raw(), m_record.MetaData);
    return &*m_facts;
}

void SavedContent::inBlocksOf(const Body &found,
                              const std::function<void(std::string_view)> &take) {
    if (found.isInMemory)
        return take(found.raw());
    const auto taking = [&take](std::string_view block) {
        take(block);
        return true;
    };
    expectScratch(found);
    if (isScratch(found)) {
        static_cast<void>(inBlocks(ScratchFile(found.file), taking));
        return;
    }
    tellingGaps(m_extraction.log, [&] {
        static_cast<void>(inBlocks(m_extraction.evidence.open(found.file), taking));
    });
}

void SavedContent::addFacts() {
    const Body *found = body();
    if (!found)
        return;
    // Making one costs more than hashing a small body with it.
    thread_local Digest md5(DigestAlgorithm::md5);
    thread_local Digest sha1(DigestAlgorithm::sha1);
    thread_local Digest sha256(DigestAlgorithm::sha256);
    for (Digest *digest : {&md5, &sha1, &sha256})
        static_cast<void>(digest->takeHex()); // what a failed reading left
    std::uint64_t size = 0;
    inBlocksOf(*found, [&size](std::string_view block) {
        size += block.size();
        for (Digest *digest : {&md5, &sha1, &sha256})
            digest->add(block);
    });
    FactList &facts = m_record.facts;
    facts.add("content_coding", found->unpackedFrom);
    facts.add("body", found->doubt);
    if (size == 0)
        return;
    facts.add("content_md5", md5.takeHex());
    facts.add("content_sha1", sha1.takeHex());
    facts.add("content_sha256", sha256.takeHex());
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
        return readPageText(ScratchFile(found->file), m_record.MetaData);
    return tellingGaps(m_extraction.log, [&] {
        return readPageText(m_extraction.evidence.open(found->file), m_record.MetaData);
    });
}

} // namespace nv
