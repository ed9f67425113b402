// Of the tables beside pages and visits are read
//   moz_anno_attributes = id name
//   moz_annos           = place_id anno_attribute_id content dateAdded (µs)
//   moz_inputhistory    = place_id input
//   moz_keywords        = id keyword [place_id]
//   moz_favicons        = id url                           up to Firefox 54
//   moz_places_metadata = place_id created_at total_view_time key_presses search_query_id    (ms)
//   moz_places_metadata_search_queries = id terms          "term" on Android

#include "readers/firefox/profile/PlacesNotes.h"

#include "readers/firefox/ProfileValues.h"
#include "readers/sqlite/FurtherTables.h"

#include <array>

namespace nv {

namespace {

constexpr const char *kProcedure = "Firefox3History.readNotes()";

std::string textAt(const std::unordered_map<std::int64_t, std::string> &texts, std::int64_t id) {
    const auto found = texts.find(id);
    return found == texts.end() ? std::string() : found->second;
}

/// A table of names by their number.
bool readTexts(EvidenceDatabase &database, std::string_view table,
               std::span<const std::string_view> columns, ReadContext &ctx, ReadResult &result,
               std::unordered_map<std::int64_t, std::string> &texts) {
    return FurtherTables(ctx, database, kProcedure, result)
        .each(table, columns, [&](std::int64_t id, const Row &row) {
            for (std::size_t i = 0; i < columns.size(); ++i)
                if (std::string text = row.text(i); !text.empty())
                    texts[id] = std::move(text);
        });
}

template <class Note>
void countUntoldOf(ByPlace<Note> &notes, const char *reason, ReadResult &result) {
    for (const Note &note : notes.all())
        if (!note.isTold)
            ++result.passedOver[reason];
}

} // namespace

std::string annotationText(const std::string &name, const std::string &content) {
    return name + "=" + content;
}

bool readAnnotationNames(EvidenceDatabase &database, ReadContext &ctx, ReadResult &result,
                         std::unordered_map<std::int64_t, std::string> &names) {
    constexpr std::array<std::string_view, 1> kName = {"name"};
    return readTexts(database, "moz_anno_attributes", kName, ctx, result, names);
}

bool PlacesNotes::read(EvidenceDatabase &database, ReadContext &ctx, ReadResult &result) {
    constexpr std::array<std::string_view, 1> kUrl = {"url"};
    constexpr std::array<std::string_view, 2> kTerms = {"terms", "term"};
    return readAnnotations(database, ctx, result) && readInputs(database, ctx, result) &&
           readKeywords(database, ctx, result) &&
           readTexts(database, "moz_favicons", kUrl, ctx, result, m_icons) &&
           readTexts(database, "moz_places_metadata_search_queries", kTerms, ctx, result,
                     m_queries) &&
           readInteractions(database, ctx, result);
}

bool PlacesNotes::readAnnotations(EvidenceDatabase &database, ReadContext &ctx,
                                  ReadResult &result) {
    constexpr std::array<std::string_view, 4> kColumns = {"place_id", "anno_attribute_id",
                                                          "content", "dateAdded"};
    std::unordered_map<std::int64_t, std::string> names;
    if (!readAnnotationNames(database, ctx, result, names))
        return false;
    const auto take = [&](std::int64_t id, const Row &row) {
        std::string name = textAt(names, row.number(1).value_or(0));
        const bool isOfDownload =
            name == downloadNotes::kTarget || name == downloadNotes::kMetaData;
        PlaceAnnotation &note =
            (isOfDownload ? m_ofDownloads : m_annotations).add(row.number(0).value_or(0));
        note.id = id;
        note.name = std::move(name);
        note.content = row.text(2);
        note.added = row.number(3);
    };
    const bool goesOn =
        FurtherTables(ctx, database, kProcedure, result).each("moz_annos", kColumns, take);
    m_annotations.sort();
    m_ofDownloads.sort();
    return goesOn;
}

bool PlacesNotes::readInputs(EvidenceDatabase &database, ReadContext &ctx, ReadResult &result) {
    constexpr std::array<std::string_view, 2> kColumns = {"place_id", "input"};
    const bool goesOn =
        FurtherTables(ctx, database, kProcedure, result)
            .eachByKey("moz_inputhistory", kColumns, [this](std::int64_t, const Row &row) {
                m_inputs.add(row.number(0).value_or(0)).text = row.text(1);
            });
    m_inputs.sort();
    return goesOn;
}

bool PlacesNotes::readKeywords(EvidenceDatabase &database, ReadContext &ctx, ReadResult &result) {
    constexpr std::array<std::string_view, 2> kColumns = {"place_id", "keyword"};
    const auto take = [this](std::int64_t id, const Row &row) {
        if (const auto place = row.number(0))
            m_keywords.add(*place).text = row.text(1);
        else
            m_keywordNumbers[id] = row.text(1);
    };
    const bool goesOn =
        FurtherTables(ctx, database, kProcedure, result).each("moz_keywords", kColumns, take);
    m_keywords.sort();
    return goesOn;
}

bool PlacesNotes::readInteractions(EvidenceDatabase &database, ReadContext &ctx,
                                   ReadResult &result) {
    constexpr std::array<std::string_view, 5> kColumns = {
        "place_id", "created_at", "total_view_time", "key_presses", "search_query_id"};
    const auto take = [this](std::int64_t, const Row &row) {
        PlaceInteraction &note = m_interactions.add(row.number(0).value_or(0));
        note.created = row.number(1);
        note.viewTime = row.number(2);
        note.keyPresses = row.number(3);
        note.query = row.number(4).value_or(0);
    };
    const bool goesOn = FurtherTables(ctx, database, kProcedure, result)
                            .each("moz_places_metadata", kColumns, take);
    m_interactions.sort();
    return goesOn;
}

void PlacesNotes::addTo(FactList &facts, std::int64_t place) {
    for (PlaceText &keyword : m_keywords.of(place)) {
        facts.add("keyword", keyword.text);
        keyword.isTold = true;
    }
    for (PlaceText &input : m_inputs.of(place)) {
        facts.add("typed_input", input.text);
        input.isTold = true;
    }
    for (PlaceAnnotation &note : m_annotations.of(place)) {
        facts.add("annotation", annotationText(note.name, note.content));
        note.isTold = true;
    }
    for (PlaceInteraction &note : m_interactions.of(place)) {
        addMozDate(facts, "interaction", note.created, MozUnit::milliseconds);
        addMozDuration(facts, "view_time", note.viewTime);
        if (note.keyPresses.value_or(0) != 0)
            addMozNumber(facts, "key_presses", note.keyPresses);
        facts.add("search_term", textAt(m_queries, note.query));
        note.isTold = true;
    }
}

std::string PlacesNotes::keywordOf(std::int64_t place) {
    const auto found = m_keywords.of(place);
    return found.empty() ? std::string() : found.begin()->text;
}

std::string PlacesNotes::keywordByNumber(std::int64_t number) const {
    return textAt(m_keywordNumbers, number);
}

std::string PlacesNotes::iconOf(std::int64_t icon) const {
    return textAt(m_icons, icon);
}

void PlacesNotes::countUntold(ReadResult &result) {
    countUntoldOf(m_keywords, "keyword of a page that is no longer listed", result);
    countUntoldOf(m_inputs, "typed text of a page that is no longer listed", result);
    countUntoldOf(m_annotations, "annotation of a page that is no longer listed", result);
    countUntoldOf(m_interactions, "looks at a page that is no longer listed", result);
}

} // namespace nv
