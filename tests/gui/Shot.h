#pragma once

#include <QPixmap>
#include <QString>
#include <QWidget>

namespace nv::test {

/// A picture for people to look at, where NV_SHOTS names a folder for it.
inline void shot(QWidget &widget, const QString &name) {
    if (const QString folder = qEnvironmentVariable("NV_SHOTS"); !folder.isEmpty())
        widget.grab().save(folder + u'/' + name + QStringLiteral(".png"));
}

} // namespace nv::test
