#pragma once

#include "ui/parts/Workbench.h"

#include <QPointer>

#include <vector>

class QMainWindow;

namespace nv {

class FocusRing;

/// The areas of the window from top to bottom, left to right: the order in which Tab goes through
/// their controls, and F6 from one to the next. The area that was gone to by F6 has a ring until
/// the keys go elsewhere.
class AreasPart final : public QObject {
    Q_OBJECT

  public:
    /// Made when all that stands in the window is there.
    AreasPart(Workbench &bench, QMainWindow &window);

    /// What Tab does, or with Shift. False when there is nowhere to go.
    bool goToStop(bool next);

  private:
    /// A part of the window by its object name, and who gets the keys there if it can take them.
    struct Area {
        QPointer<QWidget> panel;
        QPointer<QWidget> first;
    };
    void findAreas();
    /// What takes the keys now, in the order of the areas.
    std::vector<QWidget *> stops() const;
    void addActions();
    void go(int step);
    /// What can be used at once in it; nothing while it isn't shown.
    QWidget *target(const Area &area) const;
    void follow(const QWidget *focus);

    Workbench &m_bench;
    QMainWindow &m_window;
    std::vector<Area> m_areas;
    std::vector<QPointer<QWidget>> m_places; ///< the areas with their parts, as Tab goes
    QPointer<QWidget> m_marked;              ///< the area with the ring
    QPointer<FocusRing> m_ring;
};

} // namespace nv
