#include "ui/viewers/HexHitMarks.h"

#include "base/Trap.h"
#include "ui/viewers/HexGrid.h"
#include "ui/viewers/HexPane.h"

#include <QElapsedTimer>

#include <algorithm>
#include <iterator>

namespace nv {

namespace {

constexpr qint64 kStepTime = 8; ///< milliseconds, after which the window's other work has its turn

} // namespace

HexHitMarks::HexHitMarks(HexPane &pane, FailureLog &log)
    : HitViewer(&pane), m_pane(pane), m_grid(*pane.findChild<HexGrid *>()), m_log(log) {
    m_steps.setInterval(0);
    connect(&m_steps, &QTimer::timeout, this, &HexHitMarks::step);
    connect(&m_grid, &HexGrid::sourceChanged, this, &HexHitMarks::start);
    connect(&m_grid, &HexGrid::cursorMoved, this, &HexHitMarks::changed);
}

QWidget &HexHitMarks::viewer() {
    return m_pane;
}

QString HexHitMarks::name() const {
    return m_pane.wantsSource() ? tr("the source file's bytes") : tr("Hex");
}

void HexHitMarks::take(const RecordHits &hits) {
    if (m_forms == hits.forms)
        return;
    m_forms = hits.forms;
    m_grid.setMarked(m_forms);
    start();
}

void HexHitMarks::start() {
    m_wantsNext = false;
    const auto source = m_grid.source();
    m_scan = HexHitScan(m_forms, source ? source->size() : 0);
    if (m_scan.isOver())
        m_steps.stop();
    else
        m_steps.start();
    emit changed();
}

/// Bytes that can't be read end it: the grid says so as soon as it comes to them.
void HexHitMarks::step() {
    const auto source = m_grid.source();
    if (!source)
        return stop();
    const std::size_t before = m_scan.found().size();
    QElapsedTimer time;
    time.start();
    while (!m_scan.isOver() && time.elapsed() < kStepTime)
        if (failureOf(m_log, "HexHitMarks.step()", [&] { m_scan.step(source->file()); }))
            m_scan.stop();
    if (m_scan.isOver())
        return end();
    if (m_scan.found().size() == before)
        return;
    if (m_wantsNext && next(true))
        goOn(true);
    emit changed();
}

void HexHitMarks::stop() {
    m_scan.stop();
    end();
}

void HexHitMarks::end() {
    m_steps.stop();
    if (m_wantsNext && next(true))
        goOn(true);
    m_wantsNext = false;
    emit changed();
}

bool HexHitMarks::isOnHit() const {
    const HexMatch chosen = m_grid.selection();
    return std::ranges::any_of(m_scan.found(), [&](const HexMatch &hit) {
        return hit.offset == chosen.offset && hit.length == chosen.length;
    });
}

HitCount HexHitMarks::count() const {
    HitCount count;
    count.all = m_scan.found().size();
    count.isWorking = m_steps.isActive();
    count.isMore = !m_scan.isWhole();
    const auto at =
        std::ranges::lower_bound(m_scan.found(), m_grid.cursor(), {}, &HexMatch::offset);
    if (at != m_scan.found().end() && at->offset == m_grid.cursor() && isOnHit())
        count.at = static_cast<std::size_t>(std::distance(m_scan.found().begin(), at));
    return count;
}

std::optional<std::size_t> HexHitMarks::next(bool forward) const {
    const auto &found = m_scan.found();
    const std::uint64_t cursor = m_grid.cursor();
    if (forward) {
        const auto to =
            std::ranges::lower_bound(found, isOnHit() ? cursor + 1 : cursor, {}, &HexMatch::offset);
        return to == found.end()
                   ? std::nullopt
                   : std::optional(static_cast<std::size_t>(std::distance(found.begin(), to)));
    }
    const auto behind = std::ranges::lower_bound(found, cursor, {}, &HexMatch::offset);
    return behind == found.begin()
               ? std::nullopt
               : std::optional(static_cast<std::size_t>(std::distance(found.begin(), behind)) - 1);
}

HitStep HexHitMarks::goOn(bool forward) {
    const auto to = next(forward);
    m_wantsNext = !to && forward && m_steps.isActive();
    if (!to)
        return m_wantsNext ? HitStep::waits : HitStep::none;
    m_grid.select(m_scan.found()[*to]);
    return HitStep::gone;
}

} // namespace nv
