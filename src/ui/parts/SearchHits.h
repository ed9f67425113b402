#pragma once

#include "search/HitFinder.h"
#include "ui/parts/Workbench.h"

#include <optional>
#include <vector>

namespace nv {

class HitBar;
class HitViewer;

/// Where the current row has what a search looks for: a line below the table, marks in the viewers,
/// and the way from one to the next.
class SearchHits final : public QObject {
    Q_OBJECT

  public:
    /// After the viewers' part.
    explicit SearchHits(Workbench &bench);

    /// The search that is in force; nothing for none.
    void take(std::optional<RowMatch> match);
    /// From hit to hit in a viewer, then on to the next row.
    void goOn(bool forward);

  private:
    void addViewers();
    void show();
    bool showPlace();
    /// The one that has the focus, or else the first one that is up; the card only with the focus.
    HitViewer *front() const;
    void showCount();

    Workbench &m_bench;
    HitBar *m_bar = nullptr;
    std::vector<HitViewer *> m_viewers; ///< each belongs to its pane
    RecordHits m_hits;
};

} // namespace nv
