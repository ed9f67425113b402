#pragma once

#include "search/HitFinder.h"

#include <QColor>
#include <QObject>
#include <QString>

#include <cstddef>
#include <optional>

class QWidget;

namespace nv {

/// Behind what a search has found; letters on it are black, in any theme.
inline const QColor kHitGround{0xFF, 0xD5, 0x4F};
/// The same for the hit that was gone to.
inline const QColor kChosenHitGround{0xFF, 0x8F, 0x00};

/// What a viewer knows of its hits.
struct HitCount {
    std::optional<std::size_t> at; ///< the hit that was gone to last, 0-based
    std::size_t all = 0;           ///< those that are known
    bool isMore = false;           ///< there may be more than that
    bool isWorking = false;        ///< others are still being looked for

    bool operator==(const HitCount &) const = default;
};

/// "Hit 2 of 7 in Text"; empty when there are none.
QString hitText(const HitCount &count, const QString &viewer);

/// How a viewer follows when it is asked to go to the next hit.
enum class HitStep {
    gone,
    waits, ///< it goes there once it has found it
    none,  ///< there is no further one
};

/// Marks in one viewer whatever a search has found, and goes from mark to mark. It belongs to the
/// viewer, and follows what that comes to show.
class HitViewer : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

    virtual QWidget &viewer() = 0;
    /// What people call the viewer.
    virtual QString name() const = 0;
    /// From now on these are the hits. A search without texts marks nothing.
    virtual void take(const RecordHits &hits) = 0;
    virtual HitCount count() const = 0;
    virtual HitStep goOn(bool forward) = 0;
    /// What is still being looked for is given up.
    virtual void stop() {}

  signals:
    /// The count isn't what it was.
    void changed();
};

} // namespace nv
