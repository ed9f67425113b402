#pragma once

#include <QTest>
#include <QTreeView>

// The tree of places, as somebody uses it.
namespace nv::test {

/// The first place of this name at or below `parent`; invalid when there is none.
inline QModelIndex placeIn(const QTreeView &tree, const QString &name,
                           const QModelIndex &parent = {}) {
    const QAbstractItemModel &model = *tree.model();
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        if (index.data().toString() == name)
            return index;
        if (const QModelIndex below = placeIn(tree, name, index); below.isValid())
            return below;
    }
    return {};
}

inline void clickPlace(QTreeView &tree, const QString &name,
                       Qt::KeyboardModifiers keys = Qt::NoModifier) {
    const QModelIndex index = placeIn(tree, name);
    QVERIFY2(index.isValid(), qPrintable(name));
    tree.scrollTo(index);
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, keys, tree.visualRect(index).center());
    QTest::qWait(10);
}

} // namespace nv::test
