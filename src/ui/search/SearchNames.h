#pragma once

#include "search/Search.h"

#include <QTreeWidget>

class QLineEdit;

namespace nv {

/// The list below the search box of names that fit what is being written behind an operator, with
/// their rows. The box keeps the keys: whoever has it asks takeKey() first.
class SearchNames final : public QTreeWidget {
    Q_OBJECT

  public:
    /// Stands below the box, over whatever is there.
    explicit SearchNames(QLineEdit &box);

    /// None take the list away.
    void offer(const NamedCounts &names);
    /// The arrows choose, Enter and Tab take, Escape closes. False for a key that is the box's.
    bool takeKey(int key);

  signals:
    void chosen(const QString &name);

  private:
    void take(const QString &name);
    void step(int by);
    void place();

    QLineEdit &m_box;
};

} // namespace nv
