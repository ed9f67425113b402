#pragma once

#include "rebuild/RebuildMethod.h"
#include "ui/parts/Workbench.h"

#include <optional>
#include <vector>

namespace nv {

/// Tagged rows in the order of the grid; those that it doesn't show are left alone.
std::vector<UrlId> shownTagged(Workbench &bench);

/// Rebuilds one page by `method`, or by the settings where none is named, and tells what came of
/// it.
void rebuildNow(Workbench &bench, UrlId id, std::optional<MethodChoice> method = {});

/// The commands that rebuild pages.
class RebuildPart final : public QObject {
    Q_OBJECT

  public:
    explicit RebuildPart(Workbench &bench);

    /// With the switch off, parts of rebuilt pages can't have ids above 32,767: it is told, once a
    /// session, when a project has some.
    void tellOfWideIds();

  private:
    void sayWhatRebuildDoes() const;
    void rebuild(std::optional<MethodChoice> method);
    void rebuildCurrent(std::optional<MethodChoice> method);
    void rebuildTaggedPages(const std::vector<UrlId> &ids, std::optional<MethodChoice> method);

    Workbench &m_bench;
    bool m_toldOfWideIds = false;
};

} // namespace nv
