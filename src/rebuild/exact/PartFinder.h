#pragma once

#include "db/marks/RebuiltParts.h"
#include "rebuild/exact/PartCandidates.h"
#include "rebuild/exact/PartFiles.h"

#include <map>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace nv {

/// What stands for an address.
struct FoundPart {
    std::string rule; ///< one of `partrule`, also for none
    const PartFile *file = nullptr;
    std::vector<std::int64_t> candidates; ///< keys, the one taken first
    std::int64_t candidateCount = 0;
};

/// Decides what stands for the addresses of a page and brings it: what the examiner has chosen,
/// else the first of the candidates that has its bytes. Redirects are followed. Of a page that was
/// rebuilt before, what its notes say is brought again.
class PartFinder {
  public:
    /// Everything must outlive it.
    PartFinder(const UrlRecord &page, PartFiles &files, const RebuildContext &ctx);
    /// By what an earlier rebuild has noted.
    PartFinder(const UrlRecord &page, PartFiles &files, const RebuildContext &ctx,
               std::span<const PartNote> notes);

    void prepare(std::span<const std::string> addresses);
    FoundPart find(const std::string &address, RefUse use);

  private:
    FoundPart decide(const std::string &address, RefUse use, int redirects);
    FoundPart noted(const std::string &address, RefUse use);
    std::optional<FoundPart> chosen(const std::string &address, RefUse use);
    FoundPart firstOf(const CandidateList &list, const std::string &address, RefUse use,
                      int redirects);

    PartFiles &m_files;
    PartCandidates m_candidates;
    std::map<std::string, UrlId> m_choices;
    std::optional<std::unordered_map<std::string, PartNote>> m_notes; ///< by address
    std::map<std::pair<std::string, RefUse>, FoundPart> m_found;
    int m_followed = 0; ///< redirects of the address that is looked for
};

} // namespace nv
