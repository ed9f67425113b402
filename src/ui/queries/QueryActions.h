#pragma once

#include <QObject>

class QAction;

namespace nv {

/// What the Query tab and its menu can be told to do. Who does it is the main window's.
struct QueryActions {
    explicit QueryActions(QObject *owner);

    QAction *show;
    QAction *validate;
    QAction *apply;
    QAction *undo;
    QAction *reset;
    QAction *save;
    QAction *remove;
    QAction *builder;
    QAction *favorites;

    void setProjectOpen(bool open, bool readOnly);
};

} // namespace nv
