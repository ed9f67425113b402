#pragma once

#include "readers/Reader.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace nv {

/// What other tables say of pages, gathered in one pass each and found by the page.
template <class Note>
class ByPlace {
  public:
    Note &add(std::int64_t place) {
        Note &note = m_notes.emplace_back();
        note.place = place;
        return note;
    }
    /// In the order of adding within a page.
    void sort() { std::ranges::stable_sort(m_notes, {}, &Note::place); }
    std::span<Note> of(std::int64_t place) {
        return {std::ranges::lower_bound(m_notes, place, {}, &Note::place),
                std::ranges::upper_bound(m_notes, place, {}, &Note::place)};
    }
    std::vector<Note> &all() { return m_notes; }

  private:
    std::vector<Note> m_notes;
};

struct PlaceText {
    std::int64_t place = 0;
    bool isTold = false;
    std::string text;
};

/// One look at a page, as later versions keep them.
struct PlaceInteraction {
    std::int64_t place = 0;
    bool isTold = false;
    std::optional<std::int64_t> created; ///< ms
    std::optional<std::int64_t> viewTime;
    std::optional<std::int64_t> keyPresses;
    std::int64_t query = 0; ///< 0 for none
};

struct PlaceAnnotation {
    std::int64_t place = 0;
    bool isTold = false;
    std::int64_t id = 0;
    std::string name;
    std::string content;
    std::optional<std::int64_t> added; ///< µs
};

/// Notes on pages: what was typed to reach them, how long they were looked at, keywords, icons, and
/// the browser's own annotations.
class PlacesNotes {
  public:
    /// False when cancelled, which stands in `result` then. What is lost is told there too.
    [[nodiscard]] bool read(EvidenceDatabase &database, ReadContext &ctx, ReadResult &result);

    /// Adds what is known of the page, once.
    void addTo(FactList &facts, std::int64_t place);
    /// Annotations that say nothing of a download.
    ByPlace<PlaceAnnotation> &annotations() { return m_annotations; }
    /// Those that do.
    ByPlace<PlaceAnnotation> &ofDownloads() { return m_ofDownloads; }
    std::string keywordOf(std::int64_t place);
    /// By the number that bookmarks of the first versions name.
    std::string keywordByNumber(std::int64_t number) const;
    std::string iconOf(std::int64_t icon) const;
    /// Counts what belongs to pages that aren't listed any more.
    void countUntold(ReadResult &result);

  private:
    bool readAnnotations(EvidenceDatabase &database, ReadContext &ctx, ReadResult &result);
    bool readInputs(EvidenceDatabase &database, ReadContext &ctx, ReadResult &result);
    bool readInteractions(EvidenceDatabase &database, ReadContext &ctx, ReadResult &result);
    bool readKeywords(EvidenceDatabase &database, ReadContext &ctx, ReadResult &result);

    ByPlace<PlaceAnnotation> m_annotations;
    ByPlace<PlaceAnnotation> m_ofDownloads;
    ByPlace<PlaceText> m_inputs;
    ByPlace<PlaceText> m_keywords;
    ByPlace<PlaceInteraction> m_interactions;
    std::unordered_map<std::int64_t, std::string> m_queries;
    std::unordered_map<std::int64_t, std::string> m_keywordNumbers;
    std::unordered_map<std::int64_t, std::string> m_icons;
};

namespace downloadNotes {
inline constexpr const char *kTarget = "downloads/destinationFileURI";
inline constexpr const char *kMetaData = "downloads/metaData";
} // namespace downloadNotes

/// "name=content", as a fact shows it.
std::string annotationText(const std::string &name, const std::string &content);

/// Names of annotations by their number. False when cancelled.
[[nodiscard]] bool readAnnotationNames(EvidenceDatabase &database, ReadContext &ctx,
                                       ReadResult &result,
                                       std::unordered_map<std::int64_t, std::string> &names);

} // namespace nv
