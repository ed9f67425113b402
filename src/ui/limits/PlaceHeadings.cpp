#include "ui/limits/PlaceHeadings.h"

#include "ui/widgets/FlowLayout.h"

#include <QSortFilterProxyModel>
#include <QToolButton>
#include <QTreeView>

namespace nv {

PlaceHeadings::PlaceHeadings(QTreeView &tree, QSortFilterProxyModel &found)
    : m_tree(tree), m_found(found) {
    setObjectName(QStringLiteral("placeHeadings"));
    auto *flow = new FlowLayout(this);
    flow->setContentsMargins(4, 0, 4, 2);
    flow->setSpacing(0);
    connect(&found, &QAbstractItemModel::modelReset, this, &PlaceHeadings::follow);
    for (const auto changed : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(&found, changed, this, &PlaceHeadings::allow);
    follow();
}

/// What stays is left alone: a click may have counted the places anew.
void PlaceHeadings::follow() {
    const QAbstractItemModel &all = *m_found.sourceModel();
    QStringList names;
    for (int row = 0; row < all.rowCount(); ++row)
        names += all.index(row, 0).data().toString();
    if (m_names != names) {
        m_names = names;
        qDeleteAll(m_buttons);
        m_buttons.clear();
        for (const QString &name : names) {
            const int heading = static_cast<int>(m_buttons.size());
            auto *button = new QToolButton;
            button->setObjectName(QStringLiteral("btnPlaces%1").arg(heading));
            button->setText(name);
            button->setAccessibleName(tr("Go to %1").arg(name));
            button->setToolTip(tr("Brings %1 to the top of the list").arg(name));
            button->setAutoRaise(true);
            button->setFocusPolicy(Qt::TabFocus);
            connect(button, &QToolButton::clicked, this, [this, heading] { goTo(heading); });
            layout()->addWidget(button);
            m_buttons.push_back(button);
        }
    }
    setVisible(!names.isEmpty());
    allow();
}

/// The filter above the tree may leave nothing of one.
void PlaceHeadings::allow() {
    for (std::size_t heading = 0; heading < m_buttons.size(); ++heading)
        m_buttons[heading]->setEnabled(
            m_found.mapFromSource(m_found.sourceModel()->index(static_cast<int>(heading), 0))
                .isValid());
}

void PlaceHeadings::goTo(int heading) {
    const QModelIndex place = m_found.mapFromSource(m_found.sourceModel()->index(heading, 0));
    m_tree.expand(place);
    m_tree.scrollTo(place, QAbstractItemView::PositionAtTop);
    m_tree.setFocus();
    m_tree.selectionModel()->setCurrentIndex(place, QItemSelectionModel::NoUpdate);
}

} // namespace nv
