#pragma once

#include "ui/viewers/HitViewer.h"

#include <vector>

namespace nv {

class CardPane;
class HitMarks;
class PropertiesPane;

/// The hits in the values of a record: in its card they are marked; in the list of values a value
/// with hits is, and the way leads from hit to hit through the whole texts.
class PropertyHits final : public HitViewer {
    Q_OBJECT

  public:
    /// The card owns it.
    PropertyHits(CardPane &card, PropertiesPane &properties);

    QWidget &viewer() override;
    QString name() const override { return tr("the card's values"); }
    void take(const RecordHits &hits) override;
    HitCount count() const override;
    HitStep goOn(bool forward) override;

  private:
    void mark();

    CardPane &m_card;
    PropertiesPane &m_properties;
    HitMarks *m_whole = nullptr; ///< in the whole text of the chosen value
    std::shared_ptr<HitFinder> m_finder;
    std::vector<std::size_t> m_counts; ///< of each value that is listed
};

} // namespace nv
