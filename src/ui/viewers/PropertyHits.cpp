#include "ui/viewers/PropertyHits.h"

#include "platform/qt/QtText.h"
#include "ui/viewers/CardPane.h"
#include "ui/viewers/HitMarks.h"
#include "ui/viewers/PropertiesPane.h"
#include "ui/widgets/ShownLines.h"

#include <QPlainTextEdit>

#include <numeric>

namespace nv {

PropertyHits::PropertyHits(CardPane &card, PropertiesPane &properties)
    : HitViewer(&card), m_card(card), m_properties(properties),
      m_whole(new HitMarks(properties.wholeText(), properties, name())) {
    connect(&properties, &PropertiesPane::listed, this, &PropertyHits::mark);
    connect(m_whole, &HitViewer::changed, this, &HitViewer::changed);
}

QWidget &PropertyHits::viewer() {
    return m_card;
}

void PropertyHits::take(const RecordHits &hits) {
    if (m_finder == hits.finder)
        return;
    m_finder = hits.finder;
    m_card.setHits(m_finder);
    m_whole->take(hits);
    mark();
}

void PropertyHits::mark() {
    const std::size_t listed = m_properties.listedCount();
    m_counts.assign(listed, 0);
    for (std::size_t place = 0; m_finder && place < listed; ++place)
        // As the box shows it, so that the numbers are those of its marks.
        m_counts[place] =
            m_finder->marksIn(fromQt(shownLines(m_properties.listedValue(place)))).size();
    m_properties.markListed(m_counts);
    emit changed();
}

HitCount PropertyHits::count() const {
    HitCount count;
    count.all = std::accumulate(m_counts.begin(), m_counts.end(), std::size_t{0});
    const auto chosen = m_properties.chosenPlace();
    const auto at = m_whole->count().at;
    if (chosen && at && *at < m_counts.at(*chosen))
        count.at = std::accumulate(m_counts.begin(),
                                   m_counts.begin() + static_cast<std::ptrdiff_t>(*chosen), *at);
    return count;
}

HitStep PropertyHits::goOn(bool forward) {
    const auto chosen = m_properties.chosenPlace();
    if (chosen && m_counts.at(*chosen) > 0 && m_whole->goOn(forward) == HitStep::gone)
        return HitStep::gone;
    const auto listed = static_cast<std::ptrdiff_t>(m_counts.size());
    std::ptrdiff_t place = forward ? -1 : listed;
    if (chosen)
        place = static_cast<std::ptrdiff_t>(*chosen);
    do
        place += forward ? 1 : -1;
    while (place >= 0 && place < listed && m_counts[static_cast<std::size_t>(place)] == 0);
    if (place < 0 || place >= listed)
        return HitStep::none;
    m_properties.choose(static_cast<std::size_t>(place));
    if (!forward)
        m_properties.wholeText().moveCursor(QTextCursor::End);
    return m_whole->goOn(forward);
}

} // namespace nv
