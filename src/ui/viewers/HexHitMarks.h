#pragma once

#include "ui/viewers/HitViewer.h"
#include "views/hex/HexHits.h"

#include <QTimer>

#include <string>
#include <vector>

namespace nv {

class HexGrid;
class HexPane;
class FailureLog;

/// The hits among the bytes of a file. Those on the screen are marked at once; all of them are
/// looked for in short steps meanwhile, which can be stopped.
class HexHitMarks final : public HitViewer {
    Q_OBJECT

  public:
    /// The pane owns it. `log` must outlive this.
    HexHitMarks(HexPane &pane, FailureLog &log);

    QWidget &viewer() override;
    QString name() const override;
    void take(const RecordHits &hits) override;
    HitCount count() const override;
    HitStep goOn(bool forward) override;
    void stop() override;

  private:
    void start();
    void step();
    void end();
    /// The hit behind the cursor, or before it, among those that are known.
    std::optional<std::size_t> next(bool forward) const;
    bool isOnHit() const;

    HexPane &m_pane;
    HexGrid &m_grid;
    FailureLog &m_log;
    QTimer m_steps;
    std::vector<std::string> m_forms;
    HexHitScan m_scan;
    bool m_wantsNext = false; ///< once it is found
};

} // namespace nv
