#pragma once

#include "ui/parts/ProjectLook.h"
#include "ui/parts/Workbench.h"
#include "views/limits/Places.h"

#include <cstdint>

namespace nv {

class PlacesPane;

/// The trees of places beside the table, and the limit that is chosen in them.
class PlacesPart final : public QObject, public Limiter {
    Q_OBJECT

  public:
    /// After the part of the hosts, whose list stands in the same place.
    explicit PlacesPart(Workbench &bench);

    // Limiter
    QVariant limit() const override;
    void setLimit(const QVariant &limit) override;
    std::vector<LimitChip> chips() const override;
    bool asksAgain() const override { return false; }

  private:
    void connectPane();
    void showPane(bool shown);
    void loadIfStale();
    void show(Places places, const QString &failure);
    void limitTo(const PlaceChoice &choice) const;
    void tick(const PlaceChoice &places, bool ticked);

    Workbench &m_bench;
    PlacesPane *m_pane;
    ProjectLook m_look;
    std::int64_t m_countedTo = -1; ///< highest record that the tree knows; -1 before it was made
};

} // namespace nv
