#pragma once

#include "app/project/DroppedPaths.h"

class QMimeData;

namespace nv {

/// Whether there is anything to take or to refuse.
bool holdsUrls(const QMimeData &data);

/// What was dropped, sorted; addresses of other machines and of the web aren't taken.
DroppedPaths droppedIn(const QMimeData &data);

} // namespace nv
