#pragma once

#include <QStringList>
#include <QWidget>

#include <vector>

class QSortFilterProxyModel;
class QToolButton;
class QTreeView;

namespace nv {

/// The headings of the tree of places as buttons above it. They lead to trees that a long one in
/// front of them has moved out of sight.
class PlaceHeadings final : public QWidget {
    Q_OBJECT

  public:
    /// The tree shows what `found` leaves of its source, of which all headings are here. Both must
    /// outlive this.
    PlaceHeadings(QTreeView &tree, QSortFilterProxyModel &found);

  private:
    void follow();
    void allow();
    void goTo(int heading);

    QTreeView &m_tree;
    QSortFilterProxyModel &m_found;
    QStringList m_names;
    std::vector<QToolButton *> m_buttons; ///< one for each name
};

} // namespace nv
