#pragma once

#include "ui/window/Workbench.h"

#include <cstdint>
#include <vector>

namespace nv {

struct RebuildReport;

/// Tagged rows in the order of the grid; those that it doesn't show are left alone.
std::vector<UrlId> shownTagged(Workbench &bench);

/// The command Rebuild.
class RebuildPart final : public QObject {
    Q_OBJECT

  public:
    explicit RebuildPart(Workbench &bench);

    /// With the switch off, parts of rebuilt pages can't have ids above 32,767: it is told, once a
    /// session, when a project has some.
    void tellOfWideIds();

  private:
    void sayWhatRebuildDoes() const;
    void rebuild();
    void rebuildCurrent();
    void rebuildTaggedPages(const std::vector<UrlId> &ids);
    void rebuildOne(UrlId id);
    void showRebuilt(const RebuildReport &report);

    Workbench &m_bench;
    bool m_toldOfWideIds = false;
};

} // namespace nv
