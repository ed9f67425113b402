#pragma once

#include "search/RowMatch.h"
#include "ui/window/Workbench.h"

#include <optional>

namespace nv {

class HitBar;
class HitMarks;

/// Where the current row has what a search looks for: a line below the table, marks in the viewer
/// of texts, and the way from one to the next.
class SearchHits final : public QObject {
    Q_OBJECT

  public:
    /// After the viewers' part.
    explicit SearchHits(Workbench &bench);

    /// The search that is in force; nothing for none.
    void take(std::optional<RowMatch> match);
    /// From mark to mark in the viewer when it is in front, then on to the next row.
    void goOn(bool forward);

  private:
    void show();
    bool showPlace();

    Workbench &m_bench;
    HitBar *m_bar = nullptr;
    HitMarks *m_marks = nullptr; ///< in the viewer of texts, which owns it
    std::optional<RowMatch> m_match;
};

} // namespace nv
