#pragma once

#include <QCoreApplication>
#include <QString>

namespace nv {

/// What a pane of a record says while no row is chosen.
inline QString noRowText() {
    return QCoreApplication::translate("nv::RecordPane",
                                       "Choose a row of the table: what it holds is shown here.");
}

} // namespace nv
