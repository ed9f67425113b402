#include "ui/viewers/HitViewer.h"

namespace nv {

QString hitText(const HitCount &count, const QString &viewer) {
    if (count.all == 0)
        return count.isWorking ? HitViewer::tr("Looking for hits in %1...").arg(viewer) : QString();
    const QString all = count.isWorking ? HitViewer::tr("%L1 so far").arg(count.all)
                        : count.isMore  ? HitViewer::tr("%L1 or more").arg(count.all)
                                        : HitViewer::tr("%L1").arg(count.all);
    if (count.at)
        return HitViewer::tr("Hit %L1 of %2 in %3").arg(*count.at + 1).arg(all, viewer);
    return count.all == 1 && !count.isMore && !count.isWorking
               ? HitViewer::tr("1 hit in %1").arg(viewer)
               : HitViewer::tr("%1 hits in %2").arg(all, viewer);
}

} // namespace nv
