#pragma once

#include "db/marks/RebuiltParts.h"
#include "db/records/UrlRecord.h"
#include "rebuild/RebuildContext.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace nv {

/// A record that could stand in for a reference.
struct AuditCandidate {
    std::int64_t urlID = 0;
    std::string url;
};

/// One reference of a rebuilt page and what stands in its place.
struct AuditRow {
    std::size_t number = 0; ///< counted from 1
    std::string originalValue;
    std::string newValue;
    std::string extension;
    std::string state;         ///< the file's name, or why it isn't shown
    std::int64_t tagURLID = 0; ///< key of the part's record; 0 for none
    bool isThere = false;      ///< the part lies beside the page
    bool isRewritten = false;  ///< the page names it
    std::string score;         ///< "1:4"; empty when the project doesn't know any more
    /// The chosen one, when there is one, and the best others. The score counts those that aren't
    /// told too.
    std::vector<AuditCandidate> candidates;
    /// What is known besides where the page was rebuilt exactly: the address, by which rule the
    /// part was found, its time and its hash.
    std::optional<PartNote> note;
    std::string cache; ///< with the note: whose the part is, and the file of its cache

    bool isReplaced() const { return isThere && isRewritten; }
    /// The chosen record's, empty for none.
    std::string partUrl() const;
    /// "17 http://host/a.gif | 23 http://host/b.gif | 5 more" of all but the chosen one.
    std::string otherCandidates() const;
};

inline constexpr const char *kMissingPart = "Missing or Invalid Tag";
/// Comes before the name of a part that the page's text doesn't name.
inline constexpr const char *kNotRewritten = "Not rewritten: ";

/// Of a page that was rebuilt exactly, in front of the rule: why nothing stands there.
inline constexpr const char *kMarkedPlace = "Marked place: ";

/// The substitution log of a rebuilt page, with what its rebuild folder `folder` holds of it. Empty
/// after a failure, which is logged.
std::optional<std::vector<AuditRow>>
loadAudit(const UrlRecord &page, const std::filesystem::path &folder, const RebuildContext &ctx);

} // namespace nv
