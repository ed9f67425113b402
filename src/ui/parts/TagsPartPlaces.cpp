#include "base/Trap.h"
#include "ui/limits/PlacesPane.h"
#include "ui/parts/TagsPart.h"
#include "views/limits/Places.h"

// Tags among the places, and of the rows of places.
namespace nv {

void TagsPart::connectPlaces() {
    connect(m_places, &PlacesPane::filled, this, &TagsPart::fillPlaces);
    connect(m_places, &PlacesPane::tagLimitMade, this, &TagsPart::limitTo);
    connect(m_places, &PlacesPane::tagWanted, this,
            [this](const PlaceChoice &places, qint64 tagID, bool isSet) {
                if (const NamedTag *tag = find(tagID))
                    tagPlaces(places, NamedTag(*tag), isSet);
            });
    connect(m_places, &PlacesPane::newTagWanted, this, [this](const PlaceChoice &places) {
        if (const auto tag = makeNew())
            tagPlaces(places, *tag, true);
    });
}

/// Those that are folded away or not counted yet get them when they are.
void TagsPart::fillPlaces() {
    if (m_bench.isProjectOpen() && m_places->records() > 0)
        logFailureOf(m_bench.program.log, "MainForm.ShowTags()", [this] {
            m_places->setTags(m_tags, nv::tagPlaces(m_bench.project(), m_places->records()));
        });
}

/// To find the rows may take longer than to tag them, so that this always shows how far it is.
void TagsPart::tagPlaces(const PlaceChoice &places, const NamedTag &tag, bool isSet) {
    m_bench.run("MainForm.TagPlaces()", [&] {
        if (!m_bench.mayWrite())
            return;
        const TagOrder order{tag, isSet, {}};
        std::optional<TagChange> change;
        m_bench.runTask({"TAGGING ROWS", "", "", ""}, [&](TaskMonitor &task) {
            RowIds rows;
            UnreadRows unread;
            if (placeRows(m_bench.project(), places, task, rows, unread) == Walk::Finished)
                change = tagRows(m_bench.program, order, rows, task);
        });
        take(order, std::move(change));
    });
}

} // namespace nv
